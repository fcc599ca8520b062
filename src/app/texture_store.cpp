#include "app/texture_store.h"

#include <vector>

#include "core/byte_buffer.h"
#include "platform/output_file.h"
#include "preview/image_decode.h"
#include "preview/png_encode.h"

namespace {

bool WriteFile(const std::string& path, const void* bytes, u64 size, bool flush) {
  OutputFile file;
  return file.Open(path.c_str()) && file.Write(bytes, size) && file.Commit(flush);
}

// A copy of a file written before; false when it can't be read or written.
bool CopyFile(const std::string& from, const std::string& to, bool flush) {
  std::FILE* source = std::fopen(from.c_str(), "rb");
  if (!source) return false;
  std::vector<char> bytes;
  char chunk[65536];
  for (size_t n; (n = std::fread(chunk, 1, sizeof(chunk), source)) > 0;) bytes.insert(bytes.end(), chunk, chunk + n);
  const bool read = !std::ferror(source);
  std::fclose(source);
  return read && !bytes.empty() && WriteFile(to, bytes.data(), bytes.size(), flush);
}

TextureResult Make(const PackIndex& packs, const std::string& name, const std::string& path, bool flush) {
  CByteBuffer bytes;
  if (!packs.FetchByName(name.c_str(), bytes)) return TextureResult::kMissing;
  DecodedImage image;
  std::vector<u8> png;
  if (!DecodeImage(bytes.Data(), bytes.Size(), image) || !EncodePng(image, png)) return TextureResult::kUndecodable;
  return WriteFile(path, png.data(), png.size(), flush) ? TextureResult::kWritten : TextureResult::kUnwritable;
}

}  // namespace

TextureResult TextureStore::Write(const PackIndex& packs, const std::string& name, const std::string& path) {
  std::shared_ptr<Entry> entry;
  {
    const std::lock_guard guard(lock);
    std::shared_ptr<Entry>& slot = entries[name];
    if (!slot) slot = std::make_shared<Entry>();
    entry = slot;
  }
  const std::lock_guard guard(entry->lock);
  if (entry->done && entry->result == TextureResult::kWritten && CopyFile(entry->file, path, flush)) {
    return TextureResult::kWritten;
  }
  // Missing and undecodable stay so; a copy that failed is made afresh.
  if (entry->done && (entry->result == TextureResult::kMissing || entry->result == TextureResult::kUndecodable)) {
    return entry->result;
  }
  const TextureResult result = Make(packs, name, path, flush);
  if (result != TextureResult::kMissing) ++decoded;
  if (!entry->done || result == TextureResult::kWritten) {
    entry->done = true;
    entry->result = result;
    entry->file = path;
  }
  return result;
}
