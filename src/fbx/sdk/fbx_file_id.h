#pragma once

#include "core/types.h"

// A file's creation time as the format writes it: "YYYY-MM-DD HH:MM:SS:mmm", 23 characters.
constexpr u32 kFbxCreationTimeLength = 23;

// The 16-byte FileId record and the footer id, both derived from the creation time; readers that
// check a file compare them with it.
void FbxFileId(const char* creationTime, u8 (&out)[16]);
void FbxFooterId(const char* creationTime, u8 (&out)[16]);
