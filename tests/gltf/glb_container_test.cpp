#include <gtest/gtest.h>

#include <string>

#include "gltf/glb_container.h"

namespace {

std::string Emit(const GltfDocument& document) {
  std::string bytes;
  const bool ok = EmitGlb(document, [&bytes](const void* data, u64 size) {
    bytes.append(static_cast<const char*>(data), size);
    return true;
  });
  EXPECT_TRUE(ok);
  return bytes;
}

TEST(GlbContainer, PadsTheJsonWithSpacesAndTheBinaryWithZerosEachToFourBytes) {
  using namespace std::string_literals;
  // Header, then each chunk's length and type.
  EXPECT_EQ(Emit({"{}", {1, 2, 3, 4, 5}}),
            "glTF\x02\0\0\0\x28\0\0\0"s
            "\x04\0\0\0JSON{}  "s
            "\x08\0\0\0BIN\0\x01\x02\x03\x04\x05\0\0\0"s);
  EXPECT_EQ(Emit({"{\"a\":1}", {}}), "glTF\x02\0\0\0\x1c\0\0\0\x08\0\0\0JSON{\"a\":1} "s) << "no buffer: no BIN chunk";
  EXPECT_EQ(Emit({"[1]", {9, 9, 9, 9}}), "glTF\x02\0\0\0\x24\0\0\0\x04\0\0\0JSON[1] \x04\0\0\0BIN\0\x09\x09\x09\x09"s)
      << "lengths already on four bytes gain nothing";
}

TEST(GlbContainer, StopsAtTheFirstWriteThatFails) {
  for (int failing = 0; failing < 6; ++failing) {
    int calls = 0;
    EXPECT_FALSE(EmitGlb({"{}", {1, 2, 3}}, [&](const void*, u64) { return calls++ != failing; })) << failing;
    EXPECT_EQ(calls, failing + 1) << "nothing is written after a failure";
  }
}

}  // namespace
