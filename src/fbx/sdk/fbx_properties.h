#pragma once

#include <initializer_list>

#include "fbx/sdk/fbx_record.h"

// Rows of a Properties70 block: name, data type, label, flags, then the values the type takes.
// Each gives false when memory is refused.
[[nodiscard]] bool AddRow(FbxRecord& properties, const char* name, const char* type, const char* label,
                          const char* flags);
[[nodiscard]] bool AddIntRow(FbxRecord& properties, const char* name, const char* type, const char* label,
                             const char* flags, i32 value);
[[nodiscard]] bool AddInt64Row(FbxRecord& properties, const char* name, const char* type, const char* label,
                               const char* flags, i64 value);
[[nodiscard]] bool AddStringRow(FbxRecord& properties, const char* name, const char* type, const char* label,
                                const char* flags, const char* value);
[[nodiscard]] bool AddDoubleRow(FbxRecord& properties, const char* name, const char* type, const char* label,
                                const char* flags, std::initializer_list<f64> values);

// A value record `name: I value` or `name: S value` under `parent`; false for a null parent or when
// memory is refused.
[[nodiscard]] bool AddInt(FbxRecord* parent, const char* name, i32 value);
[[nodiscard]] bool AddText(FbxRecord* parent, const char* name, const char* value);
