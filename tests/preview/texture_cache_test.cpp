#include "preview/texture_cache.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "core/hash.h"
#include "preview/render_device.h"

namespace {

class CountingDevice final : public IRenderDevice {
 public:
  bool CreateMesh(const PreviewMesh&, GpuMesh&) override { return false; }
  void ReleaseMesh(GpuMesh&) override {}
  u32 CreateTexture(const DecodedImage&) override { return 0; }
  void ReleaseTexture(u32 texture) override { released.push_back(texture); }
  void Clear(const f32*, f32) override {}
  void SetMatrices(const Matrix4&, const Matrix4&, const Matrix4&, const Matrix4&) override {}
  bool Draw(Technique, const GpuMesh&, u32, u32) override { return false; }
  bool CreateSkeleton(const BindSkeleton&, GpuSkeleton&) override { return false; }
  void ReleaseSkeleton(GpuSkeleton&) override {}
  void DrawSkeleton(const GpuSkeleton&) override {}
  void SetWireframe(bool) override {}
  void DrawImage(u32, const ViewRect&) override {}

  std::vector<u32> released;
};

// `count` names whose hashes share the low byte, so they fall in one bucket.
std::vector<std::string> NamesInOneBucket(u32 count, u32& bucket) {
  std::vector<std::string> names;
  bucket = HashName("t0.png") & 0xFF;
  for (u32 i = 0; names.size() < count; ++i) {
    char name[32];
    std::snprintf(name, sizeof(name), "t%u.png", i);
    if ((HashName(name) & 0xFF) == bucket) names.push_back(name);
  }
  return names;
}

TEST(TextureCache, EntriesStayPutWhileABucketGrowsAndFreedSlotsAreReused) {
  CountingDevice device;
  TextureCache cache;
  cache.SetDevice(&device);
  u32 bucket = 0;
  const std::vector<std::string> names = NamesInOneBucket(9, bucket);
  std::vector<TextureEntry*> entries;
  for (const std::string& name : names) {
    entries.push_back(cache.FindOrAdd(name.c_str()));
    ASSERT_NE(entries.back(), nullptr);
    entries.back()->texture = u32(entries.size());
  }
  // The ninth needs a second block; the first eight entries did not move.
  EXPECT_EQ(cache.BlockCount(bucket), 2u);
  for (size_t i = 0; i < names.size(); ++i) {
    EXPECT_EQ(cache.FindOrAdd(names[i].c_str()), entries[i]) << names[i];
  }
  // Case doesn't matter.
  std::string upper = names[3];
  for (char& c : upper) c = char(std::toupper(static_cast<unsigned char>(c)));
  EXPECT_EQ(cache.FindOrAdd(upper.c_str()), entries[3]);

  cache.Remove(names[2].c_str());
  EXPECT_EQ(device.released, std::vector<u32>{3});
  EXPECT_FALSE(entries[2]->used);
  cache.Remove("never.png");  // a miss does nothing
  // Two blocks still have room for the removed entry and one more.
  const std::vector<std::string> more = NamesInOneBucket(11, bucket);
  EXPECT_NE(cache.FindOrAdd(more[9].c_str()), nullptr);
  EXPECT_NE(cache.FindOrAdd(more[10].c_str()), nullptr);
  EXPECT_EQ(cache.BlockCount(bucket), 2u);

  device.released.clear();
  cache.ReleaseAll();
  EXPECT_EQ(device.released.size(), 8u);  // the new entries had no texture
  EXPECT_EQ(cache.BlockCount(bucket), 2u);
  cache.Destroy();
  EXPECT_EQ(cache.BlockCount(bucket), 0u);
}

TEST(TextureCache, LongNamesKeepTheirWholeText) {
  TextureCache cache;
  const std::string inlineName(47, 'a'), heapName(300, 'b');
  TextureEntry* shortEntry = cache.FindOrAdd(inlineName.c_str());
  TextureEntry* longEntry = cache.FindOrAdd(heapName.c_str());
  ASSERT_TRUE(shortEntry && longEntry);
  EXPECT_EQ(shortEntry->name.Text(), inlineName);
  EXPECT_EQ(longEntry->name.Text(), heapName);
  EXPECT_EQ(cache.FindOrAdd(heapName.c_str()), longEntry);
}

}  // namespace
