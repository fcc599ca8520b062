#pragma once

#include <functional>
#include <string>
#include <vector>

#include "core/types.h"

// A glTF document before it is packed: the JSON text and the bytes of its one buffer.
struct GltfDocument {
  std::string json;
  std::vector<u8> bin;
};

// Receives the bytes of a file in order; false stops the writing.
using GlbSink = std::function<bool(const void* data, u64 size)>;

// Emits `document` as a binary glTF file: the 12-byte header, the JSON chunk padded with spaces
// and the BIN chunk padded with zeros, each to 4 bytes. An empty buffer gets no BIN chunk. False
// when the file would pass the 4 GiB that its length field holds, or when `sink` fails.
[[nodiscard]] bool EmitGlb(const GltfDocument& document, const GlbSink& sink);

// Whether `document` fits the 4 GiB that a binary file's length field holds.
bool FitsGlb(const GltfDocument& document);
