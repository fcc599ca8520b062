#include "fbx/sdk/fbx_exporter.h"

#include <cstring>

#include "fbx/sdk/fbx_binary_writer.h"
#include "fbx/sdk/fbx_document.h"
#include "fbx/sdk/fbx_scene_writer.h"

void FbxStatus::SetError(const char* what, const char* detail) {
  (void)text.Format("%s%s%s", what, detail && *detail ? ": " : "", detail ? detail : "");
}

bool FbxExporter::Initialize(const char* newPath, int fileFormat, FbxIOSettings*) {
  status.Clear();
  if (fileFormat > 0) {
    status.SetError("Unknown file format", nullptr);
    return false;
  }
  if (!newPath || !*newPath) {
    status.SetError("No file name", nullptr);
    return false;
  }
  if (!file.Open(newPath)) {
    (void)path.Format("Cannot create file \"%s\"", newPath);
    status.SetError(path.Text(), file.Error());
    path.Clear(false);
    return false;
  }
  (void)path.Format("%s", newPath);
  return true;
}

bool FbxExporter::SetFileExportVersion(const char* version, FbxSceneRenamer::ERenamingMode) {
  return version && std::strcmp(version, "FBX201200") == 0;
}

bool FbxExporter::Export(const FbxScene* scene, bool nonBlocking) {
  if (!file.IsOpen() || !scene || nonBlocking) {
    status.SetError(file.IsOpen() ? "Only a blocking export of a scene is possible" : "Not initialized", nullptr);
    return false;
  }
  const FbxCreationTime time = GetFbxManager()->CreationTime();
  char timeText[24];
  FormatCreationTime(time, timeText);
  FbxRecord document;
  CByteBuffer bytes;
  if (!BuildSceneDocument(*scene, time, document) || !WriteFbxBinary(document, timeText, bytes)) {
    status.SetError("Out of memory", nullptr);
    file.Discard();
    return false;
  }
  if (!file.Write(bytes.Data(), bytes.Size()) || !file.Commit()) {
    status.SetError("Cannot write the file", file.Error());
    return false;
  }
  return true;
}
