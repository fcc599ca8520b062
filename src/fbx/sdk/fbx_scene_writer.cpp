#include "fbx/sdk/fbx_scene_writer.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "fbx/sdk/fbx_document.h"
#include "fbx/sdk/fbx_mesh.h"
#include "fbx/sdk/fbx_properties.h"
#include "fbx/sdk/fbx_skeleton.h"
#include "fbx/sdk/fbx_skin.h"
#include "fbx/sdk/fbx_surface_phong.h"
#include "fbx/sdk/fbx_templates.h"

namespace {

constexpr i32 kModelVersion = 232;
constexpr i32 kGeometryVersion = 124;
constexpr i32 kLayerElementVersion = 101;
constexpr i32 kLayerVersion = 100;
constexpr i32 kSkinVersion = 101;
constexpr i32 kClusterVersion = 100;
constexpr i32 kPoseVersion = 100;
constexpr i32 kMaterialVersion = 102;
constexpr i32 kTextureVersion = 202;
constexpr f64 kSkinDeformAccuracy = 50;

FbxRecord* FindChild(FbxRecord& record, const char* name) {
  for (FbxRecord& child : record.children) {
    if (std::strcmp(child.name.Text(), name) == 0) return &child;
  }
  return nullptr;
}

bool AddMatrix(FbxRecord& parent, const char* name, const FbxAMatrix& matrix) {
  FbxRecord* record = parent.AddChild(name);
  f64* values = record ? record->AddDoubles(16) : nullptr;
  if (!values) return false;
  f64 ordered[16];
  matrix.ToFileOrder(ordered);
  std::memcpy(values, ordered, sizeof(ordered));
  return true;
}

// `Name: L id, S "name\0\1Class", S "subClass"`, the head of every object record.
FbxRecord* AddObject(FbxRecord& objects, const char* recordName, const FbxObject& object, const char* className,
                     const char* subClass) {
  FbxRecord* record = objects.AddChild(recordName, true);
  if (!record || !record->AddInt64(object.GetUniqueID())) return nullptr;
  const size_t nameLength = std::strlen(object.GetName());
  const size_t classLength = std::strlen(className);
  CByteBuffer text;
  if (nameLength + classLength + 2 > UINT32_MAX || !text.SetSize(u32(nameLength + 2 + classLength))) return nullptr;
  std::memcpy(text.Data(), object.GetName(), nameLength);
  text.Data()[nameLength] = 0;
  text.Data()[nameLength + 1] = 1;
  std::memcpy(text.Data() + nameLength + 2, className, classLength);
  if (!record->AddString(reinterpret_cast<const char*>(text.Data()), text.Size()) || !record->AddString(subClass)) {
    return nullptr;
  }
  return record;
}

const char* SkeletonClass(const FbxSkeleton& skeleton) {
  switch (skeleton.GetSkeletonType()) {
    case FbxSkeleton::eRoot: return "Root";
    case FbxSkeleton::eLimb: return "Limb";
    case FbxSkeleton::eEffector: return "Effector";
    default: return "LimbNode";
  }
}

const char* ModelClass(const FbxNode& node) {
  const FbxNodeAttribute* attribute = node.GetNodeAttribute();
  if (!attribute) return "Null";
  if (attribute->Kind() == FbxObjectKind::Mesh) return "Mesh";
  if (attribute->Kind() != FbxObjectKind::Skeleton) return "Null";
  return SkeletonClass(static_cast<const FbxSkeleton&>(*attribute));
}

bool AddVectorRow(FbxRecord& p, const char* name, const FbxPropertyT<FbxDouble3>& property) {
  const FbxDouble3& v = property.Get();
  return !property.IsModified() || AddDoubleRow(p, name, name, "", "A", {v.x, v.y, v.z});
}

bool WriteModel(FbxRecord& objects, const FbxNode& node) {
  FbxRecord* model = AddObject(objects, "Model", node, "Model", ModelClass(node));
  if (!model || !AddInt(model, "Version", kModelVersion)) return false;
  FbxRecord* p = model->AddChild("Properties70", true);
  if (!p || !AddVectorRow(*p, "Lcl Translation", node.LclTranslation) ||
      !AddVectorRow(*p, "Lcl Rotation", node.LclRotation) || !AddVectorRow(*p, "Lcl Scaling", node.LclScaling)) {
    return false;
  }
  if (node.GetNodeAttribute() && !AddIntRow(*p, "DefaultAttributeIndex", "int", "Integer", "", 0)) return false;
  FbxRecord* shading = model->AddChild("Shading");
  return shading && shading->AddChar('Y') && AddText(model, "Culling", "CullingOff");
}

bool WriteSkeleton(FbxRecord& objects, const FbxSkeleton& skeleton) {
  FbxRecord* attribute = AddObject(objects, "NodeAttribute", skeleton, "NodeAttribute", SkeletonClass(skeleton));
  FbxRecord* flags = attribute ? attribute->AddChild("TypeFlags") : nullptr;
  if (!flags) return false;
  if (skeleton.GetSkeletonType() == FbxSkeleton::eRoot) {
    return flags->AddString("Null") && flags->AddString("Skeleton") && flags->AddString("Root");
  }
  return flags->AddString("Skeleton");
}

// The head of a layer element: `LayerElementX: I typedIndex` with its version, name and modes.
FbxRecord* AddLayerElement(FbxRecord& geometry, const char* recordName, i32 typedIndex,
                           const FbxLayerElement& element) {
  static constexpr const char* kMapping[] = {
      "NoMappingInformation", "ByVertice", "ByPolygonVertex", "ByPolygon", "ByEdge", "AllSame"};
  static constexpr const char* kReference[] = {"Direct", "Index", "IndexToDirect"};
  FbxRecord* record = geometry.AddChild(recordName, true);
  if (!record || !record->AddInt32(typedIndex) || !AddInt(record, "Version", kLayerElementVersion) ||
      !AddText(record, "Name", element.GetName()) ||
      !AddText(record, "MappingInformationType", kMapping[element.GetMappingMode()]) ||
      !AddText(record, "ReferenceInformationType", kReference[element.GetReferenceMode()])) {
    return nullptr;
  }
  return record;
}

bool AddIndexArray(FbxRecord& record, const char* name, const FbxLayerElementArrayTemplate<int>& indices) {
  FbxRecord* array = record.AddChild(name);
  i32* values = array ? array->AddInt32s(indices.GetCount()) : nullptr;
  if (!values) return false;
  if (indices.GetCount()) std::memcpy(values, indices.Data(), indices.GetCount() * sizeof(i32));
  return true;
}

template <class Element, class Fill>
bool AddDirectArray(FbxRecord& record, const char* name, const char* indexName, const Element& element, u32 width,
                    Fill fill) {
  const auto& direct = element.GetDirectArray();
  if (u64(direct.GetCount()) * width > UINT32_MAX) return false;
  FbxRecord* array = record.AddChild(name);
  f64* values = array ? array->AddDoubles(direct.GetCount() * width) : nullptr;
  if (!values) return false;
  for (u32 i = 0; i < direct.GetCount(); ++i) fill(values + u64(i) * width, direct.GetAt(i));
  return element.GetReferenceMode() == FbxLayerElement::eDirect ||
         AddIndexArray(record, indexName, element.GetIndexArray());
}

struct LayerEntry {
  const char* type;
  i32 typedIndex;
};

bool WriteLayers(FbxRecord& geometry, const FbxMesh& mesh) {
  // Each kind of element is numbered densely in layer order; readers look them up by that number.
  i32 normalCount = 0, materialCount = 0, uvCount = 0;
  TArray<LayerEntry> entries;
  if (!entries.Reserve(3 * mesh.GetLayerCount())) return false;
  for (u32 l = 0; l < mesh.GetLayerCount(); ++l) {
    const FbxLayer& layer = *mesh.GetLayer(int(l));
    if (const FbxLayerElementNormal* normals = layer.GetNormals()) {
      FbxRecord* record = AddLayerElement(geometry, "LayerElementNormal", normalCount, *normals);
      if (!record || !AddDirectArray(*record, "Normals", "NormalsIndex", *normals, 3,
                                     [](f64* out, const FbxVector4& n) { out[0] = n.x, out[1] = n.y, out[2] = n.z; })) {
        return false;
      }
      *entries.Append() = {"LayerElementNormal", normalCount++};
    }
    if (const FbxLayerElementUV* uvs = layer.GetUVs()) {
      FbxRecord* record = AddLayerElement(geometry, "LayerElementUV", uvCount, *uvs);
      if (!record || !AddDirectArray(*record, "UV", "UVIndex", *uvs, 2,
                                     [](f64* out, const FbxVector2& uv) { out[0] = uv.x, out[1] = uv.y; })) {
        return false;
      }
      *entries.Append() = {"LayerElementUV", uvCount++};
    }
    if (const FbxLayerElementMaterial* materials = layer.GetMaterials()) {
      FbxRecord* record = AddLayerElement(geometry, "LayerElementMaterial", materialCount, *materials);
      if (!record || !AddIndexArray(*record, "Materials", materials->GetIndexArray())) return false;
      *entries.Append() = {"LayerElementMaterial", materialCount++};
    }
  }
  u32 next = 0;
  for (u32 l = 0; l < mesh.GetLayerCount(); ++l) {
    FbxRecord* layer = geometry.AddChild("Layer", true);
    if (!layer || !layer->AddInt32(i32(l)) || !AddInt(layer, "Version", kLayerVersion)) return false;
    const FbxLayer& source = *mesh.GetLayer(int(l));
    const u32 count = (source.GetNormals() ? 1 : 0) + (source.GetUVs() ? 1 : 0) + (source.GetMaterials() ? 1 : 0);
    for (u32 e = 0; e < count; ++e, ++next) {
      FbxRecord* element = layer->AddChild("LayerElement", true);
      if (!element || !AddText(element, "Type", entries[next].type) ||
          !AddInt(element, "TypedIndex", entries[next].typedIndex)) {
        return false;
      }
    }
  }
  return true;
}

bool WriteGeometry(FbxRecord& objects, const FbxMesh& mesh) {
  FbxRecord* geometry = AddObject(objects, "Geometry", mesh, "Geometry", "Mesh");
  if (!geometry) return false;
  const u32 points = mesh.GetControlPointsCount();
  if (u64(points) * 3 > UINT32_MAX) return false;
  FbxRecord* vertices = geometry->AddChild("Vertices");
  f64* xyz = vertices ? vertices->AddDoubles(points * 3) : nullptr;
  if (!xyz) return false;
  const FbxVector4* source = mesh.GetControlPoints();
  for (u32 i = 0; i < points; ++i, xyz += 3) xyz[0] = source[i].x, xyz[1] = source[i].y, xyz[2] = source[i].z;

  // Each polygon's last vertex is stored as -(index + 1), which also ends the polygon.
  const TArray<int>& polygonVertices = mesh.PolygonVertices();
  FbxRecord* polygons = geometry->AddChild("PolygonVertexIndex");
  i32* indices = polygons ? polygons->AddInt32s(polygonVertices.Count()) : nullptr;
  if (!indices) return false;
  if (polygonVertices.Count()) std::memcpy(indices, polygonVertices.Data(), polygonVertices.Count() * sizeof(i32));
  for (u32 p = 0; p < mesh.GetPolygonCount(); ++p) indices[mesh.PolygonEnd(p) - 1] ^= -1;
  return AddInt(geometry, "GeometryVersion", kGeometryVersion) && WriteLayers(*geometry, mesh);
}

bool WriteSkin(FbxRecord& objects, const FbxSkin& skin) {
  FbxRecord* record = AddObject(objects, "Deformer", skin, "Deformer", "Skin");
  if (!record || !AddInt(record, "Version", kSkinVersion)) return false;
  FbxRecord* accuracy = record->AddChild("Link_DeformAcuracy");  // spelt so in the format
  return accuracy && accuracy->AddDouble(kSkinDeformAccuracy);
}

bool WriteCluster(FbxRecord& objects, const FbxCluster& cluster) {
  FbxRecord* record = AddObject(objects, "Deformer", cluster, "SubDeformer", "Cluster");
  if (!record || !AddInt(record, "Version", kClusterVersion)) return false;
  FbxRecord* userData = record->AddChild("UserData");
  if (!userData || !userData->AddString("") || !userData->AddString("")) return false;
  // A cluster without control points has neither array: readers want both or none.
  const u32 count = cluster.GetControlPointIndicesCount();
  if (count > 0) {
    FbxRecord* indexes = record->AddChild("Indexes");
    i32* indexValues = indexes ? indexes->AddInt32s(count) : nullptr;
    if (!indexValues) return false;
    std::memcpy(indexValues, cluster.GetControlPointIndices(), count * sizeof(i32));
    FbxRecord* weights = record->AddChild("Weights");
    f64* weightValues = weights ? weights->AddDoubles(count) : nullptr;
    if (!weightValues) return false;
    std::memcpy(weightValues, cluster.GetControlPointWeights(), count * sizeof(f64));
  }
  // The file keeps the mesh's bind matrix in the bone's space: TransformLink^-1 * Transform.
  const FbxAMatrix& link = cluster.GetTransformLinkMatrix();
  return AddMatrix(*record, "Transform", link.Inverse() * cluster.GetTransformMatrix()) &&
         AddMatrix(*record, "TransformLink", link);
}

bool WritePose(FbxRecord& objects, const FbxPose& pose) {
  const char* kind = pose.IsBindPose() ? "BindPose" : "RestPose";
  FbxRecord* record = AddObject(objects, "Pose", pose, "Pose", kind);
  if (!record || !AddText(record, "Type", kind) || !AddInt(record, "Version", kPoseVersion) ||
      !AddInt(record, "NbPoseNodes", i32(pose.GetCount()))) {
    return false;
  }
  for (u32 i = 0; i < pose.GetCount(); ++i) {
    const FbxPose::Entry& entry = pose.GetEntry(i);
    FbxRecord* poseNode = record->AddChild("PoseNode", true);
    FbxRecord* node = poseNode ? poseNode->AddChild("Node") : nullptr;
    if (!node || !node->AddInt64(entry.node->GetUniqueID()) || !AddMatrix(*poseNode, "Matrix", entry.matrix.Affine())) {
      return false;
    }
  }
  return true;
}

bool WriteMaterial(FbxRecord& objects, const FbxSurfacePhong& phong) {
  FbxRecord* material = AddObject(objects, "Material", phong, "Material", "");
  if (!material || !AddInt(material, "Version", kMaterialVersion) || !AddText(material, "ShadingModel", "phong") ||
      !AddInt(material, "MultiLayer", 0)) {
    return false;
  }
  FbxRecord* p = material->AddChild("Properties70", true);
  if (!p) return false;
  const FbxDouble3& diffuse = phong.Diffuse.Get();
  const f64 factor = phong.DiffuseFactor.Get();
  if (phong.Diffuse.IsModified() &&
      !AddDoubleRow(*p, "DiffuseColor", "Color", "", "A", {diffuse.x, diffuse.y, diffuse.z})) {
    return false;
  }
  if (phong.DiffuseFactor.IsModified() && !AddDoubleRow(*p, "DiffuseFactor", "Number", "", "A", {factor})) {
    return false;
  }
  if (phong.TransparencyFactor.IsModified() &&
      !AddDoubleRow(*p, "TransparencyFactor", "Number", "", "A", {phong.TransparencyFactor.Get()})) {
    return false;
  }
  // Older readers take the colours from these rows, each a colour times its factor; all but the
  // diffuse one hold the template's defaults.
  return AddDoubleRow(*p, "Emissive", "Vector3D", "Vector", "", {0, 0, 0}) &&
         AddDoubleRow(*p, "Ambient", "Vector3D", "Vector", "", {0.2, 0.2, 0.2}) &&
         AddDoubleRow(*p, "Diffuse", "Vector3D", "Vector", "",
                      {diffuse.x * factor, diffuse.y * factor, diffuse.z * factor}) &&
         AddDoubleRow(*p, "Specular", "Vector3D", "Vector", "", {0.2, 0.2, 0.2}) &&
         AddDoubleRow(*p, "Shininess", "double", "Number", "", {20}) &&
         AddDoubleRow(*p, "Opacity", "double", "Number", "", {1}) &&
         AddDoubleRow(*p, "Reflectivity", "double", "Number", "", {0});
}

// The name that records refer to an object by: "name\0\1Class", as in its own head.
bool AddObjectName(FbxRecord* parent, const char* recordName, const FbxObject& object, const char* className) {
  FbxRecord* record = parent ? parent->AddChild(recordName) : nullptr;
  if (!record) return false;
  const std::string name = std::string(object.GetName()) + std::string("\0\1", 2) + className;
  return record->AddString(name.data(), u32(name.size()));
}

bool WriteVideo(FbxRecord& objects, const FbxVideo& video) {
  FbxRecord* record = AddObject(objects, "Video", video, "Video", "Clip");
  if (!record || !AddText(record, "Type", "Clip")) return false;
  FbxRecord* p = record->AddChild("Properties70", true);
  return p && AddStringRow(*p, "Path", "KString", "XRefUrl", "", video.GetFileName()) &&
         AddStringRow(*p, "RelPath", "KString", "XRefUrl", "", video.GetRelativeFileName()) &&
         AddInt(record, "UseMipMap", 0) && AddText(record, "Filename", video.GetFileName()) &&
         AddText(record, "RelativeFilename", video.GetRelativeFileName());
}

bool WriteTexture(FbxRecord& objects, const FbxFileTexture& texture) {
  const FbxVideo* video = texture.GetVideo();
  FbxRecord* record = AddObject(objects, "Texture", texture, "Texture", "");
  if (!video || !record || !AddText(record, "Type", "TextureVideoClip") ||
      !AddInt(record, "Version", kTextureVersion) || !AddObjectName(record, "TextureName", texture, "Texture")) {
    return false;
  }
  FbxRecord* p = record->AddChild("Properties70", true);
  if (!p || !AddStringRow(*p, "UVSet", "KString", "", "", texture.GetUVSet()) ||
      !AddIntRow(*p, "UseMaterial", "bool", "", "", 1) || !AddObjectName(record, "Media", *video, "Video") ||
      !AddText(record, "FileName", video->GetFileName()) ||
      !AddText(record, "RelativeFilename", video->GetRelativeFileName())) {
    return false;
  }
  // Each child is filled before the next is added: adding one may move the others.
  FbxRecord* translation = record->AddChild("ModelUVTranslation");
  if (!translation || !translation->AddDouble(0) || !translation->AddDouble(0)) return false;
  FbxRecord* scaling = record->AddChild("ModelUVScaling");
  if (!scaling || !scaling->AddDouble(1) || !scaling->AddDouble(1)) return false;
  if (!AddText(record, "Texture_Alpha_Source", "None")) return false;
  FbxRecord* cropping = record->AddChild("Cropping");
  return cropping && cropping->AddInt32(0) && cropping->AddInt32(0) && cropping->AddInt32(0) && cropping->AddInt32(0);
}

// Every object the file holds, by id, which is the order they were made in.
class SceneObjects {
 public:
  [[nodiscard]] bool Collect(const FbxScene& scene) {
    const FbxNode* root = scene.GetRootNode();
    for (u32 i = 0; i < root->GetChildCount(); ++i) {
      if (!AddTree(root->GetChild(i))) return false;
    }
    for (u32 i = 0; i < scene.GetPoseCount(); ++i) {
      if (!Add(scene.GetPose(i))) return false;
    }
    std::sort(list.begin(), list.end(),
              [](const FbxObject* a, const FbxObject* b) { return a->GetUniqueID() < b->GetUniqueID(); });
    // An object reached twice (a shared material) is written once.
    const FbxObject** end = std::unique(list.begin(), list.end());
    return list.SetSize(u32(end - list.begin()));
  }
  const TArray<const FbxObject*>& List() const { return list; }

 private:
  bool Add(const FbxObject* object) {
    const FbxObject** slot = object ? list.Append() : nullptr;
    if (slot) *slot = object;
    return !object || slot;
  }

  // Nodes with what hangs on them. A cluster's bone is added too, so that no cluster points at a
  // node the file lacks.
  bool AddTree(const FbxNode* top) {
    TArray<const FbxNode*> stack;
    const FbxNode** first = stack.Append();
    if (!first) return false;
    *first = top;
    while (stack.Count()) {
      const FbxNode* node = stack[stack.Count() - 1];
      (void)stack.SetSize(stack.Count() - 1);
      if (!Add(node) || !Add(node->GetNodeAttribute())) return false;
      for (u32 m = 0; m < node->GetMaterialCount(); ++m) {
        if (!Add(node->GetMaterial(m)) || !AddTextures(*node->GetMaterial(m))) return false;
      }
      const FbxNodeAttribute* attribute = node->GetNodeAttribute();
      if (attribute && attribute->Kind() == FbxObjectKind::Mesh &&
          !AddDeformers(static_cast<const FbxMesh&>(*attribute))) {
        return false;
      }
      for (u32 c = 0; c < node->GetChildCount(); ++c) {
        const FbxNode** slot = stack.Append();
        if (!slot) return false;
        *slot = node->GetChild(c);
      }
    }
    return true;
  }

  bool AddTextures(const FbxSurfaceMaterial& material) {
    if (material.Kind() != FbxObjectKind::SurfacePhong) return true;
    const FbxFileTexture* texture = static_cast<const FbxSurfacePhong&>(material).GetDiffuseTexture();
    return !texture || (Add(texture) && Add(texture->GetVideo()));
  }

  bool AddDeformers(const FbxMesh& mesh) {
    for (u32 d = 0; d < mesh.GetDeformerCount(); ++d) {
      if (mesh.GetDeformer(d)->Kind() != FbxObjectKind::Skin) continue;
      const FbxSkin& skin = static_cast<const FbxSkin&>(*mesh.GetDeformer(d));
      if (!Add(&skin)) return false;
      for (u32 c = 0; c < skin.GetClusterCount(); ++c) {
        if (!Add(skin.GetCluster(c)) || !Add(skin.GetCluster(c)->GetLink())) return false;
      }
    }
    return true;
  }

  TArray<const FbxObject*> list;
};

bool WriteObject(FbxRecord& objects, const FbxObject& object) {
  switch (object.Kind()) {
    case FbxObjectKind::Node: return WriteModel(objects, static_cast<const FbxNode&>(object));
    case FbxObjectKind::Skeleton: return WriteSkeleton(objects, static_cast<const FbxSkeleton&>(object));
    case FbxObjectKind::Mesh: return WriteGeometry(objects, static_cast<const FbxMesh&>(object));
    case FbxObjectKind::Skin: return WriteSkin(objects, static_cast<const FbxSkin&>(object));
    case FbxObjectKind::Cluster: return WriteCluster(objects, static_cast<const FbxCluster&>(object));
    case FbxObjectKind::Pose: return WritePose(objects, static_cast<const FbxPose&>(object));
    case FbxObjectKind::SurfacePhong: return WriteMaterial(objects, static_cast<const FbxSurfacePhong&>(object));
    case FbxObjectKind::Texture: return WriteTexture(objects, static_cast<const FbxFileTexture&>(object));
    case FbxObjectKind::Video: return WriteVideo(objects, static_cast<const FbxVideo&>(object));
    default: return true;
  }
}

bool Connect(FbxRecord& connections, const FbxObject* child, i64 parentId) {
  FbxRecord* link = connections.AddChild("C");
  return link && link->AddString("OO") && link->AddInt64(child->GetUniqueID()) && link->AddInt64(parentId);
}

// `texture` onto the property `property` of the object `parentId`; nothing for no texture.
bool ConnectProperty(FbxRecord& connections, const FbxFileTexture* texture, i64 parentId, const char* property) {
  if (!texture) return true;
  FbxRecord* link = connections.AddChild("C");
  return link && link->AddString("OP") && link->AddInt64(texture->GetUniqueID()) && link->AddInt64(parentId) &&
         link->AddString(property);
}

// The links that end at `object`, in the order its lists keep them.
bool ConnectInto(FbxRecord& connections, const FbxObject& object) {
  const i64 id = object.GetUniqueID();
  switch (object.Kind()) {
    case FbxObjectKind::Node: {
      const FbxNode& node = static_cast<const FbxNode&>(object);
      if (node.GetNodeAttribute() && !Connect(connections, node.GetNodeAttribute(), id)) return false;
      for (u32 i = 0; i < node.GetChildCount(); ++i) {
        if (!Connect(connections, node.GetChild(i), id)) return false;
      }
      for (u32 i = 0; i < node.GetMaterialCount(); ++i) {
        if (!Connect(connections, node.GetMaterial(i), id)) return false;
      }
      return true;
    }
    case FbxObjectKind::Mesh: {
      const FbxMesh& mesh = static_cast<const FbxMesh&>(object);
      for (u32 i = 0; i < mesh.GetDeformerCount(); ++i) {
        if (!Connect(connections, mesh.GetDeformer(i), id)) return false;
      }
      return true;
    }
    case FbxObjectKind::Skin: {
      const FbxSkin& skin = static_cast<const FbxSkin&>(object);
      for (u32 i = 0; i < skin.GetClusterCount(); ++i) {
        if (!Connect(connections, skin.GetCluster(i), id)) return false;
      }
      return true;
    }
    case FbxObjectKind::Cluster: {
      const FbxNode* link = static_cast<const FbxCluster&>(object).GetLink();
      return !link || Connect(connections, link, id);
    }
    case FbxObjectKind::SurfacePhong: {
      // A texture goes onto the property it stands for, not onto the material as a whole.
      const auto& phong = static_cast<const FbxSurfacePhong&>(object);
      return ConnectProperty(connections, phong.GetDiffuseTexture(), id, "DiffuseColor") &&
             ConnectProperty(connections, phong.GetTransparentTexture(), id, "TransparentColor");
    }
    case FbxObjectKind::Texture: {
      const FbxVideo* video = static_cast<const FbxFileTexture&>(object).GetVideo();
      return !video || Connect(connections, video, id);
    }
    default: return true;
  }
}

// The Definitions entry of each kind: its record name and template, in the order the kinds first
// occur among the objects.
bool WriteDefinitions(FbxRecord& definitions, const TArray<const FbxObject*>& objects) {
  struct Type {
    const char* name;
    i32 templateKind;  // an FbxTemplate, or -1 for none
    i32 count;
    i32 firstAt;
  };
  Type types[] = {{"Model", i32(FbxTemplate::Node), 0, 0},
                  {"NodeAttribute", i32(FbxTemplate::Skeleton), 0, 0},
                  {"Geometry", i32(FbxTemplate::Mesh), 0, 0},
                  {"Material", i32(FbxTemplate::SurfacePhong), 0, 0},
                  {"Deformer", -1, 0, 0},
                  {"Pose", -1, 0, 0},
                  {"Texture", -1, 0, 0},
                  {"Video", -1, 0, 0}};
  const auto typeOf = [](FbxObjectKind kind) -> i32 {
    switch (kind) {
      case FbxObjectKind::Node: return 0;
      case FbxObjectKind::Skeleton: return 1;
      case FbxObjectKind::Mesh: return 2;
      case FbxObjectKind::SurfacePhong: return 3;
      case FbxObjectKind::Skin:
      case FbxObjectKind::Cluster: return 4;
      case FbxObjectKind::Pose: return 5;
      case FbxObjectKind::Texture: return 6;
      case FbxObjectKind::Video: return 7;
      default: return -1;
    }
  };
  i32 total = 1;  // GlobalSettings
  for (u32 i = 0; i < objects.Count(); ++i) {
    const i32 t = typeOf(objects[i]->Kind());
    if (t < 0) continue;
    if (types[t].count++ == 0) types[t].firstAt = i32(i);
    ++total;
  }
  std::sort(std::begin(types), std::end(types), [](const Type& a, const Type& b) { return a.firstAt < b.firstAt; });
  for (const Type& type : types) {
    if (type.count == 0) continue;
    FbxRecord* record = definitions.AddChild("ObjectType", true);
    if (!record || !record->AddString(type.name) || !AddInt(record, "Count", type.count)) return false;
    if (type.templateKind >= 0 && !AddPropertyTemplate(*record, FbxTemplate(type.templateKind))) return false;
  }
  FbxRecord* count = FindChild(definitions, "Count");
  if (!count || count->properties.Count() != 1) return false;
  count->properties[0].integer = total;
  return true;
}

}  // namespace

bool BuildSceneDocument(const FbxScene& scene, const FbxCreationTime& time, FbxRecord& document) {
  const FbxGlobalSettings& settings = scene.GetGlobalSettings();
  const auto centimetres = [](const FbxSystemUnit& unit) { return unit.GetScaleFactor() * unit.GetMultiplier(); };
  SceneObjects objects;
  if (!BuildDocumentSections(document, time, scene.GetDocumentInfo(), scene.GetName(),
                             centimetres(settings.GetSystemUnit()), centimetres(settings.GetOriginalSystemUnit())) ||
      !objects.Collect(scene)) {
    return false;
  }
  FbxRecord* definitions = FindChild(document, "Definitions");
  FbxRecord* objectRecords = FindChild(document, "Objects");
  FbxRecord* connections = FindChild(document, "Connections");
  if (!definitions || !objectRecords || !connections || !WriteDefinitions(*definitions, objects.List())) return false;
  for (const FbxObject* object : objects.List()) {
    if (!WriteObject(*objectRecords, *object)) return false;
  }
  const FbxNode* root = scene.GetRootNode();
  for (u32 i = 0; i < root->GetChildCount(); ++i) {
    if (!Connect(*connections, root->GetChild(i), 0)) return false;
  }
  for (const FbxObject* object : objects.List()) {
    if (!ConnectInto(*connections, *object)) return false;
  }
  return true;
}
