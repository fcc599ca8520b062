#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "support/sample_game.h"
#include "support/temp_dir.h"

namespace {

struct CliRun {
  int status = -1;
  std::string out;
};

// The command line program with `arguments`; its standard output, and standard error dropped.
CliRun Cli(const std::string& arguments) {
  CliRun run;
  FILE* pipe = popen((std::string(TARNWICK_CLI) + " " + arguments + " 2>/dev/null").c_str(), "r");
  if (!pipe) return run;
  char buffer[4096];
  for (size_t n; (n = std::fread(buffer, 1, sizeof(buffer), pipe)) > 0;) run.out.append(buffer, n);
  const int status = pclose(pipe);
  run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return run;
}

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  for (size_t at = 0, end; (end = text.find('\n', at)) != std::string::npos; at = end + 1) lines.push_back(text.substr(at, end - at));
  return lines;
}

TEST(Cli, ConvertsEveryActorOfTheSampleGame) {
  testsupport::TempDir dir;
  ASSERT_TRUE(testsupport::BuildSampleGame(dir.Path(), nullptr));
  const std::string data = "--data-dir '" + testsupport::SampleGameLayout(dir.Path()).userData + "' ";

  const CliRun games = Cli(data + "games");
  EXPECT_EQ(games.status, 0);
  EXPECT_EQ(games.out, "Aldermoor\t" + testsupport::SampleGameLayout(dir.Path()).game + "\n")
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

}  // namespace
