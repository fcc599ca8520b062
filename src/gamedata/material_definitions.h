#pragma once

#include "core/array.h"
#include "core/byte_buffer.h"
#include "core/hash_map.h"
#include "core/string_buffer.h"
#include "core/value_string.h"

// How one element of a vertex is stored, as the catalogue names it.
enum ElementType : u32 {
  kFloat1,
  kFloat2,
  kFloat3,
  kFloat4,
  kD3dcolor,
  kUbyte4,
  kShort2,
  kShort4,
  kUbyte4n,
  kShort2n,
  kShort4n,
  kUshort2n,
  kUshort4n,
  kUdec3,
  kDec3n,
  kFloat16_2,
  kFloat16_4,
  kUnknownType,
  kOtherType,
};

// What a vertex element means.
enum ElementUsage : u32 {
  kPosition,
  kBlendWeight,
  kBlendIndices,
  kNormal,
  kPsize,
  kTexcoord,
  kTangent,
  kBinormal,
  kPositionT,
  kColor,
  kFog,
  kDepth,
  kUnknownUsage,
  kOtherUsage,
};

// Material properties that the catalogue lists by name.
enum MaterialFlag : u32 {
  kArtistSelectable = 0x01,
  kArtistModelMaterialSelectable = 0x02,
  kSkinned = 0x04,
  kSemiTransparent = 0x08,
  kRigidSkinned = 0x10,
  kWaterPlane = 0x20,
};

// Bytes that an element of `type` adds to its stream in a layout. The packed types count 0 here:
// the catalogue lays them out so, and the next element shares their offset.
u32 LayoutTypeSize(u32 type);

struct LayoutEntry {
  u32 stream = 0;
  u32 type = 0;
  u32 usage = 0;
  u32 usageIndex = 0;
  u32 offset = 0;  // within one vertex of its stream
};

struct InputLayout {
  TArray<LayoutEntry> entries;  // in file order
  u32 entryCount = 0;
  TArray<u32> streamSizes;  // per stream, the bytes of one vertex
  u32 streamCount = 0;
  TStringBufferA<32> name;
  u32 nameHash = 0;  // HashName: layouts are found ignoring case
};

struct DrawStyle {
  TStringBufferA<32> name;
  u32 nameHash = 0;  // HashName
  CStringA effect;
  CStringA inputLayoutName;
  const InputLayout* inputLayout = nullptr;  // resolved after the whole file; null when unknown
};

struct MaterialDefinition {
  TArray<DrawStyle> drawStyles;  // in file order
  u32 drawStyleCount = 0;
  TStringBufferA<32> name;
  u32 nameHash = 0;  // HashExact: model files store this exact hash
  CStringA type;     // "NULL" when missing beside a DrawStyles array, empty without one
  u32 flags = 0;     // MaterialFlag bits
};

// The game's material catalogue: input layouts by HashName of their name, material definitions by
// HashExact of theirs. Two names with one hash are one entry; the later one wins.
class MaterialDefinitionSet {
 public:
  // Streams beyond this in a layout entry make the layout fail: the stream sizes are sized from it.
  static constexpr u32 kMaxStreams = 64;

  MaterialDefinitionSet() = default;
  MaterialDefinitionSet(const MaterialDefinitionSet&) = delete;
  MaterialDefinitionSet& operator=(const MaterialDefinitionSet&) = delete;

  // True when the file is well-formed XML with the right root; layouts and definitions that don't
  // parse are dropped in silence. The caller empties the set first.
  [[nodiscard]] bool Read(const CByteBuffer& bytes);
  const InputLayout* FindInputLayout(const char* name) const;
  const MaterialDefinition* FindDefinition(u32 hash) const;
  // The layout that a mesh with this definition hash is decoded by: the style named "normal", else
  // the style whose layout has the largest vertex (the first on a tie), else null.
  const InputLayout* ChooseInputLayout(u32 hash) const;
  // Empties both tables and keeps their storage for the next game.
  void Clear();
  void Destroy();

  const THashMap<u32, InputLayout>& InputLayouts() const { return inputLayouts; }
  const THashMap<u32, MaterialDefinition>& Definitions() const { return definitions; }

 private:
  THashMap<u32, InputLayout> inputLayouts;
  THashMap<u32, MaterialDefinition> definitions;
};

u32 VertexSize(const InputLayout& layout);
