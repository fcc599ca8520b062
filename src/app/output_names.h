#pragma once

#include <string>
#include <vector>

// The files a batch writes: for each actor name (a pack name such as "actors\knight.adr") a path
// relative to the output folder, "actors/knight.fbx", with `/` and `\` as folders and the extension
// replaced by `extension` (".fbx"). Names that can't be file names on Linux are made safe, and no two
// actors get one path: a later actor whose path is taken gets "~2", "~3", ... before the extension.
std::vector<std::string> OutputNames(const std::vector<std::string>& actorNames, const char* extension);
