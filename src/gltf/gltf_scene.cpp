#include "gltf/gltf_scene.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>
#include <unordered_map>
#include <unordered_set>

#include "fbx/sdk/fbx_mesh.h"
#include "fbx/sdk/fbx_skin.h"
#include "fbx/sdk/fbx_surface_phong.h"

namespace {

using Json = nlohmann::json;

// Component types and buffer targets, by the numbers the format gives them.
constexpr u32 kUnsignedByte = 5121;
constexpr u32 kUnsignedShort = 5123;
constexpr u32 kUnsignedInt = 5125;
constexpr u32 kFloat = 5126;
constexpr u32 kArrayBuffer = 34962;
constexpr u32 kElementArrayBuffer = 34963;
constexpr u32 kNoTarget = 0;
constexpr u32 kTriangles = 4;   // a primitive's mode
constexpr u32 kInfluences = 4;  // JOINTS_0 and WEIGHTS_0 hold four per vertex
// Joint numbers that fit a byte are stored as bytes; 16-bit indices stop short of 0xFFFF, which
// means a primitive restart.
constexpr u32 kMaxByteJoints = 256;
constexpr u32 kMaxShortIndexVertices = 0xFFFF;

// The binary buffer with its views and accessors, every view starting on 4 bytes as vertex data
// must.
class BufferBuilder {
 public:
  explicit BufferBuilder(std::vector<u8>& bytes) : bin(bytes) {}

  u32 AddView(const void* data, u64 size, u32 target) {
    bin.resize((bin.size() + 3) & ~size_t(3), 0);
    Json view = {{"buffer", 0}, {"byteOffset", bin.size()}, {"byteLength", size}};
    if (target != kNoTarget) view["target"] = target;
    const u8* bytes = static_cast<const u8*>(data);
    bin.insert(bin.end(), bytes, bytes + size);
    views.push_back(std::move(view));
    return u32(views.size() - 1);
  }

  template <class T>
  u32 AddAccessor(const std::vector<T>& values, u32 componentType, const char* type, u32 count, u32 target,
                  Json extra = Json::object()) {
    Json accessor = {{"bufferView", AddView(values.data(), values.size() * sizeof(T), target)},
                     {"componentType", componentType},
                     {"count", count},
                     {"type", type}};
    accessor.update(extra);
    accessors.push_back(std::move(accessor));
    return u32(accessors.size() - 1);
  }

  std::vector<u8>& bin;
  Json views = Json::array();
  Json accessors = Json::array();
};

// The quaternion of a rotation matrix (column vectors), unit length.
void MatrixToQuaternion(const FbxAMatrix& m, f64 (&q)[4]) {
  const f64 trace = m.At(0, 0) + m.At(1, 1) + m.At(2, 2);
  f64 x, y, z, w;
  if (trace > 0) {
    const f64 s = std::sqrt(trace + 1.0) * 2;
    w = s / 4, x = (m.At(2, 1) - m.At(1, 2)) / s, y = (m.At(0, 2) - m.At(2, 0)) / s, z = (m.At(1, 0) - m.At(0, 1)) / s;
  } else if (m.At(0, 0) > m.At(1, 1) && m.At(0, 0) > m.At(2, 2)) {
    const f64 s = std::sqrt(1.0 + m.At(0, 0) - m.At(1, 1) - m.At(2, 2)) * 2;
    w = (m.At(2, 1) - m.At(1, 2)) / s, x = s / 4, y = (m.At(0, 1) + m.At(1, 0)) / s, z = (m.At(0, 2) + m.At(2, 0)) / s;
  } else if (m.At(1, 1) > m.At(2, 2)) {
    const f64 s = std::sqrt(1.0 + m.At(1, 1) - m.At(0, 0) - m.At(2, 2)) * 2;
    w = (m.At(0, 2) - m.At(2, 0)) / s, x = (m.At(0, 1) + m.At(1, 0)) / s, y = s / 4, z = (m.At(1, 2) + m.At(2, 1)) / s;
  } else {
    const f64 s = std::sqrt(1.0 + m.At(2, 2) - m.At(0, 0) - m.At(1, 1)) * 2;
    w = (m.At(1, 0) - m.At(0, 1)) / s, x = (m.At(0, 2) + m.At(2, 0)) / s, y = (m.At(1, 2) + m.At(2, 1)) / s, z = s / 4;
  }
  const f64 length = std::sqrt(x * x + y * y + z * z + w * w);
  q[0] = x / length, q[1] = y / length, q[2] = z / length, q[3] = w / length;
}

// A node's name and local transform, each part only where it differs from the default.
Json NodeJson(const FbxNode& node) {
  Json json = {{"name", node.GetName()}};
  const FbxDouble3 t = node.LclTranslation.Get();
  const FbxDouble3 r = node.LclRotation.Get();
  const FbxDouble3 s = node.LclScaling.Get();
  if (t != FbxDouble3{}) json["translation"] = {t.x, t.y, t.z};
  if (r != FbxDouble3{}) {
    f64 q[4];
    MatrixToQuaternion(FbxAMatrix::FromTRS({}, {r.x, r.y, r.z, 0}, {1, 1, 1, 0}), q);
    json["rotation"] = {q[0], q[1], q[2], q[3]};
  }
  if (s != FbxDouble3{1, 1, 1}) json["scale"] = {s.x, s.y, s.z};
  return json;
}

// The 16 values of `m` in the format's column-major order, in single precision.
void AppendMatrix(const FbxAMatrix& m, std::vector<f32>& out) {
  f64 values[16];
  m.ToFileOrder(values);
  for (f64 value : values) out.push_back(f32(value));
}

const FbxSkin* SkinOf(const FbxMesh& mesh) {
  for (u32 d = 0; d < mesh.GetDeformerCount(); ++d) {
    if (mesh.GetDeformer(d)->Kind() == FbxObjectKind::Skin) return static_cast<const FbxSkin*>(mesh.GetDeformer(d));
  }
  return nullptr;
}

// Sets `n` to unit length; false when it has no direction.
bool Normalize(f64 (&n)[3]) {
  const f64 length = std::sqrt(n[0] * n[0] + n[1] * n[1] + n[2] * n[2]);
  if (!(length > 0) || !std::isfinite(length)) return false;
  for (f64& c : n) c /= length;
  return true;
}

// The mesh's normals at unit length, as the format demands. A normal derived from a tangent frame
// needn't be one, and a stored one may be zero: such a vertex takes the normal of the triangles
// around it, or failing that the up axis.
std::vector<f32> UnitNormals(const FbxMesh& mesh, const FbxLayerElementNormal& element) {
  const u32 count = mesh.GetControlPointsCount();
  std::vector<f64> normals(3 * count);
  std::vector<u32> lacking;
  for (u32 v = 0; v < count; ++v) {
    const FbxVector4& stored = element.GetDirectArray().GetAt(v);
    f64 n[3] = {stored.x, stored.y, stored.z};
    if (!Normalize(n)) lacking.push_back(v);
    std::copy(n, n + 3, &normals[3 * v]);
  }
  if (!lacking.empty()) {
    std::vector<f64> sums(3 * count, 0.0);
    const TArray<int>& corners = mesh.PolygonVertices();
    const FbxVector4* p = mesh.GetControlPoints();
    for (u32 t = 0; t + 2 < corners.Count(); t += 3) {
      const FbxVector4 &a = p[corners[t]], &b = p[corners[t + 1]], &c = p[corners[t + 2]];
      const f64 u[3] = {b.x - a.x, b.y - a.y, b.z - a.z}, w[3] = {c.x - a.x, c.y - a.y, c.z - a.z};
      // The cross product's length is twice the area: larger triangles weigh more.
      const f64 face[3] = {u[1] * w[2] - u[2] * w[1], u[2] * w[0] - u[0] * w[2], u[0] * w[1] - u[1] * w[0]};
      for (u32 k = 0; k < 3; ++k) {
        for (u32 axis = 0; axis < 3; ++axis) sums[3 * u32(corners[t + k]) + axis] += face[axis];
      }
    }
    for (u32 v : lacking) {
      f64 n[3] = {sums[3 * v], sums[3 * v + 1], sums[3 * v + 2]};
      if (!Normalize(n)) n[0] = 0, n[1] = 1, n[2] = 0;
      std::copy(n, n + 3, &normals[3 * v]);
    }
  }
  return std::vector<f32>(normals.begin(), normals.end());
}

// Up to four influences of one vertex, a joint at most once.
struct VertexWeights {
  u16 joint[kInfluences] = {};
  f32 weight[kInfluences] = {};
  u32 count = 0;

  void Add(u16 j, f32 w) {
    for (u32 k = 0; k < count; ++k) {
      if (joint[k] == j) {
        weight[k] += w;  // a bone named twice by one vertex moves it by both weights
        return;
      }
    }
    if (count < kInfluences) {
      joint[count] = j, weight[count] = w, ++count;
      return;
    }
    // More bones than the format holds: the lightest goes.
    u32 lightest = 0;
    for (u32 k = 1; k < kInfluences; ++k) lightest = weight[k] < weight[lightest] ? k : lightest;
    if (w > weight[lightest]) joint[lightest] = j, weight[lightest] = w;
  }
};

class DocumentBuilder {
 public:
  DocumentBuilder(const ConvertState& convertState, const GltfImages& embedded, GltfDocument& out)
      : state(convertState), images(embedded), buffer(out.bin) {}

  bool Build(GltfDocument& out) {
    out.bin.clear();
    if (!state.rootNode) return false;
    // The actor's node first, then the bones in rig order, then the meshes in mesh order.
    AddNode(state.rootNode);
    for (u32 i = 0; i < state.boneNodes.Count(); ++i) AddNode(state.boneNodes[i]);
    for (u32 i = 0; i < state.meshNodes.Count(); ++i) AddNode(state.meshNodes[i]);
    Json sceneNodes = Json::array({0});
    for (u32 i = 0; i < state.meshNodes.Count(); ++i) {
      const FbxNode* node = state.meshNodes[i];
      const FbxNodeAttribute* attribute = node->GetNodeAttribute();
      if (!attribute || attribute->Kind() != FbxObjectKind::Mesh) continue;
      bool skinned = false;
      if (!AddMesh(*node, *static_cast<const FbxMesh*>(attribute), i, skinned)) return false;
      // A skinned mesh follows its joints alone, so it stands at the top, where no parent's
      // transform seems to apply to it.
      if (skinned) sceneNodes.push_back(indexOf[node]);
    }
    LinkChildren();

    Json json = {{"asset", {{"version", "2.0"}, {"generator", "Tarnwick"}}},
                 {"scene", 0},
                 {"scenes", Json::array({{{"name", state.rootNode->GetName()}, {"nodes", sceneNodes}}})},
                 {"nodes", nodes}};
    if (!meshes.empty()) json["meshes"] = meshes;
    if (!materials.empty()) json["materials"] = materials;
    if (!skins.empty()) json["skins"] = skins;
    if (!gltfTextures.empty()) {
      json["textures"] = gltfTextures;
      json["images"] = gltfImages;
    }
    if (!buffer.accessors.empty()) json["accessors"] = buffer.accessors;
    if (!buffer.views.empty()) json["bufferViews"] = buffer.views;
    if (!out.bin.empty()) json["buffers"] = Json::array({{{"byteLength", out.bin.size()}}});
    // Names come from the game's files: bytes that aren't UTF-8 are replaced, never a failure.
    out.json = json.dump(-1, ' ', false, Json::error_handler_t::replace);
    return true;
  }

 private:
  void AddNode(const FbxNode* node) {
    indexOf[node] = u32(nodes.size());
    nodes.push_back(NodeJson(*node));
  }

  // Each node's children in the scene's order; skinned meshes were put at the top instead.
  void LinkChildren() {
    for (const auto& [node, index] : indexOf) {
      Json children = Json::array();
      for (u32 c = 0; c < node->GetChildCount(); ++c) {
        const auto child = indexOf.find(node->GetChild(c));
        if (child != indexOf.end() && !topLevel.contains(child->first)) children.push_back(child->second);
      }
      if (!children.empty()) nodes[index]["children"] = children;
    }
  }

  bool AddMesh(const FbxNode& node, const FbxMesh& mesh, u32 meshIndex, bool& skinned) {
    const u32 vertexCount = mesh.GetControlPointsCount();
    const TArray<int>& corners = mesh.PolygonVertices();
    for (u32 p = 0; p < mesh.GetPolygonCount(); ++p) {
      if (mesh.PolygonEnd(p) != 3 * (p + 1)) return false;
    }
    if (vertexCount == 0 || corners.Count() == 0) return true;  // nothing to draw: the node alone

    Json attributes = Json::object();
    attributes["POSITION"] = AddPositions(mesh);
    const FbxLayer* first = mesh.GetLayer(0);
    if (const FbxLayerElementNormal* normals = first ? first->GetNormals() : nullptr) {
      if (normals->GetDirectArray().GetCount() != vertexCount) return false;
      attributes["NORMAL"] = buffer.AddAccessor(UnitNormals(mesh, *normals), kFloat, "VEC3", vertexCount, kArrayBuffer);
    }
    u32 uvSets = 0;
    for (u32 l = 0; l < mesh.GetLayerCount(); ++l) {
      const FbxLayerElementUV* uvs = mesh.GetLayer(int(l))->GetUVs();
      if (!uvs) continue;
      if (uvs->GetDirectArray().GetCount() != vertexCount) return false;
      std::vector<f32> values;
      values.reserve(2 * vertexCount);
      for (u32 v = 0; v < vertexCount; ++v) {
        const FbxVector2& uv = uvs->GetDirectArray().GetAt(v);
        values.insert(values.end(), {f32(uv.x), f32(1.0 - uv.y)});  // the scene's V runs upwards
      }
      attributes["TEXCOORD_" + std::to_string(uvSets++)] =
          buffer.AddAccessor(values, kFloat, "VEC2", vertexCount, kArrayBuffer);
    }
    // A skin without clusters binds nothing: the mesh stays a plain one under the actor's node.
    const FbxSkin* skin = SkinOf(mesh);
    if (skin && skin->GetClusterCount()) {
      if (!AddSkin(node, *skin, vertexCount, attributes)) return false;
      skinned = true;
      topLevel.insert(&node);
    }

    u32 indices;
    if (vertexCount <= kMaxShortIndexVertices) {
      std::vector<u16> values(corners.Data(), corners.Data() + corners.Count());
      indices = buffer.AddAccessor(values, kUnsignedShort, "SCALAR", corners.Count(), kElementArrayBuffer);
    } else {
      std::vector<u32> values(corners.Data(), corners.Data() + corners.Count());
      indices = buffer.AddAccessor(values, kUnsignedInt, "SCALAR", corners.Count(), kElementArrayBuffer);
    }
    Json primitive = {{"attributes", attributes}, {"indices", indices}, {"mode", kTriangles}};
    if (node.GetMaterialCount() && node.GetMaterial(0)->Kind() == FbxObjectKind::SurfacePhong) {
      const i32 image = meshIndex < images.meshImage.size() ? images.meshImage[meshIndex] : -1;
      primitive["material"] =
          AddMaterial(*static_cast<const FbxSurfacePhong*>(node.GetMaterial(0)), uvSets > 0 ? image : -1);
    }
    meshes.push_back({{"name", mesh.GetName()}, {"primitives", Json::array({primitive})}});
    nodes[indexOf[&node]]["mesh"] = meshes.size() - 1;
    return true;
  }

  u32 AddPositions(const FbxMesh& mesh) {
    const u32 count = mesh.GetControlPointsCount();
    std::vector<f32> values;
    values.reserve(3 * count);
    f32 low[3] = {INFINITY, INFINITY, INFINITY}, high[3] = {-INFINITY, -INFINITY, -INFINITY};
    for (u32 v = 0; v < count; ++v) {
      const FbxVector4& p = mesh.GetControlPoints()[v];
      const f32 xyz[3] = {f32(p.x), f32(p.y), f32(p.z)};
      for (u32 a = 0; a < 3; ++a) {
        low[a] = std::fmin(low[a], xyz[a]);
        high[a] = std::fmax(high[a], xyz[a]);
        values.push_back(xyz[a]);
      }
    }
    return buffer.AddAccessor(values, kFloat, "VEC3", count, kArrayBuffer,
                              {{"min", {low[0], low[1], low[2]}}, {"max", {high[0], high[1], high[2]}}});
  }

  // The skin's joints are every bone of the rig, in rig order, as an importer that builds its
  // skeleton from them finds the FBX file's; JOINTS_0 and WEIGHTS_0 number them. A vertex without
  // weight goes wholly to the rig's first root bone, so it follows the skeleton as a whole.
  bool AddSkin(const FbxNode& node, const FbxSkin& skin, u32 vertexCount, Json& attributes) {
    const u32 boneCount = state.boneNodes.Count();
    if (boneCount == 0 || boneCount > 0xFFFF) return false;
    Json joints = Json::array();
    std::vector<f32> inverseBind;
    u16 top = 0;
    for (u32 b = boneCount; b-- > 0;) {
      if (state.boneNodes[b]->GetParent() == state.rootNode) top = u16(b);
    }
    for (u32 b = 0; b < boneCount; ++b) {
      joints.push_back(indexOf[state.boneNodes[b]]);
      AppendMatrix(state.boneNodes[b]->EvaluateGlobalTransform().Inverse(), inverseBind);
    }
    std::vector<VertexWeights> weights(vertexCount);
    for (u32 c = 0; c < skin.GetClusterCount(); ++c) {
      const FbxCluster& cluster = *skin.GetCluster(c);
      const auto link = indexOf.find(cluster.GetLink());
      // Bones are nodes 1 to boneCount, after the actor's.
      if (link == indexOf.end() || link->second == 0 || link->second > boneCount) return false;
      const u16 joint = u16(link->second - 1);
      for (u32 k = 0; k < cluster.GetControlPointIndicesCount(); ++k) {
        const int v = cluster.GetControlPointIndices()[k];
        const f32 w = f32(cluster.GetControlPointWeights()[k]);
        if (v < 0 || u32(v) >= vertexCount) return false;
        if (w > 0) weights[u32(v)].Add(joint, w);
      }
    }
    for (VertexWeights& vertex : weights) {
      f32 sum = 0;
      for (u32 k = 0; k < vertex.count; ++k) sum += vertex.weight[k];
      if (!(sum > 0) || !std::isfinite(sum)) {
        vertex = {};
        vertex.count = 1, vertex.weight[0] = 1, vertex.joint[0] = top;
        continue;
      }
      for (u32 k = 0; k < vertex.count; ++k) vertex.weight[k] /= sum;  // in single precision, as they are stored
    }

    std::vector<f32> weightValues;
    weightValues.reserve(kInfluences * vertexCount);
    for (const VertexWeights& vertex : weights)
      weightValues.insert(weightValues.end(), vertex.weight, vertex.weight + 4);
    if (joints.size() <= kMaxByteJoints) {
      std::vector<u8> values;
      values.reserve(kInfluences * vertexCount);
      for (const VertexWeights& vertex : weights) {
        for (u16 joint : vertex.joint) values.push_back(u8(joint));
      }
      attributes["JOINTS_0"] = buffer.AddAccessor(values, kUnsignedByte, "VEC4", vertexCount, kArrayBuffer);
    } else {
      std::vector<u16> values;
      values.reserve(kInfluences * vertexCount);
      for (const VertexWeights& vertex : weights) values.insert(values.end(), vertex.joint, vertex.joint + 4);
      attributes["JOINTS_0"] = buffer.AddAccessor(values, kUnsignedShort, "VEC4", vertexCount, kArrayBuffer);
    }
    attributes["WEIGHTS_0"] = buffer.AddAccessor(weightValues, kFloat, "VEC4", vertexCount, kArrayBuffer);
    const u32 matrices = u32(joints.size());
    skins.push_back({{"name", node.GetName()},
                     {"skeleton", 0},
                     {"joints", joints},
                     {"inverseBindMatrices", buffer.AddAccessor(inverseBind, kFloat, "MAT4", matrices, kNoTarget)}});
    nodes[indexOf[&node]]["skin"] = skins.size() - 1;
    return true;
  }

  // A material of its own for each mesh, as in the FBX file: the phong's diffuse colour as an
  // unlit-looking non-metal, or the embedded image over white.
  u32 AddMaterial(const FbxSurfacePhong& phong, i32 image) {
    const FbxDouble3 diffuse = phong.Diffuse.Get();
    const f64 factor = phong.DiffuseFactor.Get();
    Json pbr = {{"metallicFactor", 0.0}};
    if (image >= 0 && u32(image) < images.png.size()) {
      pbr["baseColorTexture"] = {{"index", TextureFor(u32(image))}, {"texCoord", 0}};
    } else {
      pbr["baseColorFactor"] = {diffuse.x * factor, diffuse.y * factor, diffuse.z * factor, 1.0};
    }
    materials.push_back({{"name", phong.GetName()}, {"pbrMetallicRoughness", pbr}});
    return u32(materials.size() - 1);
  }

  // Each image goes into the buffer once, with one texture, however many meshes show it.
  u32 TextureFor(u32 image) {
    const auto known = textureOf.find(image);
    if (known != textureOf.end()) return known->second;
    const std::vector<u8>& png = images.png[image];
    gltfImages.push_back(
        {{"bufferView", buffer.AddView(png.data(), png.size(), kNoTarget)}, {"mimeType", "image/png"}});
    gltfTextures.push_back({{"source", gltfImages.size() - 1}});
    textureOf[image] = u32(gltfTextures.size() - 1);
    return textureOf[image];
  }

  const ConvertState& state;
  const GltfImages& images;
  BufferBuilder buffer;
  std::unordered_map<const FbxNode*, u32> indexOf;
  std::unordered_set<const FbxNode*> topLevel;
  std::unordered_map<u32, u32> textureOf;
  Json nodes = Json::array();
  Json meshes = Json::array();
  Json materials = Json::array();
  Json skins = Json::array();
  Json gltfTextures = Json::array();
  Json gltfImages = Json::array();
};

}  // namespace

bool BuildGltf(const ConvertState& state, const GltfImages& images, GltfDocument& document) {
  DocumentBuilder builder(state, images, document);
  return builder.Build(document);
}
