#include "fbx/sdk/fbx_properties.h"

namespace {

FbxRecord* Row(FbxRecord& properties, const char* name, const char* type, const char* label, const char* flags) {
  FbxRecord* row = properties.AddChild("P");
  if (!row || !row->AddString(name) || !row->AddString(type) || !row->AddString(label) || !row->AddString(flags)) {
    return nullptr;
  }
  return row;
}

}  // namespace

bool AddRow(FbxRecord& properties, const char* name, const char* type, const char* label, const char* flags) {
  return Row(properties, name, type, label, flags) != nullptr;
}

bool AddIntRow(FbxRecord& properties, const char* name, const char* type, const char* label, const char* flags,
               i32 value) {
  FbxRecord* row = Row(properties, name, type, label, flags);
  return row && row->AddInt32(value);
}

bool AddInt64Row(FbxRecord& properties, const char* name, const char* type, const char* label, const char* flags,
                 i64 value) {
  FbxRecord* row = Row(properties, name, type, label, flags);
  return row && row->AddInt64(value);
}

bool AddStringRow(FbxRecord& properties, const char* name, const char* type, const char* label, const char* flags,
                  const char* value) {
  FbxRecord* row = Row(properties, name, type, label, flags);
  return row && row->AddString(value);
}

bool AddDoubleRow(FbxRecord& properties, const char* name, const char* type, const char* label, const char* flags,
                  std::initializer_list<f64> values) {
  FbxRecord* row = Row(properties, name, type, label, flags);
  if (!row) return false;
  for (f64 value : values) {
    if (!row->AddDouble(value)) return false;
  }
  return true;
}

bool AddInt(FbxRecord* parent, const char* name, i32 value) {
  FbxRecord* record = parent ? parent->AddChild(name) : nullptr;
  return record && record->AddInt32(value);
}

bool AddText(FbxRecord* parent, const char* name, const char* value) {
  FbxRecord* record = parent ? parent->AddChild(name) : nullptr;
  return record && record->AddString(value);
}
