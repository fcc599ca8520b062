#include "fbx/convert_mesh.h"

#include "fbx/sdk/fbx_mesh.h"
#include "fbx/sdk/fbx_skin.h"
#include "fbx/sdk/fbx_surface_phong.h"

namespace {

bool AddControlPoints(FbxMesh& fbxMesh, const ExportMesh& exportMesh) {
  if (!fbxMesh.InitControlPoints(exportMesh.vertexCount)) return false;
  for (u32 v = 0; v < exportMesh.vertexCount; ++v) {
    const Vec3& p = exportMesh.positions[v];
    fbxMesh.SetControlPointAt({p.x, p.y, p.z, 1.0}, int(v));
  }
  return true;
}

// Fills `element` with `value(vertex)` of each vertex, in vertex order, mapped by control point.
template <class Element, class Value>
bool FillByControlPoint(Element* element, const ExportMesh& exportMesh, Value value) {
  if (!element) return false;
  element->SetMappingMode(FbxLayerElement::eByControlPoint);
  element->SetReferenceMode(FbxLayerElement::eDirect);
  auto& direct = element->GetDirectArray();
  if (!direct.Reserve(exportMesh.vertexCount)) return false;
  for (u32 v = 0; v < exportMesh.vertexCount; ++v) {
    if (direct.Add(value(v)) < 0) return false;
  }
  return true;
}

bool AddNormals(FbxMesh& fbxMesh, const ExportMesh& exportMesh) {
  const TArray<Vec3>& normals = exportMesh.normals;
  return FillByControlPoint(fbxMesh.CreateElementNormal(), exportMesh, [&normals](u32 v) {
    return FbxVector4{normals[v].x, normals[v].y, normals[v].z, 1.0};
  });
}

// Each UV set on a layer of its own from layer 0 on.
bool AddUvSets(FbxMesh& fbxMesh, const SceneMesh& mesh) {
  const ExportMesh& exportMesh = mesh.geometry;
  int layer = 0;
  for (const SceneUvSet& set : mesh.uvSets) {
    FbxLayer* target = fbxMesh.GetLayer(layer);
    if (!target) {
      layer = fbxMesh.CreateLayer();
      target = fbxMesh.GetLayer(layer);
      if (!target) continue;  // no layer for this channel: it is left out
    }
    FbxLayerElementUV* uvs = FbxLayerElementUV::Create(&fbxMesh, set.name);
    const TArray<Vec2>& channelUvs = exportMesh.uvs[set.channel];
    const bool filled = FillByControlPoint(uvs, exportMesh, [&channelUvs](u32 v) {
      const f32 flipped = 1.0f - channelUvs[v].y;  // in single precision, as the game's value is
      return FbxVector2{channelUvs[v].x, flipped};
    });
    if (!filled) return false;
    target->SetUVs(uvs, FbxLayerElement::eTextureDiffuse);
    ++layer;
  }
  return true;
}

// The clusters of one skin, one per bone at most, made on first use.
class ClusterSet {
 public:
  ClusterSet(ConvertState& convertState, FbxSkin& fbxSkin) : state(convertState), skin(fbxSkin) {}

  [[nodiscard]] bool Init() { return clusters.SetSize(state.boneNodes.Count()); }

  FbxCluster* Get(u32 rigBone) {
    if (clusters[rigBone]) return clusters[rigBone];
    FbxCluster* cluster = FbxCluster::Create(state.fbxScene, "");
    if (!cluster) return nullptr;
    FbxNode* bone = state.boneNodes[rigBone];
    cluster->SetLink(bone);
    cluster->SetTransformMatrix(meshTransform);
    cluster->SetLinkMode(FbxCluster::eTotalOne);
    cluster->SetTransformLinkMatrix(bone->EvaluateGlobalTransform());
    if (!skin.AddCluster(cluster)) return nullptr;
    clusters[rigBone] = cluster;
    return cluster;
  }
  bool Has(u32 rigBone) const { return clusters[rigBone] != nullptr; }

 private:
  ConvertState& state;
  FbxSkin& skin;
  TArray<FbxCluster*> clusters;
  FbxAMatrix meshTransform;  // identity: the mesh node sits at the root's origin
};

bool AddSkin(ConvertState& state, FbxMesh& fbxMesh, const ExportScene& scene, const SceneMesh& mesh) {
  FbxSkin* skin = FbxSkin::Create(state.fbxScene, "");
  if (!skin) return false;
  ClusterSet clusters(state, *skin);
  if (!clusters.Init()) return false;
  for (u32 v = 0; v < mesh.influences.Count(); ++v) {
    // Slots that bind nothing are not written; weights are passed as they are, whatever their sum.
    for (const SceneInfluence& influence : mesh.influences[v].k) {
      if (influence.bone == kSceneNoBone) continue;
      FbxCluster* cluster = clusters.Get(influence.bone);
      if (!cluster || !cluster->AddControlPointIndex(int(v), influence.weight)) return false;
    }
  }
  // Every ancestor of a weighted bone gets a cluster too, without control points, so that readers
  // that build their skeleton from the clusters see whole chains.
  const u32 count = scene.bones.Count();
  for (u32 bone : scene.modelBones) {
    if (!clusters.Has(bone)) continue;
    // The scene's parents are acyclic; the step bound keeps any other from looping.
    u32 steps = 0;
    for (i32 p = scene.bones[bone].parent; p >= 0 && steps < count; p = scene.bones[u32(p)].parent, ++steps) {
      if (!clusters.Get(u32(p))) return false;
    }
  }
  return fbxMesh.AddDeformer(skin) >= 0;
}

bool AddTriangles(FbxMesh& fbxMesh, const ExportMesh& exportMesh) {
  const u32 triangles = exportMesh.indexCount / 3;  // a partial last group is left out
  if (!fbxMesh.ReservePolygons(triangles, triangles * 3)) return false;
  // An index past the vertices (or past what an int holds) fails the mesh in AddPolygon.
  const u32* index = exportMesh.indices.Data();
  for (u32 t = 0; t < triangles; ++t, index += 3) {
    if (index[0] > u32(INT32_MAX) || index[1] > u32(INT32_MAX) || index[2] > u32(INT32_MAX)) return false;
    // The second and third corners change places: the game's front faces turn the other way.
    fbxMesh.BeginPolygon(-1, -1, -1, true);
    if (!fbxMesh.AddPolygon(int(index[0]), -1) || !fbxMesh.AddPolygon(int(index[2]), -1) ||
        !fbxMesh.AddPolygon(int(index[1]), -1) || !fbxMesh.EndPolygon()) {
      return false;
    }
  }
  return true;
}

bool AddMaterial(ConvertState& state, FbxMesh& fbxMesh, FbxNode& node, const char* name) {
  FbxLayerElementMaterial* element = fbxMesh.CreateElementMaterial();
  if (!element) return false;
  element->SetMappingMode(FbxLayerElement::eAllSame);
  element->SetReferenceMode(FbxLayerElement::eIndexToDirect);
  if (element->GetIndexArray().Add(0) < 0) return false;
  FbxSurfacePhong* phong = FbxSurfacePhong::Create(state.fbxManager.get(), name);
  if (!phong) return false;
  phong->Diffuse.Set({1.0, 1.0, 0.0});
  phong->DiffuseFactor.Set(1.0);
  return node.AddMaterial(phong) >= 0;
}

}  // namespace

bool ConvertMesh(ConvertState& state, const ExportScene& scene, u32 meshIndex) {
  const SceneMesh& mesh = scene.meshes[meshIndex];
  const ExportMesh& exportMesh = mesh.geometry;
  FbxMesh* fbxMesh = FbxMesh::Create(state.fbxScene, mesh.name);
  if (!fbxMesh || !AddControlPoints(*fbxMesh, exportMesh)) return false;
  if ((exportMesh.flags & kHasNormal) && !AddNormals(*fbxMesh, exportMesh)) return false;
  FbxNode* node = FbxNode::Create(state.fbxScene, mesh.name);
  if (!node || !node->SetNodeAttribute(fbxMesh) || !state.rootNode->AddChild(node)) return false;
  if (!AddUvSets(*fbxMesh, mesh)) return false;
  if (mesh.skinned && !AddSkin(state, *fbxMesh, scene, mesh)) return false;
  FbxNode** kept = state.meshNodes.Append();
  if (!kept) return false;
  *kept = node;
  return AddTriangles(*fbxMesh, exportMesh) && AddMaterial(state, *fbxMesh, *node, mesh.materialName);
}
