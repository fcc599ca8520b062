#pragma once

#include <string>
#include <string_view>

namespace gamewriters {

// The whole file at `path`; empty when it can't be read.
std::string ReadFileBytes(const std::string& path);

// Writes `bytes` to `path`, making the folders above it. False on any failure.
bool WriteFileBytes(const std::string& path, std::string_view bytes);

}  // namespace gamewriters
