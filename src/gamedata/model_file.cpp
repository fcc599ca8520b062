#include "gamedata/model_file.h"

#include <bit>
#include <cstring>
#include <utility>

#include "core/hash.h"
#include "core/memory_hooks.h"

namespace {

constexpr u32 kModelMagic = 0x444F4D44;  // "DMOD"
constexpr u32 kModelVersion = 4;
constexpr u32 kMaterialsMagic = 0x54414D44;  // "DMAT"
constexpr u32 kMaterialsVersion = 1;

constexpr u32 kFileHeaderSize = 12;      // magic, version, and a size or count
constexpr u32 kBoundsAndCountSize = 28;  // six floats and the mesh count
constexpr u32 kMeshHeaderSize = 32;
constexpr u32 kStreamHeaderSize = 4;  // the stride
constexpr u32 kBoneMatrixSize = 48;   // four rows of three floats
constexpr u32 kBoneBoundsSize = 24;
constexpr u32 kBoneHashSize = 4;
constexpr u32 kMaterialHeaderSize = 16;
constexpr u32 kParameterHeaderSize = 16;

// Draw calls and bone map entries are copied into their records as they stand.
static_assert(std::endian::native == std::endian::little);

// Exactly `count` fresh elements, once `count` records of at least `recordSize` bytes each are
// known to be in the file: a corrupt count fails here, before any memory is asked for it.
template <class T>
bool SizeFromFile(TArray<T>& array, u32 count, u32 recordSize, const ByteReader& reader) {
  if (!reader.Has(u64(count) * recordSize)) return false;
  return array.SetSize(0) && array.Reserve(count) && array.SetSize(count);
}

// `size` bytes into `out`, with `storedSize` set only once they are there. The product that gives
// `size` is taken in 64 bits, so a 32-bit overflow can't pass for a small block.
bool ReadBlock(ByteReader& reader, u64 size, CByteBuffer& out, u32& storedSize) {
  if (!reader.Has(size)) return false;
  const u32 n = static_cast<u32>(size);
  if (!out.SetSizeForOverwrite(n) || !reader.ReadBytes(out.Data(), n)) return false;
  storedSize = n;
  return true;
}

bool ReadMesh(ByteReader& reader, ModelMesh& mesh) {
  const u8* header;
  if (!reader.Take(kMeshHeaderSize, header)) return false;
  mesh.firstDrawCall = LoadU32LE(header);
  mesh.drawCallCount = LoadU32LE(header + 4);
  mesh.bonePaletteSize = LoadU32LE(header + 8);
  mesh.reserved = LoadU32LE(header + 12);
  const u32 streamCount = LoadU32LE(header + 16);
  mesh.bytesPerIndex = LoadU32LE(header + 20);
  mesh.indexCount = LoadU32LE(header + 24);
  mesh.vertexCount = LoadU32LE(header + 28);

  if (!SizeFromFile(mesh.streams, streamCount, kStreamHeaderSize, reader)) return false;
  for (u32 i = 0; i < streamCount; ++i) {
    MeshStream& stream = mesh.streams[i];
    stream.index = i;
    if (!reader.ReadU32(stream.stride)) return false;
    if (!ReadBlock(reader, u64(stream.stride) * mesh.vertexCount, stream.data, stream.dataSize)) return false;
  }
  return ReadBlock(reader, u64(mesh.bytesPerIndex) * mesh.indexCount, mesh.indexData, mesh.indexDataSize);
}

bool ReadBones(ByteReader& reader, u32 boneCount, ModelFile& model) {
  if (!SizeFromFile(model.bones, boneCount, kBoneMatrixSize + kBoneBoundsSize + kBoneHashSize, reader)) return false;
  // Entries naming no bone of the model are passed over; they may still matter to a draw call.
  for (const BoneMapEntry& entry : model.boneMap) {
    if (entry.bone < boneCount) model.bones[entry.bone].used = true;
  }

  // All matrices, then all bounds, then all name hashes. Each run was covered by the check above.
  const u8* p;
  if (!reader.Take(boneCount * kBoneMatrixSize, p)) return false;
  for (ModelBone& bone : model.bones) {
    for (u32 row = 0; row < 4; ++row, p += 12) {
      bone.bindMatrix[row][0] = LoadF32LE(p);
      bone.bindMatrix[row][1] = LoadF32LE(p + 4);
      bone.bindMatrix[row][2] = LoadF32LE(p + 8);
      bone.bindMatrix[row][3] = row == 3 ? 1.0f : 0.0f;
    }
  }
  if (!reader.Take(boneCount * kBoneBoundsSize, p)) return false;
  for (ModelBone& bone : model.bones) {
    for (u32& word : bone.bounds) {
      word = LoadU32LE(p);
      p += 4;
    }
  }
  if (!reader.Take(boneCount * kBoneHashSize, p)) return false;
  for (ModelBone& bone : model.bones) {
    bone.nameHash = LoadU32LE(p);
    p += 4;
  }
  return true;
}

// The name table: NUL-terminated texts one after another, the last ending exactly at the end.
bool ReadNames(TArray<MaterialName>& names, const u8* table, u32 size) {
  // Counted first, which also proves that every name ends inside the table.
  u32 count = 0;
  for (u32 at = 0; at < size; ++count) {
    const void* end = std::memchr(table + at, 0, size - at);
    if (!end) return false;
    at = static_cast<u32>(static_cast<const u8*>(end) - table) + 1;
  }
  if (!names.Reserve(count) || !names.SetSize(count)) return false;
  const char* text = reinterpret_cast<const char*>(table);
  for (MaterialName& name : names) {
    if (!name.text.Assign(text)) return false;
    name.hash = HashNameWide(text);
    text += std::strlen(text) + 1;
  }
  return true;
}

bool ReadParameter(ByteReader& reader, MaterialParameter& parameter) {
  const u8* header;
  if (!reader.Take(kParameterHeaderSize, header)) return false;
  parameter.semanticHash = LoadU32LE(header);
  parameter.parameterClass = LoadU32LE(header + 4);
  parameter.parameterType = LoadU32LE(header + 8);
  const u32 size = LoadU32LE(header + 12);
  const u8* source;
  if (!reader.Take(size, source)) return false;
  if (size == 0) return true;
  if (size <= MaterialParameter::kInlineDataSize) {
    std::memcpy(parameter.data.inlineBytes, source, size);
  } else {
    auto* block = static_cast<u8*>(MemAllocate(size));
    if (!block) return false;
    std::memcpy(block, source, size);
    parameter.data.block = block;
  }
  parameter.dataSize = size;
  return true;
}

bool ReadMaterial(ByteReader& reader, ModelMaterial& material) {
  const u8* header;
  if (!reader.Take(kMaterialHeaderSize, header)) return false;
  material.materialKey = LoadU32LE(header);
  material.definitionHash = LoadU32LE(header + 8);
  const u32 parameterCount = LoadU32LE(header + 12);
  if (!SizeFromFile(material.parameters, parameterCount, kParameterHeaderSize, reader)) return false;
  for (MaterialParameter& parameter : material.parameters) {
    if (!ReadParameter(reader, parameter)) return false;
  }
  return true;
}

}  // namespace

MeshStream::MeshStream(MeshStream&& other) noexcept
    : dataSize(std::exchange(other.dataSize, 0)),
      stride(other.stride),
      data(std::move(other.data)),
      index(other.index) {}

ModelMesh::ModelMesh(ModelMesh&& other) noexcept
    : streams(std::move(other.streams)),
      indexDataSize(std::exchange(other.indexDataSize, 0)),
      bytesPerIndex(other.bytesPerIndex),
      indexCount(other.indexCount),
      indexData(std::move(other.indexData)),
      vertexCount(other.vertexCount),
      firstDrawCall(other.firstDrawCall),
      drawCallCount(other.drawCallCount),
      index(other.index),
      bonePaletteSize(other.bonePaletteSize),
      reserved(other.reserved) {
  std::memcpy(bounds, other.bounds, sizeof(bounds));
}

MaterialParameter::MaterialParameter(MaterialParameter&& other) noexcept
    : semanticHash(other.semanticHash),
      data(other.data),
      dataSize(std::exchange(other.dataSize, 0)),
      parameterType(other.parameterType),
      parameterClass(other.parameterClass) {}

u32 MaterialParameter::ReferencedHash() const {
  u32 hash = 0;
  if (dataSize == 4) std::memcpy(&hash, Data(), 4);
  return hash;
}

const MaterialName* ModelMaterials::FindName(u32 hash) const {
  for (const MaterialName& name : names) {
    if (name.hash == hash) return &name;
  }
  return nullptr;
}

void MaterialParameter::FreeData() {
  if (dataSize > kInlineDataSize) MemFree(data.block);
  dataSize = 0;
}

ModelMaterial::ModelMaterial(ModelMaterial&& other) noexcept
    : owner(other.owner),
      parameters(std::move(other.parameters)),
      definitionHash(other.definitionHash),
      materialKey(other.materialKey) {}

bool ReadMaterials(ModelMaterials& materials, ByteReader& reader) {
  materials.materials.Release();
  materials.names.Release();

  const u8* header;
  if (!reader.Take(kFileHeaderSize, header)) return false;
  if (LoadU32LE(header) != kMaterialsMagic || LoadU32LE(header + 4) != kMaterialsVersion) return false;
  const u32 nameTableSize = LoadU32LE(header + 8);
  const u8* table;
  if (!reader.Take(nameTableSize, table) || !ReadNames(materials.names, table, nameTableSize)) return false;

  u32 materialCount;
  if (!reader.ReadU32(materialCount)) return false;
  if (!SizeFromFile(materials.materials, materialCount, kMaterialHeaderSize, reader)) return false;
  for (ModelMaterial& material : materials.materials) {
    if (!ReadMaterial(reader, material)) return false;
    material.owner = &materials;
  }
  return true;
}

bool Read(ModelFile& model, const CByteBuffer& bytes, ModelMaterials& materials) {
  model.meshes.Release();
  model.bones.Release();
  model.drawCalls.Release();
  model.boneMap.Release();

  ByteReader reader(bytes);
  const u8* header;
  if (!reader.Take(kFileHeaderSize, header)) return false;
  if (LoadU32LE(header) != kModelMagic || LoadU32LE(header + 4) != kModelVersion) return false;
  const u32 materialChunkSize = LoadU32LE(header + 8);
  if (materialChunkSize != 0) {
    // A chunk that can't fit leaves `materials` as it was.
    if (!reader.Has(materialChunkSize)) return false;
    if (!ReadMaterials(materials, reader)) return false;
    if (reader.Position() != kFileHeaderSize + materialChunkSize) return false;
  }

  if (!reader.Take(kBoundsAndCountSize, header)) return false;
  for (u32 i = 0; i < 6; ++i) model.bounds[i] = LoadF32LE(header + 4 * i);
  const u32 meshCount = LoadU32LE(header + 24);
  if (!SizeFromFile(model.meshes, meshCount, kMeshHeaderSize, reader)) return false;
  for (u32 i = 0; i < meshCount; ++i) {
    ModelMesh& mesh = model.meshes[i];
    mesh.index = i;
    std::memcpy(mesh.bounds, model.bounds, sizeof(mesh.bounds));
    if (!ReadMesh(reader, mesh)) return false;
  }

  u32 drawCallCount;
  if (!reader.ReadU32(drawCallCount)) return false;
  if (!SizeFromFile(model.drawCalls, drawCallCount, sizeof(DrawCall), reader)) return false;
  if (!reader.ReadBytes(model.drawCalls.Data(), drawCallCount * u32(sizeof(DrawCall)))) return false;

  u32 boneMapCount;
  if (!reader.ReadU32(boneMapCount)) return false;
  if (!SizeFromFile(model.boneMap, boneMapCount, sizeof(BoneMapEntry), reader)) return false;
  if (!reader.ReadBytes(model.boneMap.Data(), boneMapCount * u32(sizeof(BoneMapEntry)))) return false;

  u32 boneCount;
  if (!reader.ReadU32(boneCount)) return false;
  if (boneCount == 0) return true;  // the file may end here
  return ReadBones(reader, boneCount, model);
}
