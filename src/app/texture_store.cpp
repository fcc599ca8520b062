#include "app/texture_store.h"

#include <cstdio>
#include <memory>
#include <vector>

#include "core/byte_buffer.h"
#include "platform/output_file.h"

namespace {

bool WriteFile(const std::string& path, const std::vector<u8>& bytes, bool flush) {
  OutputFile file;
  return file.Open(path.c_str()) && file.Write(bytes.data(), bytes.size()) && file.Commit(flush);
}

struct FileClose {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

// A copy of a file written before; false when it can't be read or written.
bool CopyFile(const std::string& from, const std::string& to, bool flush) {
  const std::unique_ptr<std::FILE, FileClose> source(std::fopen(from.c_str(), "rb"));
  if (!source) return false;
  std::vector<u8> bytes;
  u8 chunk[65536];
  for (size_t n; (n = std::fread(chunk, 1, sizeof(chunk), source.get())) > 0;) {
    bytes.insert(bytes.end(), chunk, chunk + n);
  }
  return !std::ferror(source.get()) && !bytes.empty() && WriteFile(to, bytes, flush);
}

// Both files of a texture, its alpha only where it has one.
bool WriteBoth(const TexturePng& texture, const std::string& path, const std::string& alphaPath, bool flush) {
  return WriteFile(path, texture.png, flush) && (texture.alpha.empty() || WriteFile(alphaPath, texture.alpha, flush));
}

// Missing and undecodable stay so, whoever asks again.
bool Final(TextureResult result) { return result == TextureResult::kMissing || result == TextureResult::kUndecodable; }

}  // namespace

std::shared_ptr<TextureStore::Entry> TextureStore::Find(const std::string& name, AlphaForm form) {
  const std::lock_guard guard(lock);
  std::shared_ptr<Entry>& slot = entries[name + (form == AlphaForm::kSplit ? "\n" : "")];
  if (!slot) slot = std::make_shared<Entry>();
  return slot;
}

TextureResult TextureStore::Make(const PackIndex& packs, const std::string& name, AlphaForm form, TexturePng& texture) {
  CByteBuffer bytes;
  if (!packs.FetchByName(name.c_str(), bytes)) return TextureResult::kMissing;
  ++decoded;
  return MakeTexturePng(bytes.Data(), bytes.Size(), form, texture) ? TextureResult::kWritten
                                                                   : TextureResult::kUndecodable;
}

void TextureStore::Hold(Entry& entry, SharedTexturePng texture) {
  const u64 size = texture->png.size() + texture->alpha.size();
  if (held.fetch_add(size) + size > kHeldBytes) {
    held -= size;
    return;
  }
  entry.texture = std::move(texture);
}

TextureResult TextureStore::Write(const PackIndex& packs, const std::string& name, AlphaForm form,
                                  const std::string& path, const std::string& alphaPath, bool& wroteAlpha) {
  wroteAlpha = false;
  const std::shared_ptr<Entry> entry = Find(name, form);
  const std::lock_guard guard(entry->lock);
  if (entry->texture) {
    wroteAlpha = !entry->texture->alpha.empty();
    return WriteBoth(*entry->texture, path, alphaPath, flush) ? TextureResult::kWritten : TextureResult::kUnwritable;
  }
  if (entry->done && entry->result == TextureResult::kWritten && !entry->file.empty() &&
      CopyFile(entry->file, path, flush) &&
      (entry->alphaFile.empty() || CopyFile(entry->alphaFile, alphaPath, flush))) {
    wroteAlpha = !entry->alphaFile.empty();
    return TextureResult::kWritten;
  }
  if (entry->done && Final(entry->result)) return entry->result;
  TexturePng texture;
  TextureResult result = Make(packs, name, form, texture);
  if (result == TextureResult::kWritten && !WriteBoth(texture, path, alphaPath, flush)) {
    result = TextureResult::kUnwritable;
  }
  wroteAlpha = result == TextureResult::kWritten && !texture.alpha.empty();
  if (!entry->done || result == TextureResult::kWritten) {
    entry->done = true;
    entry->result = result;
    entry->file = result == TextureResult::kWritten ? path : std::string();
    entry->alphaFile = wroteAlpha ? alphaPath : std::string();
  }
  return result;
}

TextureResult TextureStore::Encode(const PackIndex& packs, const std::string& name, AlphaForm form,
                                   SharedTexturePng& texture) {
  const std::shared_ptr<Entry> entry = Find(name, form);
  const std::lock_guard guard(entry->lock);
  if (entry->texture) {
    texture = entry->texture;
    return TextureResult::kWritten;
  }
  if (entry->done && Final(entry->result)) return entry->result;
  TexturePng made;
  const TextureResult result = Make(packs, name, form, made);
  if (result != TextureResult::kWritten) {
    entry->done = true;
    entry->result = result;
    return result;
  }
  texture = std::make_shared<const TexturePng>(std::move(made));
  Hold(*entry, texture);
  if (!entry->done) entry->done = true, entry->result = result;
  return result;
}
