#include "app/read_text_file.h"

#include "platform/file_handle.h"

bool ReadTextFile(const char* path, CStringBufferA& out) {
  out.Clear(false);
  FileHandle file;
  if (!file.Open(path)) return false;
  const u64 size = file.Size();
  // One read, and a size that fits 32 bits with its terminator.
  if (size >= UINT32_MAX || !out.Reserve(u32(size) + 1)) return false;
  if (!file.ReadExact(0, out.Data(), size)) {
    out.Clear(false);
    return false;
  }
  out.Data()[size] = 0;
  out.SetLength(u32(size));
  return true;
}
