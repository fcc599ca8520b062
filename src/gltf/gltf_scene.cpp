#include "gltf/gltf_scene.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>

#include "gltf/json_text.h"

namespace {

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
    json::Object view;
    view.Set("buffer", "0").Set("byteOffset", json::Number(u64(bin.size()))).Set("byteLength", json::Number(size));
    if (target != kNoTarget) view.Set("target", json::Number(target));
    const u8* bytes = static_cast<const u8*>(data);
    bin.insert(bin.end(), bytes, bytes + size);
    views.push_back(std::move(view));
    return u32(views.size() - 1);
  }

  template <class T>
  u32 AddAccessor(const std::vector<T>& values, u32 componentType, const char* type, u32 count, u32 target,
                  json::Object accessor = {}) {
    accessor.Set("bufferView", json::Number(AddView(values.data(), values.size() * sizeof(T), target)))
        .Set("componentType", json::Number(componentType))
        .Set("count", json::Number(count))
        .Set("type", json::String(type));
    accessors.push_back(std::move(accessor));
    return u32(accessors.size() - 1);
  }

  std::vector<u8>& bin;
  std::vector<json::Object> views;
  std::vector<json::Object> accessors;
};

std::string Numbers(std::initializer_list<f64> values) {
  std::vector<std::string> texts;
  for (f64 value : values) texts.push_back(json::Number(value));
  return json::Array(texts);
}

// A bone's node: its name and local transform, each part only where it differs from the default.
json::Object BoneJson(const SceneBone& bone) {
  json::Object node;
  node.Set("name", json::String(bone.name));
  const f32* t = bone.translation;
  if (t[0] != 0 || t[1] != 0 || t[2] != 0) node.Set("translation", Numbers({t[0], t[1], t[2]}));
  // The format wants unit quaternions; a rig's may be slightly off.
  const f32* q = bone.rotation;
  const f64 length = std::sqrt(f64(q[0]) * q[0] + f64(q[1]) * q[1] + f64(q[2]) * q[2] + f64(q[3]) * q[3]);
  if (length > 0 && (q[0] != 0 || q[1] != 0 || q[2] != 0)) {
    node.Set("rotation", Numbers({q[0] / length, q[1] / length, q[2] / length, q[3] / length}));
  }
  return node;
}

// The inverse of an affine column-major matrix, in single precision as the file stores it; the
// identity for a singular one.
void AppendInverse(const f64 (&m)[16], std::vector<f32>& out) {
  // The 3x3 part's inverse through its cofactors, then the translation taken back.
  const f64 a = m[0], b = m[4], c = m[8], d = m[1], e = m[5], f = m[9], g = m[2], h = m[6], i = m[10];
  const f64 cofactor[9] = {e * i - f * h, c * h - b * i, b * f - c * e, f * g - d * i, a * i - c * g,
                           c * d - a * f, d * h - e * g, b * g - a * h, a * e - b * d};
  const f64 det = a * cofactor[0] + b * cofactor[3] + c * cofactor[6];
  f64 r[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};  // row-major
  if (det != 0 && std::isfinite(det)) {
    for (u32 k = 0; k < 9; ++k) r[k] = cofactor[k] / det;
  }
  const f64 t[3] = {m[12], m[13], m[14]};
  const f64 inverse[16] = {r[0],
                           r[3],
                           r[6],
                           0,
                           r[1],
                           r[4],
                           r[7],
                           0,
                           r[2],
                           r[5],
                           r[8],
                           0,
                           -(r[0] * t[0] + r[1] * t[1] + r[2] * t[2]),
                           -(r[3] * t[0] + r[4] * t[1] + r[5] * t[2]),
                           -(r[6] * t[0] + r[7] * t[1] + r[8] * t[2]),
                           1};
  for (f64 value : inverse) out.push_back(f32(value));
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
std::vector<f32> UnitNormals(const ExportMesh& mesh) {
  const u32 count = mesh.vertexCount;
  std::vector<f64> normals(3 * count);
  std::vector<u32> lacking;
  for (u32 v = 0; v < count; ++v) {
    f64 n[3] = {mesh.normals[v].x, mesh.normals[v].y, mesh.normals[v].z};
    if (!Normalize(n)) lacking.push_back(v);
    std::copy(n, n + 3, &normals[3 * v]);
  }
  if (!lacking.empty()) {
    std::vector<f64> sums(3 * count, 0.0);
    const u32* corners = mesh.indices.Data();
    const Vec3* p = mesh.positions.Data();
    for (u32 t = 0; t + 2 < mesh.indexCount; t += 3) {
      // The game's triangles run clockwise: a then c then b faces outwards.
      const Vec3 &a = p[corners[t]], &b = p[corners[t + 2]], &c = p[corners[t + 1]];
      const f64 u[3] = {f64(b.x) - a.x, f64(b.y) - a.y, f64(b.z) - a.z};
      const f64 w[3] = {f64(c.x) - a.x, f64(c.y) - a.y, f64(c.z) - a.z};
      // The cross product's length is twice the area: larger triangles weigh more.
      const f64 face[3] = {u[1] * w[2] - u[2] * w[1], u[2] * w[0] - u[0] * w[2], u[0] * w[1] - u[1] * w[0]};
      for (u32 k = 0; k < 3; ++k) {
        for (u32 axis = 0; axis < 3; ++axis) sums[3 * corners[t + k] + axis] += face[axis];
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
  DocumentBuilder(const ExportScene& exportScene, const GltfImages& embedded, GltfDocument& out)
      : scene(exportScene), images(embedded), buffer(out.bin) {}

  void Build(GltfDocument& out) {
    out.bin.clear();
    // The actor's node first, then the bones in rig order, then the meshes in mesh order.
    const u32 boneCount = scene.bones.Count();
    nodes.push_back(json::Object().Set("name", json::String(scene.rootName.Text())));
    for (const SceneBone& bone : scene.bones) nodes.push_back(BoneJson(bone));
    for (const SceneMesh& mesh : scene.meshes) nodes.push_back(json::Object().Set("name", json::String(mesh.name)));
    std::vector<std::string> sceneNodes = {"0"};
    std::vector<std::vector<std::string>> children(1 + boneCount);
    for (u32 b = 0; b < boneCount; ++b) children[u32(scene.bones[b].parent + 1)].push_back(json::Number(1 + b));
    bool bound = false;
    for (u32 m = 0; m < scene.meshes.Count(); ++m) {
      const u32 node = 1 + boneCount + m;
      // A skinned mesh follows its joints alone, so it stands at the top, where no parent's
      // transform seems to apply to it.
      if (AddMesh(scene.meshes[m], node)) {
        sceneNodes.push_back(json::Number(node));
        bound = true;
      } else {
        children[0].push_back(json::Number(node));
      }
    }
    if (!bound && boneCount) AddSkin(scene.rootName.Text(), JointsJson(), kNoNode);
    for (u32 n = 0; n < children.size(); ++n) {
      if (!children[n].empty()) nodes[n].Set("children", json::Array(children[n]));
    }

    json::Object document;
    document
        .Set("asset",
             json::Object().Set("version", json::String("2.0")).Set("generator", json::String("Tarnwick")).Text())
        .Set("scene", "0")
        .Set(
            "scenes",
            json::Array(std::vector<json::Object>{
                json::Object().Set("name", json::String(scene.rootName.Text())).Set("nodes", json::Array(sceneNodes))}))
        .Set("nodes", json::Array(nodes));
    if (!meshes.empty()) document.Set("meshes", json::Array(meshes));
    if (!materials.empty()) document.Set("materials", json::Array(materials));
    if (!skins.empty()) document.Set("skins", json::Array(skins));
    if (!gltfTextures.empty()) {
      document.Set("textures", json::Array(gltfTextures));
      document.Set("images", json::Array(gltfImages));
    }
    if (!buffer.accessors.empty()) document.Set("accessors", json::Array(buffer.accessors));
    if (!buffer.views.empty()) document.Set("bufferViews", json::Array(buffer.views));
    if (!out.bin.empty()) {
      document.Set(
          "buffers",
          json::Array(std::vector<json::Object>{json::Object().Set("byteLength", json::Number(u64(out.bin.size())))}));
    }
    out.json = document.Text();
  }

 private:
  static constexpr u32 kNoNode = 0xFFFFFFFF;

  // Every bone, in rig order: JOINTS_0 numbers them so, as an importer that builds its skeleton
  // from them finds the FBX file's.
  std::string JointsJson() const {
    std::vector<std::string> joints;
    for (u32 b = 0; b < scene.bones.Count(); ++b) joints.push_back(json::Number(1 + b));
    return json::Array(joints);
  }

  // True when the mesh got a skin that binds a bone.
  bool AddMesh(const SceneMesh& mesh, u32 node) {
    const ExportMesh& geometry = mesh.geometry;
    const u32 vertexCount = geometry.vertexCount;
    const u32 cornerCount = mesh.TriangleCount() * 3;
    if (vertexCount == 0 || cornerCount == 0) return false;  // nothing to draw: the node alone

    json::Object attributes;
    attributes.Set("POSITION", json::Number(AddPositions(geometry)));
    if (geometry.flags & kHasNormal) {
      attributes.Set(
          "NORMAL", json::Number(buffer.AddAccessor(UnitNormals(geometry), kFloat, "VEC3", vertexCount, kArrayBuffer)));
    }
    u32 uvSets = 0;
    for (const SceneUvSet& set : mesh.uvSets) {
      const Vec2* uvs = geometry.uvs[set.channel].Data();
      std::vector<f32> values;
      values.reserve(2 * vertexCount);
      for (u32 v = 0; v < vertexCount; ++v) values.insert(values.end(), {uvs[v].x, uvs[v].y});
      attributes.Set("TEXCOORD_" + std::to_string(uvSets++),
                     json::Number(buffer.AddAccessor(values, kFloat, "VEC2", vertexCount, kArrayBuffer)));
    }
    const bool skinned = mesh.skinned && BindsBone(mesh) && AddWeights(mesh, node, attributes);

    // The game's front faces run clockwise: the second and third corners change places.
    const u32* index = geometry.indices.Data();
    u32 indices;
    if (vertexCount <= kMaxShortIndexVertices) {
      indices = buffer.AddAccessor(Corners<u16>(index, cornerCount), kUnsignedShort, "SCALAR", cornerCount,
                                   kElementArrayBuffer);
    } else {
      indices = buffer.AddAccessor(Corners<u32>(index, cornerCount), kUnsignedInt, "SCALAR", cornerCount,
                                   kElementArrayBuffer);
    }
    json::Object primitive;
    primitive.Set("attributes", attributes.Text())
        .Set("indices", json::Number(indices))
        .Set("mode", json::Number(kTriangles))
        .Set("material", json::Number(AddMaterial(mesh, uvSets > 0 ? mesh.diffuseImage : kSceneNoImage)));
    meshes.push_back(json::Object()
                         .Set("name", json::String(mesh.name))
                         .Set("primitives", json::Array(std::vector<json::Object>{primitive})));
    nodes[node].Set("mesh", json::Number(u64(meshes.size() - 1)));
    return skinned;
  }

  template <class T>
  static std::vector<T> Corners(const u32* index, u32 count) {
    std::vector<T> values(count);
    for (u32 c = 0; c < count; c += 3) {
      values[c] = T(index[c]), values[c + 1] = T(index[c + 2]), values[c + 2] = T(index[c + 1]);
    }
    return values;
  }

  u32 AddPositions(const ExportMesh& geometry) {
    const u32 count = geometry.vertexCount;
    std::vector<f32> values;
    values.reserve(3 * count);
    f32 low[3] = {INFINITY, INFINITY, INFINITY}, high[3] = {-INFINITY, -INFINITY, -INFINITY};
    for (u32 v = 0; v < count; ++v) {
      const Vec3& p = geometry.positions[v];
      const f32 xyz[3] = {p.x, p.y, p.z};
      for (u32 a = 0; a < 3; ++a) {
        low[a] = std::fmin(low[a], xyz[a]);
        high[a] = std::fmax(high[a], xyz[a]);
        values.push_back(xyz[a]);
      }
    }
    return buffer.AddAccessor(
        values, kFloat, "VEC3", count, kArrayBuffer,
        json::Object().Set("min", Numbers({low[0], low[1], low[2]})).Set("max", Numbers({high[0], high[1], high[2]})));
  }

  static bool BindsBone(const SceneMesh& mesh) {
    for (const SceneInfluences& vertex : mesh.influences) {
      for (const SceneInfluence& slot : vertex.k) {
        if (slot.bone != kSceneNoBone) return true;
      }
    }
    return false;
  }

  // The skeleton's first root bone, which takes a vertex without weight wholly.
  u16 TopBone() const {
    for (u32 b = 0; b < scene.bones.Count(); ++b) {
      if (scene.bones[b].parent < 0) return u16(b);
    }
    return 0;
  }

  bool AddWeights(const SceneMesh& mesh, u32 node, json::Object& attributes) {
    const u32 boneCount = scene.bones.Count();
    const u32 vertexCount = mesh.geometry.vertexCount;
    if (boneCount == 0 || boneCount > 0xFFFF || mesh.influences.Count() != vertexCount) return false;
    const u16 top = TopBone();
    std::vector<VertexWeights> weights(vertexCount);
    for (u32 v = 0; v < vertexCount; ++v) {
      VertexWeights& vertex = weights[v];
      for (const SceneInfluence& slot : mesh.influences[v].k) {
        if (slot.bone != kSceneNoBone) vertex.Add(u16(slot.bone), slot.weight);
      }
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
    if (boneCount <= kMaxByteJoints) {
      std::vector<u8> values;
      values.reserve(kInfluences * vertexCount);
      for (const VertexWeights& vertex : weights) {
        for (u16 joint : vertex.joint) values.push_back(u8(joint));
      }
      attributes.Set("JOINTS_0",
                     json::Number(buffer.AddAccessor(values, kUnsignedByte, "VEC4", vertexCount, kArrayBuffer)));
    } else {
      std::vector<u16> values;
      values.reserve(kInfluences * vertexCount);
      for (const VertexWeights& vertex : weights) values.insert(values.end(), vertex.joint, vertex.joint + 4);
      attributes.Set("JOINTS_0",
                     json::Number(buffer.AddAccessor(values, kUnsignedShort, "VEC4", vertexCount, kArrayBuffer)));
    }
    attributes.Set("WEIGHTS_0",
                   json::Number(buffer.AddAccessor(weightValues, kFloat, "VEC4", vertexCount, kArrayBuffer)));
    AddSkin(mesh.name, JointsJson(), node);
    return true;
  }

  // A skin over `joints` with their inverse bind matrices, used by `node` (kNoNode: by none).
  void AddSkin(const char* name, std::string joints, u32 node) {
    std::vector<f32> inverseBind;
    inverseBind.reserve(16 * scene.bones.Count());
    for (const SceneBone& bone : scene.bones) AppendInverse(bone.bind, inverseBind);
    const u32 matrices = scene.bones.Count();
    skins.push_back(json::Object()
                        .Set("name", json::String(name))
                        .Set("skeleton", "0")
                        .Set("joints", std::move(joints))
                        .Set("inverseBindMatrices",
                             json::Number(buffer.AddAccessor(inverseBind, kFloat, "MAT4", matrices, kNoTarget))));
    if (node != kNoNode) nodes[node].Set("skin", json::Number(u64(skins.size() - 1)));
  }

  // A material of its own for each mesh, as in the FBX file: the diffuse colour as an
  // unlit-looking non-metal, or the embedded image over white.
  u32 AddMaterial(const SceneMesh& mesh, i32 image) {
    json::Object pbr;
    pbr.Set("metallicFactor", json::Number(0.0));
    if (image >= 0 && u32(image) < images.png.size() && images.png[u32(image)]) {
      pbr.Set("baseColorTexture",
              json::Object().Set("index", json::Number(TextureFor(u32(image)))).Set("texCoord", "0").Text());
    } else {
      pbr.Set("baseColorFactor", Numbers({mesh.color[0], mesh.color[1], mesh.color[2], 1.0}));
    }
    json::Object material;
    material.Set("name", json::String(mesh.materialName)).Set("pbrMetallicRoughness", pbr.Text());
    if (pbr.Has("baseColorTexture") && mesh.semiTransparent) material.Set("alphaMode", json::String("BLEND"));
    materials.push_back(std::move(material));
    return u32(materials.size() - 1);
  }

  // Each image goes into the buffer once, with one texture, however many meshes show it.
  u32 TextureFor(u32 image) {
    const auto known = textureOf.find(image);
    if (known != textureOf.end()) return known->second;
    const TexturePng& texture = *images.png[image];
    AddImage(texture.png, nullptr);
    gltfTextures.push_back(json::Object().Set("source", json::Number(u64(gltfImages.size() - 1))));
    if (!texture.alpha.empty()) AddImage(texture.alpha, (std::string(scene.images[image].name) + "_alpha").c_str());
    textureOf[image] = u32(gltfTextures.size() - 1);
    return textureOf[image];
  }

  // An embedded PNG image, named where `name` isn't null.
  void AddImage(const std::vector<u8>& png, const char* name) {
    json::Object image;
    image.Set("bufferView", json::Number(buffer.AddView(png.data(), png.size(), kNoTarget)))
        .Set("mimeType", json::String("image/png"));
    if (name) image.Set("name", json::String(name));
    gltfImages.push_back(std::move(image));
  }

  const ExportScene& scene;
  const GltfImages& images;
  BufferBuilder buffer;
  std::unordered_map<u32, u32> textureOf;
  std::vector<json::Object> nodes;
  std::vector<json::Object> meshes;
  std::vector<json::Object> materials;
  std::vector<json::Object> skins;
  std::vector<json::Object> gltfTextures;
  std::vector<json::Object> gltfImages;
};

}  // namespace

void BuildGltf(const ExportScene& scene, const GltfImages& images, GltfDocument& document) {
  DocumentBuilder builder(scene, images, document);
  builder.Build(document);
}
