#include "mesh/vertex_stream.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <vector>

#include "mesh/half_float.h"
#include "mesh/unit_vector.h"
#include "mesh_fixture.h"

namespace {

using namespace meshtest;

// An independent binary16 to binary32 conversion, by fields.
u32 ReferenceHalf(u16 h) {
  const u32 sign = u32(h & 0x8000) << 16;
  const int exponent = (h >> 10) & 0x1F;
  const u32 mantissa = h & 0x3FF;
  if (exponent == 0x1F) return sign | 0x7F800000 | (mantissa << 13);
  if (exponent == 0 && mantissa == 0) return sign;
  const f32 magnitude =
      std::ldexp(exponent == 0 ? f32(mantissa) : f32(mantissa | 0x400), (exponent == 0 ? 1 : exponent) - 25);
  return sign | std::bit_cast<u32>(magnitude);
}

TEST(HalfFloat, EveryInputIsExact) {
  for (u32 h = 0; h < 0x10000; ++h) ASSERT_EQ(HalfToFloat(u16(h)), ReferenceHalf(u16(h))) << std::hex << h;
  const std::pair<u16, u32> pinned[] = {{0x0000, 0x00000000}, {0x8000, 0x80000000}, {0x3C00, 0x3F800000},
                                        {0x03FF, 0x387FC000}, {0x0400, 0x38800000}, {0x0001, 0x33800000},
                                        {0x7C00, 0x7F800000}, {0xFC00, 0xFF800000}, {0x7C01, 0x7F802000}};
  for (const auto& [half, bits] : pinned) EXPECT_EQ(HalfToFloat(half), bits) << std::hex << half;
}

TEST(VertexStream, TypedReadsFollowTheTypeTable) {
  struct Case {
    u32 type;
    std::string bytes;
    Vec4 vec4;  // ReadVec4; ReadVec3 and ReadVec2 are its prefixes
    Int4 int4;
  };
  const Case cases[] = {
      {kFloat1, Bytes<f32>({2.9f}), {2.9f, 0, 0, 0}, {{2, 0, 0, 0}}},
      {kFloat2, Bytes<f32>({2.9f, -2.9f}), {2.9f, -2.9f, 0, 0}, {{2, -2, 0, 0}}},
      {kFloat3, Bytes<f32>({1, 2, 3}), {1, 2, 3, 0}, {{1, 2, 3, 0}}},
      {kFloat4, Bytes<f32>({1, 2, 3, 4}), {1, 2, 3, 4}, {{1, 2, 3, 4}}},
      {kD3dcolor, Bytes<u8>({255, 0, 0, 128}), {1, 0, 0, 128 / 255.0f}, {{255, 0, 0, 128}}},
      {kUbyte4n, Bytes<u8>({255, 0, 0, 128}), {1, 0, 0, 128 / 255.0f}, {{255, 0, 0, 128}}},
      {kUbyte4, Bytes<u8>({1, 2, 3, 255}), {1, 2, 3, 255}, {{1, 2, 3, 255}}},
      {kShort2, Bytes<i16>({-5, 7}), {-5, 7, 0, 0}, {{-5, 7, 0, 0}}},
      {kShort4, Bytes<i16>({-5, 7, 9, -1}), {-5, 7, 9, -1}, {{-5, 7, 9, -1}}},
      {kShort2n, Bytes<i16>({32767, -32768}), {1, -32768 / 32767.0f, 0, 0}, {{32767, -32768, 0, 0}}},
      {kShort4n, Bytes<i16>({0, 32767, 0, -32767}), {0, 1, 0, -1}, {{0, 32767, 0, -32767}}},
      {kUshort2n, Bytes<u16>({65535, 0}), {1, 0, 0, 0}, {{65535, 0, 0, 0}}},
      {kUshort4n, Bytes<u16>({65535, 0, 0, 65535}), {1, 0, 0, 1}, {{65535, 0, 0, 65535}}},
      {kFloat16_2, Bytes<u16>({0x3C00, 0xC000}), {1, -2, 0, 0}, {{1, -2, 0, 0}}},
      {kFloat16_4, Bytes<u16>({0x3C00, 0xC000, 0x3800, 0x4200}), {1, -2, 0.5f, 3}, {{1, -2, 0, 3}}},
      {kUdec3, Bytes<u32>({0xFFFFFFFF}), {}, {}},
      {kDec3n, Bytes<u32>({0xFFFFFFFF}), {}, {}},
      {kUnknownType, Bytes<u32>({0xFFFFFFFF}), {}, {}},
      {kOtherType, Bytes<u32>({0xFFFFFFFF}), {}, {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.type);
    // Exactly the element's bytes: a read beyond them reaches the sanitizer.
    std::vector<u8> element(c.bytes.begin(), c.bytes.begin() + std::min<size_t>(c.bytes.size(), ElementSize(c.type)));
    const u8* bytes = element.empty() ? nullptr : element.data();
    const Vec4 v4 = ReadVec4(bytes, c.type);
    const Vec3 v3 = ReadVec3(bytes, c.type);
    const Vec2 v2 = ReadVec2(bytes, c.type);
    const Int4 i4 = ReadInt4(bytes, c.type);
    EXPECT_EQ(std::memcmp(&v4, &c.vec4, sizeof(Vec4)), 0) << v4.x << " " << v4.y << " " << v4.z << " " << v4.w;
    EXPECT_EQ(std::memcmp(&v3, &c.vec4, sizeof(Vec3)), 0);
    EXPECT_EQ(std::memcmp(&v2, &c.vec4, sizeof(Vec2)), 0);
    EXPECT_EQ(std::memcmp(&i4, &c.int4, sizeof(Int4)), 0)
        << i4.v[0] << " " << i4.v[1] << " " << i4.v[2] << " " << i4.v[3];
  }
}

TEST(VertexStream, FindFitAndCursor) {
  InputLayout layout;
  MakeLayout(layout, {{kPosition, kFloat3, 0},
                      {kTexcoord, kFloat2, 12},
                      {kTexcoord, kFloat4, 0, 1},
                      {kTexcoord, kFloat2, 20},
                      {kNormal, kUdec3, 20},
                      {kColor, kFloat1, 0, 2}});
  ModelMesh mesh;
  MakeMesh(mesh, 2, {{20, Bytes<f32>({1, 2, 3, 4, 5, 6, 7, 8, 9, 10})}, {16, std::string(32, '\0')}});
  EXPECT_EQ(FindElement(&layout, kTexcoord, 0), &layout.entries[1]) << "the earlier of two";
  EXPECT_EQ(FindElement(nullptr, kPosition, 0), nullptr);
  EXPECT_TRUE(ElementFits(mesh, layout.entries[1])) << "ends exactly at the stride";
  EXPECT_TRUE(ElementFits(mesh, layout.entries[2]));
  EXPECT_FALSE(ElementFits(mesh, layout.entries[3])) << "beyond the stride";
  EXPECT_TRUE(ElementFits(mesh, layout.entries[4])) << "a size-0 type at the stride";
  EXPECT_FALSE(ElementFits(mesh, layout.entries[5])) << "a stream index equal to the count";

  StreamCursor uv(mesh, layout.entries[1]);
  EXPECT_EQ(ReadVec2(uv.data, uv.type).x, 4.0f);
  uv.Step();
  EXPECT_EQ(ReadVec2(uv.data, uv.type).y, 10.0f);
  uv.Seek(0);
  EXPECT_EQ(ReadVec2(uv.data, uv.type).y, 5.0f);
  uv.Seek(2);
  EXPECT_EQ(uv.data, nullptr) << "past the stream";
  StreamCursor missing(mesh, layout.entries[5]);
  missing.Seek(0);
  EXPECT_EQ(missing.data, nullptr);
}

// The loops decode with the type fixed at compile time; every type must give the bits of the
// one-vertex reads, and a stream shorter than the range must read zeros past its end.
TEST(VertexStream, LoopsReadLikeSingleReads) {
  constexpr u32 kVertices = 700;  // more than one block of the export's decoder
  constexpr u32 kStride = 20;
  std::string bytes(kVertices * kStride, '\0');
  for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = char((i * 2654435761u) >> 13);
  for (u32 type = kFloat1; type <= kOtherType; ++type) {
    SCOPED_TRACE(type);
    InputLayout layout;
    MakeLayout(layout, {{kTexcoord, type, 2}});
    ModelMesh mesh;
    MakeMesh(mesh, kVertices, {{kStride, bytes}});
    for (const u32 storedVertices : {kVertices, kVertices - 3}) {
      ASSERT_TRUE(mesh.streams[0].data.SetSize(storedVertices * kStride));
      struct Record {
        Vec4 value;
        Int4 integers;
      };
      std::vector<Record> records(kVertices);
      ForEachVertexIn(records.data(), 0, kVertices, mesh, layout.entries[0], [](Record& r, const u8* b, auto t) {
        r.value = ReadVec4(b, t);
        r.integers = ReadInt4(b, t);
      });
      for (u32 v = 0; v < kVertices; ++v) {
        const u8* at = v < storedVertices ? mesh.streams[0].data.Data() + v * kStride + 2 : nullptr;
        const Vec4 want = ReadVec4(at, type);
        const Int4 wantIntegers = ReadInt4(at, type);
        ASSERT_EQ(std::memcmp(&records[v].value, &want, sizeof(Vec4)), 0) << v;
        ASSERT_EQ(std::memcmp(&records[v].integers, &wantIntegers, sizeof(Int4)), 0) << v;
      }
    }
  }
  // Bytes are scaled through a table; it must hold the quotients a division gives.
  volatile f32 byteScale = 255.0f;
  for (u32 b = 0; b < 256; ++b) {
    const u8 element[4] = {u8(b), 0, 0, 0};
    EXPECT_EQ(std::bit_cast<u32>(ReadVec4(element, kUbyte4n).x), std::bit_cast<u32>(f32(b) / byteScale)) << b;
  }
}

TEST(UnitVector, NormalisationAndDerivedNormals) {
  struct Case {
    Vec3 in;
    Vec3 out;
  };
  const Case shortcut[] = {{{0, 0, 0}, {0, 0, 0}},
                           {{0, -1, 0}, {0, -1, 0}},
                           {{1, 1, 1}, {1, 0, 0}},
                           {{-1, 0.0039216f, 0.0039216f}, {-1, 0, 0}},
                           {{3, 0, 4}, {0.6f, 0, 0.8f}}};
  for (const Case& c : shortcut) {
    Vec3 v = c.in;
    NormalizeVector(v);
    EXPECT_FLOAT_EQ(v.x, c.out.x);
    EXPECT_FLOAT_EQ(v.y, c.out.y);
    EXPECT_FLOAT_EQ(v.z, c.out.z);
  }
  Vec3 plain{1, 1, 1};
  NormalizeByLength(plain);
  EXPECT_NEAR(plain.x, 0.57735f, 1e-5f);
  EXPECT_EQ(plain.x, plain.z);
  const Vec3 unpacked = UnpackUnit({1, 0, 128 / 255.0f});
  EXPECT_FLOAT_EQ(unpacked.x, 1);
  EXPECT_FLOAT_EQ(unpacked.y, -1);
  EXPECT_NEAR(unpacked.z, 0.0039216f, 1e-6f);
  const Vec3 up = DeriveNormal({1, 0, 0}, {0, 1, 0}, 1.0f);
  const Vec3 down = DeriveNormal({1, 0, 0}, {0, 1, 0}, 0.0f);
  EXPECT_EQ(up.z, 1.0f);
  EXPECT_EQ(down.z, -1.0f);
}

}  // namespace
