#include "app/texture_store.h"

#include "core/byte_buffer.h"
#include "image/image_decode.h"
#include "image/png_encode.h"
#include "platform/output_file.h"

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

// Missing and undecodable stay so, whoever asks again.
bool Final(TextureResult result) { return result == TextureResult::kMissing || result == TextureResult::kUndecodable; }

}  // namespace

std::shared_ptr<TextureStore::Entry> TextureStore::Find(const std::string& name) {
  const std::lock_guard guard(lock);
  std::shared_ptr<Entry>& slot = entries[name];
  if (!slot) slot = std::make_shared<Entry>();
  return slot;
}

TextureResult TextureStore::Make(const PackIndex& packs, const std::string& name, std::vector<u8>& png) {
  CByteBuffer bytes;
  if (!packs.FetchByName(name.c_str(), bytes)) return TextureResult::kMissing;
  ++decoded;
  DecodedImage image;
  if (!DecodeImage(bytes.Data(), bytes.Size(), image) || !EncodePng(image, png)) return TextureResult::kUndecodable;
  return TextureResult::kWritten;
}

void TextureStore::Hold(Entry& entry, PngBytes png) {
  const u64 size = png->size();
  if (held.fetch_add(size) + size > kHeldBytes) {
    held -= size;
    return;
  }
  entry.png = std::move(png);
}

TextureResult TextureStore::Write(const PackIndex& packs, const std::string& name, const std::string& path) {
  const std::shared_ptr<Entry> entry = Find(name);
  const std::lock_guard guard(entry->lock);
  if (entry->png) return WriteFile(path, entry->png->data(), entry->png->size(), flush) ? TextureResult::kWritten
                                                                                         : TextureResult::kUnwritable;
  if (entry->done && entry->result == TextureResult::kWritten && !entry->file.empty() &&
      CopyFile(entry->file, path, flush)) {
    return TextureResult::kWritten;
  }
  if (entry->done && Final(entry->result)) return entry->result;
  std::vector<u8> png;
  TextureResult result = Make(packs, name, png);
  if (result == TextureResult::kWritten && !WriteFile(path, png.data(), png.size(), flush)) {
    result = TextureResult::kUnwritable;
  }
  if (!entry->done || result == TextureResult::kWritten) {
    entry->done = true;
    entry->result = result;
    entry->file = result == TextureResult::kWritten ? path : std::string();
  }
  return result;
}

TextureResult TextureStore::Encode(const PackIndex& packs, const std::string& name, PngBytes& png) {
  const std::shared_ptr<Entry> entry = Find(name);
  const std::lock_guard guard(entry->lock);
  if (entry->png) {
    png = entry->png;
    return TextureResult::kWritten;
  }
  if (entry->done && Final(entry->result)) return entry->result;
  std::vector<u8> bytes;
  const TextureResult result = Make(packs, name, bytes);
  if (result != TextureResult::kWritten) {
    entry->done = true;
    entry->result = result;
    return result;
  }
  png = std::make_shared<const std::vector<u8>>(std::move(bytes));
  Hold(*entry, png);
  if (!entry->done) entry->done = true, entry->result = result;
  return result;
}
