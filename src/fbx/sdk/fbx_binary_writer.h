#pragma once

#include "core/byte_buffer.h"
#include "fbx/sdk/fbx_record.h"

// The binary file version written: the 2012 format, with 32-bit record offsets.
constexpr u32 kFbxFileVersion = 7200;
// Arrays of more raw bytes than this are stored as zlib streams, as the format's own writer does.
constexpr u32 kFbxDeflateAbove = 1024;

// The children of `document` as the top-level records of a binary FBX file, with the header, the
// closing null record and the footer whose id derives from `creationTime`. Large arrays are deflated.
// False when memory is refused or the file would pass 4 GiB, which 32-bit offsets can't address.
[[nodiscard]] bool WriteFbxBinary(const FbxRecord& document, const char* creationTime, CByteBuffer& out);
