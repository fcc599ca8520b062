#include "fbx/sdk/fbx_record.h"

#include <cstring>

namespace {

constexpr size_t kMaxNameLength = 255;

}  // namespace

u32 FbxElementSize(char code) {
  switch (code) {
    case 'f':
    case 'i': return 4;
    case 'd':
    case 'l': return 8;
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
  FbxRecordValue* property = properties.Append();
  if (!property) return false;
  property->code = code;
  property->integer = integer;
  property->real = real;
  return true;
}

bool FbxRecord::AddString(const char* text, u32 size) {
  FbxRecordValue* property = properties.Append();
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
  void* storage = AddArrayStorage(code, count, elementSize);
  if (storage && count) std::memcpy(storage, values, size_t(count) * elementSize);
  return storage != nullptr;
}

void* FbxRecord::AddArrayStorage(char code, u32 count, u32 elementSize) {
  if (u64(count) * elementSize > UINT32_MAX) return nullptr;
  FbxRecordValue* property = properties.Append();
  if (!property) return nullptr;
  // The caller fills every element.
  if (!property->bytes.SetSizeForOverwrite(count * elementSize)) {
    (void)properties.SetSize(properties.Count() - 1);
    return nullptr;
  }
  property->code = code;
  property->count = count;
  // An empty array still needs an address that tells success from failure; nothing is written to it.
  alignas(8) static u8 emptyStorage[8];
  return count ? static_cast<void*>(property->bytes.Data()) : static_cast<void*>(emptyStorage);
}
