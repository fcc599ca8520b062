#pragma once

#include "fbx/sdk/fbx_record.h"

// The moment a file is written, which every time field of the file and both of its ids derive from.
// A fixed time gives the same bytes from run to run.
struct FbxCreationTime {
  i32 year = 1970, month = 1, day = 1, hour = 0, minute = 0, second = 0, millisecond = 0;
};

// What the document information of a scene says of it.
struct FbxDocumentInfo {
  const char* title = "";
  const char* subject = "";
  const char* author = "";
  const char* revision = "";
  const char* keywords = "";
  const char* comment = "";
};

// The sections of a file around its objects: FBXHeaderExtension, FileId, CreationTime, Creator,
// GlobalSettings (the default Y-up axis system and `unitScaleFactor` centimetres per unit),
// Documents, References and Definitions, then Objects and Connections as empty blocks for the
// scene to fill, then Takes. `sceneName` names the one document. Objects and Connections are the
// last two children but one.
[[nodiscard]] bool BuildDocumentSections(FbxRecord& document, const FbxCreationTime& time, const FbxDocumentInfo& info,
                                         const char* sceneName, f64 unitScaleFactor);

// "YYYY-MM-DD HH:MM:SS:mmm", which the ids of the file are derived from.
void FormatCreationTime(const FbxCreationTime& time, char (&out)[24]);
