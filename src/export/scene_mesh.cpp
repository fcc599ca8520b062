#include "export/scene_mesh.h"

#include <cstdio>
#include <cstring>

namespace {

bool AddUvSets(SceneMesh& mesh) {
  for (u32 channel = 0; channel < kExportUvChannels; ++channel) {
    if (!(mesh.geometry.flags & HasUv(channel))) continue;
    SceneUvSet* set = mesh.uvSets.Append();
    if (!set) return false;
    set->channel = channel;
    std::snprintf(set->name, sizeof(set->name), "UVChannel_%u", channel + 1);
  }
  // The material takes the name last given to the mesh's parts.
  const char* material = mesh.uvSets.Count() ? mesh.uvSets[mesh.uvSets.Count() - 1].name : mesh.name;
  std::memcpy(mesh.materialName, material, sizeof(mesh.materialName));
  return true;
}

// Whole triangles only, each naming vertices of the mesh: a partial last group is left out.
bool CheckTriangles(const ExportMesh& geometry) {
  const u32 corners = geometry.indexCount / 3 * 3;
  for (u32 i = 0; i < corners; ++i) {
    if (geometry.indices[i] >= geometry.vertexCount) return false;
  }
  return true;
}

// A slot binds a bone when its weight is positive and its model bone has a bone in the rig;
// weights stay as they are, whatever their sum.
bool MapInfluences(SceneMesh& mesh, const TArray<u32>& modelToRig) {
  const ExportMesh& geometry = mesh.geometry;
  if (!mesh.influences.SetSizeForOverwrite(geometry.vertexCount)) return false;
  for (u32 v = 0; v < geometry.vertexCount; ++v) {
    for (u32 k = 0; k < 4; ++k) {
      const ExportInfluence& influence = geometry.influences[v].k[k];
      SceneInfluence& slot = mesh.influences[v].k[k];
      const bool binds = influence.weight > 0 && influence.bone >= 0 && u32(influence.bone) < modelToRig.Count() &&
                         modelToRig[u32(influence.bone)] != kSceneNoBone;
      slot.bone = binds ? modelToRig[u32(influence.bone)] : kSceneNoBone;
      slot.weight = binds ? influence.weight : 0;
    }
  }
  return true;
}

}  // namespace

bool AddSceneMesh(ExportScene& scene, u32 index, ExportMesh&& geometry, const TArray<u32>& modelToRig) {
  SceneMesh* mesh = scene.meshes.Append();
  if (!mesh) return false;
  std::snprintf(mesh->name, sizeof(mesh->name), "Mesh_%u", index);
  mesh->geometry = std::move(geometry);
  if (!AddUvSets(*mesh) || !CheckTriangles(mesh->geometry)) return false;
  mesh->skinned = (mesh->geometry.flags & kHasInfluences) && scene.hasRig;
  if (mesh->skinned && !MapInfluences(*mesh, modelToRig)) return false;
  mesh->geometry.influences.Release();
  return true;
}
