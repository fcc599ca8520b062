// Every .glb of the tests' games through the readers that users have: the Khronos validator,
// Blender's importer (against its import of the same actor's FBX file) and Assimp.
#include <assimp/scene.h>
#include <gtest/gtest.h>
#include <assimp/Importer.hpp>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>

#include "fbx/export_fixture.h"
#include "game_writers/sample_game.h"
#include "glb_reader.h"
#include "support/shell_run.h"

namespace {

using exporttest::LoadedActor;

using testsupport::ShellRun;

ShellRun Shell(const std::string& command) { return testsupport::RunShell(command); }

std::string Quoted(const std::string& text) { return "'" + text + "'"; }

// `text` quoted as one more word of `command`. Appended piece by piece: GCC 12 at -O3 takes
// " " + a temporary for an overlapping copy and warns.
void AppendWord(std::string& command, const std::string& text) { command.append(" '").append(text).append("'"); }

// Writes `loaded` as "<name>.fbx" and "<name>.glb" in `folder`.
void WritePair(LoadedActor& loaded, const std::string& folder, const std::string& name) {
  for (const char* extension : {".fbx", ".glb"}) {
    PackIndex noPacks;
    exporttest::SaveDialog save;
    exporttest::RigDialog rig;
    save.path = folder + "/" + name + extension;
    ConvertOutcome outcome;
    ExportActor(GameTables{noPacks, loaded.definitions, loaded.rigs}, ("actors\\" + name + ".adr").c_str(),
                loaded.actor, loaded.model, loaded.materials, {save, rig}, outcome,
                {.creationTime = exporttest::FixedTime, .format = ExportFormat::kByExtension});
    ASSERT_TRUE(outcome.Written()) << save.path << ": " << outcome.logLine.Text();
  }
}

// The sample game's actors, as the command line writes them in both formats (and the .glb files
// again with their textures), and the test writers' actors in the shapes the sample lacks.
class GltfTools : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    dir = new testsupport::TempDir;
    std::string error;
    ASSERT_TRUE(gamewriters::BuildSampleGame(dir->Path(), &error)) << error;
    const std::string cli = std::string(TARNWICK_CLI) + " --data-dir " +
                            Quoted(gamewriters::SampleGameLayout(dir->Path()).userData) + " convert '*' --rig Idle ";
    const std::string out = dir->Join("out");
    for (const std::string& options : {"--format glb --out-dir " + out, "--out-dir " + out,
                                       "--format glb --textures --out-dir " + dir->Join("textured"),
                                       "--textures --out-dir " + dir->Join("textured")}) {
      ASSERT_EQ(Shell(cli + options + " >/dev/null 2>&1").status, 0) << options;
    }
    // Chains of bones and two UV sets; a vertex that no rig bone weighs; more vertices than
    // 16-bit indices reach; more bones than 8-bit joint numbers reach.
    const std::string actors = dir->Join("out/writers");
    std::filesystem::create_directories(actors);
    {
      LoadedActor loaded;
      loaded.Load({.meshCount = 2, .gridSize = 4, .boneCount = 6, .secondUv = true, .chain = true});
      WritePair(loaded, actors, "chain");
    }
    {
      LoadedActor loaded;
      loaded.Load({.meshCount = 1, .gridSize = 3, .boneCount = 3});
      loaded.files.rig.bones[0].name = "elsewhere";
      loaded.AddNetwork("changed", gamewriters::NetworkWithSets({{7, loaded.files.rig}}, {{"Idle", 7}}));
      ASSERT_TRUE(loaded.actor.animationNetworkName.Assign("anims\\changed.mrn"));
      WritePair(loaded, actors, "unweighted");
    }
    {
      LoadedActor loaded;
      loaded.Load({.meshCount = 1, .gridSize = 257, .boneCount = 8});
      WritePair(loaded, actors, "wide");
    }
    {
      LoadedActor loaded;
      loaded.Load({.meshCount = 1, .gridSize = 3, .boneCount = 4});
      for (u32 i = 0; i < 300; ++i) {
        loaded.files.rig.bones.push_back(
            {.name = "extra_" + std::to_string(i), .parent = i32(i % 4), .translation = {0, 0.5f, 0, 0}});
      }
      loaded.AddNetwork("large", gamewriters::NetworkWithSets({{7, loaded.files.rig}}, {{"Idle", 7}}));
      ASSERT_TRUE(loaded.actor.animationNetworkName.Assign("anims\\large.mrn"));
      WritePair(loaded, actors, "many_bones");
    }
    {
      // Bones and no mesh: readers must still take them as a skeleton.
      LoadedActor loaded;
      loaded.Load({.meshCount = 0, .boneCount = 5, .chain = true});
      WritePair(loaded, actors, "skeleton_only");
    }
  }
  static void TearDownTestSuite() {
    delete dir;
    dir = nullptr;
  }

  // Every file below `folder` with this extension, sorted.
  static std::vector<std::string> Files(const std::string& folder, const std::string& extension) {
    std::vector<std::string> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
      if (entry.path().extension() == extension) files.push_back(entry.path().string());
    }
    std::sort(files.begin(), files.end());
    return files;
  }
  // Each .glb below out/ with its .fbx.
  static std::vector<std::pair<std::string, std::string>> Pairs() {
    std::vector<std::pair<std::string, std::string>> pairs;
    for (const std::string& glb : Files(dir->Join("out"), ".glb")) {
      pairs.emplace_back(std::filesystem::path(glb).replace_extension(".fbx").string(), glb);
    }
    return pairs;
  }

  static testsupport::TempDir* dir;
};

testsupport::TempDir* GltfTools::dir = nullptr;

TEST_F(GltfTools, EveryActorPassesTheKhronosValidatorWithoutErrorOrWarning) {
  std::vector<std::string> files = Files(dir->Join("out"), ".glb");
  const std::vector<std::string> textured = Files(dir->Join("textured"), ".glb");
  ASSERT_EQ(files.size(), 10u + 5u) << "the sample game's ten actors and the writers' five";
  ASSERT_EQ(textured.size(), 10u);
  files.insert(files.end(), textured.begin(), textured.end());
  std::string command = "node " TARNWICK_TEST_SOURCE_DIR "/gltf/validate_glb.js";
  for (const std::string& file : files) AppendWord(command, file);
  const ShellRun run = Shell(command + " 2>&1");
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.out, "");
  // Only the wisp's material is see-through: its textured material blends, the others are opaque.
  for (const std::string& file : textured) {
    glbtest::Glb glb;
    std::string error;
    ASSERT_TRUE(glbtest::ReadGlb(gamewriters::ReadFileBytes(file), glb, error)) << error;
    for (const nlohmann::json& material : glb.json["materials"]) {
      EXPECT_EQ(material.value("alphaMode", ""), file.ends_with("wisp.glb") ? "BLEND" : "") << file;
    }
  }
}

// Every textured mesh of the sample game, as Blender imports it from either format: opaque but
// for the wisp, whose material is see-through and blends by its image's alpha.
TEST_F(GltfTools, BlenderTakesOnlyTheSeeThroughMaterialsAlphaAsOpacity) {
  std::string command =
      "blender -b --factory-startup --python " TARNWICK_TEST_SOURCE_DIR "/app/blender_opacity_probe.py --";
  std::vector<std::string> files = Files(dir->Join("textured"), ".glb");
  const std::vector<std::string> fbx = Files(dir->Join("textured"), ".fbx");
  files.insert(files.end(), fbx.begin(), fbx.end());
  ASSERT_EQ(files.size(), 20u);
  for (const std::string& file : files) AppendWord(command, file);
  const ShellRun run = Shell(command + " 2>/dev/null");
  size_t meshes = 0, probed = 0;
  for (size_t at = 0; (at = run.out.find("OPACITY ", at)) != std::string::npos; ++at, ++probed) {
    const size_t nameEnd = run.out.find(' ', at + 8);
    const std::string file = run.out.substr(at + 8, nameEnd - at - 8);
    const nlohmann::json probe =
        nlohmann::json::parse(run.out.substr(nameEnd + 1, run.out.find('\n', at) - nameEnd - 1), nullptr, false);
    ASSERT_FALSE(probe.is_discarded()) << file;
    const bool seeThrough = file.find("/wisp.") != std::string::npos;
    EXPECT_FALSE(probe.empty()) << file << ": every actor of the sample game is textured";
    for (const auto& [name, mesh] : probe.items()) {
      EXPECT_EQ(mesh["alpha_linked"], seeThrough) << file << " " << name;
      EXPECT_EQ(mesh["blend"], seeThrough ? "BLEND" : "OPAQUE") << file << " " << name;
      ++meshes;
    }
  }
  EXPECT_EQ(probed, files.size()) << run.out;
  EXPECT_GE(meshes, 2 * 13u) << "the textured meshes of both formats";
}

TEST_F(GltfTools, BlenderImportsTheGlbWithTheSameBoneHeadsVerticesAndUvsAsTheFbx) {
  std::string command =
      "blender -b --factory-startup --python " TARNWICK_TEST_SOURCE_DIR "/gltf/blender_compare_probe.py --";
  const auto pairs = Pairs();
  for (const auto& [fbx, glb] : pairs) {
    AppendWord(command, fbx);
    AppendWord(command, glb);
  }
  const ShellRun run = Shell(command + " 2>/dev/null");
  size_t compared = 0;
  for (size_t at = 0; (at = run.out.find("PAIR ", at)) != std::string::npos; ++at) {
    const size_t nameEnd = run.out.find(' ', at + 5);
    const std::string line = run.out.substr(nameEnd + 1, run.out.find('\n', at) - nameEnd - 1);
    const nlohmann::json pair = nlohmann::json::parse(line, nullptr, false);
    SCOPED_TRACE(run.out.substr(at + 5, nameEnd - at - 5));
    ASSERT_FALSE(pair.is_discarded()) << line;
    if (run.out.substr(at + 5, nameEnd - at - 5).ends_with("skeleton_only.glb")) {
      EXPECT_GT(pair["bones"][0], 0) << "an armature";
    }
    EXPECT_EQ(pair["bones"][0], pair["bones"][1]);
    EXPECT_EQ(pair["missing_bones"].size(), 0u) << line;
    EXPECT_LT(pair["bone_distance"].get<double>(), 1e-6);
    EXPECT_EQ(pair["meshes"][0], pair["meshes"][1]);
    EXPECT_EQ(pair["missing_meshes"].size(), 0u) << line;
    EXPECT_EQ(pair["vertices"][0], pair["vertices"][1]);
    EXPECT_LT(pair["vertex_distance"].get<double>(), 1e-5);
    EXPECT_EQ(pair["uv_sets"][0], pair["uv_sets"][1]);
    EXPECT_LT(pair["uv_distance"].get<double>(), 1e-6) << "the image lies the same way";
    ++compared;
  }
  EXPECT_EQ(compared, pairs.size()) << run.out;
}

// Each vertex's bones by name with weights that sum to 1; a vertex with none has no entry.
std::vector<std::map<std::string, double>> Weights(const aiMesh& mesh) {
  std::vector<std::map<std::string, double>> weights(mesh.mNumVertices);
  for (unsigned b = 0; b < mesh.mNumBones; ++b) {
    const aiBone& bone = *mesh.mBones[b];
    for (unsigned w = 0; w < bone.mNumWeights; ++w) {
      if (bone.mWeights[w].mWeight > 0)
        weights[bone.mWeights[w].mVertexId][bone.mName.C_Str()] += bone.mWeights[w].mWeight;
    }
  }
  for (auto& vertex : weights) {
    double sum = 0;
    for (const auto& [name, weight] : vertex) sum += weight;
    for (auto& [name, weight] : vertex) weight /= sum;
  }
  return weights;
}

TEST_F(GltfTools, AssimpReadsTheGlbWithTheFbxsMeshesWeightsAndBones) {
  for (const auto& [fbx, glb] : Pairs()) {
    SCOPED_TRACE(glb);
    Assimp::Importer fbxImporter, glbImporter;
    const aiScene* a = fbxImporter.ReadFile(fbx, 0);
    const aiScene* b = glbImporter.ReadFile(glb, 0);
    ASSERT_TRUE(a) << fbxImporter.GetErrorString();
    ASSERT_TRUE(b) << glbImporter.GetErrorString();
    ASSERT_EQ(a->mNumMeshes, b->mNumMeshes);
    // A vertex the FBX file leaves unweighted goes to the rig's first root bone: the actor's
    // node's first child.
    glbtest::Glb file;
    std::string error;
    ASSERT_TRUE(glbtest::ReadGlb(gamewriters::ReadFileBytes(glb), file, error)) << error;
    const nlohmann::json& nodes = file.json["nodes"];
    const std::string rootBone =
        nodes[0].contains("children") ? nodes[nodes[0]["children"][0].get<size_t>()]["name"].get<std::string>() : "";
    for (unsigned m = 0; m < a->mNumMeshes; ++m) {
      // The FBX reader makes a vertex of each triangle's corner; corners are compared.
      const aiMesh& fromFbx = *a->mMeshes[m];
      const aiMesh* found = nullptr;
      for (unsigned n = 0; n < b->mNumMeshes; ++n) {
        if (std::string(b->mMeshes[n]->mName.C_Str()) == fromFbx.mName.C_Str()) found = b->mMeshes[n];
      }
      ASSERT_TRUE(found) << fromFbx.mName.C_Str();
      const aiMesh& fromGlb = *found;
      ASSERT_EQ(fromFbx.mNumFaces, fromGlb.mNumFaces);
      const auto fbxWeights = Weights(fromFbx), glbWeights = Weights(fromGlb);
      EXPECT_EQ(fromFbx.mNumBones > 0, fromGlb.mNumBones > 0);
      for (unsigned f = 0; f < fromFbx.mNumFaces; ++f) {
        ASSERT_EQ(fromFbx.mFaces[f].mNumIndices, 3u);
        ASSERT_EQ(fromGlb.mFaces[f].mNumIndices, 3u);
        for (unsigned k = 0; k < 3; ++k) {
          const unsigned va = fromFbx.mFaces[f].mIndices[k], vb = fromGlb.mFaces[f].mIndices[k];
          const aiVector3D d = fromFbx.mVertices[va] - fromGlb.mVertices[vb];
          ASSERT_LT(d.Length(), 1e-5) << "face " << f << " corner " << k;
          if (fromFbx.mNumBones == 0) continue;
          const std::map<std::string, double> want =
              fbxWeights[va].empty() ? std::map<std::string, double>{{rootBone, 1.0}} : fbxWeights[va];
          ASSERT_EQ(glbWeights[vb].size(), want.size()) << "face " << f << " corner " << k;
          for (const auto& [bone, weight] : want) {
            ASSERT_TRUE(glbWeights[vb].count(bone)) << bone;
            EXPECT_NEAR(glbWeights[vb].at(bone), weight, 1e-5) << bone;
          }
        }
      }
    }
  }
}

}  // namespace
