#pragma once

#include "fbx/sdk/fbx_record.h"
#include "fbx/sdk/fbx_scene.h"

// The sections of a file around its objects: FBXHeaderExtension, FileId, CreationTime, Creator,
// GlobalSettings (the default Y-up axis system, `unitScaleFactor` centimetres per unit and the
// source's `originalUnitScaleFactor`),
// Documents, References and Definitions (with GlobalSettings alone), then Objects and Connections
// as empty blocks for the scene to fill, then Takes. `sceneName` names the one document; `info` may
// be null, for empty texts.
[[nodiscard]] bool BuildDocumentSections(FbxRecord& document, const FbxCreationTime& time, const FbxDocumentInfo* info,
                                         const char* sceneName, f64 unitScaleFactor, f64 originalUnitScaleFactor);

// "YYYY-MM-DD HH:MM:SS:mmm", which the ids of the file are derived from.
void FormatCreationTime(const FbxCreationTime& time, char (&out)[24]);
