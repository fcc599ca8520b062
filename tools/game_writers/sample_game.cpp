#include "game_writers/sample_game.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <filesystem>
#include <initializer_list>
#include <utility>
#include <vector>

#include "core/hash.h"
#include "game_writers/file_bytes.h"
#include "game_writers/image_writer.h"
#include "game_writers/model_writer.h"
#include "game_writers/pack_writer.h"
#include "game_writers/rig_writer.h"
#include "game_writers/skinned_actor.h"
#include "game_writers/xml_writer.h"

namespace gamewriters {

namespace {

using Files = std::vector<std::pair<std::string, std::string>>;

void PutU32(std::string& out, u32 value, u32 bytes = 4) {
  for (u32 i = 0; i < bytes; ++i) out.push_back(static_cast<char>(value >> (8 * i)));
}

void PutFloats(std::string& out, std::initializer_list<float> values) {
  for (float value : values) PutU32(out, std::bit_cast<u32>(value));
}

// ---- The material catalogue

enum class Surface { Skinned, Rigid, Prop, Glow };

const char* DefinitionName(Surface surface) {
  switch (surface) {
    case Surface::Skinned: return "SkinnedMaterial";
    case Surface::Rigid: return "RigidMaterial";
    case Surface::Prop: return "PropMaterial";
    case Surface::Glow: return "GlowMaterial";
  }
  return "";
}

LayoutEntryXml Element(const char* type, const char* usage, const char* stream = "0") {
  return {type, usage, stream, "0"};
}

std::string Catalogue() {
  CatalogueXml catalogue;
  const LayoutEntryXml position = Element("Float3", "Position"), normal = Element("Float3", "Normal"),
                       uv = Element("Float2", "Texcoord");
  catalogue.layouts = {
      {"SkinnedLayout", {position, normal, uv, Element("Ubyte4", "BlendIndices"), Element("Ubyte4n", "BlendWeight")}},
      {"RigidLayout", {position, normal, uv, Element("Ubyte4n", "Tangent"), Element("Ubyte4n", "Binormal")}},
      {"DepthLayout", {position}},
      {"PropLayout", {position, Element("Float3", "Normal", "1"), Element("Float2", "Texcoord", "1")}},
      {"GlowLayout", {position, normal, uv, Element("D3dcolor", "Color")}},
  };
  using Styles = std::vector<DrawStyleXml>;
  using Flags = std::vector<std::string>;
  catalogue.definitions = {
      {"SkinnedMaterial", "Opaque", Styles{{"normal", "SkinnedLayout"}}, Flags{"Skinned", "ArtistSelectable"}},
      {"RigidMaterial", "Opaque", Styles{{"normal", "RigidLayout"}}, Flags{"RigidSkinned"}},
      // No style is called "normal", so the larger vertex, that of "lit", decodes the mesh.
      {"PropMaterial", "Opaque", Styles{{"depth", "DepthLayout"}, {"lit", "PropLayout"}},
       Flags{"ArtistModelMaterialSelectable"}},
      {"GlowMaterial", "Translucent", Styles{{"normal", "GlowLayout"}}, Flags{"SemiTransparent"}},
  };
  return BuildCatalogue(catalogue);
}

// ---- Rigs. Every rotation is the identity, so a bone rests at the sum of its chain's translations.

struct Joint {
  const char* name;
  i32 parent;
  float x, y, z;
};

RigLayout Rig(const std::vector<Joint>& joints) {
  RigLayout rig;
  for (const Joint& j : joints) {
    rig.bones.push_back({.name = j.name, .parent = j.parent, .translation = {j.x, j.y, j.z, 1}});
  }
  return rig;
}

RigLayout Humanoid() {
  return Rig({{"root", -1, 0, 0.9f, 0},
              {"spine", 0, 0, 0.2f, 0},
              {"head", 1, 0, 0.5f, 0},
              {"arm_l", 1, 0.25f, 0.35f, 0},
              {"arm_r", 1, -0.25f, 0.35f, 0},
              {"leg_l", 0, 0.1f, 0, 0},
              {"leg_r", 0, -0.1f, 0, 0}});
}

// Holds root, spine and head like the humanoid: a model of only those bones fits both.
RigLayout Child() { return Rig({{"root", -1, 0, 0.5f, 0}, {"spine", 0, 0, 0.15f, 0}, {"head", 1, 0, 0.3f, 0}}); }

RigLayout Beast() {
  return Rig({{"root", -1, 0, 0.6f, 0},
              {"body", 0, 0, 0.05f, 0},
              {"neck", 1, 0, 0.1f, 0.4f},
              {"head", 2, 0, 0.15f, 0.2f},
              {"tail", 1, 0, 0.05f, -0.5f}});
}

std::array<float, 3> RestPosition(const RigLayout& rig, const std::string& name) {
  std::array<float, 3> at{};
  for (size_t i = 0; i < rig.bones.size(); ++i) {
    if (rig.bones[i].name != name) continue;
    for (i32 b = i32(i); b >= 0 && size_t(b) < rig.bones.size(); b = rig.bones[size_t(b)].parent) {
      for (int k = 0; k < 3; ++k) at[k] += rig.bones[size_t(b)].translation[k];
    }
  }
  return at;
}

// ---- Models, built of boxes

enum class End { Top, Bottom, Front, Back };

struct Box {
  float centre[3];
  float half[3];
  const char* bone = nullptr;   // the model bone that the box follows; none in static meshes
  const char* joint = nullptr;  // shares, half and half, the corners at `end`
  End end = End::Bottom;
};

struct MeshPlan {
  Surface surface;
  std::string texture;
  std::vector<Box> boxes;
  const char* semantic = "baseDiffuse";
};

struct ModelPlan {
  std::vector<std::string> bones;  // the first bones in model order; the rest follow from the boxes
  RigLayout rig;                   // where the bones rest, for their bind matrices
  std::vector<MeshPlan> meshes;
  u32 bytesPerIndex = 2;
};

struct Vertex {
  float position[3], normal[3], tangent[3], binormal[3], uv[2];
  u32 bones[2];
  float weights[2];
};

u32 BoneIndex(const std::vector<std::string>& bones, const char* name) {
  return u32(std::find(bones.begin(), bones.end(), name) - bones.begin());
}

// A name misspelt in a box becomes a bone of its own, which no rig holds.
std::vector<std::string> ModelBones(const ModelPlan& plan) {
  std::vector<std::string> bones = plan.bones;
  for (const MeshPlan& mesh : plan.meshes) {
    for (const Box& box : mesh.boxes) {
      for (const char* name : {box.bone, box.joint}) {
        if (name && BoneIndex(bones, name) == bones.size()) bones.push_back(name);
      }
    }
  }
  return bones;
}

// Four corners per face. The game's front faces wind so that (p1 - p0) x (p2 - p0) points inward.
void AddBox(std::vector<Vertex>& vertices, std::vector<u32>& indices, const Box& box,
            const std::vector<std::string>& bones) {
  const u32 endAxis = box.end == End::Top || box.end == End::Bottom ? 1 : 2;
  const float endSide = box.end == End::Top || box.end == End::Front ? 1 : -1;
  for (u32 axis = 0; axis < 3; ++axis) {
    const u32 u = (axis + 1) % 3, v = (axis + 2) % 3;
    for (float side : {-1.0f, 1.0f}) {
      const u32 base = u32(vertices.size());
      for (u32 corner = 0; corner < 4; ++corner) {
        const float cu = float(corner & 1), cv = float(corner >> 1);
        Vertex vertex{};
        vertex.position[axis] = box.centre[axis] + side * box.half[axis];
        vertex.position[u] = box.centre[u] + (2 * cu - 1) * box.half[u];
        vertex.position[v] = box.centre[v] + (2 * cv - 1) * box.half[v];
        vertex.normal[axis] = side;
        vertex.tangent[u] = 1;
        vertex.binormal[v] = 1;
        vertex.uv[0] = cu;
        vertex.uv[1] = cv;
        const bool shared = box.joint && (vertex.position[endAxis] - box.centre[endAxis]) * endSide > 0;
        vertex.bones[0] = box.bone ? BoneIndex(bones, box.bone) : 0;
        vertex.bones[1] = box.joint ? BoneIndex(bones, box.joint) : 0;
        vertex.weights[0] = shared ? 0.5f : 1.0f;
        vertex.weights[1] = shared ? 0.5f : 0.0f;
        vertices.push_back(vertex);
      }
      // u x v is the face's axis: the positive side takes the corners the other way round.
      static constexpr u32 kOrder[2][6] = {{0, 1, 2, 2, 1, 3}, {0, 2, 1, 1, 2, 3}};
      for (u32 k : kOrder[side > 0 ? 1 : 0]) indices.push_back(base + k);
    }
  }
}

// Unit vectors are stored as 0.5 + n / 2, whatever the type.
float Packed(float c) { return 0.5f + 0.5f * c; }
char PackedByte(float c) { return char(std::lround(Packed(c) * 255)); }
// Vertices name palette slots; the bone map puts the bones in the slots backwards.
char Slot(u32 bone, u32 boneCount) { return char(boneCount - 1 - bone); }

std::vector<StreamDesc> Streams(Surface surface, const std::vector<Vertex>& vertices, u32 boneCount) {
  std::string main, second;
  for (const Vertex& v : vertices) {
    PutFloats(main, {v.position[0], v.position[1], v.position[2]});
    std::string& rest = surface == Surface::Prop ? second : main;
    PutFloats(rest, {Packed(v.normal[0]), Packed(v.normal[1]), Packed(v.normal[2]), v.uv[0], v.uv[1]});
    const char w = char(std::lround(v.weights[0] * 255));
    switch (surface) {
      case Surface::Skinned:
        main += {Slot(v.bones[0], boneCount), Slot(v.bones[1], boneCount), 0, 0, w, char(255 - u8(w)), 0, 0};
        break;
      case Surface::Rigid:
        main += {PackedByte(v.tangent[0]),  PackedByte(v.tangent[1]),
                 PackedByte(v.tangent[2]),  char(255),
                 PackedByte(v.binormal[0]), PackedByte(v.binormal[1]),
                 PackedByte(v.binormal[2]), Slot(v.bones[0], boneCount)};
        break;
      case Surface::Glow: main += {char(150), char(230), char(255), char(200)}; break;
      case Surface::Prop: break;
    }
  }
  const u32 count = u32(vertices.size());
  std::vector<StreamDesc> streams{{count ? u32(main.size()) / count : 0, main}};
  if (!second.empty()) streams.push_back({u32(second.size()) / count, second});
  return streams;
}

PaletteDesc Materials(const std::vector<MeshPlan>& meshes) {
  PaletteDesc palette;
  for (u32 m = 0; m < meshes.size(); ++m) {
    const MeshPlan& mesh = meshes[m];
    if (std::find(palette.names.begin(), palette.names.end(), mesh.texture) == palette.names.end()) {
      palette.names.push_back(mesh.texture);
    }
    MaterialDesc material{.materialKey = 0x100 + m, .definitionHash = HashExact(DefinitionName(mesh.surface))};
    ParameterDesc tint{.semanticHash = HashKey("tint"), .parameterClass = 1, .parameterType = 3};
    PutFloats(tint.data, {1, 1, 1, 1});
    material.parameters = {TextureParameter(HashKey(mesh.semantic), mesh.texture), tint};
    palette.materials.push_back(material);
  }
  return palette;
}

std::string Model(const ModelPlan& plan) {
  ModelDesc model{.materials = Materials(plan.meshes)};
  const std::vector<std::string> bones = ModelBones(plan);
  const u32 boneCount = u32(bones.size());
  float low[3] = {1e9f, 1e9f, 1e9f}, high[3] = {-1e9f, -1e9f, -1e9f};
  for (u32 m = 0; m < plan.meshes.size(); ++m) {
    const MeshPlan& mesh = plan.meshes[m];
    std::vector<Vertex> vertices;
    std::vector<u32> indices;
    for (const Box& box : mesh.boxes) AddBox(vertices, indices, box, bones);
    const bool weighted = mesh.surface == Surface::Skinned || mesh.surface == Surface::Rigid;
    MeshDesc out{.firstDrawCall = m,
                 .drawCallCount = 1,
                 .bonePaletteSize = weighted ? boneCount : 0,
                 .bytesPerIndex = plan.bytesPerIndex,
                 .vertexCount = u32(vertices.size())};
    out.streams = Streams(mesh.surface, vertices, boneCount);
    for (u32 index : indices) PutU32(out.indexData, index, plan.bytesPerIndex);
    model.meshes.push_back(out);
    model.drawCalls.push_back({.boneMapEntryCount = weighted ? boneCount : 0, .vertexCount = out.vertexCount});
    for (const Vertex& v : vertices) {
      for (int k = 0; k < 3; ++k) {
        low[k] = std::min(low[k], v.position[k]);
        high[k] = std::max(high[k], v.position[k]);
      }
    }
  }
  std::copy(low, low + 3, model.bounds);
  std::copy(high, high + 3, model.bounds + 3);
  for (u32 b = 0; b < boneCount; ++b) {
    model.boneMap.push_back({u16(b), u16(boneCount - 1 - b)});
    BoneDesc bone{.nameHash = HashNameWide(bones[b].c_str())};
    const std::array<float, 3> rest = RestPosition(plan.rig, bones[b]);
    std::copy(rest.begin(), rest.end(), bone.matrix[3]);
    model.bones.push_back(bone);
  }
  return BuildModel(model);
}

// ---- Shapes

// A figure of the humanoid rig, standing on y = 0 and facing +z.
std::vector<Box> HumanoidBody() {
  return {{{0, 1.2f, 0}, {0.2f, 0.3f, 0.12f}, "spine", "root"},
          {{0, 1.72f, 0}, {0.11f, 0.12f, 0.11f}, "head", "spine"},
          {{0.31f, 1.2f, 0}, {0.06f, 0.26f, 0.06f}, "arm_l", "spine", End::Top},
          {{-0.31f, 1.2f, 0}, {0.06f, 0.26f, 0.06f}, "arm_r", "spine", End::Top},
          {{0.1f, 0.45f, 0}, {0.08f, 0.45f, 0.08f}, "leg_l", "root", End::Top},
          {{-0.1f, 0.45f, 0}, {0.08f, 0.45f, 0.08f}, "leg_r", "root", End::Top}};
}

std::vector<Box> BeastBody() {
  std::vector<Box> boxes = {{{0, 0.65f, 0}, {0.18f, 0.15f, 0.4f}, "body"},
                            {{0, 0.8f, 0.45f}, {0.08f, 0.1f, 0.1f}, "neck", "body"},
                            {{0, 0.9f, 0.65f}, {0.1f, 0.1f, 0.15f}, "head", "neck", End::Back},
                            {{0, 0.72f, -0.6f}, {0.04f, 0.04f, 0.2f}, "tail", "body", End::Front}};
  for (float x : {-0.12f, 0.12f}) {
    for (float z : {-0.3f, 0.3f}) boxes.push_back({{x, 0.25f, z}, {0.05f, 0.25f, 0.05f}, "body"});
  }
  return boxes;
}

// ---- Files

std::string Texture(const std::string& name, u8 r, u8 g, u8 b) {
  std::vector<u8> rgba;
  for (int i = 0; i < 64; ++i) rgba.insert(rgba.end(), {r, g, b, 255});
  return name.ends_with(".png") ? BuildPng(8, 8, rgba) : BuildDds(8, 8, rgba);
}

struct SampleTexture {
  const char* name;
  u8 r, g, b;
};

constexpr SampleTexture kTextures[] = {
    {"textures\\knight_d.png", 70, 90, 160},
    {"textures\\knight_red_d.dds", 170, 30, 30},
    {"textures\\shield_d.dds", 200, 170, 60},
    {"textures\\guard_d.dds", 60, 120, 60},
    {"textures\\guard_helmet_d.png", 150, 150, 160},
    {"textures\\wolf_d.png", 110, 100, 90},
    {"textures\\golem_d.dds", 120, 120, 110},
    {"textures\\scarecrow_d.png", 210, 180, 90},
    {"textures\\wyrm_d.dds", 40, 90, 50},
    {"textures\\wisp_d.png", 150, 230, 255},
    {"textures\\barrel_d.dds", 120, 70, 30},
    {"textures\\crate_d.png", 160, 120, 70},
    {"textures\\crate_bands_d.dds", 60, 60, 60},
};

void AddTextures(Files& pack, const std::string& prefix) {
  for (const SampleTexture& t : kTextures) {
    if (std::string(t.name).starts_with(prefix)) pack.emplace_back(t.name, Texture(t.name, t.r, t.g, t.b));
  }
}

ActorXml Actor(const char* model) { return {.fileName = model}; }

ActorXml NamedRig(const char* model, const char* network, const char* set) {
  return {.fileName = model, .hasAnimationNetwork = true, .networkFileName = network, .animSetName = set};
}

ActorXml Borrowing(const char* model) { return {.fileName = model, .hasUsage = true, .borrowSkeleton = "true"}; }

// The rig networks sit at the pack root: the game keys a network by its pack name without the
// extension and finds it by the stem of the actor's AnimationNetwork fileName.
Files HumanoidPack() {
  const RigLayout humanoid = Humanoid();
  ActorXml knight = NamedRig("models\\knight.dmod", "humanoid.mrn", "Idle");
  const std::string baseDiffuse = std::to_string(i32(HashKey("baseDiffuse")));
  knight.textureAliases = {{"Heraldry", "textures\\knight_red_d.dds", baseDiffuse, "0", "true"}};
  knight.tintAliases = {{"Cloak", "0.8", "0.1", "0.1", "1", std::to_string(i32(HashKey("tint"))), "0"}};
  ActorXml knightRed = NamedRig("models\\knight.dmod", "humanoid.mrn", "Idle");
  knightRed.paletteName = "materials\\knight_red.dmat";

  const MeshPlan shield{
      Surface::Skinned, "textures\\shield_d.dds", {{{0.4f, 1.15f, 0}, {0.02f, 0.2f, 0.15f}, "arm_l"}}};
  const ModelPlan knightModel{{}, humanoid, {{Surface::Skinned, "textures\\knight_d.png", HumanoidBody()}, shield}};
  std::vector<MeshPlan> redKnight = knightModel.meshes;
  redKnight[0].texture = "textures\\knight_red_d.dds";
  // The guard's bones in another order than the rig's, and its helmet's texture under the
  // parameter's other spelling.
  const ModelPlan guard{{"head", "spine", "root", "leg_r", "leg_l", "arm_r", "arm_l"},
                        humanoid,
                        {{Surface::Skinned, "textures\\guard_d.dds", HumanoidBody()},
                         {Surface::Skinned,
                          "textures\\guard_helmet_d.png",
                          {{{0, 1.87f, 0}, {0.13f, 0.05f, 0.13f}, "head"}},
                          "BaseDiffuse"}}};

  Files files = {
      {"materials_3.xml", Catalogue()},
      {"humanoid.mrn",
       BuildRigNetwork(NetworkWithSets({{1, humanoid}, {2, Child()}}, {{"Idle", 1}, {"Walk", 1}, {"ChildIdle", 2}}))},
      {"actors\\knight.adr", BuildActor(knight)},
      {"actors\\knight_red.adr", BuildActor(knightRed)},
      {"actors\\guard.adr", BuildActor(NamedRig("models\\guard.dmod", "rigs\\humanoid.mrn", "walk"))},
      // The first release's crate, replaced in the last pack; its model is long gone.
      {"actors\\crate.adr", BuildActor(Actor("models\\crate_v1.dmod"))},
      {"models\\knight.dmod", Model(knightModel)},
      {"materials\\knight_red.dmat", BuildPalette(Materials(redKnight))},
      {"models\\guard.dmod", Model(guard)},
  };
  for (const char* prefix : {"textures\\knight", "textures\\shield", "textures\\guard"}) AddTextures(files, prefix);
  return files;
}

// In two chunks, each followed by its files' data: actors and rigs, then models and textures.
PackLayout CreaturePack() {
  const RigLayout humanoid = Humanoid(), beast = Beast();
  std::vector<Box> golem = HumanoidBody();
  for (Box& box : golem) box.joint = nullptr;  // stone doesn't bend
  const ModelPlan wolf{{}, beast, {{Surface::Skinned, "textures\\wolf_d.png", BeastBody()}}};
  const ModelPlan stoneGolem{{}, humanoid, {{Surface::Rigid, "textures\\golem_d.dds", golem}}};
  // Only the humanoid rigs hold a spine, and both of them hold all three bones.
  const ModelPlan scarecrow{{},
                            humanoid,
                            {{Surface::Skinned,
                              "textures\\scarecrow_d.png",
                              {{{0, 0.8f, 0}, {0.04f, 0.8f, 0.04f}, "root"},
                               {{0, 1.35f, 0}, {0.6f, 0.04f, 0.04f}, "spine", "root"},
                               {{0, 1.65f, 0}, {0.14f, 0.15f, 0.14f}, "head", "spine"}}}}};
  // Only the beast has a tail.
  const ModelPlan wyrm{{},
                       beast,
                       {{Surface::Skinned,
                         "textures\\wyrm_d.dds",
                         {{{0, 0.65f, 0.1f}, {0.12f, 0.12f, 0.35f}, "body"},
                          {{0, 0.68f, -0.55f}, {0.08f, 0.08f, 0.3f}, "tail", "body", End::Front}}}}};
  Files files = {
      {"beast.mrn", BuildRigNetwork(NetworkWithSets({{1, beast}}, {{"Prowl", 1}, {"Sleep", 1}}))},
      {"actors\\wolf.adr", BuildActor(NamedRig("models\\wolf.dmod", "beast.mrn", "Prowl"))},
      {"actors\\golem.adr", BuildActor(NamedRig("models\\golem.dmod", "humanoid.mrn", "Idle"))},
      {"actors\\scarecrow.adr", BuildActor(Borrowing("models\\scarecrow.dmod"))},
      {"actors\\wyrm.adr", BuildActor(Borrowing("models\\wyrm.dmod"))},
      {"models\\wolf.dmod", Model(wolf)},
      {"models\\golem.dmod", Model(stoneGolem)},
      {"models\\scarecrow.dmod", Model(scarecrow)},
      {"models\\wyrm.dmod", Model(wyrm)},
  };
  for (const char* prefix : {"textures\\wolf", "textures\\golem", "textures\\scarecrow", "textures\\wyrm"}) {
    AddTextures(files, prefix);
  }
  PackLayout layout{.chunks = {{}, {}}, .placement = DataPlacement::AfterEachChunk};
  for (const auto& [name, data] : files) {
    const bool content = name.starts_with("models\\") || name.starts_with("textures\\");
    layout.chunks[content ? 1 : 0].entries.push_back({.name = name, .data = data});
  }
  return layout;
}

Files PropPack() {
  // Without bones the wisp has no rig, although every rig would fit it.
  ActorXml wisp = Borrowing("models\\wisp.dmod");
  wisp.invisible = "false";
  wisp.boneAttachmentName = "arm_l";
  const ModelPlan wispModel{{},
                            {},
                            {{Surface::Glow,
                              "textures\\wisp_d.png",
                              {{{0, 1.2f, 0}, {0.1f, 0.1f, 0.1f}}, {{0, 1.2f, 0}, {0.05f, 0.18f, 0.05f}}}}}};
  const ModelPlan barrel{{}, {}, {{Surface::Prop, "textures\\barrel_d.dds", {{{0, 0.45f, 0}, {0.3f, 0.45f, 0.3f}}}}}};
  const ModelPlan crate{{},
                        {},
                        {{Surface::Prop, "textures\\crate_d.png", {{{0, 0.4f, 0}, {0.4f, 0.4f, 0.4f}}}},
                         {Surface::Prop,
                          "textures\\crate_bands_d.dds",
                          {{{0, 0.2f, 0}, {0.42f, 0.04f, 0.42f}}, {{0, 0.6f, 0}, {0.42f, 0.04f, 0.42f}}}}},
                        4};
  Files files = {
      {"actors\\wisp.adr", BuildActor(wisp)},
      {"actors\\barrel.adr", BuildActor(Actor("models\\barrel.dmod"))},
      {"actors\\crate.adr", BuildActor(Actor("models\\crate.dmod"))},
      {"models\\wisp.dmod", Model(wispModel)},
      {"models\\barrel.dmod", Model(barrel)},
      {"models\\crate.dmod", Model(crate)},
  };
  for (const char* prefix : {"textures\\wisp", "textures\\barrel", "textures\\crate"}) AddTextures(files, prefix);
  return files;
}

bool Write(const std::string& path, const std::string& bytes, std::string* error) {
  if (WriteFileBytes(path, bytes)) return true;
  if (error) *error = "cannot write " + path;
  return false;
}

}  // namespace

SampleGamePaths SampleGameLayout(const std::string& dir) {
  std::error_code ignored;
  const std::filesystem::path root = std::filesystem::absolute(dir, ignored).lexically_normal();
  const std::filesystem::path userData = root / "data";
  return {.game = (root / "game").string(),
          .assets = (root / "game" / "Resources" / "Assets").string(),
          .userData = userData.string(),
          .digest = (userData / "Marrowgate Studio" / "Digests" / "Aldermoor.loc").string()};
}

bool BuildSampleGame(const std::string& dir, std::string* error) {
  const SampleGamePaths paths = SampleGameLayout(dir);
  const PackLayout packs[] = {SingleChunkPack(HumanoidPack()), CreaturePack(), SingleChunkPack(PropPack())};
  for (u32 i = 0; i < std::size(packs); ++i) {
    if (!Write(paths.assets + "/" + PackFileName(i), BuildPack(packs[i]), error)) return false;
  }
  // The whole file is the folder's path: no line end behind it.
  return Write(paths.digest, paths.game, error);
}

bool BuildBatchGame(const std::string& dir, u32 copies, std::string* error) {
  if (!BuildSampleGame(dir, error)) return false;
  std::vector<std::pair<std::string, std::string>> actors;
  const PackLayout packs[] = {SingleChunkPack(HumanoidPack()), CreaturePack(), SingleChunkPack(PropPack())};
  for (const PackLayout& pack : packs) {
    for (const PackChunk& chunk : pack.chunks) {
      for (const PackFileEntry& entry : chunk.entries) {
        if (entry.name.ends_with(".adr"))
          actors.emplace_back(entry.name.substr(entry.name.rfind('\\') + 1), entry.data);
      }
    }
  }
  PackChunk chunk;
  for (u32 n = 0; n < copies; ++n) {
    const std::string folder = "batch\\" + std::to_string(n) + "\\";
    for (const auto& [name, data] : actors) chunk.entries.push_back({.name = folder + name, .data = data});
    chunk.entries.push_back({.name = folder + "unreadable.adr", .data = "<ActorRuntime/>", .dataOffset = 0x7FFFFFF0});
    chunk.entries.push_back({.name = folder + "broken.adr", .data = "<ActorRuntime"});
    chunk.entries.push_back({.name = folder + "no_model.adr", .data = BuildActor(Actor("models\\none.dmod"))});
    chunk.entries.push_back({.name = folder + "no_palette.adr",
                             .data = BuildActor({.fileName = "models\\barrel.dmod", .paletteName = "none.dmat"})});
    chunk.entries.push_back({.name = folder + "Twin.adr", .data = BuildActor(Actor("models\\barrel.dmod"))});
    chunk.entries.push_back(
        {.name = "batch/" + std::to_string(n) + "/Twin.ADR", .data = BuildActor(Actor("models\\crate.dmod"))});
  }
  return Write(SampleGameLayout(dir).assets + "/" + PackFileName(3), BuildPack(PackLayout{{chunk}}), error);
}

}  // namespace gamewriters
