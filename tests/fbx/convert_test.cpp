#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "export/build_export_scene.h"
#include "export_fixture.h"
#include "fbx/sdk/fbx_math.h"
#include "support/allocation_failure.h"
#include "support/fbx_reader.h"
#include "support/temp_dir.h"

namespace {

using exporttest::LoadedActor;
using gamewriters::SkinnedActorDesc;
using testsupport::FbxReadFile;
using testsupport::FbxReadRecord;

// A written file by object: records by id, names, and the OO links from child to parents.
struct Scene {
  FbxReadFile file;
  std::map<int64_t, const FbxReadRecord*> objects;
  std::multimap<int64_t, int64_t> parents;
  std::vector<std::pair<int64_t, int64_t>> links;

  void Load(const std::string& bytes) {
    std::string error;
    ASSERT_TRUE(ReadFbxBinary(bytes, file, error)) << error;
    for (const FbxReadRecord& object : file.Record("Objects")->children)
      objects[object.properties[0].integer] = &object;
    for (const FbxReadRecord& link : file.Record("Connections")->children) {
      links.emplace_back(link.properties[1].integer, link.properties[2].integer);
      parents.emplace(link.properties[1].integer, link.properties[2].integer);
    }
  }
  static std::string Name(const FbxReadRecord& object) {
    const std::string& full = object.properties[1].bytes;
    return full.substr(0, full.find('\0'));
  }
  // The one object of this record name and object name.
  const FbxReadRecord* Find(const std::string& record, const std::string& name) const {
    for (const auto& [id, object] : objects) {
      if (object->name == record && Name(*object) == name) return object;
    }
    return nullptr;
  }
  int64_t Id(const FbxReadRecord* object) const { return object ? object->properties[0].integer : -1; }
  // Ids linked into `parent`, in file order, of objects with this record name.
  std::vector<int64_t> Into(int64_t parent, const std::string& record) const {
    std::vector<int64_t> ids;
    for (const auto& [child, to] : links) {
      if (to == parent && objects.count(child) && objects.at(child)->name == record) ids.push_back(child);
    }
    return ids;
  }
  int64_t ParentModel(int64_t id) const {
    for (auto [it, end] = parents.equal_range(id); it != end; ++it) {
      if (it->second == 0 || objects.at(it->second)->name == "Model") return it->second;
    }
    return -1;
  }
};

const FbxReadRecord* Row(const FbxReadRecord& object, const std::string& name) {
  for (const FbxReadRecord& row : object.Child("Properties70")->children) {
    if (row.properties[0].bytes == name) return &row;
  }
  return nullptr;
}

FbxDouble3 Vector(const FbxReadRecord& object, const std::string& name, FbxDouble3 otherwise) {
  const FbxReadRecord* row = Row(object, name);
  return row ? FbxDouble3{row->properties[4].real, row->properties[5].real, row->properties[6].real} : otherwise;
}

FbxAMatrix FromFile(const std::vector<double>& v) {
  FbxAMatrix m;
  for (u32 i = 0; i < 16; ++i) m.At(i % 4, i / 4) = v.at(i);
  return m;
}

void ExpectNear(const FbxAMatrix& a, const FbxAMatrix& b, const std::string& what) {
  for (u32 i = 0; i < 16; ++i) EXPECT_NEAR(a.At(i / 4, i % 4), b.At(i / 4, i % 4), 1e-5) << what << " element " << i;
}

// The global bind matrix of each rig bone composed from its stored translation and quaternion.
std::vector<FbxAMatrix> DirectGlobals(const gamewriters::RigLayout& rig) {
  std::vector<FbxAMatrix> globals(rig.bones.size());
  std::vector<bool> done(rig.bones.size());
  std::function<void(size_t)> resolve = [&](size_t i) {
    if (done[i]) return;
    const auto& bone = rig.bones[i];
    const auto& q = bone.rotation;
    const double length =
        std::sqrt(double(q[0]) * q[0] + double(q[1]) * q[1] + double(q[2]) * q[2] + double(q[3]) * q[3]);
    const double x = q[0] / length, y = q[1] / length, z = q[2] / length, w = q[3] / length;
    FbxAMatrix local;
    const double r[3][3] = {{1 - 2 * (y * y + z * z), 2 * (x * y - z * w), 2 * (x * z + y * w)},
                            {2 * (x * y + z * w), 1 - 2 * (x * x + z * z), 2 * (y * z - x * w)},
                            {2 * (x * z - y * w), 2 * (y * z + x * w), 1 - 2 * (x * x + y * y)}};
    for (u32 row = 0; row < 3; ++row) {
      for (u32 column = 0; column < 3; ++column) local.At(row, column) = r[row][column];
      local.At(row, 3) = bone.translation[row];
    }
    if (bone.parent >= 0) {
      resolve(size_t(bone.parent));
      local = globals[size_t(bone.parent)] * local;
    }
    globals[i] = local;
    done[i] = true;
  };
  for (size_t i = 0; i < rig.bones.size(); ++i) resolve(i);
  return globals;
}

// The global matrix of a Model from the Lcl values written, up its parent links.
FbxAMatrix FileGlobal(const Scene& scene, int64_t id) {
  FbxAMatrix global;
  for (int64_t at = id; at > 0; at = scene.ParentModel(at)) {
    const FbxReadRecord& model = *scene.objects.at(at);
    const FbxDouble3 t = Vector(model, "Lcl Translation", {}), r = Vector(model, "Lcl Rotation", {});
    global = FbxAMatrix::FromTRS({t.x, t.y, t.z, 1}, {r.x, r.y, r.z, 0}, {1, 1, 1, 0}) * global;
  }
  return global;
}

std::string Convert(LoadedActor& loaded, const testsupport::TempDir& dir, const char* name) {
  exporttest::SaveDialog save;
  save.path = dir.Join(name);
  exporttest::RigDialog rigs;
  EXPECT_TRUE(exporttest::Convert(loaded, save, rigs));
  EXPECT_TRUE(rigs.shown.empty()) << "a rig named by the actor is never asked for";
  return gamewriters::ReadFileBytes(save.path);
}

TEST(ExportRoundTrip, SkinnedActorValueByValue) {
  const SkinnedActorDesc desc{.meshCount = 2, .gridSize = 3, .boneCount = 5, .secondUv = true};
  LoadedActor loaded;
  loaded.Load(desc);
  testsupport::TempDir dir;
  Scene scene;
  scene.Load(Convert(loaded, dir, "hero.fbx"));

  const FbxReadRecord* settings = scene.file.Record("GlobalSettings");
  ASSERT_TRUE(settings);
  EXPECT_EQ(Row(*settings, "UnitScaleFactor")->properties[4].real, 100.0) << "metres";
  EXPECT_EQ(Row(*settings, "OriginalUnitScaleFactor")->properties[4].real, 100.0);
  const FbxReadRecord* meta = scene.file.Record("FBXHeaderExtension")->Child("SceneInfo")->Child("MetaData");
  EXPECT_EQ(meta->Child("Title")->properties[0].bytes, "Tarnwick export");
  EXPECT_EQ(meta->Child("Subject")->properties[0].bytes, "Model exported by Tarnwick");
  EXPECT_EQ(meta->Child("Author")->properties[0].bytes, "Tarnwick.exe");
  EXPECT_EQ(meta->Child("Revision")->properties[0].bytes, "1.0");
  EXPECT_EQ(scene.file.Record("Documents")->Child("Document")->properties[1].bytes, "Tarnwick");

  // The root: a Root skeleton node and the pose, both named after the actor's stem, under the scene.
  const FbxReadRecord* root = scene.Find("Model", "hero");
  ASSERT_TRUE(root);
  EXPECT_EQ(root->properties[2].bytes, "Root");
  EXPECT_EQ(scene.ParentModel(scene.Id(root)), 0);
  EXPECT_TRUE(scene.Find("NodeAttribute", "hero"));
  const FbxReadRecord* pose = scene.Find("Pose", "hero");
  ASSERT_TRUE(pose);
  ASSERT_EQ(pose->Child("NbPoseNodes")->properties[0].integer, 1 + int64_t(desc.boneCount));

  const std::vector<FbxAMatrix> direct = DirectGlobals(loaded.files.rig);
  std::map<int64_t, u32> boneOfModel;
  for (u32 b = 0; b < desc.boneCount; ++b) {
    const auto& bone = loaded.files.rig.bones[b];
    SCOPED_TRACE(bone.name);
    const FbxReadRecord* model = scene.Find("Model", bone.name);
    ASSERT_TRUE(model);
    EXPECT_EQ(model->properties[2].bytes, "LimbNode");
    boneOfModel[scene.Id(model)] = b;
    const FbxDouble3 t = Vector(*model, "Lcl Translation", {});
    EXPECT_EQ(t, (FbxDouble3{bone.translation[0], bone.translation[1], bone.translation[2]}));
    const int64_t parent =
        bone.parent < 0 ? scene.Id(root) : scene.Id(scene.Find("Model", loaded.files.rig.bones[bone.parent].name));
    EXPECT_EQ(scene.ParentModel(scene.Id(model)), parent);
    ExpectNear(FileGlobal(scene, scene.Id(model)), direct[b], "global from Lcl");
    const FbxReadRecord& poseNode = pose->children[4 + b];  // Type, Version, NbPoseNodes, the root
    EXPECT_EQ(poseNode.Child("Node")->properties[0].integer, scene.Id(model));
    ExpectNear(FromFile(poseNode.Child("Matrix")->properties[0].reals), direct[b], "bind pose");
  }

  for (u32 m = 0; m < desc.meshCount; ++m) {
    const std::string meshName = "Mesh_" + std::to_string(m);
    SCOPED_TRACE(meshName);
    const FbxReadRecord* node = scene.Find("Model", meshName);
    const FbxReadRecord* geometry = scene.Find("Geometry", meshName);
    ASSERT_TRUE(node && geometry);
    EXPECT_EQ(scene.ParentModel(scene.Id(node)), scene.Id(root)) << "meshes hang beside the bones";
    EXPECT_EQ(scene.Into(scene.Id(node), "Geometry"), std::vector<int64_t>{scene.Id(geometry)});

    const u32 vertices = desc.gridSize * desc.gridSize;
    const auto& points = geometry->Child("Vertices")->properties[0].reals;
    const auto& normals = geometry->Child("LayerElementNormal")->Child("Normals")->properties[0].reals;
    ASSERT_EQ(points.size(), 3 * vertices);
    ASSERT_EQ(normals.size(), 3 * vertices);
    std::vector<const FbxReadRecord*> uvSets;
    for (const FbxReadRecord& child : geometry->children) {
      if (child.name == "LayerElementUV") uvSets.push_back(&child);
    }
    ASSERT_EQ(uvSets.size(), 2u);
    EXPECT_EQ(uvSets[0]->Child("Name")->properties[0].bytes, "UVChannel_1");
    EXPECT_EQ(uvSets[1]->Child("Name")->properties[0].bytes, "UVChannel_3") << "the set keeps its channel's number";
    EXPECT_EQ(uvSets[1]->properties[0].integer, 1) << "but the element numbers stay dense";
    EXPECT_EQ(uvSets[0]->Child("MappingInformationType")->properties[0].bytes, "ByVertice");
    const auto& uv = uvSets[0]->Child("UV")->properties[0].reals;
    const auto& uv3 = uvSets[1]->Child("UV")->properties[0].reals;
    std::map<u32, std::vector<std::pair<int64_t, double>>> expected;  // rig bone: (vertex, weight)
    std::vector<u32> firstUse;
    for (u32 v = 0; v < vertices; ++v) {
      const gamewriters::GridVertex g = gamewriters::SkinnedActorVertex(desc, m, v);
      for (u32 k = 0; k < 3; ++k) EXPECT_EQ(points[3 * v + k], g.position[k]);
      EXPECT_EQ(normals[3 * v + 1], 1.0);
      EXPECT_EQ(uv[2 * v], g.uv[0]);
      EXPECT_EQ(uv[2 * v + 1], double(1.0f - g.uv[1])) << "V flipped in single precision";
      EXPECT_EQ(uv3[2 * v + 1], -0.5) << "no wrapping";
      for (u32 k = 0; k < 2; ++k) {
        if (g.weights[k] == 0) continue;
        if (!expected.count(g.bones[k])) firstUse.push_back(g.bones[k]);
        expected[g.bones[k]].emplace_back(v, double(float(std::lround(g.weights[k] * 255)) / 255.0f));
      }
    }
    const auto& polygons = geometry->Child("PolygonVertexIndex")->properties[0].integers;
    ASSERT_EQ(polygons.size(), 6u * (desc.gridSize - 1) * (desc.gridSize - 1));
    EXPECT_EQ(std::vector<int64_t>(polygons.begin(), polygons.begin() + 6), (std::vector<int64_t>{0, 3, ~1, 3, 4, ~1}))
        << "0 1 3 and 3 1 4 with their winding reversed";

    const std::vector<int64_t> skins = scene.Into(scene.Id(geometry), "Deformer");
    ASSERT_EQ(skins.size(), 1u);
    const std::vector<int64_t> clusters = scene.Into(skins[0], "Deformer");
    ASSERT_EQ(clusters.size(), firstUse.size()) << "every bone here carries weight";
    for (size_t c = 0; c < clusters.size(); ++c) {
      const FbxReadRecord& cluster = *scene.objects.at(clusters[c]);
      const std::vector<int64_t> link = scene.Into(clusters[c], "Model");
      ASSERT_EQ(link.size(), 1u);
      const u32 bone = boneOfModel.at(link[0]);
      EXPECT_EQ(bone, firstUse[c]) << "clusters in order of first use";
      std::vector<std::pair<int64_t, double>> written;
      const auto& indexes = cluster.Child("Indexes")->properties[0].integers;
      const auto& weights = cluster.Child("Weights")->properties[0].reals;
      for (size_t i = 0; i < indexes.size(); ++i) written.emplace_back(indexes[i], weights.at(i));
      EXPECT_EQ(written, expected[bone]);
      const FbxAMatrix link_ = FromFile(cluster.Child("TransformLink")->properties[0].reals);
      ExpectNear(link_, direct[bone], "TransformLink");
      ExpectNear(link_ * FromFile(cluster.Child("Transform")->properties[0].reals), FbxAMatrix(), "Transform");
    }
    const std::vector<int64_t> materials = scene.Into(scene.Id(node), "Material");
    ASSERT_EQ(materials.size(), 1u) << "one material of its own";
    const FbxReadRecord& material = *scene.objects.at(materials[0]);
    EXPECT_EQ(Scene::Name(material), "UVChannel_3") << "named after the last set written";
    EXPECT_EQ(Vector(material, "DiffuseColor", {}), (FbxDouble3{1, 1, 0}));
    EXPECT_EQ(Row(material, "DiffuseFactor")->properties[4].real, 1.0);
  }
}

TEST(ExportRoundTrip, AncestorsGetEmptyClustersAfterTheWeightedBone) {
  // The model has one bone, C, the last of the chain A-B-C in the rig.
  LoadedActor loaded;
  loaded.files = gamewriters::BuildSkinnedActor({.boneCount = 1});
  ASSERT_TRUE(loaded.definitions.Read(exporttest::Bytes(loaded.files.catalogue)));
  ASSERT_TRUE(Read(loaded.model, exporttest::Bytes(loaded.files.model), loaded.materials));
  gamewriters::RigLayout chain;
  chain.bones = {{.name = "A"}, {.name = "B", .parent = 0}, {.name = "bone_0", .parent = 1}};
  loaded.AddNetwork("rig", gamewriters::NetworkWithSets({{3, chain}}, {}));
  loaded.actor.borrowSkeleton = true;
  testsupport::TempDir dir;
  Scene scene;
  scene.Load(Convert(loaded, dir, "c.fbx"));
  const std::vector<int64_t> skins = scene.Into(scene.Id(scene.Find("Geometry", "Mesh_0")), "Deformer");
  ASSERT_EQ(skins.size(), 1u);
  std::vector<std::string> order;
  for (int64_t cluster : scene.Into(skins[0], "Deformer")) {
    order.push_back(Scene::Name(*scene.objects.at(scene.Into(cluster, "Model").at(0))));
    EXPECT_EQ(scene.objects.at(cluster)->Child("Indexes") != nullptr, order.back() == "bone_0");
  }
  EXPECT_EQ(order, (std::vector<std::string>{"bone_0", "B", "A"}));
  EXPECT_EQ(Scene::Name(*scene.objects.at(scene.Into(scene.Id(scene.Find("Model", "Mesh_0")), "Material")[0])),
            "UVChannel_1");
}

TEST(ExportRoundTrip, SameBytesFromRunToRunWithAFixedClock) {
  LoadedActor loaded;
  loaded.Load({.meshCount = 2, .gridSize = 20, .boneCount = 30, .secondUv = true});
  testsupport::TempDir dir;
  const std::string first = Convert(loaded, dir, "a.fbx");
  EXPECT_GT(first.size(), 10000u);
  EXPECT_EQ(first, Convert(loaded, dir, "b.fbx"));
}

}  // namespace

namespace {

TEST(FileStem, CutsFoldersAndTheLastExtension) {
  const std::pair<const char*, const char*> cases[] = {
      {"a/b.adr", "b"}, {"a\\b/c.adr", "c"}, {"a.b/c", "c"}, {"", ""}, {"foo\\bar.baz.adr", "bar.baz"}, {"bar", "bar"}};
  for (const auto& [text, stem] : cases) {
    TStringBufferA<8> out;
    FileStem(text, out);
    EXPECT_STREQ(out.Text(), stem) << text;
  }
}

TEST(ExportFailures, EndWithTheirResultAndNoFile) {
  LoadedActor loaded;
  loaded.Load({.boneCount = 2});
  testsupport::TempDir dir;
  exporttest::RigDialog rigs;
  exporttest::SaveDialog save;

  ConvertOutcome outcome;
  testing::internal::CaptureStdout();
  EXPECT_TRUE(exporttest::Convert(loaded, save, rigs, &outcome)) << "a cancel is no error";
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(save.asked, 1);
  EXPECT_EQ(outcome.result, ConvertResult::kCancelled);
  EXPECT_STREQ(outcome.logLine.Text(), "");

  // A path that can't be written: the exporter's two lines, and one for the log.
  save.path = dir.Join("missing/hero.fbx");
  testing::internal::CaptureStdout();
  EXPECT_FALSE(exporttest::Convert(loaded, save, rigs, &outcome));
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "Call to FbxExporter::Initialize() failed.\n"
            "Error returned: Cannot create file \"" +
                save.path + "\": No such file or directory\n\n");
  EXPECT_EQ(outcome.result, ConvertResult::kWriteFailed);
  EXPECT_EQ(outcome.logLine.Text(), "Failed to write \"" + save.path + "\".");
  EXPECT_TRUE(std::filesystem::is_empty(dir.Path())) << "nothing written, not even a temporary";

  // A mesh whose material names no known definition: the path is never asked.
  save.path = dir.Join("hero.fbx");
  save.asked = 0;
  loaded.materials.materials[0].definitionHash ^= 1;
  EXPECT_FALSE(exporttest::Convert(loaded, save, rigs, &outcome));
  EXPECT_EQ(outcome.result, ConvertResult::kMeshFailed);
  EXPECT_STREQ(outcome.logLine.Text(), "Failed to convert mesh.\n");
  EXPECT_EQ(save.asked, 0);
  EXPECT_TRUE(std::filesystem::is_empty(dir.Path()));
}

TEST(ExportFailures, RefusedMemoryAtEveryStepFailsCleanly) {
  LoadedActor loaded;
  loaded.Load({.gridSize = 12, .boneCount = 2});  // large enough for deflated arrays
  testsupport::TempDir dir;
  exporttest::RigDialog rigs;
  exporttest::SaveDialog save;
  save.path = dir.Join("hero.fbx");
  for (u64 n = 1;; ++n) {
    testsupport::ScopedAllocationFailure refuse(n);
    const bool converted = exporttest::Convert(loaded, save, rigs);
    EXPECT_EQ(refuse.Live(), 0) << "refusal " << n;
    if (!refuse.Failed()) {
      EXPECT_TRUE(converted);
      break;
    }
    EXPECT_FALSE(std::filesystem::exists(save.path)) << "refusal " << n;
  }
  EXPECT_TRUE(std::filesystem::exists(save.path));
}

}  // namespace
