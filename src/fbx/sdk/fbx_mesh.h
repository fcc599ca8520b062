#pragma once

#include "fbx/sdk/fbx_node.h"

// Data that a mesh carries beside its control points (normals, UVs, material indices), and how it
// maps onto them.
class FbxLayerElement {
 public:
  enum EMappingMode { eNone, eByControlPoint, eByPolygonVertex, eByPolygon, eByEdge, eAllSame };
  enum EReferenceMode { eDirect, eIndex, eIndexToDirect };
  enum EType { eUnknown, eNormal, eMaterial, eUV, eTextureDiffuse };

  virtual ~FbxLayerElement() = default;
  virtual EType Type() const = 0;

  const char* GetName() const { return name.Text(); }
  [[nodiscard]] bool SetName(const char* newName) { return name.Assign(newName ? newName : ""); }
  void SetMappingMode(EMappingMode mode) { mapping = mode; }
  EMappingMode GetMappingMode() const { return mapping; }
  void SetReferenceMode(EReferenceMode mode) { reference = mode; }
  EReferenceMode GetReferenceMode() const { return reference; }

 private:
  CStringA name;
  EMappingMode mapping = eNone;
  EReferenceMode reference = eDirect;
};

template <class T>
class FbxLayerElementArrayTemplate {
 public:
  // The new item's index, or -1 when memory is refused.
  int Add(const T& item) {
    T* slot = items.Append();
    if (!slot) return -1;
    *slot = item;
    return int(items.Count() - 1);
  }
  // Room for `count` items in all, so that adding them one by one never moves the block.
  [[nodiscard]] bool Reserve(u32 count) { return items.Reserve(count); }
  u32 GetCount() const { return items.Count(); }
  const T& GetAt(u32 index) const { return items[index]; }
  const T* Data() const { return items.Data(); }

 private:
  TArray<T> items;
};

template <class T, FbxLayerElement::EType kType>
class FbxLayerElementTemplate : public FbxLayerElement {
 public:
  EType Type() const override { return kType; }
  FbxLayerElementArrayTemplate<T>& GetDirectArray() { return direct; }
  const FbxLayerElementArrayTemplate<T>& GetDirectArray() const { return direct; }
  FbxLayerElementArrayTemplate<int>& GetIndexArray() { return index; }
  const FbxLayerElementArrayTemplate<int>& GetIndexArray() const { return index; }

 private:
  FbxLayerElementArrayTemplate<T> direct;
  FbxLayerElementArrayTemplate<int> index;
};

class FbxLayerContainer;

using FbxLayerElementNormal = FbxLayerElementTemplate<FbxVector4, FbxLayerElement::eNormal>;
// A material element has only its index array: the materials are the node's.
using FbxLayerElementMaterial = FbxLayerElementTemplate<int, FbxLayerElement::eMaterial>;

class FbxLayerElementUV final : public FbxLayerElementTemplate<FbxVector2, FbxLayerElement::eUV> {
 public:
  // An element owned by `owner`, to be put on one of its layers. Null when memory is refused.
  static FbxLayerElementUV* Create(FbxLayerContainer* owner, const char* name);
};

// One layer of a mesh: at most one element of each kind. The elements belong to the mesh.
class FbxLayer {
 public:
  void SetNormals(FbxLayerElementNormal* element) { normals = element; }
  FbxLayerElementNormal* GetNormals() const { return normals; }
  void SetMaterials(FbxLayerElementMaterial* element) { materials = element; }
  FbxLayerElementMaterial* GetMaterials() const { return materials; }
  // Only diffuse UVs exist here.
  void SetUVs(FbxLayerElementUV* element, FbxLayerElement::EType type = FbxLayerElement::eTextureDiffuse) {
    if (type == FbxLayerElement::eTextureDiffuse) uvs = element;
  }
  FbxLayerElementUV* GetUVs() const { return uvs; }

 private:
  FbxLayerElementNormal* normals = nullptr;
  FbxLayerElementMaterial* materials = nullptr;
  FbxLayerElementUV* uvs = nullptr;
};

class FbxLayerContainer : public FbxNodeAttribute {
 public:
  // Null for a layer that doesn't exist.
  FbxLayer* GetLayer(int index) const;
  // The new layer's index, or -1 when memory is refused.
  int CreateLayer();
  u32 GetLayerCount() const { return layers.Count(); }

  // Takes `element` into the container's keeping; null when memory is refused (and `element` is
  // freed).
  template <class T>
  T* Adopt(TOwned<T> element) {
    TOwned<FbxLayerElement>* slot = element ? elements.Append() : nullptr;
    if (!slot) return nullptr;
    T* kept = element.get();
    *slot = TOwned<FbxLayerElement>(element.release());
    return kept;
  }

 protected:
  // Layer 0, made if need be.
  FbxLayer* FirstLayer();

 private:
  TArray<TOwned<FbxLayer>> layers;
  TArray<TOwned<FbxLayerElement>> elements;
};

class FbxDeformer : public FbxObject {};

class FbxGeometry : public FbxLayerContainer {
 public:
  // The deformer's index, or -1 for null or when memory is refused.
  int AddDeformer(FbxDeformer* deformer);
  u32 GetDeformerCount() const { return deformers.Count(); }
  FbxDeformer* GetDeformer(u32 index) const { return deformers[index]; }

 private:
  TArray<FbxDeformer*> deformers;
};

// A polygon mesh over control points. Polygons are built one vertex at a time between
// BeginPolygon and EndPolygon.
class FbxMesh final : public FbxGeometry, public FbxCreatable<FbxMesh> {
 public:
  FbxObjectKind Kind() const override { return FbxObjectKind::Mesh; }

  // `count` control points at the origin. False when memory is refused.
  [[nodiscard]] bool InitControlPoints(u32 count);
  // Ignored for an index outside the control points.
  void SetControlPointAt(const FbxVector4& point, int index);
  u32 GetControlPointsCount() const { return controlPoints.Count(); }
  const FbxVector4* GetControlPoints() const { return controlPoints.Data(); }

  // The material, texture and group of a polygon don't exist in the files written; they are taken
  // for the calls' sake. The three calls are inline: a large mesh makes millions of them.
  void BeginPolygon(int /*material*/ = -1, int /*texture*/ = -1, int /*group*/ = -1, bool /*legacy*/ = true) {
    // An open polygon left without EndPolygon is dropped.
    if (polygonOpen) (void)polygonVertices.SetSize(openPolygonStart);
    openPolygonStart = polygonVertices.Count();
    polygonOpen = true;
  }
  // False when memory is refused, no polygon is open, or `index` is no control point: a file
  // that names a missing point is misread by every reader.
  [[nodiscard]] bool AddPolygon(int index, int /*textureUV*/ = -1) {
    if (index < 0 || u32(index) >= controlPoints.Count()) return false;
    int* slot = polygonOpen ? polygonVertices.Append() : nullptr;
    if (!slot) return false;
    *slot = index;
    return true;
  }
  // False when memory is refused; a polygon without vertices is dropped.
  [[nodiscard]] bool EndPolygon() {
    if (!polygonOpen) return false;
    polygonOpen = false;
    if (polygonVertices.Count() == openPolygonStart) return true;
    u32* end = polygonEnds.Append();
    if (!end) {
      (void)polygonVertices.SetSize(openPolygonStart);
      return false;
    }
    *end = polygonVertices.Count();
    return true;
  }
  u32 GetPolygonCount() const { return polygonEnds.Count(); }
  // Every polygon's vertices one after another; polygon p ends before PolygonEnd(p).
  const TArray<int>& PolygonVertices() const { return polygonVertices; }
  u32 PolygonEnd(u32 polygon) const { return polygonEnds[polygon]; }
  // Room for `vertices` polygon vertices in `polygons` polygons, so that building them never
  // moves a block.
  [[nodiscard]] bool ReservePolygons(u32 polygons, u32 vertices);

  // Normals on layer 0, which is made if need be. Null when memory is refused.
  FbxLayerElementNormal* CreateElementNormal();
  // Material indices on layer 0, which is made if need be. Null when memory is refused.
  FbxLayerElementMaterial* CreateElementMaterial();

 private:
  TArray<FbxVector4> controlPoints;
  TArray<int> polygonVertices;
  TArray<u32> polygonEnds;
  u32 openPolygonStart = 0;
  bool polygonOpen = false;
};
