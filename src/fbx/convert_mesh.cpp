#include "fbx/convert_mesh.h"

#include "fbx/sdk/fbx_mesh.h"
#include "fbx/sdk/fbx_skin.h"
#include "fbx/sdk/fbx_surface_phong.h"
#include "mesh/export_mesh.h"

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

// One UV set per channel the mesh has, each on a layer of its own from layer 0 on. `name` is left
// holding the last set's name.
bool AddUvSets(FbxMesh& fbxMesh, const ExportMesh& exportMesh, CStringBufferA& name) {
  int layer = 0;
  for (u32 channel = 0; channel < kExportUvChannels; ++channel) {
    if (!(exportMesh.flags & HasUv(channel))) continue;
    (void)name.Format("UVChannel_%u", channel + 1);
    FbxLayer* target = fbxMesh.GetLayer(layer);
    if (!target) {
      layer = fbxMesh.CreateLayer();
      target = fbxMesh.GetLayer(layer);
      if (!target) continue;  // no layer for this channel: it is left out
    }
    FbxLayerElementUV* uvs = FbxLayerElementUV::Create(&fbxMesh, name.Text());
    const TArray<Vec2>& channelUvs = exportMesh.uvs[channel];
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

// The clusters of one skin, one per rig bone at most, made on first use.
class ClusterSet {
 public:
  ClusterSet(ConvertState& convertState, FbxSkin& fbxSkin) : state(convertState), skin(fbxSkin) {}

  [[nodiscard]] bool Init() { return clusters.SetSize(state.rig->bones.Count()); }

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

bool AddSkin(ConvertState& state, FbxMesh& fbxMesh, const ExportMesh& exportMesh, u32 modelBoneCount) {
  const RigSkeleton& rig = *state.rig;
  FbxSkin* skin = FbxSkin::Create(state.fbxScene, "");
  if (!skin) return false;
  ClusterSet clusters(state, *skin);
  if (!clusters.Init()) return false;
  const u32 modelBones = modelBoneCount < state.modelToRig.Count() ? modelBoneCount : state.modelToRig.Count();
  for (u32 v = 0; v < exportMesh.vertexCount; ++v) {
    for (const ExportInfluence& influence : exportMesh.influences[v].k) {
      // A weight of 0 is not written; weights are passed as they are, whatever their sum.
      if (!(influence.weight > 0) || influence.bone < 0 || u32(influence.bone) >= modelBones) continue;
      const u32 rigBone = state.modelToRig[u32(influence.bone)];
      if (rigBone == kNoRigBone) continue;
      FbxCluster* cluster = clusters.Get(rigBone);
      if (!cluster || !cluster->AddControlPointIndex(int(v), influence.weight)) return false;
    }
  }
  // Every ancestor of a weighted bone gets a cluster too, without control points, so that readers
  // that build their skeleton from the clusters see whole chains.
  for (u32 j = 0; j < state.modelToRig.Count(); ++j) {
    const u32 rigBone = state.modelToRig[j];
    if (rigBone == kNoRigBone || !clusters.Has(rigBone)) continue;
    // A read rig has acyclic parents; the step bound keeps any other from looping.
    u32 steps = 0;
    for (i32 p = rig.bones[rigBone].parent; p >= 0 && u32(p) < rig.bones.Count() && steps < rig.bones.Count();
         p = rig.bones[u32(p)].parent, ++steps) {
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

bool ConvertMesh(ConvertState& state, const ExportMesh& exportMesh, u32 modelBoneCount, u32 meshIndex) {
  TStringBufferA<64> name;
  (void)name.Format("Mesh_%u", meshIndex);
  FbxMesh* fbxMesh = FbxMesh::Create(state.fbxScene, name.Text());
  if (!fbxMesh || !AddControlPoints(*fbxMesh, exportMesh)) return false;
  if ((exportMesh.flags & kHasNormal) && !AddNormals(*fbxMesh, exportMesh)) return false;
  FbxNode* node = FbxNode::Create(state.fbxScene, name.Text());
  if (!node || !node->SetNodeAttribute(fbxMesh) || !state.rootNode->AddChild(node)) return false;
  if (!AddUvSets(*fbxMesh, exportMesh, name)) return false;
  if ((exportMesh.flags & kHasInfluences) && state.rig && state.boneNodes.Count() == state.rig->bones.Count() &&
      !AddSkin(state, *fbxMesh, exportMesh, modelBoneCount)) {
    return false;
  }
  FbxNode** kept = state.meshNodes.Append();
  if (!kept) return false;
  *kept = node;
  return AddTriangles(*fbxMesh, exportMesh) && AddMaterial(state, *fbxMesh, *node, name.Text());
}
