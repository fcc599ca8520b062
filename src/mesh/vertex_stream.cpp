#include "mesh/vertex_stream.h"

namespace {

ElementValues Decode(const u8* bytes, u32 type, bool scaled) {
  ElementValues out;
  if (!bytes) return out;
  WithElementType(type, [&](auto tag) {
    constexpr u32 kType = decltype(tag)::value;
    out = scaled ? DecodeElement<kType, true>(bytes) : DecodeElement<kType, false>(bytes);
  });
  return out;
}

}  // namespace

const LayoutEntry* FindElement(const InputLayout* layout, u32 usage, u32 usageIndex) {
  if (!layout) return nullptr;
  for (const LayoutEntry& entry : layout->entries) {
    if (entry.usage == usage && entry.usageIndex == usageIndex) return &entry;
  }
  return nullptr;
}

bool ElementFits(const ModelMesh& mesh, const LayoutEntry& entry) {
  if (entry.stream >= mesh.streams.Count()) return false;
  return mesh.streams[entry.stream].stride >= u64(entry.offset) + ElementSize(entry.type);
}

const LayoutEntry* FindFittingElement(const ModelMesh& mesh, const InputLayout* layout, u32 usage) {
  const LayoutEntry* entry = FindElement(layout, usage, 0);
  return entry && ElementFits(mesh, *entry) ? entry : nullptr;
}

const LayoutEntry* FindPositionElement(const ModelMesh& mesh, const InputLayout* layout) {
  const LayoutEntry* position = FindFittingElement(mesh, layout, kPosition);
  return position && ElementSize(position->type) > 0 ? position : nullptr;
}

StreamCursor::StreamCursor(const ModelMesh& mesh, const LayoutEntry& entry) : type(entry.type), offset(entry.offset) {
  if (!ElementFits(mesh, entry)) return;
  stream = &mesh.streams[entry.stream];
  stride = stream->stride;
  // A stream without a vertex has nothing to point at.
  if (stream->data.Size() >= u64(offset) + ElementSize(type)) data = stream->data.Data() + offset;
}

void StreamCursor::Seek(u32 vertex) {
  if (!stream) return;
  const u64 at = u64(vertex) * stride + offset;
  data = at + ElementSize(type) <= stream->data.Size() ? stream->data.Data() + at : nullptr;
}

Vec2 ReadVec2(const u8* bytes, u32 type) {
  const ElementValues values = Decode(bytes, type, true);
  return {values.v[0], values.v[1]};
}

Vec3 ReadVec3(const u8* bytes, u32 type) {
  const ElementValues values = Decode(bytes, type, true);
  return {values.v[0], values.v[1], values.v[2]};
}

Vec4 ReadVec4(const u8* bytes, u32 type) {
  const ElementValues values = Decode(bytes, type, true);
  return {values.v[0], values.v[1], values.v[2], values.v[3]};
}

Int4 ReadInt4(const u8* bytes, u32 type) {
  Int4 out;
  if (bytes) WithElementType(type, [&](auto tag) { out = ReadInt4(bytes, tag); });
  return out;
}
