#include "fbx/mesh_texture.h"

#include "fbx/sdk/fbx_mesh.h"
#include "fbx/sdk/fbx_surface_phong.h"

bool AddDiffuseTexture(ConvertState& state, u32 meshIndex, const char* name, const char* absolute, const char* relative,
                       bool transparent) {
  if (meshIndex >= state.meshNodes.Count()) return false;
  FbxNode* node = state.meshNodes[meshIndex];
  if (node->GetMaterialCount() == 0 || node->GetMaterial(0)->Kind() != FbxObjectKind::SurfacePhong) return false;
  auto* phong = static_cast<FbxSurfacePhong*>(node->GetMaterial(0));
  FbxFileTexture* texture = FbxFileTexture::Create(state.fbxScene, name);
  FbxVideo* video = FbxVideo::Create(state.fbxScene, name);
  if (!texture || !video || !video->SetFileName(absolute, relative)) return false;
  // The UV sets start at layer 0; a mesh without one still gets the texture, on no set.
  const FbxNodeAttribute* attribute = node->GetNodeAttribute();
  const FbxLayer* layer = attribute && attribute->Kind() == FbxObjectKind::Mesh
                              ? static_cast<const FbxMesh*>(attribute)->GetLayer(0)
                              : nullptr;
  const FbxLayerElementUV* uvs = layer ? layer->GetUVs() : nullptr;
  if (!texture->SetUVSet(uvs ? uvs->GetName() : "")) return false;
  texture->SetVideo(video);
  phong->ConnectDiffuseTexture(texture);
  if (transparent) {
    phong->ConnectTransparentTexture(texture);
    phong->TransparencyFactor.Set(1.0);
  }
  return true;
}
