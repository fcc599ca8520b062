#pragma once

#include "core/byte_buffer.h"
#include "fbx/sdk/fbx_record.h"

// The binary file version written: the 2012 format, with 32-bit record offsets.
constexpr u32 kFbxFileVersion = 7200;
// Arrays of more raw bytes than this are stored as zlib streams, as the format's own writer does.
constexpr u32 kFbxDeflateAbove = 1024;

// Where a file's bytes go, in order. False refuses them and ends the writing.
class FbxByteSink {
 public:
  virtual bool Put(const void* data, u32 size) = 0;

 protected:
  ~FbxByteSink() = default;
};

enum class FbxWriteResult {
  kWritten,
  kOutOfMemory,
  kTooLarge,      // the file would pass the 4 GiB that its 32-bit offsets address
  kSizeMismatch,  // the bytes handed over differ from the size laid out: a fault of ours
  kSinkFailed,
};

// The children of `document` as the top-level records of a binary FBX file, with the header, the
// closing null record and the footer whose id derives from `creationTime`, handed to `sink` in
// blocks. Large arrays are deflated first, in place: the document keeps their stored form, and
// writing it again gives the same bytes.
[[nodiscard]] FbxWriteResult WriteFbxBinary(FbxRecord& document, const char* creationTime, FbxByteSink& sink);
// The same file gathered into `out`. False when memory is refused or the file would pass 4 GiB.
[[nodiscard]] bool WriteFbxBinary(FbxRecord& document, const char* creationTime, CByteBuffer& out);
