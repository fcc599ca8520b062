#include "fbx/sdk/fbx_binary_writer.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "fbx/sdk/fbx_file_id.h"
#include "support/allocation_failure.h"
#include "support/fbx_reader.h"

namespace {

constexpr char kTime[] = "1970-01-01 10:00:00:000";

// Writing deflates the large arrays in place; writing the same document again gives the same bytes.
std::string Write(FbxRecord& document) {
  CByteBuffer out;
  EXPECT_TRUE(WriteFbxBinary(document, kTime, out));
  return std::string(reinterpret_cast<const char*>(out.Data()), out.Size());
}

std::string Hex(const std::string& bytes) {
  static const char* digits = "0123456789ABCDEF";
  std::string out;
  for (unsigned char c : bytes) {
    if (!out.empty()) out += ' ';
    out += digits[c >> 4];
    out += digits[c & 15];
  }
  return out;
}

TEST(FbxBinaryWriter, PinnedBytes) {
  // The ids of this creation time, as other writers put them in every file they write.
  u8 id[16];
  FbxFileId(kTime, id);
  EXPECT_EQ(Hex(std::string(reinterpret_cast<char*>(id), 16)), "28 B3 2A EB B6 24 CC C2 BF C8 B0 2A A9 2B FC F1");
  FbxFooterId(kTime, id);
  const std::string footerId(reinterpret_cast<char*>(id), 16);
  EXPECT_EQ(Hex(footerId), "FA BC AB 09 D0 C8 D4 66 B1 76 FB 83 1C F7 26 7E");

  FbxRecord document;
  FbxRecord* version = document.AddChild("FBXVersion");
  ASSERT_TRUE(version && version->AddInt32(7200));
  FbxRecord* name = document.AddChild("N");
  ASSERT_TRUE(name && name->AddString("Cube\0\1Model", 11));
  const f64 pair[] = {1.0, 0.5};
  ASSERT_TRUE(name->AddDoubles(pair, 2));
  const std::string file = Write(document);

  EXPECT_EQ(Hex(file.substr(0, 27)),
            "4B 61 79 64 61 72 61 20 46 42 58 20 42 69 6E 61 72 79 20 20 00 1A 00 20 1C 00 00");
  // EndOffset 27 + 13 + 10 + 5 = 55 (0x37), one property of 5 bytes, name, 'I' 7200.
  EXPECT_EQ(Hex(file.substr(27, 28)),
            "37 00 00 00 01 00 00 00 05 00 00 00 0A 46 42 58 56 65 72 73 69 6F 6E 49 20 1C 00 00");
  EXPECT_EQ(Hex(file.substr(55 + 14, 16)), "53 0B 00 00 00 43 75 62 65 00 01 4D 6F 64 65 6C");
  EXPECT_EQ(Hex(file.substr(55 + 30, 29)),
            "64 02 00 00 00 00 00 00 00 10 00 00 00 00 00 00 00 00 00 F0 3F 00 00 00 00 00 00 E0 3F");

  testsupport::FbxReadFile read;
  std::string error;
  ASSERT_TRUE(testsupport::ReadFbxBinary(file, read, error)) << error;
  EXPECT_EQ(read.version, 7200u);
  EXPECT_EQ(read.footerId, footerId);
  EXPECT_TRUE(read.footerOk);
  EXPECT_EQ(file.size() % 16, 0u);
}

TEST(FbxBinaryWriter, RoundTripsEveryKindAndDeflatesLargeArrays) {
  FbxRecord document;
  FbxRecord* objects = document.AddChild("Objects", true);
  FbxRecord* geometry = objects->AddChild("Geometry", true);
  ASSERT_TRUE(geometry->AddInt64(1234567890123) && geometry->AddString("Mesh_0\0\1Geometry", 17) &&
              geometry->AddString("Mesh"));
  std::vector<f64> vertices;
  for (int i = 0; i < 900; ++i) vertices.push_back(i * 0.25 - 7);
  std::vector<i32> indices = {0, 1, -3};
  FbxRecord* vertexRecord = geometry->AddChild("Vertices");
  ASSERT_TRUE(vertexRecord->AddDoubles(vertices.data(), u32(vertices.size())));
  ASSERT_TRUE(geometry->AddChild("PolygonVertexIndex")->AddInt32s(indices.data(), 3));
  FbxRecord* scalars = geometry->AddChild("P");
  ASSERT_TRUE(scalars->AddInt16(-2) && scalars->AddBool(true) && scalars->AddChar('Y') && scalars->AddFloat(1.5f) &&
              scalars->AddDouble(-0.125) && scalars->AddRaw("\x01\x02", 2));
  ASSERT_NE(objects->AddChild("Properties70", true), nullptr);
  ASSERT_NE(document.AddChild("Takes"), nullptr);

  testsupport::FbxReadFile read;
  std::string error;
  ASSERT_TRUE(testsupport::ReadFbxBinary(Write(document), read, error)) << error;
  ASSERT_EQ(read.records.size(), 2u);
  const testsupport::FbxReadRecord* readObjects = read.Record("Objects");
  ASSERT_NE(readObjects, nullptr);
  const testsupport::FbxReadRecord* readGeometry = readObjects->Child("Geometry");
  ASSERT_NE(readGeometry, nullptr);
  EXPECT_TRUE(readGeometry->closedByNull);
  EXPECT_EQ(readGeometry->properties[0].integer, 1234567890123);
  EXPECT_EQ(readGeometry->properties[1].bytes, std::string("Mesh_0\0\1Geometry", 17));
  const auto& readVertices = readGeometry->Child("Vertices")->properties[0];
  EXPECT_EQ(readVertices.encoding, 1u) << "7200 bytes are deflated";
  EXPECT_EQ(readVertices.reals, vertices);
  const auto& readIndices = readGeometry->Child("PolygonVertexIndex")->properties[0];
  EXPECT_EQ(readIndices.encoding, 0u) << "12 bytes are not";
  EXPECT_EQ(readIndices.integers, (std::vector<int64_t>{0, 1, -3}));
  const auto& p = readGeometry->Child("P")->properties;
  ASSERT_EQ(p.size(), 6u);
  EXPECT_EQ(p[0].integer, -2);
  EXPECT_EQ(p[1].integer, 1);
  EXPECT_EQ(p[2].integer, 'Y');
  EXPECT_EQ(p[3].real, 1.5);
  EXPECT_EQ(p[4].real, -0.125);
  EXPECT_EQ(p[5].bytes, "\x01\x02");
  EXPECT_FALSE(readGeometry->Child("P")->closedByNull) << "value records get no null record";
  EXPECT_TRUE(readObjects->Child("Properties70")->closedByNull) << "an empty block does";
  EXPECT_TRUE(read.footerOk);
}

// Takes the bytes in the pieces the writer hands over, refusing the piece numbered `refuseAt`.
struct PieceSink final : FbxByteSink {
  std::string bytes;
  u32 pieces = 0;
  u32 refuseAt = UINT32_MAX;
  bool Put(const void* data, u32 size) override {
    if (pieces++ == refuseAt) return false;
    bytes.append(static_cast<const char*>(data), size);
    return true;
  }
};

TEST(FbxBinaryWriter, HandsOverAFileOfSeveralBlocksWhole) {
  FbxRecord document;
  std::vector<f64> noise(300000);
  u64 state = 88172645463325252ull;
  for (f64& value : noise) {
    state ^= state << 13, state ^= state >> 7, state ^= state << 17;
    value = f64(state);
  }
  ASSERT_TRUE(document.AddChild("Before")->AddInt32(1));
  ASSERT_TRUE(document.AddChild("Noise")->AddDoubles(noise.data(), u32(noise.size())));
  ASSERT_TRUE(document.AddChild("After")->AddString("tail"));
  const std::string whole = Write(document);
  ASSERT_GT(whole.size(), 2u << 20) << "more than one block";
  EXPECT_EQ(Write(document), whole) << "a document written twice gives the same bytes";

  PieceSink gathered;
  ASSERT_EQ(WriteFbxBinary(document, kTime, gathered), FbxWriteResult::kWritten);
  EXPECT_EQ(gathered.bytes, whole);
  ASSERT_GT(gathered.pieces, 2u);
  for (u32 refuse = 0; refuse < gathered.pieces; ++refuse) {
    PieceSink failing;
    failing.refuseAt = refuse;
    EXPECT_EQ(WriteFbxBinary(document, kTime, failing), FbxWriteResult::kSinkFailed) << refuse;
  }
}

TEST(FbxBinaryWriter, RefusesWhatItCannotWrite) {
  FbxRecord named;
  EXPECT_EQ(named.AddChild(std::string(256, 'n').c_str()), nullptr) << "names keep their length in one byte";
  std::vector<f64> values(2000, 1.0);
  for (u64 failAt = 1; failAt < 20; ++failAt) {
    FbxRecord document;  // anew each time: writing deflates the array in place
    ASSERT_TRUE(document.AddChild("Vertices")->AddDoubles(values.data(), u32(values.size())));
    CByteBuffer out;
    testsupport::ScopedAllocationFailure refuse(failAt);
    const bool written = WriteFbxBinary(document, kTime, out);
    if (!refuse.Failed()) {
      EXPECT_TRUE(written);
      return;
    }
    EXPECT_FALSE(written) << failAt;
  }
  FAIL() << "never succeeded";
}

}  // namespace
