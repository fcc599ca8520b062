// Textures brought out with the model: PNG files beside it, each mesh's diffuse one on its
// material, checked by our decoders, Assimp and Blender's importer.
#include <assimp/scene.h>
#include <gtest/gtest.h>
#include <assimp/Importer.hpp>

#include <cstdio>
#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>

#include "app/convert_actor.h"
#include "game_writers/image_writer.h"
#include "game_writers/pack_writer.h"
#include "game_writers/skinned_actor.h"
#include "game_writers/xml_writer.h"
#include "image/image_decode.h"
#include "support/shell_run.h"
#include "support/temp_dir.h"

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
 public:
  void SetUp() override {
    gamewriters::SkinnedActorDesc desc{
        .meshCount = 2, .gridSize = 2, .boneCount = 2, .semiTransparent = semiTransparent};
    desc.textures = {
        {{"baseDiffuse", "tex\\corners.png"}, {"normalMap", "tex\\missing.dds"}, {"glow", "tex\\broken.png"}},
        {{"BaseDiffuse", "tex\\stone.dds"}}};
    const gamewriters::SkinnedActor actor = gamewriters::BuildSkinnedActor(desc);
    stoneDds = gamewriters::BuildDds(4, 2, {10, 20, 30, 255, 40, 50, 60, 255, 70, 80, 90, 255, 1,  2,  3,  4,
                                            5,  6,  7,  8,   9,  10, 11, 12,  13, 14, 15, 16,  17, 18, 19, 20});
    const std::vector<gamewriters::PackFileEntry> files = {
        {"materials_3.xml", actor.catalogue},
        {"model.dmod", actor.model},
        {"actor.adr", gamewriters::BuildActor({.fileName = "model.dmod"})},
        {"tex\\corners.png", gamewriters::BuildPng(2, 2, kCorners)},
        {"tex\\stone.dds", stoneDds},
        {"tex\\broken.png", "not an image"},
    };
    ASSERT_TRUE(gamewriters::WriteFileBytes(dir.Join("assets_000.pack"),
                                            gamewriters::BuildPack({{gamewriters::PackChunk{files}}})));
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
                 {.creationTime = FixedTime, .textures = textures, .format = ExportFormat::kByExtension});
    return outcome;
  }

  testsupport::TempDir dir;
  PackIndex packs;
  MaterialDefinitionSet materials;
  RigTable rigs;
  std::string stoneDds;
  bool semiTransparent = false;  // the meshes' material is see-through
};

// The same actor, its material see-through.
class SeeThroughTextureExport : public TextureExport {
 protected:
  SeeThroughTextureExport() { semiTransparent = true; }
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
  // Both are diffuse textures of materials that aren't see-through: the corners' alpha is all
  // opaque and goes, the stone's isn't and is kept in a file of its own.
  EXPECT_EQ(written, (std::vector<std::string>{"actor.fbm/tex/corners.png", "actor.fbm/tex/stone.png",
                                               "actor.fbm/tex/stone_alpha.png"}));

  DecodedImage png, alpha, source;
  const std::string corners = gamewriters::ReadFileBytes(dir.Join("out/actor.fbm/tex/corners.png"));
  ASSERT_TRUE(Decode(corners, png));
  EXPECT_EQ(std::vector<u8>(png.pixels.begin(), png.pixels.end()), kCorners) << "a PNG comes out exactly";
  EXPECT_EQ(corners[25], 2) << "colour type 2: no alpha channel";
  ASSERT_TRUE(Decode(gamewriters::ReadFileBytes(dir.Join("out/actor.fbm/tex/stone.png")), png));
  ASSERT_TRUE(Decode(gamewriters::ReadFileBytes(dir.Join("out/actor.fbm/tex/stone_alpha.png")), alpha));
  ASSERT_TRUE(Decode(stoneDds, source));
  EXPECT_EQ(png.width, 4u);
  EXPECT_EQ(png.height, 2u);
  ASSERT_EQ(png.pixels.Count(), source.pixels.Count());
  ASSERT_EQ(alpha.pixels.Count(), source.pixels.Count());
  bool translucent = false;
  for (u32 i = 0; i < source.pixels.Count(); i += 4) {
    for (u32 c = 0; c < 3; ++c) EXPECT_EQ(png.pixels[i + c], source.pixels[i + c]) << "a DDS as our reader decodes it";
    EXPECT_EQ(png.pixels[i + 3], 255);
    EXPECT_EQ(alpha.pixels[i], source.pixels[i + 3]) << "the alpha as the game stores it";
    translucent = translucent || source.pixels[i + 3] != 255;
  }
  EXPECT_TRUE(translucent) << "the stone's alpha isn't all opaque";

  // Without the option: the file of before, and no folder.
  const std::string plain = dir.Join("plain/actor.fbx");
  std::filesystem::create_directories(dir.Join("plain"));
  const std::string withTextures = gamewriters::ReadFileBytes(out);
  ASSERT_TRUE(Convert(plain, false).Written());
  EXPECT_FALSE(std::filesystem::exists(dir.Join("plain/actor.fbm")));
  EXPECT_NE(gamewriters::ReadFileBytes(plain), withTextures);
  testsupport::TempDir again;
  ASSERT_TRUE(Convert(again.Join("actor.fbx"), false).Written());
  EXPECT_EQ(gamewriters::ReadFileBytes(again.Join("actor.fbx")), gamewriters::ReadFileBytes(plain));
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
    EXPECT_TRUE(std::filesystem::exists(dir.Join(file.C_Str())) || std::filesystem::exists(file.C_Str()))
        << file.C_Str();
  }
  std::sort(files.begin(), files.end());
  EXPECT_EQ(files, (std::vector<std::string>{"actor.fbm/tex/corners.png", "actor.fbm/tex/stone.png"}));
}

// What Blender's importer makes of the file, as the probe script prints it.
std::string BlenderProbe(const std::string& fbx) {
  const std::string command = "blender -b --factory-startup --python '" TARNWICK_TEST_SOURCE_DIR
                              "/app/blender_texture_probe.py' -- '" +
                              fbx + "' 2>/dev/null";
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
  const std::string corners =
      "\"samples\": {\"0\": [255, 0, 0, 255], \"1\": [0, 255, 0, 255], "
      "\"2\": [0, 0, 255, 255], \"3\": [255, 255, 255, 255]}";
  EXPECT_NE(probe.find(corners), std::string::npos) << probe;
  EXPECT_NE(
      probe.find("\"exists\": true, \"path\": \"" + dir.Join("actor.fbm/tex/corners.png") + "\", \"size\": [2, 2]"),
      std::string::npos)
      << probe;
  EXPECT_NE(probe.find("\"exists\": true, \"path\": \"" + dir.Join("actor.fbm/tex/stone.png") + "\", \"size\": [4, 2]"),
            std::string::npos)
      << probe;
}

// Blender's imports of `files`, one JSON object a file: each textured mesh's alpha link, blend
// mode and image.
std::map<std::string, nlohmann::json> OpacityProbe(const std::vector<std::string>& files) {
  std::string command =
      "blender -b --factory-startup --python " TARNWICK_TEST_SOURCE_DIR "/app/blender_opacity_probe.py --";
  for (const std::string& file : files) command += " '" + file + "'";
  const testsupport::ShellRun run = testsupport::RunShell(command + " 2>/dev/null");
  std::map<std::string, nlohmann::json> probes;
  for (size_t at = 0; (at = run.out.find("OPACITY ", at)) != std::string::npos; ++at) {
    const size_t nameEnd = run.out.find(' ', at + 8);
    probes[run.out.substr(at + 8, nameEnd - at - 8)] =
        nlohmann::json::parse(run.out.substr(nameEnd + 1, run.out.find('\n', at) - nameEnd - 1), nullptr, false);
  }
  return probes;
}

// What Blender makes of the diffuse textures, in both formats: opaque unless the material is
// see-through, and the colours of the game's image either way.
void ExpectOpacity(TextureExport& test, const std::string& folder, bool seeThrough, const std::string& stoneDds) {
  std::vector<std::string> files;
  for (const char* name : {"actor.fbx", "actor.glb"}) {
    files.push_back(folder + "/" + name);
    ASSERT_TRUE(test.Convert(files.back(), true).Written()) << name;
  }
  DecodedImage stone;
  ASSERT_TRUE(DecodeImage(reinterpret_cast<const u8*>(stoneDds.data()), stoneDds.size(), stone));
  const std::map<std::string, nlohmann::json> probes = OpacityProbe(files);
  for (const std::string& file : files) {
    SCOPED_TRACE(file);
    ASSERT_TRUE(probes.contains(file));
    const nlohmann::json& meshes = probes.at(file);
    ASSERT_EQ(meshes.size(), 2u) << meshes;
    for (const auto& [name, mesh] : meshes.items()) {
      SCOPED_TRACE(name);
      EXPECT_EQ(mesh["alpha_linked"], seeThrough);
      EXPECT_EQ(mesh["blend"], seeThrough ? "BLEND" : "OPAQUE");
      const std::vector<u8> source =
          mesh["rgb"].size() == 4 * 3 ? kCorners : std::vector<u8>(stone.pixels.begin(), stone.pixels.end());
      ASSERT_EQ(mesh["rgb"].size() / 3, source.size() / 4);
      for (size_t p = 0; p < source.size() / 4; ++p) {
        for (size_t c = 0; c < 3; ++c) EXPECT_EQ(mesh["rgb"][3 * p + c], source[4 * p + c]) << "pixel " << p;
      }
    }
  }
}

TEST_F(TextureExport, BlenderTakesTheDiffuseAsOpaqueWhereTheMaterialIsntSeeThrough) {
  ExpectOpacity(*this, dir.Path(), false, stoneDds);
}

TEST_F(SeeThroughTextureExport, BlenderBlendsBySeeThroughMaterialsAlpha) {
  ExpectOpacity(*this, dir.Path(), true, stoneDds);
  // The FBX material says so in the format's own words.
  const std::string fbx = gamewriters::ReadFileBytes(dir.Join("actor.fbx"));
  EXPECT_NE(fbx.find("TransparentColor"), std::string::npos);
  EXPECT_NE(fbx.find("TransparencyFactor"), std::string::npos);
  EXPECT_FALSE(std::filesystem::exists(dir.Join("actor.fbm/tex/stone_alpha.png"))) << "the alpha stays in the image";
}

}  // namespace
