#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "assets/pack_index.h"
#include "core/hash.h"
#include "game_writers/model_writer.h"
#include "game_writers/pack_writer.h"
#include "game_writers/rig_writer.h"
#include "game_writers/sample_game.h"
#include "game_writers/skinned_actor.h"
#include "game_writers/xml_writer.h"
#include "image/image_decode.h"
#include "support/shell_run.h"
#include "support/temp_dir.h"
#include "support/wine_prefix.h"

namespace {

using CliRun = testsupport::ShellRun;

// The command line program with `arguments`: its standard output, or with `errors` its standard
// error; the other is dropped. It runs with `home` as the home folder, without $WINEPREFIX and
// $XDG_DATA_HOME, so that the real home's digests and prefixes stay out of it.
CliRun Cli(const std::string& arguments, bool errors = false, const std::string& home = "/nonexistent") {
  const std::string redirect = errors ? " 2>&1 >/dev/null" : " 2>/dev/null";
  const std::string environment = "env -u WINEPREFIX -u XDG_DATA_HOME HOME='" + home + "' ";
  return testsupport::RunShell(environment + TARNWICK_CLI + " " + arguments + redirect);
}

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  for (size_t at = 0, end; (end = text.find('\n', at)) != std::string::npos; at = end + 1)
    lines.push_back(text.substr(at, end - at));
  return lines;
}

TEST(Cli, ConvertsEveryActorOfTheSampleGame) {
  testsupport::TempDir dir;
  ASSERT_TRUE(gamewriters::BuildSampleGame(dir.Path(), nullptr));
  const std::string data = "--data-dir '" + gamewriters::SampleGameLayout(dir.Path()).userData + "' ";

  const CliRun games = Cli(data + "games");
  EXPECT_EQ(games.status, 0);
  EXPECT_EQ(games.out, "Aldermoor\t" + gamewriters::SampleGameLayout(dir.Path()).game + "\n")
      << "the folder is shown with the platform's separators";
  const std::vector<std::string> actors = Lines(Cli(data + "list").out);
  ASSERT_EQ(actors.size(), 10u);
  EXPECT_EQ(Lines(Cli(data + "list 'kn?ght'").out),
            (std::vector<std::string>{"actors\\knight.adr", "actors\\knight_red.adr"}));

  for (const std::string& actor : actors) {
    SCOPED_TRACE(actor);
    const std::string file = dir.Join("out.fbx");
    std::filesystem::remove(file);
    const std::string convert = data + "convert '" + actor + "' -o '" + file + "'";
    CliRun run = Cli(convert);
    if (run.status != 0 && actor == "actors\\scarecrow.adr") {
      EXPECT_FALSE(std::filesystem::exists(file)) << "several rigs fit: nothing written without --rig";
      run = Cli(convert + " --rig childidle");
    }
    EXPECT_EQ(run.status, 0);
    EXPECT_GT(std::filesystem::file_size(file), 1000u);
  }
  // A path that can't be written fails, and leaves nothing beside the earlier file either.
  const auto before = std::distance(std::filesystem::directory_iterator(dir.Path()), {});
  EXPECT_NE(Cli(data + "convert 'actors\\knight.adr' -o '" + dir.Join("out.fbx/x.fbx") + "'").status, 0);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.Path()), {}), before);
  EXPECT_NE(Cli(data + "convert actors\\\\nobody.adr -o x.fbx").status, 0);
  EXPECT_NE(Cli("--game-dir '" + dir.Join("nowhere") + "' list").status, 0);
  EXPECT_EQ(Cli("--help").status, 0);
}

// A game whose actors fail at each step a conversion takes, beside one that converts.
std::string FailingGame(const testsupport::TempDir& dir) {
  const gamewriters::SkinnedActor hero = gamewriters::BuildSkinnedActor({.boneCount = 2});
  gamewriters::RigLayout clash = hero.rig;
  clash.bones.push_back({.name = "BONE_0"});  // hashes as bone_0: two rig bones claim one model bone
  gamewriters::PaletteDesc unknown;
  unknown.materials = {{.definitionHash = 1}};
  const auto actor = [](const std::string& model, const std::string& palette = "", const std::string& set = "") {
    gamewriters::ActorXml xml{.fileName = model};
    if (!palette.empty()) xml.paletteName = palette;
    if (!set.empty()) {
      xml.hasAnimationNetwork = true;
      xml.networkFileName = "rigs\\hero.mrn";
      xml.animSetName = set;
    }
    return gamewriters::BuildActor(xml);
  };
  const std::vector<gamewriters::PackFileEntry> files = {
      {"materials_3.xml", hero.catalogue},
      {"models\\hero.dmod", hero.model},
      {"hero.mrn", gamewriters::BuildRigNetwork(
                       gamewriters::NetworkWithSets({{1, hero.rig}, {2, clash}}, {{"Idle", 1}, {"Clash", 2}}))},
      {"palettes\\unknown.dmat", gamewriters::BuildPalette(unknown)},
      {"actors\\hero.adr", actor("models\\hero.dmod", "", "Idle")},
      {"actors\\broken.adr", "<ActorRuntime"},
      {"actors\\no_model.adr", actor("models\\missing.dmod")},
      {"actors\\bad_model.adr", actor("actors\\hero.adr")},
      {"actors\\no_palette.adr", actor("models\\hero.dmod", "palettes\\none.dmat")},
      {"actors\\bad_palette.adr", actor("models\\hero.dmod", "actors\\hero.adr")},
      {"actors\\clash.adr", actor("models\\hero.dmod", "", "Clash")},
      {"actors\\bad_mesh.adr", actor("models\\hero.dmod", "palettes\\unknown.dmat")},
  };
  const std::string folder = dir.Join("game");
  EXPECT_TRUE(gamewriters::WriteFileBytes(folder + "/Resources/Assets/assets_000.pack",
                                          gamewriters::BuildPack({{gamewriters::PackChunk{files}}})));
  return folder;
}

TEST(Cli, ConvertReportsEachOutcomeWithItsLineAndStatus) {
  testsupport::TempDir dir;
  const std::string game = "--game-dir '" + FailingGame(dir) + "' ";
  const std::string written = dir.Join("out.fbx");
  const std::string unwritable = dir.Join("missing/out.fbx");
  struct Case {
    const char* actor;
    std::string output;
    int status;
    std::string line;  // the last line on standard error
  };
  const Case cases[] = {
      {"actors\\hero.adr", written, 0, "Wrote " + written},
      {"actors\\broken.adr", written, 1, "Error parsing \"actors\\broken.adr\"."},
      {"actors\\no_model.adr", written, 1, "Error reading \"models\\missing.dmod\"."},
      {"actors\\bad_model.adr", written, 1, "Error parsing \"actors\\bad_model.adr\"."},
      {"actors\\no_palette.adr", written, 1, "Error reading \"palettes\\none.dmat\"."},
      {"actors\\bad_palette.adr", written, 1, "Error parsing \"actors\\hero.adr\"."},
      {"actors\\clash.adr", written, 1, "Failed to initialize rig state."},
      {"actors\\bad_mesh.adr", written, 1, "Failed to convert mesh."},
      {"actors\\hero.adr", unwritable, 1, "Failed to write \"" + unwritable + "\"."},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.actor) + " to " + c.output);
    std::filesystem::remove(written);
    const CliRun run = Cli(game + "convert '" + c.actor + "' -o '" + c.output + "'", true);
    EXPECT_EQ(run.status, c.status);
    std::vector<std::string> lines = Lines(run.out);
    while (!lines.empty() && lines.back().empty()) lines.pop_back();  // a line that ends in a line end
    if (c.status) {
      ASSERT_GE(lines.size(), 2u) << run.out;
      EXPECT_EQ(lines[lines.size() - 2], c.line);
      EXPECT_EQ(lines.back(), std::string("tarnwick-cli: \"") + c.actor + "\" was not converted");
    } else {
      ASSERT_FALSE(lines.empty());
      EXPECT_EQ(lines.back(), c.line);
    }
    EXPECT_EQ(std::filesystem::exists(written), c.status == 0);
  }
}

TEST(Cli, BatchConvertSummarisesAndExitsByWhatWasWritten) {
  testsupport::TempDir dir;
  const std::string game = "--game-dir '" + FailingGame(dir) + "' ";
  const std::string out = dir.Join("out");
  const CliRun run = Cli(game + "convert 'actors\\*' --out-dir '" + out + "' --jobs 2");
  EXPECT_EQ(run.status, 1) << "some failed";
  const std::vector<std::string> lines = Lines(run.out);
  ASSERT_EQ(lines.size(), 8u + 1 + 1 + 7) << run.out;  // a line per actor, the counts, a heading, the failures
  EXPECT_EQ(lines[8].substr(0, 19), "Converted 8 actors ");
  EXPECT_EQ(lines[8].substr(lines[8].find(':')), ": 1 written, 7 failed, 0 skipped.");
  EXPECT_EQ(lines[9], "Failed:");
  EXPECT_EQ(lines[10], "  actors\\bad_mesh.adr: Failed to convert mesh.")
      << "the list's order, the line without its end";
  EXPECT_EQ(lines[16], "  actors\\no_palette.adr: Error reading \"palettes\\none.dmat\".");
  EXPECT_TRUE(std::filesystem::exists(out + "/actors/hero.fbx"));

  struct Case {
    std::string arguments;
    int status;
  };
  const std::string sample = dir.Join("sample");
  ASSERT_TRUE(gamewriters::BuildSampleGame(sample, nullptr));
  const std::string data = "--data-dir '" + gamewriters::SampleGameLayout(sample).userData + "' ";
  const Case cases[] = {
      {data + "convert '*' --out-dir '" + dir.Join("all") + "' --rig childidle", 0},
      {data + "convert '*' --out-dir '" + dir.Join("all") + "'", 1},  // the scarecrow's rig is not answered
      {data + "convert 'nobody*' --out-dir '" + dir.Join("none") + "'", 2},
      {data + "convert '*' --out-dir '" + dir.Join("x") + "' --jobs 0", 2},
      {data + "convert '*' --out-dir '" + dir.Join("x") + "' -o one.fbx", 2},
      {"--game-dir '" + dir.Join("nowhere") + "' convert '*' --out-dir '" + dir.Join("x") + "'", 2},
      {data + "list a b", 2},
  };
  for (const Case& c : cases) EXPECT_EQ(Cli(c.arguments).status, c.status) << c.arguments;
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.Join("all/actors")), {}), 10);
}

// Every command opens a game the one way and says by one meaning of its status how it went.
TEST(Cli, EveryCommandOpensAGameFolderAsTheWindowDoesAndExitsByOneMeaning) {
  testsupport::TempDir dir;
  ASSERT_TRUE(gamewriters::BuildSampleGame(dir.Path(), nullptr));
  const gamewriters::SampleGamePaths layout = gamewriters::SampleGameLayout(dir.Path());
  const std::string folder = "--game-dir '" + layout.game + "' ";
  const CliRun games = Cli(folder + "games", false);
  EXPECT_EQ(games.status, 0);
  EXPECT_EQ(games.out, "game\t" + layout.game + "\n") << "listed under the folder's name";
  EXPECT_EQ(Lines(Cli(folder + "games", true).out)[0], "Found game \"game\" at " + layout.game);

  const std::string empty = dir.Join("empty");
  std::filesystem::create_directories(empty);
  const CliRun refused = Cli("--game-dir '" + empty + "' list", true);
  EXPECT_EQ(refused.status, 2);
  EXPECT_EQ(Lines(refused.out),
            std::vector<std::string>{"No game in " + empty + ": it holds no Resources/Assets/assets_000.pack"})
      << "the window's line, and no game opened in its place";

  const std::string out = dir.Join("out");
  struct Case {
    std::string opening;  // how the game is found
    int status;
  };
  const Case openings[] = {
      {folder, 0},
      {"--data-dir '" + layout.userData + "' ", 0},
      {"--game-dir '" + empty + "' ", 2},                           // a folder that holds no game
      {"--data-dir '" + empty + "' ", 2},                           // no game found
      {"--data-dir '" + layout.userData + "' --game Nowhere ", 2},  // no such game
  };
  const std::pair<std::string, int> commands[] = {
      {"games", 0},
      {"list", 0},
      {"convert 'actors\\knight.adr' -o '" + dir.Join("knight.fbx") + "'", 0},
      {"convert 'actors\\*' --out-dir '" + out + "' --rig Idle", 0},
      {"convert 'actors\\scarecrow.adr' -o '" + dir.Join("scarecrow.fbx") + "'", 1},  // several rigs: skipped
      {"convert 'actors\\scarecrow.adr' --out-dir '" + out + "'", 1},
      {"convert 'actors\\nobody.adr' -o '" + dir.Join("nobody.fbx") + "'", 2},
      {"convert 'nobody*' --out-dir '" + out + "'", 2},
      {"list a b", 2},
      {"unknown", 2},
  };
  for (const Case& opening : openings) {
    for (const auto& [command, status] : commands) {
      const bool usage = command == "list a b" || command == "unknown";
      const int expected = usage ? 2 : opening.status ? opening.status : status;
      EXPECT_EQ(Cli(opening.opening + command).status, expected) << opening.opening << command;
    }
  }
  EXPECT_FALSE(std::filesystem::exists(dir.Join("scarecrow.fbx")));
}

// Every file of the sample game listed with its size, and extracted: raw as stored, and with
// --images png each image as the preview decodes it.
TEST(Cli, FilesListsEveryFileAndExtractWritesThemWithImagesAsThePreviewDecodesThem) {
  testsupport::TempDir dir;
  ASSERT_TRUE(gamewriters::BuildSampleGame(dir.Path(), nullptr));
  const gamewriters::SampleGamePaths layout = gamewriters::SampleGameLayout(dir.Path());
  const std::string game = "--game-dir '" + layout.game + "' ";
  PackIndex packs;
  ASSERT_TRUE(packs.Open((layout.game + "/Resources/Assets").c_str()));
  const CliRun files = Cli(game + "files");
  EXPECT_EQ(files.status, 0);
  const std::vector<std::string> lines = Lines(files.out);
  ASSERT_EQ(lines.size(), packs.EntryCount());
  for (const std::string& line : lines) {
    const size_t tab = line.find('\t');
    ASSERT_NE(tab, std::string::npos) << line;
    const PackEntry* entry = packs.Find(line.substr(tab + 1).c_str());
    ASSERT_TRUE(entry) << line;
    EXPECT_EQ(line.substr(0, tab), std::to_string(entry->size));
  }
  EXPECT_EQ(Lines(Cli(game + "files _d.").out).size(), 13u) << "the search box's matching: the diffuse textures";

  const std::string raw = dir.Join("raw"), png = dir.Join("png");
  EXPECT_EQ(Cli(game + "extract '*' --out-dir '" + raw + "' --jobs 2").status, 0);
  EXPECT_EQ(Cli(game + "extract 'textures\\*' --out-dir '" + png + "' --images png").status, 0);
  size_t images = 0;
  for (u32 i = 0; i < packs.EntryCount(); ++i) {
    std::string path = packs.NameAt(i);
    for (char& c : path) c = c == '\\' ? '/' : c;
    CByteBuffer stored;
    ASSERT_TRUE(packs.FetchByName(packs.NameAt(i), stored));
    EXPECT_EQ(gamewriters::ReadFileBytes(raw + "/" + path),
              std::string(reinterpret_cast<const char*>(stored.Data()), stored.Size()))
        << path;
    if (!path.starts_with("textures/")) continue;
    DecodedImage expected, extracted;
    ASSERT_TRUE(DecodeImage(stored.Data(), stored.Size(), expected)) << path;
    const std::string bytes = gamewriters::ReadFileBytes(png + "/" + path.substr(0, path.rfind('.')) + ".png");
    ASSERT_TRUE(DecodeImage(reinterpret_cast<const u8*>(bytes.data()), bytes.size(), extracted)) << path;
    EXPECT_EQ(extracted.width, expected.width);
    EXPECT_EQ(extracted.height, expected.height);
    EXPECT_TRUE(
        std::equal(extracted.pixels.begin(), extracted.pixels.end(), expected.pixels.begin(), expected.pixels.end()))
        << path;
    ++images;
  }
  EXPECT_EQ(images, 13u);
  EXPECT_EQ(Cli(game + "extract 'nothing*' --out-dir '" + png + "'").status, 2);
  EXPECT_EQ(Cli(game + "extract '*'").status, 2) << "no --out-dir";
  EXPECT_EQ(Cli(game + "extract '*' --out-dir x --images jpg").status, 2);
}

TEST(Cli, FindsListsAndConvertsAGameInAProtonPrefixOrAPrefixGivenByHand) {
  testsupport::TempDir temp;
  ASSERT_TRUE(gamewriters::BuildSampleGame(temp.Path(), nullptr));
  const std::string base = std::filesystem::canonical(temp.Path()).string();
  const std::string home = base + "/home";
  const std::string library = base + "/library";
  const std::string proton = library + "/steamapps/compatdata/99/pfx";
  const std::string game = library + "/steamapps/common/Aldermoor";
  const std::string steam = home + "/.local/share/Steam";
  ASSERT_TRUE(testsupport::MakeWinePrefix(proton, "steamuser"));
  std::filesystem::create_directories(library + "/steamapps/common");
  std::filesystem::rename(base + "/game", game);
  std::string windowsGame = "Z:" + game;
  for (char& c : windowsGame) c = c == '/' ? '\\' : c;
  ASSERT_TRUE(testsupport::WritePrefixDigest(proton, "steamuser", "Marrowgate Studio", "Aldermoor", windowsGame));
  ASSERT_TRUE(gamewriters::WriteFileBytes(steam + "/steamapps/libraryfolders.vdf",
                                          testsupport::LibraryFoldersVdf({steam, library})));
  const std::string noData = "--data-dir '" + base + "/empty' ";

  const CliRun games = Cli(noData + "games", false, home);
  EXPECT_EQ(games.status, 0);
  EXPECT_EQ(games.out, "Aldermoor\t" + game + "\n");
  EXPECT_EQ(Lines(Cli(noData + "games", true, home).out)[0],
            "Found game \"Aldermoor\" at " + game + " (in the Wine prefix " + proton + ")");
  EXPECT_EQ(Lines(Cli(noData + "list", false, home).out).size(), 10u);
  const std::string file = base + "/knight.fbx";
  EXPECT_EQ(Cli(noData + "convert 'actors\\knight.adr' -o '" + file + "'", false, home).status, 0);
  EXPECT_GT(std::filesystem::file_size(file), 1000u);

  // Without the Steam library in the home folder, the prefix is found when it is given.
  EXPECT_EQ(Cli(noData + "--prefix '" + proton + "' games").out, "Aldermoor\t" + game + "\n");
  const CliRun none = Cli(noData + "games", true);
  EXPECT_EQ(none.status, 2);
  EXPECT_EQ(Lines(none.out),
            (std::vector<std::string>{
                "No installed game was found.", "Looked for digest files below " + base + "/empty",
                "Found no Wine prefix at $WINEPREFIX, ~/.wine or in a Steam library",
                "To open a game, choose its installation folder with \"Open folder...\", or start with --game-dir DIR, "
                "or with --prefix DIR for a Wine prefix elsewhere.",
                "tarnwick-cli: no installed game was found"}));
  EXPECT_EQ(Cli("--prefix").status, 2);
  const CliRun mistyped = Cli("--prefix '" + base + "/nowhere' games", true);
  EXPECT_EQ(mistyped.status, 2);
  EXPECT_EQ(mistyped.out, "tarnwick-cli: --prefix needs a value: an existing folder\n");
  const CliRun version = Cli("--version");
  EXPECT_EQ(version.status, 0);
  EXPECT_EQ(version.out.rfind("tarnwick-cli ", 0), 0u) << version.out;
}

}  // namespace

namespace {

std::string Magic(const std::string& path) { return gamewriters::ReadFileBytes(path).substr(0, 4); }

TEST(Cli, TheOutputsExtensionOrFormatChoosesFbxOrGlb) {
  testsupport::TempDir dir;
  const std::string game = "--game-dir '" + FailingGame(dir) + "' convert ";
  struct Case {
    std::string arguments;
    std::string file;
    std::string magic;  // empty: nothing written
    int status;
  };
  const Case cases[] = {
      {"actors\\\\hero.adr -o '" + dir.Join("a.glb") + "'", "a.glb", "glTF", 0},
      {"actors\\\\hero.adr -o '" + dir.Join("b.fbx") + "'", "b.fbx", "Kayd", 0},
      {"actors\\\\hero.adr -o '" + dir.Join("c.fbx") + "' --format glb", "c.fbx", "glTF", 0},
      {"actors\\\\hero.adr -o '" + dir.Join("d.glb") + "' --format fbx", "d.glb", "Kayd", 0},
      {"actors\\\\hero.adr -o '" + dir.Join("e.glb") + "' --format obj", "e.glb", "", 2},
      {"actors\\\\hero.adr -o '" + dir.Join("f.glb") + "' --format", "f.glb", "", 2},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.arguments);
    EXPECT_EQ(Cli(game + c.arguments).status, c.status);
    EXPECT_EQ(std::filesystem::exists(dir.Join(c.file)) ? Magic(dir.Join(c.file)) : "", c.magic);
  }
  EXPECT_EQ(Lines(Cli(game + "actors\\\\hero.adr -o x.glb --format obj", true).out).front(),
            "tarnwick-cli: --format needs a value: fbx or glb");

  // A batch writes .glb files with --format glb, .fbx files otherwise.
  const std::string out = dir.Join("batch");
  EXPECT_EQ(Cli(game + "actors\\\\hero.adr --out-dir '" + out + "' --format glb").status, 0);
  EXPECT_EQ(Magic(out + "/actors/hero.glb"), "glTF");
  EXPECT_FALSE(std::filesystem::exists(out + "/actors/hero.fbx"));
  EXPECT_EQ(Cli(game + "actors\\\\hero.adr --out-dir '" + out + "'").status, 0);
  EXPECT_EQ(Magic(out + "/actors/hero.fbx"), "Kayd");
}

}  // namespace
