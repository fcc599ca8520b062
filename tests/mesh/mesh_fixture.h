#pragma once

#include <cstring>
#include <initializer_list>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "gamedata/material_definitions.h"
#include "gamedata/model_file.h"

// Meshes and layouts made in memory, as a reader would have filled them.
namespace meshtest {

struct Element {
  u32 usage;
  u32 type;
  u32 offset;
  u32 stream = 0;
  u32 usageIndex = 0;
};

inline void MakeLayout(InputLayout& layout, std::initializer_list<Element> elements) {
  ASSERT_TRUE(layout.entries.SetSize(u32(elements.size())));
  u32 i = 0;
  for (const Element& e : elements) layout.entries[i++] = {e.stream, e.type, e.usage, e.usageIndex, e.offset};
  layout.entryCount = u32(elements.size());
}

// One stream per byte string, each of `stride` bytes a vertex.
inline void MakeMesh(ModelMesh& mesh, u32 vertexCount, std::initializer_list<std::pair<u32, std::string>> streams) {
  mesh.vertexCount = vertexCount;
  ASSERT_TRUE(mesh.streams.SetSize(u32(streams.size())));
  u32 i = 0;
  for (const auto& [stride, bytes] : streams) {
    MeshStream& stream = mesh.streams[i++];
    stream.stride = stride;
    ASSERT_EQ(bytes.size(), size_t(stride) * vertexCount);
    ASSERT_TRUE(stream.data.SetSize(u32(bytes.size())));
    if (!bytes.empty()) std::memcpy(stream.data.Data(), bytes.data(), bytes.size());
    stream.dataSize = u32(bytes.size());
  }
}

template <class T>
void Append(std::string& out, std::initializer_list<T> values) {
  for (T v : values) out.append(reinterpret_cast<const char*>(&v), sizeof(T));
}

template <class T>
std::string Bytes(std::initializer_list<T> values) {
  std::string out;
  Append(out, values);
  return out;
}

inline void SetIndices(ModelMesh& mesh, u32 bytesPerIndex, const std::vector<u32>& indices) {
  mesh.bytesPerIndex = bytesPerIndex;
  mesh.indexCount = u32(indices.size());
  ASSERT_TRUE(mesh.indexData.SetSize(u32(indices.size()) * bytesPerIndex));
  for (size_t i = 0; i < indices.size(); ++i)
    std::memcpy(mesh.indexData.Data() + i * bytesPerIndex, &indices[i], bytesPerIndex);
  mesh.indexDataSize = mesh.indexData.Size();
}

}  // namespace meshtest
