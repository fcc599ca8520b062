#include <assimp/postprocess.h>
#include <assimp/scene.h>
#include <gtest/gtest.h>
#include <assimp/Importer.hpp>

#include <map>
#include <set>
#include <string>

#include "export_fixture.h"
#include "support/temp_dir.h"

namespace {

const aiNode* FindNode(const aiNode* node, const std::string& name) {
  if (name == node->mName.C_Str()) return node;
  for (unsigned i = 0; i < node->mNumChildren; ++i) {
    if (const aiNode* found = FindNode(node->mChildren[i], name)) return found;
  }
  return nullptr;
}

// An independent reader takes the file: meshes, faces, bones with their weights, and the tree.
TEST(AssimpLoad, ReadsTheSkinnedActorAsWritten) {
  const gamewriters::SkinnedActorDesc desc{.meshCount = 3, .gridSize = 5, .boneCount = 7};
  exporttest::LoadedActor loaded;
  loaded.Load(desc);
  testsupport::TempDir dir;
  exporttest::SaveDialog save;
  save.path = dir.Join("hero.fbx");
  exporttest::RigDialog rigs;
  ASSERT_TRUE(exporttest::Convert(loaded, save, rigs));

  Assimp::Importer importer;
  const aiScene* scene = importer.ReadFile(save.path, aiProcess_ValidateDataStructure);
  ASSERT_TRUE(scene) << importer.GetErrorString();
  ASSERT_EQ(scene->mNumMeshes, desc.meshCount);
  const unsigned triangles = 2 * (desc.gridSize - 1) * (desc.gridSize - 1);
  for (unsigned m = 0; m < scene->mNumMeshes; ++m) {
    const aiMesh* mesh = scene->mMeshes[m];
    SCOPED_TRACE(m);
    EXPECT_EQ(mesh->mNumFaces, triangles);
    EXPECT_EQ(mesh->mNumVertices, 3 * triangles) << "one vertex per corner";
    EXPECT_TRUE(mesh->HasNormals());
    EXPECT_TRUE(mesh->HasTextureCoords(0));
    ASSERT_EQ(mesh->mNumBones, desc.boneCount);
    // Each corner maps back to its grid vertex by position, and carries that vertex's weights.
    std::map<std::pair<float, float>, u32> vertexAt;
    for (u32 v = 0; v < desc.gridSize * desc.gridSize; ++v) {
      const auto g = gamewriters::SkinnedActorVertex(desc, 0, v);
      vertexAt[{g.position[0], g.position[2]}] = v;
    }
    std::set<std::string> names;
    for (unsigned b = 0; b < mesh->mNumBones; ++b) {
      const aiBone* bone = mesh->mBones[b];
      names.insert(bone->mName.C_Str());
      ASSERT_GT(bone->mNumWeights, 0u);
      for (unsigned w = 0; w < bone->mNumWeights; ++w) {
        const aiVector3D& p = mesh->mVertices[bone->mWeights[w].mVertexId];
        const u32 v = vertexAt.at({p.x, p.z});
        const auto g = gamewriters::SkinnedActorVertex(desc, m, v);
        const u32 k = "bone_" + std::to_string(g.bones[0]) == bone->mName.C_Str() ? 0 : 1;
        EXPECT_EQ("bone_" + std::to_string(g.bones[k]), bone->mName.C_Str());
        EXPECT_NEAR(bone->mWeights[w].mWeight, g.weights[k], 1e-6);
      }
    }
    EXPECT_EQ(names.size(), desc.boneCount);
  }
  const aiNode* root = FindNode(scene->mRootNode, "hero");
  ASSERT_TRUE(root);
  for (u32 b = 1; b < desc.boneCount; ++b) {
    const aiNode* bone = FindNode(root, "bone_" + std::to_string(b));
    ASSERT_TRUE(bone && bone->mParent);
    EXPECT_STREQ(bone->mParent->mName.C_Str(), ("bone_" + std::to_string((b - 1) / 2)).c_str());
  }
  EXPECT_TRUE(FindNode(root, "Mesh_0"));
}

}  // namespace
