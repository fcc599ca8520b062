#include "fbx/sdk/fbx_document.h"

#include <cstdio>

#include "fbx/sdk/fbx_binary_writer.h"
#include "fbx/sdk/fbx_file_id.h"
#include "fbx/sdk/fbx_properties.h"

namespace {

constexpr i32 kHeaderVersion = 1003;
constexpr i32 kTimeStampVersion = 1000;
constexpr i32 kBlockVersion = 100;
constexpr i32 kGlobalSettingsVersion = 1000;
constexpr i64 kTicksPerSecond = 46186158000;
constexpr i64 kDocumentId = 1000000000;
constexpr const char* kCreator = "Tarnwick FBX writer";

bool HeaderExtension(FbxRecord& document, const FbxCreationTime& time, const FbxDocumentInfo* info) {
  FbxRecord* header = document.AddChild("FBXHeaderExtension", true);
  if (!AddInt(header, "FBXHeaderVersion", kHeaderVersion) || !AddInt(header, "FBXVersion", i32(kFbxFileVersion)) ||
      !AddInt(header, "EncryptionType", 0)) {
    return false;
  }
  FbxRecord* stamp = header->AddChild("CreationTimeStamp", true);
  if (!AddInt(stamp, "Version", kTimeStampVersion) || !AddInt(stamp, "Year", time.year) ||
      !AddInt(stamp, "Month", time.month) || !AddInt(stamp, "Day", time.day) || !AddInt(stamp, "Hour", time.hour) ||
      !AddInt(stamp, "Minute", time.minute) || !AddInt(stamp, "Second", time.second) ||
      !AddInt(stamp, "Millisecond", time.millisecond) || !AddText(header, "Creator", kCreator)) {
    return false;
  }
  FbxRecord* sceneInfo = header->AddChild("SceneInfo", true);
  if (!sceneInfo || !sceneInfo->AddString("GlobalInfo\0\1SceneInfo", 21) || !sceneInfo->AddString("UserData") ||
      !AddText(sceneInfo, "Type", "UserData") || !AddInt(sceneInfo, "Version", kBlockVersion)) {
    return false;
  }
  FbxRecord* meta = sceneInfo->AddChild("MetaData", true);
  const FbxDocumentInfo none;
  const FbxDocumentInfo& i = info ? *info : none;
  if (!AddInt(meta, "Version", kBlockVersion) || !AddText(meta, "Title", i.mTitle.Text()) ||
      !AddText(meta, "Subject", i.mSubject.Text()) || !AddText(meta, "Author", i.mAuthor.Text()) ||
      !AddText(meta, "Keywords", i.mKeywords.Text()) || !AddText(meta, "Revision", i.mRevision.Text()) ||
      !AddText(meta, "Comment", i.mComment.Text())) {
    return false;
  }
  FbxRecord* p = sceneInfo->AddChild("Properties70", true);
  if (!p) return false;
  bool ok = AddStringRow(*p, "DocumentUrl", "KString", "Url", "", "") &&
            AddStringRow(*p, "SrcDocumentUrl", "KString", "Url", "", "");
  for (const char* group : {"Original", "LastSaved"}) {
    char name[64];
    ok = ok && AddRow(*p, group, "Compound", "", "");
    for (const char* member :
         {"ApplicationVendor", "ApplicationName", "ApplicationVersion", "DateTime_GMT", "FileName"}) {
      if (group[0] == 'L' && member[0] == 'F') continue;  // LastSaved has no FileName
      std::snprintf(name, sizeof(name), "%s|%s", group, member);
      ok = ok && AddStringRow(*p, name, member[0] == 'D' ? "DateTime" : "KString", "", "", "");
    }
  }
  return ok;
}

bool GlobalSettings(FbxRecord& document, f64 unitScaleFactor, f64 originalUnitScaleFactor) {
  FbxRecord* settings = document.AddChild("GlobalSettings", true);
  if (!AddInt(settings, "Version", kGlobalSettingsVersion)) return false;
  FbxRecord* p = settings->AddChild("Properties70", true);
  if (!p) return false;
  // The default axis system: Y up, +Z front, +X side. Nothing is converted.
  const std::pair<const char*, i32> axes[] = {{"UpAxis", 1},          {"UpAxisSign", 1},        {"FrontAxis", 2},
                                              {"FrontAxisSign", 1},   {"CoordAxis", 0},         {"CoordAxisSign", 1},
                                              {"OriginalUpAxis", -1}, {"OriginalUpAxisSign", 1}};
  for (const auto& [name, value] : axes) {
    if (!AddIntRow(*p, name, "int", "Integer", "", value)) return false;
  }
  return AddDoubleRow(*p, "UnitScaleFactor", "double", "Number", "", {unitScaleFactor}) &&
         AddDoubleRow(*p, "OriginalUnitScaleFactor", "double", "Number", "", {originalUnitScaleFactor}) &&
         AddDoubleRow(*p, "AmbientColor", "ColorRGB", "Color", "", {0, 0, 0}) &&
         AddStringRow(*p, "DefaultCamera", "KString", "", "", "Producer Perspective") &&
         AddIntRow(*p, "TimeMode", "enum", "", "", 0) && AddIntRow(*p, "TimeProtocol", "enum", "", "", 2) &&
         AddIntRow(*p, "SnapOnFrameMode", "enum", "", "", 0) &&
         AddInt64Row(*p, "TimeSpanStart", "KTime", "Time", "", 0) &&
         AddInt64Row(*p, "TimeSpanStop", "KTime", "Time", "", kTicksPerSecond) &&
         AddDoubleRow(*p, "CustomFrameRate", "double", "Number", "", {-1}) &&
         AddRow(*p, "TimeMarker", "Compound", "", "") && AddIntRow(*p, "CurrentTimeMarker", "int", "Integer", "", -1);
}

bool Documents(FbxRecord& document, const char* sceneName) {
  FbxRecord* documents = document.AddChild("Documents", true);
  if (!AddInt(documents, "Count", 1)) return false;
  FbxRecord* one = documents->AddChild("Document", true);
  if (!one || !one->AddInt64(kDocumentId) || !one->AddString(sceneName) || !one->AddString("Scene")) return false;
  FbxRecord* p = one->AddChild("Properties70", true);
  if (!p || !AddRow(*p, "SourceObject", "object", "", "") ||
      !AddStringRow(*p, "ActiveAnimStackName", "KString", "", "", "")) {
    return false;
  }
  FbxRecord* root = one->AddChild("RootNode");
  return root && root->AddInt64(0) && document.AddChild("References", true) != nullptr;
}

bool Definitions(FbxRecord& document) {
  FbxRecord* definitions = document.AddChild("Definitions", true);
  if (!AddInt(definitions, "Version", kBlockVersion) || !AddInt(definitions, "Count", 1)) return false;
  FbxRecord* type = definitions->AddChild("ObjectType", true);
  return type && type->AddString("GlobalSettings") && AddInt(type, "Count", 1);
}

}  // namespace

void FormatCreationTime(const FbxCreationTime& t, char (&out)[24]) {
  // Each field is kept to its digits, so the text is always 23 characters.
  const auto digits = [](i32 value, u32 limit) { return u32(value < 0 ? 0 : value) % limit; };
  std::snprintf(out, sizeof(out), "%04u-%02u-%02u %02u:%02u:%02u:%03u", digits(t.year, 10000), digits(t.month, 100),
                digits(t.day, 100), digits(t.hour, 100), digits(t.minute, 100), digits(t.second, 100),
                digits(t.millisecond, 1000));
}

bool BuildDocumentSections(FbxRecord& document, const FbxCreationTime& time, const FbxDocumentInfo* info,
                           const char* sceneName, f64 unitScaleFactor, f64 originalUnitScaleFactor) {
  char text[24];
  FormatCreationTime(time, text);
  u8 id[16];
  FbxFileId(text, id);
  if (!HeaderExtension(document, time, info)) return false;
  FbxRecord* fileId = document.AddChild("FileId");
  if (!fileId || !fileId->AddRaw(id, sizeof(id)) || !AddText(&document, "CreationTime", text) ||
      !AddText(&document, "Creator", kCreator) || !GlobalSettings(document, unitScaleFactor, originalUnitScaleFactor) ||
      !Documents(document, sceneName) || !Definitions(document)) {
    return false;
  }
  return document.AddChild("Objects", true) && document.AddChild("Connections", true) &&
         AddText(document.AddChild("Takes", true), "Current", "");
}
