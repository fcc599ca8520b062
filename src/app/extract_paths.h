#pragma once

#include <string>
#include <vector>

#include "app/actor_list.h"

// Where each file of a pack goes below the output folder, as path components. A name comes from a
// file that anybody can write, so it never chooses a place outside the folder: its `\` and `/`
// make folders; empty, "." and ".." parts and a leading drive ("C:") are dropped; control
// characters and bytes that aren't UTF-8 become `_`; a part too long for the file system is cut.
// Two names that come to one place, or a file where another name needs a folder, get "~2", "~3",
// ... before the extension, the first name keeping the plain one. Where `asPng[i]`, the extension
// of file i becomes ".png". Each path's parts are joined by `/`; a name that leaves nothing gets an
// empty path.
std::vector<std::string> ExtractPaths(const std::vector<ListedEntry>& files, const std::vector<bool>& asPng);
