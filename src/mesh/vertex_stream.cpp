#include "mesh/vertex_stream.h"

#include <cstring>

#include "mesh/half_float.h"

namespace {

constexpr f32 kByteScale = 255.0f;
constexpr f32 kShortScale = 32767.0f;
constexpr f32 kUshortScale = 65535.0f;

template <class T>
T Load(const u8* bytes, u32 index) {
  T value;
  std::memcpy(&value, bytes + index * sizeof(T), sizeof(T));
  return value;
}

// All four values of an element as floats, scaled or not, with the count the type stores.
struct Values {
  f32 v[4] = {};
  u32 count = 0;
};

template <class T>
Values Stored(const u8* bytes, u32 count, f32 scale) {
  Values out;
  out.count = count;
  for (u32 i = 0; i < count; ++i) out.v[i] = scale != 0 ? f32(Load<T>(bytes, i)) / scale : f32(Load<T>(bytes, i));
  return out;
}

Values Decode(const u8* bytes, u32 type, bool scaled) {
  if (!bytes) return {};
  switch (type) {
    case kFloat1: return Stored<f32>(bytes, 1, 0);
    case kFloat2: return Stored<f32>(bytes, 2, 0);
    case kFloat3: return Stored<f32>(bytes, 3, 0);
    case kFloat4: return Stored<f32>(bytes, 4, 0);
    case kD3dcolor:
    case kUbyte4n: return Stored<u8>(bytes, 4, scaled ? kByteScale : 0);
    case kUbyte4: return Stored<u8>(bytes, 4, 0);
    case kShort2: return Stored<i16>(bytes, 2, 0);
    case kShort4: return Stored<i16>(bytes, 4, 0);
    case kShort2n: return Stored<i16>(bytes, 2, scaled ? kShortScale : 0);
    case kShort4n: return Stored<i16>(bytes, 4, scaled ? kShortScale : 0);
    case kUshort2n: return Stored<u16>(bytes, 2, scaled ? kUshortScale : 0);
    case kUshort4n: return Stored<u16>(bytes, 4, scaled ? kUshortScale : 0);
    case kFloat16_2:
    case kFloat16_4: {
      Values out;
      out.count = type == kFloat16_2 ? 2 : 4;
      for (u32 i = 0; i < out.count; ++i) out.v[i] = HalfToFloatValue(Load<u16>(bytes, i));
      return out;
    }
    default: return {};
  }
}

bool IsFloatType(u32 type) { return type <= kFloat4 || type == kFloat16_2 || type == kFloat16_4; }

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
  const Values values = Decode(bytes, type, true);
  return {values.v[0], values.v[1]};
}

Vec3 ReadVec3(const u8* bytes, u32 type) {
  const Values values = Decode(bytes, type, true);
  return {values.v[0], values.v[1], values.v[2]};
}

Vec4 ReadVec4(const u8* bytes, u32 type) {
  const Values values = Decode(bytes, type, true);
  return {values.v[0], values.v[1], values.v[2], values.v[3]};
}

Int4 ReadInt4(const u8* bytes, u32 type) {
  const Values values = Decode(bytes, type, false);
  Int4 out;
  // Floats truncate toward zero; integers come back as stored, sign- or zero-extended. Every
  // stored integer type fits a float exactly, so going through one loses nothing.
  for (u32 i = 0; i < values.count; ++i) {
    const f32 v = values.v[i];
    if (IsFloatType(type) && v != v) {
      out.v[i] = 0;  // a NaN names no bone
    } else if (v >= 2147483648.0f) {
      out.v[i] = INT32_MAX;  // beyond 32 bits: saturate rather than leave it undefined
    } else if (v < -2147483648.0f) {
      out.v[i] = INT32_MIN;
    } else {
      out.v[i] = i32(v);
    }
  }
  return out;
}
