#include "xml/file_stream.h"

#include <cstring>
#include <string>

#include "core/memory_hooks.h"
#include "core/string_buffer.h"
#include "platform/folders.h"

namespace {

bool MakeFolderW(const char16_t* wide) {
  TStringBufferA<261> narrow;
  narrow.AssignWide(wide);
  return MakeFolder(narrow.Text()) != FolderResult::Failed;
}

}  // namespace

bool MakeFoldersForPath(const char16_t* path) {
  if (!path) return false;
  const std::u16string text(path);
  std::u16string made;
  size_t at = 0;
  // A path with a drive letter starts counting at 0, so the drive isn't made.
  u32 counter = text.size() > 1 && text[1] == u':' ? 0 : 1;
  for (;;) {
    size_t separator = at;
    while (separator < text.size() && text[separator] != u'\\' && text[separator] != u'/') ++separator;
    if (separator >= text.size()) return true;
    made.append(text, at, separator - at);
    made.push_back(u'\\');
    if (counter != 0 && !MakeFolderW(made.c_str())) return false;
    at = separator;
    while (at < text.size() && (text[at] == u'\\' || text[at] == u'/')) ++at;
    ++counter;
  }
}

bool CFileStream::Open(const char16_t* newPath) {
  std::lock_guard guard(lock);
  file.Close();
  position = 0;
  if (!newPath) return false;
  if (!path.Assign(newPath)) return false;
  readOnly = true;
  if (!MakeFoldersForPath(newPath)) return false;
  TStringBufferA<261> narrow;
  narrow.AssignWide(newPath);
  return file.Open(narrow.Text());
}

u32 CFileStream::Release() {
  const u32 left = --refCount;
  if (left == 0) MemDelete(this);
  return left;
}

HResult CFileStream::Read(void* buffer, u32 count, u32* got) {
  std::lock_guard guard(lock);
  if (got) *got = 0;
  if (!file.IsOpen()) return STG_E_INVALIDHANDLE;
  if (!buffer) return STG_E_INVALIDPOINTER;
  if (count == 0) return E_INVALIDARG;
  // A failed read looks like the end of the file.
  const u64 n = file.ReadAt(position, buffer, count);
  position += n;
  if (got) *got = static_cast<u32>(n);
  return n > 0 ? S_OK : S_FALSE;
}

HResult CFileStream::Write(const void*, u32, u32*) {
  std::lock_guard guard(lock);
  return file.IsOpen() ? STG_E_ACCESSDENIED : STG_E_INVALIDHANDLE;
}

HResult CFileStream::SetSize(u64) {
  std::lock_guard guard(lock);
  return file.IsOpen() ? STG_E_ACCESSDENIED : STG_E_INVALIDHANDLE;
}

HResult CFileStream::Seek(i64 move, u32 origin, u64* newPosition) {
  std::lock_guard guard(lock);
  if (newPosition) *newPosition = 0;
  if (!file.IsOpen()) return STG_E_INVALIDHANDLE;
  const u64 bits = static_cast<u64>(move);
  if (bits >> 32) return STG_E_INVALIDFUNCTION;
  if (origin > STREAM_SEEK_END) return E_INVALIDARG;
  const u64 base = origin == STREAM_SEEK_SET ? 0 : origin == STREAM_SEEK_CUR ? position : file.Size();
  position = base + bits;
  if (newPosition) *newPosition = position;
  return S_OK;
}

HResult CFileStream::Stat(StreamStat* record, u32 flags) {
  std::lock_guard guard(lock);
  if (!file.IsOpen()) return STG_E_INVALIDHANDLE;
  if (!record) return STG_E_INVALIDPOINTER;
  *record = StreamStat{};
  record->size = file.Size();
  record->mode = readOnly ? STGM_READ : STGM_READWRITE;
  if (flags == STATFLAG_DEFAULT) {
    const size_t bytes = (std::char_traits<char16_t>::length(path.Text()) + 1) * sizeof(char16_t);
    // A name that can't be copied stays null; that is no error.
    if (auto* name = static_cast<char16_t*>(MemAllocate(bytes))) {
      std::memcpy(name, path.Text(), bytes);
      record->name = name;
    }
  }
  record->type = STGTY_STREAM;
  return S_OK;
}
