#pragma once

#include "core/array.h"
#include "gamedata/model_file.h"
#include "mesh/export_mesh.h"

// Stored bone numbers are slots of a palette that changes from draw call to draw call. Slots keep
// the bone of an earlier draw call until a later one writes them; a slot never written, or a
// number outside the palette, gives bone 0. Only the slots up to the highest one written are kept.
//
// A vertex is renumbered by each draw call whose range holds it, in draw call order, through the
// slots as they stand after that call's bone map entries. Keeping those slots for every call lets
// a decoder renumber each block of vertices while its influences are still in cache; a mesh with too
// many calls or slots for that is renumbered in one pass at the end instead.
class BoneRenumbering {
 public:
  // False for draw calls whose ranges add up to far more than the mesh (a corrupt file), a palette
  // of more than kMaxPaletteSlots slots, or memory refused. `rigid` renumbers only the first
  // influence and writes each bone map entry to the debug channel.
  [[nodiscard]] bool Prepare(const ModelFile& model, const ModelMesh& mesh, u32 vertexCount, bool rigid);

  bool ByBlock() const { return byBlock; }
  // Vertices first to first + count - 1, whose influences start at `block`. Only when ByBlock.
  void RenumberBlock(ExportInfluences* block, u32 first, u32 count) const;
  // Every vertex at once. Only when not ByBlock; false when memory is refused.
  [[nodiscard]] bool RenumberAll(ExportInfluences* vertices) const;

 private:
  // The vertices of one draw call and where its slots start in `callSlots`.
  struct Call {
    u32 firstVertex, lastVertex;  // the range clamped to the mesh, last excluded
    u32 slotsAt;
  };

  const ModelFile* model = nullptr;
  const ModelMesh* mesh = nullptr;
  u32 vertexCount = 0;
  bool rigid = false;
  u32 used = 0;  // slots up to the highest one written
  bool byBlock = false;
  TArray<Call> calls;
  TArray<u32> callSlots;
};

constexpr u32 kMaxPaletteSlots = 0x10000;
