#pragma once

#include "core/string_buffer.h"
#include "core/types.h"

// A file written through a temporary beside its target: the target appears, whole, only on Commit,
// and an output dropped before that leaves nothing behind. The path is the user's own and is used
// as it stands.
class OutputFile {
 public:
  OutputFile() = default;
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  ~OutputFile() { Discard(); }

  // Creates the temporary in the target's folder. False, with the reason in `Error`, when the
  // folder doesn't exist or can't be written.
  [[nodiscard]] bool Open(const char* path);
  [[nodiscard]] bool Write(const void* data, u64 size);
  // Flushes and renames the temporary over the target. Without `flush` the data goes to disk when
  // the system writes it back: for many files at once, whose writer syncs once at the end.
  [[nodiscard]] bool Commit(bool flush = true);
  // Removes the temporary, if any.
  void Discard();

  bool IsOpen() const { return fd >= 0; }
  // The system's text for the last failure, or empty.
  const char* Error() const { return error.Text(); }

 private:
  // Keeps the system's text for the last failure, after `step`, and drops the temporary.
  bool Fail(const char* step = "");

  int fd = -1;
  TStringBufferA<260> target;
  TStringBufferA<272> temporary;
  TStringBufferA<128> error;
};
