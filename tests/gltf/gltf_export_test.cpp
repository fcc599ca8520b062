// The .glb of an actor against what its files say: the rig's bones and bind pose, each vertex's
// position, UVs and weights, the triangles, the materials and the embedded textures.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <map>

#include "fbx/export_fixture.h"
#include "fbx/sdk/fbx_mesh.h"
#include "game_writers/image_writer.h"
#include "game_writers/pack_writer.h"
#include "game_writers/xml_writer.h"
#include "glb_reader.h"
#include "gltf/gltf_scene.h"
#include "image/image_decode.h"
#include "support/allocation_failure.h"

namespace {

using exporttest::LoadedActor;
using gamewriters::SkinnedActorDesc;

struct Export {
  ConvertOutcome outcome;
  std::string bytes;
  glbtest::Glb glb;
};

// The actor converted as the Convert command converts one, to `path` in `format`.
Export Convert(LoadedActor& loaded, const std::string& path, ExportFormat format, const PackIndex* packs = nullptr,
               bool textures = false) {
  PackIndex noPacks;
  exporttest::SaveDialog save;
  exporttest::RigDialog rig;
  save.path = path;
  Export result;
  ExportActor(GameTables{packs ? *packs : noPacks, loaded.definitions, loaded.rigs}, "actors\\hero.adr", loaded.actor,
              loaded.model, loaded.materials, {save, rig}, result.outcome,
              {.creationTime = exporttest::FixedTime, .textures = textures, .format = format});
  if (result.outcome.Written()) result.bytes = gamewriters::ReadFileBytes(path);
  std::string error;
  if (result.bytes.compare(0, 4, "glTF") == 0) {
    EXPECT_TRUE(glbtest::ReadGlb(result.bytes, result.glb, error)) << error;
  }
  return result;
}

// Each rig bone's global bind matrix from its stored translation and rotation.
std::vector<FbxAMatrix> RigGlobals(const gamewriters::RigLayout& rig) {
  std::vector<FbxAMatrix> globals(rig.bones.size());
  for (size_t i = 0; i < rig.bones.size(); ++i) {  // parents come first in the test writers' rigs
    const auto& bone = rig.bones[i];
    FbxAMatrix local;
    local.SetQ({bone.rotation[0], bone.rotation[1], bone.rotation[2], bone.rotation[3]});
    for (u32 row = 0; row < 3; ++row) local.At(row, 3) = bone.translation[row];
    globals[i] = bone.parent >= 0 ? globals[size_t(bone.parent)] * local : local;
  }
  return globals;
}

// Makes the actor take its rig as it now stands in `files`.
void UseRig(LoadedActor& loaded) {
  const std::string key = "changed_" + std::to_string(loaded.rigs.Count());  // a network of its own each time
  loaded.AddNetwork(key.c_str(), gamewriters::NetworkWithSets({{7, loaded.files.rig}}, {{"Idle", 7}}));
  ASSERT_TRUE(loaded.actor.animationNetworkName.Assign(("anims\\" + key + ".mrn").c_str()));
}

const nlohmann::json& Attribute(const glbtest::Glb& glb, size_t mesh, const char* name) {
  return glb.json["meshes"][mesh]["primitives"][0]["attributes"][name];
}

TEST(GltfExport, BonesHangUnderTheActorWithTheRigsTransformsAndTheSkinsBindThemAsTheRigDoes) {
  LoadedActor loaded;
  loaded.Load({.meshCount = 2, .gridSize = 3, .boneCount = 5});
  // Bones that aren't at the origin, turned about axes that aren't the main ones.
  for (size_t i = 0; i < loaded.files.rig.bones.size(); ++i) {
    auto& bone = loaded.files.rig.bones[i];
    bone.translation = {0.5f * float(i), 1.0f, -0.25f * float(i), 0};
    bone.rotation = {0.1f * float(i + 1), -0.2f, 0.3f, 0.9f};  // not of unit length: it is normalised
  }
  UseRig(loaded);
  testsupport::TempDir dir;
  const Export out = Convert(loaded, dir.Join("hero.glb"), ExportFormat::kGlb);
  ASSERT_TRUE(out.outcome.Written()) << out.outcome.logLine.Text();
  const nlohmann::json& nodes = out.glb.json["nodes"];
  const auto& bones = loaded.files.rig.bones;
  ASSERT_EQ(nodes.size(), 1 + bones.size() + 2);
  EXPECT_EQ(nodes[0]["name"], "hero");
  EXPECT_EQ(out.glb.json["scenes"][0]["nodes"], nlohmann::json({0, 6, 7})) << "skinned meshes stand at the top";
  EXPECT_EQ(nodes[0]["children"], nlohmann::json({1}));
  for (size_t i = 0; i < bones.size(); ++i) {
    SCOPED_TRACE(bones[i].name);
    const nlohmann::json& node = nodes[1 + i];
    EXPECT_EQ(node["name"], bones[i].name);
    for (size_t child = 0; child < bones.size(); ++child) {
      const bool under = bones[child].parent == i32(i);
      const nlohmann::json children = node.value("children", nlohmann::json::array());
      EXPECT_EQ(std::find(children.begin(), children.end(), 1 + child) != children.end(), under) << child;
    }
    for (u32 a = 0; a < 3; ++a) EXPECT_NEAR(node["translation"][a].get<double>(), bones[i].translation[a], 1e-7);
    const auto& q = bones[i].rotation;
    const double length =
        std::sqrt(double(q[0]) * q[0] + double(q[1]) * q[1] + double(q[2]) * q[2] + double(q[3]) * q[3]);
    double dot = 0;
    for (u32 a = 0; a < 4; ++a) dot += node["rotation"][a].get<double>() * q[a] / length;
    EXPECT_NEAR(std::abs(dot), 1.0, 1e-9) << "the rig's rotation, as a unit quaternion";
  }

  const std::vector<FbxAMatrix> globals = RigGlobals(loaded.files.rig);
  ASSERT_EQ(out.glb.json["skins"].size(), 2u);
  for (const nlohmann::json& skin : out.glb.json["skins"]) {
    EXPECT_EQ(skin["skeleton"], 0);
    const std::vector<double> inverse = glbtest::Values(out.glb, skin["inverseBindMatrices"].get<size_t>());
    ASSERT_EQ(inverse.size(), 16 * skin["joints"].size());
    for (size_t j = 0; j < skin["joints"].size(); ++j) {
      const size_t bone = skin["joints"][j].get<size_t>() - 1;
      ASSERT_LT(bone, bones.size());
      FbxAMatrix m;
      for (u32 k = 0; k < 16; ++k) m.At(k % 4, k / 4) = inverse[16 * j + k];
      const FbxAMatrix product = m * globals[bone];
      for (u32 k = 0; k < 16; ++k) EXPECT_NEAR(product.At(k / 4, k % 4), k / 4 == k % 4, 1e-5) << bone << " " << k;
    }
  }
}

TEST(GltfExport, EachVertexKeepsItsPositionUvsAndBonesWithWeightsThatSumToOne) {
  const SkinnedActorDesc desc{.meshCount = 2, .gridSize = 3, .boneCount = 4, .secondUv = true};
  LoadedActor loaded;
  loaded.Load(desc);
  testsupport::TempDir dir;
  const Export out = Convert(loaded, dir.Join("hero.glb"), ExportFormat::kGlb);
  ASSERT_TRUE(out.outcome.Written()) << out.outcome.logLine.Text();
  const nlohmann::json& json = out.glb.json;
  ASSERT_EQ(json["meshes"].size(), 2u);
  for (size_t m = 0; m < 2; ++m) {
    SCOPED_TRACE(m);
    const std::vector<double> positions = glbtest::Values(out.glb, Attribute(out.glb, m, "POSITION"));
    const std::vector<double> uv0 = glbtest::Values(out.glb, Attribute(out.glb, m, "TEXCOORD_0"));
    const std::vector<double> uv1 = glbtest::Values(out.glb, Attribute(out.glb, m, "TEXCOORD_1"));
    const std::vector<double> joints = glbtest::Values(out.glb, Attribute(out.glb, m, "JOINTS_0"));
    const std::vector<double> weights = glbtest::Values(out.glb, Attribute(out.glb, m, "WEIGHTS_0"));
    EXPECT_EQ(glbtest::Values(out.glb, Attribute(out.glb, m, "NORMAL")).size(), 27u);
    const nlohmann::json& skin = json["skins"][json["nodes"][1 + 4 + m]["skin"].get<size_t>()];
    ASSERT_EQ(positions.size(), 27u);
    for (u32 v = 0; v < 9; ++v) {
      SCOPED_TRACE(v);
      const gamewriters::GridVertex expected = gamewriters::SkinnedActorVertex(desc, u32(m), v);
      for (u32 a = 0; a < 3; ++a) EXPECT_EQ(positions[3 * v + a], expected.position[a]);
      // The game's UVs have their origin at the image's top left, as glTF's do: they come back.
      EXPECT_NEAR(uv0[2 * v], expected.uv[0], 1e-7);
      EXPECT_NEAR(uv0[2 * v + 1], expected.uv[1], 1e-7);
      EXPECT_EQ(uv1[2 * v], 0.25);
      EXPECT_EQ(uv1[2 * v + 1], 1.5);
      std::map<std::string, double> want, got;
      const float sum = expected.weights[0] + expected.weights[1];
      for (u32 k = 0; k < 2; ++k) {
        if (expected.weights[k] > 0) want["bone_" + std::to_string(expected.bones[k])] += expected.weights[k] / sum;
      }
      double total = 0;
      for (u32 k = 0; k < 4; ++k) {
        total += weights[4 * v + k];
        if (weights[4 * v + k] == 0) {
          EXPECT_EQ(joints[4 * v + k], 0) << "an unused influence names joint 0";
          continue;
        }
        const size_t node = skin["joints"][size_t(joints[4 * v + k])].get<size_t>();
        got[json["nodes"][node]["name"].get<std::string>()] += weights[4 * v + k];
      }
      EXPECT_NEAR(total, 1.0, 1e-6);
      ASSERT_EQ(got.size(), want.size());
      for (const auto& [bone, weight] : want) EXPECT_NEAR(got[bone], weight, 1e-6) << bone;
    }
    // Each triangle's last two corners change places: the game's front faces are clockwise.
    const ModelMesh& mesh = loaded.model.meshes[u32(m)];
    ASSERT_EQ(mesh.bytesPerIndex, 2u);
    std::vector<double> stored(mesh.indexCount);
    for (u32 i = 0; i < mesh.indexCount; ++i)
      stored[i] = mesh.indexData.Data()[2 * i] | mesh.indexData.Data()[2 * i + 1] << 8;
    for (u32 t = 0; t + 2 < mesh.indexCount; t += 3) std::swap(stored[t + 1], stored[t + 2]);
    EXPECT_EQ(glbtest::Values(out.glb, json["meshes"][m]["primitives"][0]["indices"].get<size_t>()), stored);
    const nlohmann::json& material = json["materials"][json["meshes"][m]["primitives"][0]["material"].get<size_t>()];
    EXPECT_EQ(material["name"], "UVChannel_3") << "named as the FBX file's";
    EXPECT_EQ(material["pbrMetallicRoughness"]["baseColorFactor"], nlohmann::json({1.0, 1.0, 0.0, 1.0}));
  }
}

TEST(GltfExport, AVertexThatNoRigBoneWeighsGoesToTheRigsRootBone) {
  LoadedActor loaded;
  loaded.Load({.meshCount = 1, .gridSize = 2, .boneCount = 2});
  // The rig lacks the model's bone 0, which carries the whole weight of every even vertex.
  loaded.files.rig.bones[0].name = "elsewhere";
  UseRig(loaded);
  testsupport::TempDir dir;
  const Export out = Convert(loaded, dir.Join("hero.glb"), ExportFormat::kGlb);
  ASSERT_TRUE(out.outcome.Written()) << out.outcome.logLine.Text();
  const nlohmann::json& skin = out.glb.json["skins"][0];
  EXPECT_EQ(skin["joints"], nlohmann::json({1, 2})) << "every bone of the rig";
  const std::vector<double> joints = glbtest::Values(out.glb, Attribute(out.glb, 0, "JOINTS_0"));
  const std::vector<double> weights = glbtest::Values(out.glb, Attribute(out.glb, 0, "WEIGHTS_0"));
  EXPECT_EQ(joints, std::vector<double>({0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0}))
      << "even vertices go to the rig's root bone, odd ones keep bone_1";
  EXPECT_EQ(weights, std::vector<double>({1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0}))
      << "bone_1's weight renormalised";

  // With no bone of the rig at all, nothing is bound: a plain mesh under the actor's node.
  loaded.files.rig.bones[1].name = "nowhere";
  UseRig(loaded);
  const Export unbound = Convert(loaded, dir.Join("unbound.glb"), ExportFormat::kGlb);
  ASSERT_TRUE(unbound.outcome.Written()) << unbound.outcome.logLine.Text();
  ASSERT_EQ(unbound.glb.json["skins"].size(), 1u) << "the skeleton's own skin";
  EXPECT_FALSE(unbound.glb.json["nodes"][3].contains("skin")) << "which the mesh doesn't use";
  EXPECT_FALSE(unbound.glb.json["meshes"][0]["primitives"][0]["attributes"].contains("JOINTS_0"));
  EXPECT_EQ(unbound.glb.json["nodes"][0]["children"], nlohmann::json({1, 3}));
}

TEST(GltfExport, JointNumbersTakeSixteenBitsBeyond256BonesAndIndicesThirtyTwoBeyond65535Vertices) {
  struct Case {
    u32 gridSize;
    u32 extraBones;
    int jointType;
    int indexType;
  } cases[] = {{3, 252, 5121, 5123}, {3, 253, 5123, 5123}, {255, 0, 5121, 5123}, {256, 0, 5121, 5125}};
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << c.gridSize << " " << c.extraBones);
    LoadedActor loaded;
    loaded.Load({.meshCount = 1, .gridSize = c.gridSize, .boneCount = 4});
    for (u32 i = 0; i < c.extraBones; ++i) loaded.files.rig.bones.push_back({.name = "extra_" + std::to_string(i)});
    UseRig(loaded);
    testsupport::TempDir dir;
    const Export out = Convert(loaded, dir.Join("hero.glb"), ExportFormat::kGlb);
    ASSERT_TRUE(out.outcome.Written()) << out.outcome.logLine.Text();
    const nlohmann::json& accessors = out.glb.json["accessors"];
    const nlohmann::json& primitive = out.glb.json["meshes"][0]["primitives"][0];
    EXPECT_EQ(accessors[Attribute(out.glb, 0, "JOINTS_0").get<size_t>()]["componentType"], c.jointType);
    EXPECT_EQ(accessors[primitive["indices"].get<size_t>()]["componentType"], c.indexType);
    // Vertex 1's heavier bone is bone_1, joint 1 whatever the width.
    EXPECT_EQ(glbtest::Values(out.glb, Attribute(out.glb, 0, "JOINTS_0"))[4], 1);
    EXPECT_EQ(out.glb.json["skins"][0]["joints"].size(), 4 + c.extraBones);
  }
}

TEST(GltfExport, NormalsComeOutAtUnitLengthAndAZeroOneTakesItsTrianglesNormal) {
  ExportScene scene;
  ASSERT_TRUE(scene.rootName.Assign("hero"));
  SceneMesh* mesh = scene.meshes.Append();
  ASSERT_TRUE(mesh);
  std::strcpy(mesh->name, "Mesh_0");
  ExportMesh& geometry = mesh->geometry;
  // One triangle facing down (clockwise, as the game stores it), and a vertex that no triangle uses.
  const Vec3 points[] = {{0, 0, 0}, {1, 0, 0}, {0, 0, 1}, {5, 5, 5}};
  const Vec3 stored[] = {{0, 2, 0}, {0, 0, 0}, {3, 0, 4}, {0, 0, 0}};
  ASSERT_TRUE(geometry.positions.SetSize(4) && geometry.normals.SetSize(4) && geometry.indices.SetSize(3));
  for (u32 v = 0; v < 4; ++v) geometry.positions[v] = points[v], geometry.normals[v] = stored[v];
  const u32 triangle[] = {0, 2, 1};
  for (u32 c = 0; c < 3; ++c) geometry.indices[c] = triangle[c];
  geometry.vertexCount = 4, geometry.indexCount = 3, geometry.flags = kHasPosition | kHasNormal;

  GltfDocument document;
  BuildGltf(scene, {}, document);
  glbtest::Glb glb{nlohmann::json::parse(document.json), std::string(document.bin.begin(), document.bin.end())};
  const std::vector<double> expected = {0, 1, 0, 0, -1, 0, 0.6, 0, 0.8, 0, 1, 0};
  const std::vector<double> written = glbtest::Values(glb, Attribute(glb, 0, "NORMAL"));
  ASSERT_EQ(written.size(), expected.size());
  for (size_t i = 0; i < expected.size(); ++i) EXPECT_NEAR(written[i], expected[i], 1e-7) << i;
}

TEST(GltfExport, TheFormatFollowsTheOptionOrElseTheExtension) {
  struct Case {
    const char* name;
    ExportFormat format;
    bool glb;
  } cases[] = {
      {"a.glb", ExportFormat::kByExtension, true},  {"b.GLB", ExportFormat::kByExtension, true},
      {"c.fbx", ExportFormat::kByExtension, false}, {"d", ExportFormat::kByExtension, false},
      {"e.fbx", ExportFormat::kGlb, true},          {"f.glb", ExportFormat::kFbx, false},
  };
  LoadedActor loaded;
  loaded.Load({});
  testsupport::TempDir dir;
  for (const Case& c : cases) {
    const Export out = Convert(loaded, dir.Join(c.name), c.format);
    ASSERT_TRUE(out.outcome.Written()) << c.name;
    EXPECT_EQ(out.bytes.compare(0, 4, "glTF") == 0, c.glb) << c.name;
    EXPECT_EQ(out.bytes.compare(0, 18, "Kaydara FBX Binary") == 0, !c.glb) << c.name;
  }
  // Without the option a conversion writes the FBX file it always wrote.
  exporttest::SaveDialog save;
  exporttest::RigDialog rig;
  save.path = dir.Join("default.fbx");
  ASSERT_TRUE(exporttest::Convert(loaded, save, rig));
  EXPECT_EQ(gamewriters::ReadFileBytes(save.path), gamewriters::ReadFileBytes(dir.Join("c.fbx")));
}

TEST(GltfExport, AFileThatCantBeWrittenFailsWithItsLineAndWhatFailedAndLeavesNothing) {
  LoadedActor loaded;
  loaded.Load({});
  testsupport::TempDir dir;
  const std::string taken = dir.Join("taken.glb");
  std::filesystem::create_directories(taken);
  const struct {
    std::string path;
    const char* reason;
  } cases[] = {
      {dir.Join("missing/hero.glb"), "Cannot create the file: No such file or directory"},
      {taken, "Cannot create the file: Is a directory"},
  };
  for (const auto& c : cases) {
    for (const ExportFormat format : {ExportFormat::kGlb, ExportFormat::kFbx}) {
      SCOPED_TRACE(c.path);
      const Export out = Convert(loaded, c.path, format);
      EXPECT_EQ(out.outcome.result, ConvertResult::kWriteFailed);
      EXPECT_EQ(std::string(out.outcome.logLine.Text()), "Failed to write \"" + c.path + "\".");
      if (format == ExportFormat::kGlb) {
        EXPECT_EQ(out.outcome.reason, c.reason);
      } else {
        EXPECT_EQ(out.outcome.reason,
                  "Cannot create file \"" + c.path + "\": " + std::string(std::strchr(c.reason, ':') + 2));
      }
    }
  }
  EXPECT_FALSE(std::filesystem::exists(dir.Join("missing")));
  EXPECT_TRUE(std::filesystem::is_empty(taken));
}

// A 2 x 2 image whose every corner differs, rows from the top: red, green, then blue, white.
const std::vector<u8> kCorners = {255, 0, 0, 255, 0, 255, 0, 255, 0, 0, 255, 255, 255, 255, 255, 255};

// A game folder whose one pack holds "tex\\corners.png", opened in `packs`.
void OpenCornersPack(const testsupport::TempDir& dir, PackIndex& packs) {
  const std::vector<gamewriters::PackFileEntry> files = {{"tex\\corners.png", gamewriters::BuildPng(2, 2, kCorners)}};
  ASSERT_TRUE(gamewriters::WriteFileBytes(dir.Join("assets_000.pack"),
                                          gamewriters::BuildPack({{gamewriters::PackChunk{files}}})));
  ASSERT_TRUE(packs.Open(dir.Path().c_str()));
}

// Refused memory anywhere in a .glb conversion with textures, the standard containers' included:
// each refusal ends the conversion with its failure line and no file, or, inside a texture's
// decoding, leaves that texture out with its note; nothing leaks and nothing throws out.
TEST(GltfExport, RefusedMemoryAtEveryStepFailsCleanly) {
  SkinnedActorDesc desc{.meshCount = 2, .gridSize = 2, .boneCount = 2};
  desc.textures = {{{"baseDiffuse", "tex\\corners.png"}}, {{"baseDiffuse", "tex\\corners.png"}}};
  LoadedActor loaded;
  loaded.Load(desc);
  testsupport::TempDir dir;
  PackIndex packs;
  ASSERT_NO_FATAL_FAILURE(OpenCornersPack(dir, packs));
  const std::string path = dir.Join("hero.glb");
  u64 failed = 0;
  for (u64 n = 1;; ++n) {
    exporttest::SaveDialog save;
    exporttest::RigDialog rig;
    save.path = path;
    ConvertOutcome outcome;
    bool refused = false;
    {
      testsupport::ScopedAllocationFailure refuse(n, true);
      ExportActor(GameTables{packs, loaded.definitions, loaded.rigs}, "actors\\hero.adr", loaded.actor, loaded.model,
                  loaded.materials, {save, rig}, outcome,
                  {.creationTime = exporttest::FixedTime, .textures = true, .format = ExportFormat::kGlb});
      refused = refuse.Failed();
      EXPECT_EQ(refuse.Live(), 0) << "refusal " << n;
    }
    const bool written = outcome.Written();
    const std::string line = outcome.logLine.Text();
    const std::vector<std::string>& notes = outcome.notes;
    if (!refused) {
      EXPECT_TRUE(written) << line;
      EXPECT_TRUE(notes.empty());
      break;
    }
    ++failed;
    if (written) {
      EXPECT_EQ(notes, std::vector<std::string>{"Texture \"tex\\corners.png\" can't be decoded."}) << "refusal " << n;
    } else {
      EXPECT_FALSE(line.empty()) << "refusal " << n;
      EXPECT_FALSE(std::filesystem::exists(path)) << "refusal " << n;
    }
    std::filesystem::remove(path);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.Path()), {}), 1) << "nothing but the pack";
  }
  EXPECT_GT(failed, 100u) << "the standard containers' allocations were refused too";
}

TEST(GltfExport, TexturesGoInsideTheFileOnTheirMeshesMaterials) {
  SkinnedActorDesc desc{.meshCount = 3, .gridSize = 2, .boneCount = 2};
  desc.textures = {{{"baseDiffuse", "tex\\corners.png"}},
                   {{"baseDiffuse", "tex\\missing.dds"}},
                   {{"baseDiffuse", "tex\\corners.png"}}};
  LoadedActor loaded;
  loaded.Load(desc);
  testsupport::TempDir dir;
  PackIndex packs;
  ASSERT_NO_FATAL_FAILURE(OpenCornersPack(dir, packs));
  const Export out = Convert(loaded, dir.Join("hero.glb"), ExportFormat::kGlb, &packs, true);
  ASSERT_TRUE(out.outcome.Written()) << out.outcome.logLine.Text();
  EXPECT_EQ(out.outcome.notes, std::vector<std::string>{"Texture \"tex\\missing.dds\" was not found."});
  EXPECT_FALSE(std::filesystem::exists(dir.Join("hero.fbm"))) << "nothing beside the file";

  const nlohmann::json& json = out.glb.json;
  ASSERT_EQ(json["images"].size(), 1u) << "an image shown by two meshes is stored once";
  EXPECT_EQ(json["images"][0]["mimeType"], "image/png");
  const std::string png = glbtest::ViewBytes(out.glb, json["images"][0]["bufferView"].get<size_t>());
  DecodedImage image;
  ASSERT_TRUE(DecodeImage(reinterpret_cast<const u8*>(png.data()), png.size(), image));
  EXPECT_EQ(std::vector<u8>(image.pixels.begin(), image.pixels.end()), kCorners);
  for (size_t m = 0; m < 3; ++m) {
    const nlohmann::json& pbr =
        json["materials"][json["meshes"][m]["primitives"][0]["material"].get<size_t>()]["pbrMetallicRoughness"];
    if (m == 1) {
      EXPECT_EQ(pbr["baseColorFactor"], nlohmann::json({1.0, 1.0, 0.0, 1.0})) << "no texture: yellow";
      EXPECT_FALSE(pbr.contains("baseColorTexture"));
    } else {
      EXPECT_EQ(pbr["baseColorTexture"], nlohmann::json({{"index", 0}, {"texCoord", 0}})) << m;
      EXPECT_FALSE(pbr.contains("baseColorFactor")) << "the image as it is";
    }
  }
}

}  // namespace
