#include "fbx/sdk/fbx_record.h"

#include <cstring>

namespace {

constexpr size_t kMaxNameLength = 255;

}  // namespace

u32 FbxElementSize(char code) {
  switch (code) {
    case 'f': case 'i': return 4;
    case 'd': case 'l': return 8;
    default: return 1;
  }
}

FbxRecord* FbxRecord::AddChild(const char* childName, bool isBlock) {
  if (std::strlen(childName) > kMaxNameLength) return nullptr;
  FbxRecord* child = children.Append();
  if (!child) return nullptr;
  child->block = isBlock;
  if (!child->name.Assign(childName)) {
    (void)children.SetSize(children.Count() - 1);
    return nullptr;
  }
  return child;
}

bool FbxRecord::AddScalar(char code, i64 integer, f64 real) {
  FbxProperty* property = properties.Append();
  if (!property) return false;
  property->code = code;
  property->integer = integer;
  property->real = real;
  return true;
}

bool FbxRecord::AddString(const char* text, u32 size) {
  FbxProperty* property = properties.Append();
  if (!property) return false;
  property->code = 'S';
  if (!property->bytes.SetSize(size)) {
    (void)properties.SetSize(properties.Count() - 1);
    return false;
  }
  if (size) std::memcpy(property->bytes.Data(), text, size);
  return true;
}

bool FbxRecord::AddString(const char* text) { return AddString(text, static_cast<u32>(std::strlen(text))); }

bool FbxRecord::AddRaw(const void* data, u32 size) {
  if (!AddString(static_cast<const char*>(data), size)) return false;
  properties[properties.Count() - 1].code = 'R';
  return true;
}

bool FbxRecord::AddArray(char code, const void* values, u32 count, u32 elementSize) {
  if (u64(count) * elementSize > UINT32_MAX) return false;
  if (!AddString(static_cast<const char*>(values), count * elementSize)) return false;
  FbxProperty& property = properties[properties.Count() - 1];
  property.code = code;
  property.count = count;
  return true;
}
