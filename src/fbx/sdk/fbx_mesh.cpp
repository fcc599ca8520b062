#include "fbx/sdk/fbx_mesh.h"

FbxLayerElementUV* FbxLayerElementUV::Create(FbxLayerContainer* owner, const char* name) {
  TOwned<FbxLayerElementUV> element(MemNew<FbxLayerElementUV>());
  if (!owner || !element || !element->SetName(name)) return nullptr;
  return owner->Adopt(std::move(element));
}

FbxLayer* FbxLayerContainer::GetLayer(int index) const {
  return index >= 0 && u32(index) < layers.Count() ? layers[u32(index)].get() : nullptr;
}

int FbxLayerContainer::CreateLayer() {
  TOwned<FbxLayer> layer(MemNew<FbxLayer>());
  TOwned<FbxLayer>* slot = layer ? layers.Append() : nullptr;
  if (!slot) return -1;
  *slot = std::move(layer);
  return int(layers.Count() - 1);
}

FbxLayer* FbxLayerContainer::FirstLayer() {
  if (layers.Count() == 0 && CreateLayer() < 0) return nullptr;
  return GetLayer(0);
}

int FbxGeometry::AddDeformer(FbxDeformer* deformer) {
  FbxDeformer** slot = deformer ? deformers.Append() : nullptr;
  if (!slot) return -1;
  *slot = deformer;
  return int(deformers.Count() - 1);
}

bool FbxMesh::InitControlPoints(u32 count) {
  if (!controlPoints.SetSize(0) || !controlPoints.SetSize(count)) return false;
  for (FbxVector4& point : controlPoints) point = {0, 0, 0, 1};
  return true;
}

void FbxMesh::SetControlPointAt(const FbxVector4& point, int index) {
  if (index >= 0 && u32(index) < controlPoints.Count()) controlPoints[u32(index)] = point;
}

bool FbxMesh::ReservePolygons(u32 polygons, u32 vertices) {
  if (polygons > UINT32_MAX - polygonEnds.Count() || vertices > UINT32_MAX - polygonVertices.Count()) return false;
  return polygonEnds.Reserve(polygonEnds.Count() + polygons) &&
         polygonVertices.Reserve(polygonVertices.Count() + vertices);
}

FbxLayerElementNormal* FbxMesh::CreateElementNormal() {
  FbxLayer* layer = FirstLayer();
  FbxLayerElementNormal* element =
      layer ? Adopt(TOwned<FbxLayerElementNormal>(MemNew<FbxLayerElementNormal>())) : nullptr;
  if (element) layer->SetNormals(element);
  return element;
}

FbxLayerElementMaterial* FbxMesh::CreateElementMaterial() {
  FbxLayer* layer = FirstLayer();
  FbxLayerElementMaterial* element =
      layer ? Adopt(TOwned<FbxLayerElementMaterial>(MemNew<FbxLayerElementMaterial>())) : nullptr;
  if (element) layer->SetMaterials(element);
  return element;
}
