#pragma once

#include <type_traits>

#include "core/array.h"
#include "core/byte_buffer.h"
#include "core/byte_reader.h"
#include "core/types.h"
#include "core/value_string.h"

// A model file (DMOD, version 4) and its material chunk (DMAT, version 1), which also stands alone
// as a palette file. Both records are filled once by the readers below and not changed afterwards.
// All-zero (default-constructed) records are valid and empty.

// Six floats: minimum x, y, z, then maximum x, y, z.
using ModelBounds = f32[6];

// One vertex stream of a mesh; the bytes mean nothing until a material's input layout reads them.
struct MeshStream {
  MeshStream() = default;
  MeshStream(const MeshStream&) = delete;
  MeshStream& operator=(const MeshStream&) = delete;
  // Hands the data over without allocating, so `dataSize` always matches `data`.
  MeshStream(MeshStream&& other) noexcept;

  u32 dataSize = 0;  // stride * vertexCount, equal to data.Size()
  u32 stride = 0;    // the only step between vertices
  CByteBuffer data;
  u32 index = 0;  // position in the mesh's `streams`
};

struct ModelMesh {
  ModelMesh() = default;
  ModelMesh(const ModelMesh&) = delete;
  ModelMesh& operator=(const ModelMesh&) = delete;
  // Hands the streams and index data over without allocating.
  ModelMesh(ModelMesh&& other) noexcept;

  ModelBounds bounds = {};  // a copy of the model's; every mesh has the same
  TArray<MeshStream> streams;
  u32 indexDataSize = 0;  // bytesPerIndex * indexCount, equal to indexData.Size()
  u32 bytesPerIndex = 0;  // not checked here; the converters accept 2 and 4
  u32 indexCount = 0;
  CByteBuffer indexData;
  u32 vertexCount = 0;
  u32 firstDrawCall = 0;
  u32 drawCallCount = 0;
  u32 index = 0;  // position in the model's `meshes`
  u32 bonePaletteSize = 0;
  u32 reserved = 0;
};

// The 36-byte draw call as it stands in the file.
struct DrawCall {
  u32 reserved0 = 0;
  u32 firstBoneMapEntry = 0;
  u32 boneMapEntryCount = 0;
  u32 slotBase = 0;  // added to the slot of each of its bone map entries
  u32 reserved1 = 0;
  u32 firstVertex = 0;
  u32 vertexCount = 0;
  u32 reserved2 = 0;
  u32 reserved3 = 0;
};
static_assert(sizeof(DrawCall) == 36 && std::is_trivially_copyable_v<DrawCall>);

// The 4-byte bone map entry as it stands in the file. `bone` may be any number; only the entries
// below the model's bone count name a bone.
struct BoneMapEntry {
  u16 bone = 0;
  u16 slot = 0;
};
static_assert(sizeof(BoneMapEntry) == 4 && std::is_trivially_copyable_v<BoneMapEntry>);

struct ModelBone {
  u32 nameHash = 0;           // HashNameWide of the name; the only link to the rig's bones
  f32 bindMatrix[4][4] = {};  // row-major; after a read the fourth column is (0, 0, 0, 1)
  u32 bounds[6] = {};         // six words as stored
  bool used = false;          // some bone map entry names this bone
};

struct ModelFile {
  TArray<ModelMesh> meshes;
  ModelBounds bounds = {};
  TArray<ModelBone> bones;  // a bone's number is its index here
  TArray<DrawCall> drawCalls;
  TArray<BoneMapEntry> boneMap;
};

// A texture name of a material chunk and its HashNameWide, which texture parameters refer to.
struct MaterialName {
  CStringA text;
  u32 hash = 0;
};

// One effect parameter. Data of up to kInlineDataSize bytes is held in the record, larger data in a
// block that the parameter owns; `dataSize` says which, and is set only once the data is in place.
// Class 4, type 5 and 4 bytes of data make a texture reference: the HashNameWide of one of `names`.
struct MaterialParameter {
  static constexpr u32 kInlineDataSize = 16;

  MaterialParameter() = default;
  MaterialParameter(const MaterialParameter&) = delete;
  MaterialParameter& operator=(const MaterialParameter&) = delete;
  MaterialParameter(MaterialParameter&& other) noexcept;
  ~MaterialParameter() { FreeData(); }

  // Names one of its chunk's texture names.
  bool IsTextureReference() const { return parameterClass == 4 && parameterType == 5 && dataSize == 4; }
  // The data of a texture reference: the hash of the name.
  u32 ReferencedHash() const;
  // Null when dataSize is 0.
  const u8* Data() const {
    return dataSize == 0 ? nullptr : dataSize <= kInlineDataSize ? data.inlineBytes : data.block;
  }
  void FreeData();

  u32 semanticHash = 0;  // HashKey of the parameter's name, such as "baseDiffuse"
  union Data {
    u8 inlineBytes[kInlineDataSize];
    u8* block;
  } data = {};
  u32 dataSize = 0;
  u32 parameterType = 0;
  u32 parameterClass = 0;
};

struct ModelMaterials;

struct ModelMaterial {
  ModelMaterial() = default;
  ModelMaterial(const ModelMaterial&) = delete;
  ModelMaterial& operator=(const ModelMaterial&) = delete;
  ModelMaterial(ModelMaterial&& other) noexcept;

  const ModelMaterials* owner = nullptr;  // not owned; for look-ups in its `names`
  TArray<MaterialParameter> parameters;
  u32 definitionHash = 0;  // HashExact of the name of a material definition
  u32 materialKey = 0;
};

// Material i belongs to mesh i; a chunk may hold fewer materials than the model has meshes, and
// the users of a mesh must then do without. Not movable: each material points back here.
struct ModelMaterials {
  ModelMaterials() = default;
  ModelMaterials(const ModelMaterials&) = delete;
  ModelMaterials& operator=(const ModelMaterials&) = delete;

  TArray<ModelMaterial> materials;
  TArray<MaterialName> names;

  // The first name with `hash`, or null.
  const MaterialName* FindName(u32 hash) const;
};

// Reads a whole model file. `materials` receives the file's material chunk, and is left as it is
// when the file has none. A failed read leaves what it read so far, to be destroyed as usual.
// Neither record keeps a reference to `bytes`.
[[nodiscard]] bool Read(ModelFile& model, const CByteBuffer& bytes, ModelMaterials& materials);

// Reads one material chunk at the reader's position, first emptying `materials`. A palette file is
// one chunk from its first byte.
[[nodiscard]] bool ReadMaterials(ModelMaterials& materials, ByteReader& reader);
