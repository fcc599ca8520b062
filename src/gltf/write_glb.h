#pragma once

#include <string>

#include "gltf/glb_container.h"

// Writes `document` as a .glb file at `path`, through a temporary that takes the path's place only
// when the whole file is written. Without `flush` the data goes to disk when the system writes it
// back (a batch syncs once at its end). False, with nothing at `path` and what failed in `reason`
// where given, on any failure.
[[nodiscard]] bool WriteGlb(const GltfDocument& document, const char* path, bool flush = true,
                            std::string* reason = nullptr);
