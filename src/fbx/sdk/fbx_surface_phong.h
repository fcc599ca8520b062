#pragma once

#include "fbx/sdk/fbx_node.h"
#include "fbx/sdk/fbx_texture.h"

// A Phong material. Only the diffuse colour and the transparency are ever set; every other value
// stays at the default that a file's template holds.
class FbxSurfacePhong final : public FbxSurfaceMaterial, public FbxCreatable<FbxSurfacePhong> {
 public:
  FbxObjectKind Kind() const override { return FbxObjectKind::SurfacePhong; }

  FbxPropertyT<FbxDouble3> Diffuse{FbxDouble3{0.8, 0.8, 0.8}};
  FbxPropertyT<f64> DiffuseFactor{1.0};
  FbxPropertyT<f64> TransparencyFactor{0.0};

  // The texture on the diffuse colour, which readers take over the colour; null for none.
  void ConnectDiffuseTexture(FbxFileTexture* texture) { diffuseTexture = texture; }
  const FbxFileTexture* GetDiffuseTexture() const { return diffuseTexture; }
  // The texture on the transparent colour, whose alpha readers take as opacity; null for none.
  void ConnectTransparentTexture(FbxFileTexture* texture) { transparentTexture = texture; }
  const FbxFileTexture* GetTransparentTexture() const { return transparentTexture; }

 private:
  FbxFileTexture* diffuseTexture = nullptr;
  FbxFileTexture* transparentTexture = nullptr;
};
