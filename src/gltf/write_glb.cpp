#include "gltf/write_glb.h"

#include "platform/output_file.h"

bool WriteGlb(const GltfDocument& document, const char* path, bool flush) {
  OutputFile file;
  if (!file.Open(path)) return false;
  const bool written = EmitGlb(document, [&file](const void* data, u64 size) { return file.Write(data, size); });
  return written && file.Commit(flush);
}
