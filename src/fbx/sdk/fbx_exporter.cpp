#include "fbx/sdk/fbx_exporter.h"

#include <cstdarg>
#include <cstring>

#include "fbx/sdk/fbx_binary_writer.h"
#include "fbx/sdk/fbx_document.h"
#include "fbx/sdk/fbx_scene_writer.h"

namespace {

// The file's bytes go to the temporary as they are laid out.
class FileSink final : public FbxByteSink {
 public:
  explicit FileSink(OutputFile& output) : file(output) {}
  bool Put(const void* data, u32 size) override { return file.Write(data, size); }

 private:
  OutputFile& file;
};

}  // namespace

void FbxStatus::SetError(const char* format, ...) {
  va_list args;
  va_start(args, format);
  (void)text.FormatV(format, args);
  va_end(args);
}

bool FbxExporter::Refuse(const char* reason) {
  status.SetError("%s", reason);
  file.Discard();
  return false;
}

bool FbxExporter::Initialize(const char* newPath, int fileFormat, FbxIOSettings*) {
  status.Clear();
  if (fileFormat > 0) {
    status.SetError("Unknown file format");
    return false;
  }
  if (!newPath || !*newPath) {
    status.SetError("No file name");
    return false;
  }
  if (!file.Open(newPath)) {
    status.SetError("Cannot create file \"%s\": %s", newPath, file.Error());
    return false;
  }
  return true;
}

bool FbxExporter::SetFileExportVersion(const char* version, FbxSceneRenamer::ERenamingMode) {
  return version && std::strcmp(version, "FBX201200") == 0;
}

bool FbxExporter::Export(const FbxScene* scene, bool nonBlocking) {
  if (!file.IsOpen() || !scene || nonBlocking) {
    status.SetError("%s", file.IsOpen() ? "Only a blocking export of a scene is possible" : "Not initialized");
    return false;
  }
  const FbxCreationTime time = GetFbxManager()->CreationTime();
  char timeText[24];
  FormatCreationTime(time, timeText);
  FbxRecord document;
  FileSink sink(file);
  const FbxWriteResult result = BuildSceneDocument(*scene, time, document) ? WriteFbxBinary(document, timeText, sink)
                                                                           : FbxWriteResult::kOutOfMemory;
  switch (result) {
    case FbxWriteResult::kWritten: break;
    case FbxWriteResult::kOutOfMemory: return Refuse("Out of memory");
    case FbxWriteResult::kTooLarge: return Refuse("The file would pass the 4 GiB that the format can address");
    case FbxWriteResult::kSizeMismatch: return Refuse("The file came out at another size than it was laid out");
    case FbxWriteResult::kSinkFailed:
      status.SetError("Cannot write the file: %s", file.Error());
      file.Discard();
      return false;
  }
  if (!file.Commit(flush)) {
    status.SetError("Cannot write the file: %s", file.Error());
    return false;
  }
  return true;
}
