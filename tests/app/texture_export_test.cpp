// Textures brought out with the model: PNG files beside it, each mesh's diffuse one on its
// material, checked by our decoders, Assimp and Blender's importer.
#include <assimp/Importer.hpp>
#include <assimp/scene.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>

#include "app/convert_actor.h"
#include "image/image_decode.h"
#include "support/image_writer.h"
#include "support/pack_writer.h"
#include "support/shell_run.h"
#include "support/skinned_actor.h"
#include "support/temp_dir.h"
#include "support/xml_writer.h"

namespace {

// A 2 x 2 image whose every corner differs, rows from the top: red, green, then blue, white.
const std::vector<u8> kCorners = {255, 0, 0, 255, 0, 255, 0, 255, 0, 0, 255, 255, 255, 255, 255, 255};

FbxCreationTime FixedTime() { return {2026, 11, 24, 9, 0, 0, 0}; }

bool Decode(const std::string& bytes, DecodedImage& image) {
  return DecodeImage(reinterpret_cast<const u8*>(bytes.data()), bytes.size(), image);
}

struct Answers : ISaveDialog, IRigDialog {
  std::string path;
  bool AskSavePath(CStringBufferA& out) override { return out.Format("%s", path.c_str()) > 0; }
  i32 Run(const RigCandidate*, const RigSkeleton*&) override { return 0; }
};

// Two quads of 2 x 2 vertices: the first drawn with a PNG and naming a texture the packs lack and one
// that isn't an image, the second with an uncompressed DDS.
class TextureExport : public testing::Test {
 protected:
  void SetUp() override {
    testsupport::SkinnedActorDesc desc{.meshCount = 2, .gridSize = 2, .boneCount = 2};
    desc.textures = {{{"baseDiffuse", "tex\\corners.png"}, {"normalMap", "tex\\missing.dds"}, {"glow", "tex\\broken.png"}},
                     {{"BaseDiffuse", "tex\\stone.dds"}}};
    const testsupport::SkinnedActor actor = testsupport::BuildSkinnedActor(desc);
    stoneDds = testsupport::BuildDds(4, 2, {10, 20, 30, 255, 40, 50, 60, 255, 70, 80, 90, 255, 1, 2, 3, 4,
                                            5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20});
    const std::vector<testsupport::PackFileEntry> files = {
        {"materials_3.xml", actor.catalogue},
        {"model.dmod", actor.model},
        {"actor.adr", testsupport::BuildActor({.fileName = "model.dmod"})},
        {"tex\\corners.png", testsupport::BuildPng(2, 2, kCorners)},
        {"tex\\stone.dds", stoneDds},
        {"tex\\broken.png", "not an image"},
    };
    ASSERT_TRUE(testsupport::WriteFileBytes(dir.Join("assets_000.pack"), testsupport::BuildPack({{testsupport::PackChunk{files}}})));
    ASSERT_TRUE(packs.Open(dir.Path().c_str()));
    CByteBuffer catalogue;
    ASSERT_TRUE(packs.FetchByName("materials_3.xml", catalogue));
    ASSERT_TRUE(materials.Read(catalogue));
  }
  void TearDown() override { materials.Destroy(); }

  ConvertOutcome Convert(const std::string& path, bool textures) {
    Answers answers;
    answers.path = path;
    ConvertOutcome outcome;
    ConvertActor(GameTables{packs, materials, rigs}, *packs.Find("actor.adr"), "actor.adr", {answers, answers}, outcome,
                 {.creationTime = FixedTime, .textures = textures});
    return outcome;
  }

  testsupport::TempDir dir;
  PackIndex packs;
  MaterialDefinitionSet materials;
  RigTable rigs;
  std::string stoneDds;
};

TEST_F(TextureExport, WritesEachTextureOnceAsPngWithItsPixelsAndLeavesOutWhatItCant) {
  const std::string out = dir.Join("out/actor.fbx");
  std::filesystem::create_directories(dir.Join("out"));
  const ConvertOutcome outcome = Convert(out, true);
  ASSERT_TRUE(outcome.Written()) << outcome.logLine.Text();
  EXPECT_EQ(outcome.notes, (std::vector<std::string>{"Texture \"tex\\missing.dds\" was not found.",
                                                     "Texture \"tex\\broken.png\" can't be decoded."}));
  std::vector<std::string> written;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(dir.Join("out/actor.fbm"))) {
    if (entry.is_regular_file()) written.push_back(std::filesystem::relative(entry.path(), dir.Join("out")).string());
  }
  std::sort(written.begin(), written.end());
  EXPECT_EQ(written, (std::vector<std::string>{"actor.fbm/tex/corners.png", "actor.fbm/tex/stone.png"}));

  DecodedImage png, source;
  ASSERT_TRUE(Decode(testsupport::ReadFileBytes(dir.Join("out/actor.fbm/tex/corners.png")), png));
  EXPECT_EQ(std::vector<u8>(png.pixels.begin(), png.pixels.end()), kCorners) << "a PNG comes out exactly";
  ASSERT_TRUE(Decode(testsupport::ReadFileBytes(dir.Join("out/actor.fbm/tex/stone.png")), png));
  ASSERT_TRUE(Decode(stoneDds, source));
  EXPECT_EQ(png.width, 4u);
  EXPECT_EQ(png.height, 2u);
  EXPECT_TRUE(std::equal(png.pixels.begin(), png.pixels.end(), source.pixels.begin(), source.pixels.end()))
      << "a DDS as our reader decodes it";

  // Without the option: the file of before, and no folder.
  const std::string plain = dir.Join("plain/actor.fbx");
  std::filesystem::create_directories(dir.Join("plain"));
  const std::string withTextures = testsupport::ReadFileBytes(out);
  ASSERT_TRUE(Convert(plain, false).Written());
  EXPECT_FALSE(std::filesystem::exists(dir.Join("plain/actor.fbm")));
  EXPECT_NE(testsupport::ReadFileBytes(plain), withTextures);
  testsupport::TempDir again;
  ASSERT_TRUE(Convert(again.Join("actor.fbx"), false).Written());
  EXPECT_EQ(testsupport::ReadFileBytes(again.Join("actor.fbx")), testsupport::ReadFileBytes(plain));
}

TEST_F(TextureExport, AssimpFindsEachMeshsDiffuseTextureFile) {
  const std::string out = dir.Join("actor.fbx");
  ASSERT_TRUE(Convert(out, true).Written());
  Assimp::Importer importer;
  const aiScene* scene = importer.ReadFile(out, 0);
  ASSERT_TRUE(scene) << importer.GetErrorString();
  ASSERT_EQ(scene->mNumMeshes, 2u);
  std::vector<std::string> files;
  for (unsigned m = 0; m < scene->mNumMeshes; ++m) {
    const aiMaterial* material = scene->mMaterials[scene->mMeshes[m]->mMaterialIndex];
    aiString file;
    ASSERT_EQ(material->GetTexture(aiTextureType_DIFFUSE, 0, &file), aiReturn_SUCCESS) << "mesh " << m;
    files.push_back(file.C_Str());
    EXPECT_TRUE(std::filesystem::exists(dir.Join(file.C_Str())) || std::filesystem::exists(file.C_Str())) << file.C_Str();
  }
  std::sort(files.begin(), files.end());
  EXPECT_EQ(files, (std::vector<std::string>{"actor.fbm/tex/corners.png", "actor.fbm/tex/stone.png"}));
}

// What Blender's importer makes of the file, as the probe script prints it.
std::string BlenderProbe(const std::string& fbx) {
  const std::string command = "blender -b --factory-startup --python '" TARNWICK_TEST_SOURCE_DIR
                              "/app/blender_texture_probe.py' -- '" + fbx + "' 2>/dev/null";
  const std::string output = testsupport::RunShell(command).out;
  const size_t at = output.find("PROBE ");
  return at == std::string::npos ? output : output.substr(at + 6, output.find('\n', at) - at - 6);
}

TEST_F(TextureExport, BlenderShowsTheImagesRightWayUpOnTheirMeshes) {
  const std::string out = dir.Join("actor.fbx");
  ASSERT_TRUE(Convert(out, true).Written());
  const std::string probe = BlenderProbe(out);
  // Vertex v lies at column v % 2, row v / 2 with UV (column, row): the game's (0, 0) is the
  // image's first row, so vertex 0 must show the top left red and vertex 3 the bottom right white.
  const std::string corners = "\"samples\": {\"0\": [255, 0, 0, 255], \"1\": [0, 255, 0, 255], "
                              "\"2\": [0, 0, 255, 255], \"3\": [255, 255, 255, 255]}";
  EXPECT_NE(probe.find(corners), std::string::npos) << probe;
  EXPECT_NE(probe.find("\"exists\": true, \"path\": \"" + dir.Join("actor.fbm/tex/corners.png") + "\", \"size\": [2, 2]"),
            std::string::npos)
      << probe;
  EXPECT_NE(probe.find("\"exists\": true, \"path\": \"" + dir.Join("actor.fbm/tex/stone.png") + "\", \"size\": [4, 2]"),
            std::string::npos)
      << probe;
}

}  // namespace
