#pragma once

#include "core/string_buffer.h"
#include "fbx/sdk/fbx_scene.h"
#include "platform/output_file.h"

// What went wrong in the last call that failed, as a text for people.
class FbxStatus {
 public:
  const char* GetErrorString() const { return text.Text(); }
  [[gnu::format(printf, 2, 3)]] void SetError(const char* format, ...);
  void Clear() { text.Clear(false); }

 private:
  TStringBufferA<256> text;
};

struct FbxSceneRenamer {
  enum ERenamingMode { eNone };
};

// Writes a scene to one file: Initialize with the path, then Export. The file appears only when
// the whole of it is written; until then it is a temporary beside it, removed on failure.
class FbxExporter final : public FbxObject, public FbxCreatable<FbxExporter> {
 public:
  FbxObjectKind Kind() const override { return FbxObjectKind::Exporter; }

  // Prepares the file at `path` in the one format there is. False, with the reason in the status,
  // when it can't be written there.
  [[nodiscard]] bool Initialize(const char* path, int fileFormat = -1, FbxIOSettings* settings = nullptr);
  // Only "FBX201200", the file format written, is accepted; names are never changed.
  [[nodiscard]] bool SetFileExportVersion(const char* version, FbxSceneRenamer::ERenamingMode renaming);
  // Writes `scene` and puts the file in place; the scene is not changed. Blocking only.
  [[nodiscard]] bool Export(const FbxScene* scene, bool nonBlocking = false);
  FbxStatus& GetStatus() { return status; }
  // Whether Export flushes the file to disk before it takes its place (the default).
  void SetFlushOnExport(bool flushFile) { flush = flushFile; }

 private:
  // Puts `reason` in the status and drops the file; false.
  bool Refuse(const char* reason);

  OutputFile file;
  bool flush = true;
  FbxStatus status;
};
