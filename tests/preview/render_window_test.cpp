#include "preview/render_window.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "core/hash.h"
#include "game_writers/image_writer.h"
#include "game_writers/model_writer.h"
#include "game_writers/pack_writer.h"
#include "game_writers/skinned_actor.h"
#include "game_writers/xml_writer.h"
#include "support/temp_dir.h"

namespace {

using gamewriters::PackFileEntry;

// Records what the render control asks of the graphics.
class FakeDevice final : public IRenderDevice {
 public:
  struct DrawCall {
    Technique technique;
    u32 indexCount;
    u32 texture;
    bool wireframe = false;
    bool skeleton = false;  // a DrawSkeleton call, over everything before it
    bool image = false;     // a DrawImage call, over `imageRect`
  };

  bool CreateMesh(const PreviewMesh& mesh, GpuMesh& out) override {
    out.vertexArray = ++lastHandle;
    ++liveMeshes;
    vertexCounts.push_back(mesh.vertexCount);
    return true;
  }
  void ReleaseMesh(GpuMesh& mesh) override {
    if (mesh.vertexArray) --liveMeshes;
    mesh = GpuMesh{};
  }
  u32 CreateTexture(const DecodedImage& image) override {
    ++liveTextures;
    firstPixels.push_back(std::string(reinterpret_cast<const char*>(image.pixels.Data()), 4));
    return ++lastHandle;
  }
  void ReleaseTexture(u32) override { --liveTextures; }
  void Clear(const f32 colour[4], f32 depth) override {
    std::memcpy(clearColour, colour, sizeof(clearColour));
    clearDepth = depth;
    draws.clear();
  }
  void SetMatrices(const Matrix4& worldMatrix, const Matrix4&, const Matrix4&, const Matrix4&) override {
    world = worldMatrix;
  }
  bool Draw(Technique technique, const GpuMesh&, u32 indexCount, u32 texture) override {
    draws.push_back({technique, indexCount, texture, wireframe});
    return true;
  }
  bool CreateSkeleton(const BindSkeleton& skeleton, GpuSkeleton& out) override {
    out = {++lastHandle, 0, 0, skeleton.joints.Count(), skeleton.lines.Count()};
    ++liveSkeletons;
    return true;
  }
  void ReleaseSkeleton(GpuSkeleton& skeleton) override {
    if (skeleton.vertexArray) --liveSkeletons;
    skeleton = GpuSkeleton{};
  }
  void DrawSkeleton(const GpuSkeleton& skeleton) override {
    draws.push_back({Technique::kRender, skeleton.lineIndexCount, skeleton.jointCount, wireframe, true});
  }
  void SetWireframe(bool on) override {
    wireframe = on;
    ++wireframeCalls;
  }
  void DrawImage(u32 texture, const ViewRect& rect) override {
    draws.push_back({Technique::kRender, 0, texture, wireframe, false, true});
    imageRect = rect;
  }

  u32 lastHandle = 0;
  i32 liveMeshes = 0;
  i32 liveTextures = 0;
  std::vector<u32> vertexCounts;
  std::vector<std::string> firstPixels;  // RGBA of each texture's first pixel, in upload order
  f32 clearColour[4] = {};
  f32 clearDepth = 0;
  Matrix4 world;
  std::vector<DrawCall> draws;
  i32 liveSkeletons = 0;
  bool wireframe = false;
  i32 wireframeCalls = 0;
  ViewRect imageRect;
};

class FakeHost final : public IRenderHost {
 public:
  IRenderDevice* OpenDevice(i32& width, i32& height) override {
    width = 200;
    height = 200;
    return available ? &device : nullptr;
  }
  bool MakeCurrent() override { return current; }
  void CloseDevice() override { ++closed; }
  void RequestFrame() override { ++framesRequested; }

  bool available = true;
  bool current = true;  // false: the context can't be made current
  i32 closed = 0;
  i32 framesRequested = 0;
  FakeDevice device;
};

std::string SolidPng(u8 r, u8 g, u8 b) {
  return gamewriters::BuildPng(2, 2, std::vector<u8>{r, g, b, 255, r, g, b, 255, r, g, b, 255, r, g, b, 255});
}

// A game of one pack: the catalogue, the actors and their files.
class RenderWindowTest : public ::testing::Test {
 protected:
  void Open(std::vector<PackFileEntry> files) {
    ASSERT_TRUE(gamewriters::WriteFileBytes(dir.Join("assets_000.pack"),
                                            gamewriters::BuildPack({{gamewriters::PackChunk{files}}})));
    ASSERT_TRUE(packs.Open(dir.Path().c_str()));
    CByteBuffer catalogue;
    ASSERT_TRUE(packs.FetchByName("materials_3.xml", catalogue));
    ASSERT_TRUE(materials.Read(catalogue));
    ASSERT_TRUE(preview.Init(&packs));
  }
  // Shows the listed actor `name`, as a click on it does.
  bool Load(const char* name, const MaterialDefinitionSet* with, ISkeletonSource* skeletons = nullptr) {
    return preview.LoadActor(packs.Find(name), name, with, skeletons);
  }
  // The actor `name` over `model`, with the catalogue and `extra` files.
  std::vector<PackFileEntry> Game(const gamewriters::SkinnedActor& model, std::vector<PackFileEntry> extra = {}) {
    extra.push_back({"materials_3.xml", model.catalogue});
    extra.push_back({"models\\thing.dmod", model.model});
    extra.push_back({"actors\\thing.adr", gamewriters::BuildActor({.fileName = "models\\thing.dmod"})});
    return extra;
  }

  testsupport::TempDir dir;
  PackIndex packs;
  MaterialDefinitionSet materials;
  FakeHost host;
  CRenderWindow preview{host, 640, 480};
};

TEST_F(RenderWindowTest, InfoTextListsEachMeshsTexturesAndDrawsTheDiffuseOne) {
  gamewriters::SkinnedActorDesc desc{.meshCount = 4, .gridSize = 3, .boneCount = 2};
  desc.textures = {
      {{"normalMap", "tex\\n.dds"}, {"baseDiffuse", "tex\\a.png"}},
      {{"BaseDiffuse", "TEX\\A.PNG"}},                          // the other spelling; the name's hash ignores case
      {{"detail", "tex\\broken.png"}, {"glow", "tex\\b.png"}},  // neither spelling: flat
      {{"baseDiffuse", "tex\\broken.png"}},                     // can't be decoded: flat, still listed
  };
  Open(Game(
      gamewriters::BuildSkinnedActor(desc),
      {{"tex\\a.png", SolidPng(10, 200, 30)}, {"tex\\b.png", SolidPng(1, 2, 3)}, {"tex\\broken.png", "not an image"}}));

  ASSERT_TRUE(Load("actors\\thing.adr", &materials));
  EXPECT_STREQ(preview.GetInfoText(),
               "Info for actors\\thing.adr\r\n\r\n"
               "-- Textures for mesh 0\r\ntex\\n.dds\r\ntex\\a.png\r\n"
               "-- Textures for mesh 1\r\ntex\\a.png\r\n"  // the first name with that hash
               "-- Textures for mesh 2\r\ntex\\broken.png\r\ntex\\b.png\r\n"
               "-- Textures for mesh 3\r\ntex\\broken.png\r\n");
  // One decode for both spellings of a.png; b.png is listed but never fetched.
  ASSERT_EQ(host.device.firstPixels, (std::vector<std::string>{std::string("\x0A\xC8\x1E\xFF", 4)}));
  preview.Tick();
  const auto& draws = host.device.draws;
  ASSERT_EQ(draws.size(), 4u);
  EXPECT_EQ(draws[0].technique, Technique::kRenderTextured);
  EXPECT_EQ(draws[1].technique, Technique::kRenderTextured);
  EXPECT_EQ(draws[0].texture, draws[1].texture);
  EXPECT_EQ(draws[2].technique, Technique::kRender);
  EXPECT_EQ(draws[3].technique, Technique::kRender);
  EXPECT_EQ(draws[0].indexCount, 24u);  // a 3 x 3 grid: 8 triangles
  EXPECT_EQ(host.device.clearColour[0], 0.75f);
  EXPECT_EQ(host.device.clearColour[3], 1.0f);
  EXPECT_EQ(host.device.clearDepth, 1.0f);

  // A second load of the same actor decodes the image anew, and the old meshes are gone.
  ASSERT_TRUE(Load("actors\\thing.adr", &materials));
  EXPECT_EQ(host.device.firstPixels.size(), 2u);
  EXPECT_EQ(host.device.liveMeshes, 4);
  EXPECT_EQ(host.device.liveTextures, 1);
}

TEST_F(RenderWindowTest, FramesTheModelsBox) {
  gamewriters::SkinnedActorDesc desc{.meshCount = 1, .gridSize = 2, .boneCount = 1};
  desc.bounds = {1, 1, 1, 3, 3, 3};  // size 2, centred on (2, 2, 2)
  Open(Game(gamewriters::BuildSkinnedActor(desc)));
  ASSERT_TRUE(Load("actors\\thing.adr", &materials));
  preview.Tick();
  // Centred, unturned, then moved 3.6 away: the box of size 2 at an aspect of 1.
  const Matrix4& world = host.device.world;
  EXPECT_FLOAT_EQ(world.m[3][0], -2.0f);
  EXPECT_FLOAT_EQ(world.m[3][1], -2.0f);
  EXPECT_NEAR(world.m[3][2], -2.0f - 3.6f, 1e-5f);
  EXPECT_FLOAT_EQ(world.m[0][0], 1.0f);
}

TEST_F(RenderWindowTest, AResizeKeepsTheVerticalViewAndWidensTheHorizontal) {
  Open(Game(gamewriters::BuildSkinnedActor({.gridSize = 2, .boneCount = 1})));
  const Matrix4 square = preview.Projection();  // 200 x 200
  const i32 requested = host.framesRequested;
  preview.Resize(400, 200);
  EXPECT_FLOAT_EQ(preview.Projection().m[1][1], square.m[1][1]);
  EXPECT_FLOAT_EQ(preview.Projection().m[0][0], square.m[0][0] / 2);
  EXPECT_GT(host.framesRequested, requested);
  preview.Resize(0, 200);  // a window being hidden: nothing to draw into, nothing changes
  EXPECT_FLOAT_EQ(preview.Projection().m[0][0], square.m[0][0] / 2);
}

TEST_F(RenderWindowTest, FailedLoadsEmptyThePreviewAndKeepTheTextUpToTheirFailure) {
  gamewriters::SkinnedActorDesc desc{.meshCount = 2, .gridSize = 2, .boneCount = 1};
  gamewriters::SkinnedActor model = gamewriters::BuildSkinnedActor(desc);
  gamewriters::PaletteDesc shortPalette;  // one material for two meshes
  shortPalette.materials.push_back({.definitionHash = HashExact("SkinnedMaterial")});
  Open(Game(model, {{"actors\\palette_gone.adr",
                     gamewriters::BuildActor({.fileName = "models\\thing.dmod", .paletteName = "gone.dmat"})},
                    {"actors\\short.adr",
                     gamewriters::BuildActor({.fileName = "models\\thing.dmod", .paletteName = "short.dmat"})},
                    {"short.dmat", gamewriters::BuildPalette(shortPalette)},
                    {"actors\\broken.adr", "<ActorRuntime>"}}));
  ASSERT_TRUE(Load("actors\\thing.adr", &materials));
  const std::string good = preview.GetInfoText();

  for (const char* early : {"actors\\missing.adr", "actors\\broken.adr", "actors\\palette_gone.adr"}) {
    EXPECT_FALSE(Load(early, &materials)) << early;
    EXPECT_EQ(preview.GetInfoText(), good) << early;
    EXPECT_EQ(preview.DrawCount(), 0u) << early;
  }
  EXPECT_FALSE(Load("actors\\short.adr", &materials));
  EXPECT_STREQ(preview.GetInfoText(),
               "Info for actors\\short.adr\r\n\r\n-- Textures for mesh 0\r\n-- Textures for mesh 1\r\n");
  EXPECT_EQ(preview.DrawCount(), 0u);
  EXPECT_EQ(host.device.liveMeshes, 0);
  EXPECT_FALSE(Load("actors\\thing.adr", nullptr));
}

// The GPU would read past the vertex buffer for an index past the vertices: such a mesh fails the
// load instead of reaching the device.
TEST_F(RenderWindowTest, AnIndexPastTheVerticesIsNeverUploaded) {
  gamewriters::SkinnedActor model = gamewriters::BuildSkinnedActor({.gridSize = 2, .boneCount = 1});
  const std::string indices = std::string("\0\0\1\0\2\0\2\0\1\0\3\0", 12);
  const size_t at = model.model.find(indices);
  ASSERT_NE(at, std::string::npos);
  model.model[at + 10] = 4;  // four vertices: 4 is one past the last
  Open(Game(model));
  EXPECT_FALSE(Load("actors\\thing.adr", &materials));
  EXPECT_EQ(preview.DrawCount(), 0u);
  EXPECT_EQ(host.device.liveMeshes, 0);
}

TEST_F(RenderWindowTest, AsksForAFirstFrameAtInitAndStopsALoadWithoutItsContext) {
  gamewriters::SkinnedActorDesc desc{.meshCount = 2, .gridSize = 2, .boneCount = 1};
  Open(Game(gamewriters::BuildSkinnedActor(desc)));
  // Without it the control shows whatever was there until the first actor, not the clear colour.
  EXPECT_EQ(host.framesRequested, 1);
  ASSERT_TRUE(Load("actors\\thing.adr", &materials));

  host.current = false;
  const size_t made = host.device.vertexCounts.size();
  EXPECT_FALSE(Load("actors\\thing.adr", &materials));
  EXPECT_EQ(preview.DrawCount(), 0u);
  EXPECT_EQ(host.device.vertexCounts.size(), made) << "no mesh is made without the context";
}

DecodedImage Image(u32 width, u32 height) {
  DecodedImage image;
  EXPECT_TRUE(image.pixels.SetSize(width * height * 4));
  image.width = width;
  image.height = height;
  return image;
}

TEST_F(RenderWindowTest, AnImageTakesThePlaceOfTheModelAndTheTextThatOfThePanel) {
  Open(Game(gamewriters::BuildSkinnedActor({.meshCount = 2, .gridSize = 2, .boneCount = 1})));
  ASSERT_TRUE(Load("actors\\thing.adr", &materials));
  ASSERT_TRUE(preview.ShowImage(Image(4, 2), "Info for wide.png\r\n"));
  EXPECT_EQ(host.device.liveMeshes, 0) << "the model went";
  EXPECT_EQ(host.device.liveTextures, 1);
  EXPECT_STREQ(preview.GetInfoText(), "Info for wide.png\r\n");

  // Drawn alone, flat and whole, whatever the views say; the panel keeps its text.
  preview.SetViews({.skeleton = true, .wireframe = true});
  preview.Tick();
  ASSERT_EQ(host.device.draws.size(), 1u);
  EXPECT_TRUE(host.device.draws[0].image);
  EXPECT_FALSE(host.device.draws[0].wireframe);
  EXPECT_NE(host.device.draws[0].texture, 0u);
  const ViewRect wide = host.device.imageRect;
  EXPECT_EQ((std::vector<f32>{wide.left, wide.bottom, wide.right, wide.top}),
            (std::vector<f32>{-1.0f, -0.5f, 1.0f, 0.5f}));
  EXPECT_STREQ(preview.GetInfoText(), "Info for wide.png\r\n");
  preview.SetViews({});

  preview.Resize(400, 100);  // wider than the image now: bars on both sides
  preview.Tick();
  EXPECT_FLOAT_EQ(host.device.imageRect.right, 0.5f);
  EXPECT_FLOAT_EQ(host.device.imageRect.top, 1.0f);

  // A plain file clears the preview; an actor after an image is drawn as ever.
  preview.ShowText("Info for notes.xml\r\n");
  EXPECT_EQ(host.device.liveTextures, 0);
  preview.Tick();
  EXPECT_TRUE(host.device.draws.empty());
  EXPECT_STREQ(preview.GetInfoText(), "Info for notes.xml\r\n");
  ASSERT_TRUE(preview.ShowImage(Image(1, 1), ""));
  ASSERT_TRUE(Load("actors\\thing.adr", &materials));
  EXPECT_EQ(host.device.liveTextures, 0);
  preview.Tick();
  ASSERT_EQ(host.device.draws.size(), 2u);
  EXPECT_FALSE(host.device.draws[0].image || host.device.draws[1].image);
}

TEST_F(RenderWindowTest, AnImageWithoutItsContextOrPixelsLeavesThePreviewClear) {
  Open(Game(gamewriters::BuildSkinnedActor({.gridSize = 2, .boneCount = 1})));
  EXPECT_FALSE(preview.ShowImage(DecodedImage{}, "Info for empty.dds\r\n"));
  EXPECT_STREQ(preview.GetInfoText(), "Info for empty.dds\r\n") << "the text is shown all the same";
  host.current = false;
  EXPECT_FALSE(preview.ShowImage(Image(2, 2), "Info for a.png\r\n"));
  EXPECT_EQ(host.device.firstPixels.size(), 0u) << "nothing is made without the context";
  preview.Tick();
  EXPECT_TRUE(host.device.draws.empty());
}

TEST(RenderWindowHollow, WithoutGraphicsEveryCallDoesNothing) {
  FakeHost host;
  host.available = false;
  CRenderWindow preview(host, 640, 480);
  EXPECT_STREQ(preview.GetInfoText(), "");
  PackIndex packs;
  EXPECT_FALSE(preview.Init(&packs));
  MaterialDefinitionSet materials;
  EXPECT_FALSE(preview.LoadActor(nullptr, "actors\\thing.adr", &materials, nullptr));
  EXPECT_FALSE(preview.ShowImage(Image(2, 2), "Info for a.png"));
  preview.ShowText("Info for b.xml");
  preview.Tick();
  EXPECT_TRUE(host.device.draws.empty());
  EXPECT_EQ(host.closed, 0);
}

// Gives one rig of three bones, a root with two children, to every actor; or none.
class FixedRig final : public ISkeletonSource {
 public:
  FixedRig() {
    EXPECT_TRUE(rig.bones.SetSize(3));
    for (u32 i = 0; i < 3; ++i) {
      rig.bones[i].parent = i == 0 ? -1 : 0;
      rig.bones[i].translation[1] = f32(i);
    }
  }
  const RigSkeleton* ShownRig(const ActorDefinition&, const ModelFile& model, const char*& name) override {
    ++asked;
    bones = model.bones.Count();
    if (!give) return nullptr;
    name = "Walk";
    return &rig;
  }

  RigSkeleton rig;
  bool give = true;
  i32 asked = 0;
  u32 bones = 0;  // of the model it was last asked about
};

class PreviewViewsTest : public RenderWindowTest {
 protected:
  void SetUp() override {
    Open(Game(gamewriters::BuildSkinnedActor({.meshCount = 2, .gridSize = 2, .boneCount = 2})));
    ASSERT_TRUE(Load("actors\\thing.adr", &materials, &rigs));
    base = preview.GetInfoText();
  }
  // The calls of one frame.
  std::vector<FakeDevice::DrawCall> Frame() {
    preview.Tick();
    return host.device.draws;
  }

  FixedRig rigs;
  std::string base;
};

TEST_F(PreviewViewsTest, OffTheyChangeNeitherTheFrameNorThePanel) {
  EXPECT_EQ(rigs.asked, 1);
  EXPECT_EQ(rigs.bones, 2u);
  EXPECT_EQ(host.device.liveSkeletons, 1) << "made with the model, drawn when asked";
  const auto frame = Frame();
  ASSERT_EQ(frame.size(), 2u);
  for (const auto& draw : frame) EXPECT_FALSE(draw.skeleton || draw.wireframe);
  EXPECT_EQ(host.device.wireframeCalls, 0);
  EXPECT_EQ(base.find("Skeleton"), std::string::npos);
}

TEST_F(PreviewViewsTest, EachViewDrawsAsItsKeySays) {
  const struct {
    PreviewViews views;
    size_t calls;
    bool lastIsSkeleton, meshesInWireframe;
  } cases[] = {
      {{.skeleton = true}, 3, true, false},
      {{.wireframe = true}, 2, false, true},
      {{.skeleton = true, .wireframe = true}, 3, true, true},
      {{}, 2, false, false},
  };
  for (const auto& c : cases) {
    const i32 requested = host.framesRequested;
    preview.SetViews(c.views);
    EXPECT_GT(host.framesRequested, requested) << "a change is drawn";
    const auto frame = Frame();
    ASSERT_EQ(frame.size(), c.calls);
    EXPECT_EQ(frame.back().skeleton, c.lastIsSkeleton);
    EXPECT_EQ(frame.front().wireframe, c.meshesInWireframe);
    EXPECT_FALSE(host.device.wireframe) << "left as it was found";
    if (c.lastIsSkeleton) {
      EXPECT_EQ(frame.back().texture, 3u) << "three joints";
      EXPECT_EQ(frame.back().indexCount, 4u) << "two bones to their parent";
      EXPECT_FALSE(frame.back().wireframe);
    }
  }
}

}  // namespace
