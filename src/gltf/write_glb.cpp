#include "gltf/write_glb.h"

#include "platform/output_file.h"

namespace {

bool Refuse(std::string* reason, std::string text) {
  if (reason) *reason = std::move(text);
  return false;
}

}  // namespace

bool WriteGlb(const GltfDocument& document, const char* path, bool flush, std::string* reason) {
  if (!FitsGlb(document)) return Refuse(reason, "The file would pass the 4 GiB that the format can address");
  OutputFile file;
  if (!file.Open(path)) return Refuse(reason, std::string("Cannot create the file: ") + file.Error());
  if (!EmitGlb(document, [&file](const void* data, u64 size) { return file.Write(data, size); }) ||
      !file.Commit(flush)) {
    return Refuse(reason, std::string("Cannot write the file: ") + file.Error());
  }
  return true;
}
