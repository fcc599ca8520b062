#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "cli/cli_session.h"
#include "platform/folders.h"

namespace {

constexpr const char* kUsage =
    "Usage: tarnwick-cli [OPTIONS] COMMAND\n"
    "\n"
    "Commands:\n"
    "  games                          the installed games that were found\n"
    "  list [PATTERN]                 the actor definitions, sorted; PATTERN filters as the search box\n"
    "  files [PATTERN]                every file of the packs, sorted: its size in bytes, a tab and\n"
    "                                 its name; PATTERN filters as the search box\n"
    "  extract PATTERN... --out-dir DIR [--images png] [--jobs N]\n"
    "                                 writes every file that a pattern matches (whole names, as for\n"
    "                                 convert) below DIR as it is stored, its name's folders as\n"
    "                                 folders; with --images png each image the preview decodes\n"
    "                                 (DDS, PNG, JPEG, TGA, BMP) as a PNG of its first level\n"
    "  convert ACTOR -o FILE.fbx|FILE.glb [--format fbx|glb] [--rig NAME] [--textures]\n"
    "                                 writes one actor, as FBX or glTF binary by the file's\n"
    "                                 extension unless --format says; --rig picks the rig by\n"
    "                                 animation set name when several fit\n"
    "  convert PATTERN... --out-dir DIR [--format fbx|glb] [--jobs N] [--rig NAME] [--textures]\n"
    "                                 writes every actor that a pattern matches (as the search box\n"
    "                                 matches whole names: '*' is every actor) below DIR, N at once\n"
    "                                 (default: one per processor); an actor that needs a rig\n"
    "                                 choice --rig doesn't answer is skipped; --textures writes\n"
    "                                 each file's textures as PNG files in FILE.fbm/ beside it\n"
    "                                 (in a .glb, each mesh's diffuse texture goes inside it)\n"
    "\n"
    "Options:\n"
    "  --game NAME       the game to open (default: the first one found)\n"
    "  --data-dir DIR    the per-user folder that holds the digest files\n"
    "  --game-dir DIR    an installation folder to open, without looking for digests, as the\n"
    "                    window's \"Open folder...\" opens it\n"
    "  --prefix DIR      a Wine prefix to look in for digests first (again for more)\n"
    "  --version         the version\n"
    "  --help            this text\n"
    "\n"
    "Log lines go to standard error. Every command exits with 0 when all was done, 1 when\n"
    "something failed or was skipped, 2 when nothing could start (no game found, a game that\n"
    "can't be opened, wrong usage).\n";

constexpr u32 kMaxJobs = 64;

// A whole number of jobs from 1 to kMaxJobs.
bool ParseJobs(const std::string& text, u32& jobs) {
  char* end = nullptr;
  const unsigned long value = std::strtoul(text.c_str(), &end, 10);
  if (text.empty() || *end || value < 1 || value > kMaxJobs) return false;
  jobs = u32(value);
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  CliOptions options;
  std::string command;
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    const bool hasValue = i + 1 < argc;
    auto take = [&](std::string& into) {
      if (!hasValue) return false;
      into = argv[++i];
      return true;
    };
    bool ok = true;
    if (arg == "--help" || arg == "-h") {
      std::fputs(kUsage, stdout);
      return kExitDone;
    } else if (arg == "--version") {
      std::printf("tarnwick-cli %s\n", TARNWICK_VERSION);
      return kExitDone;
    } else if (arg == "--prefix") {
      // A mistyped prefix would otherwise only be missing from where discovery says it looked.
      ok = take(options.prefixes.emplace_back()) && IsFolder(options.prefixes.back().c_str());
    } else if (arg == "--game") {
      ok = take(options.game);
    } else if (arg == "--data-dir") {
      ok = take(options.dataDir);
    } else if (arg == "--game-dir") {
      ok = take(options.gameDir);
    } else if (arg == "-o" || arg == "--output") {
      ok = take(options.output);
    } else if (arg == "--rig") {
      ok = take(options.rig);
    } else if (arg == "--textures") {
      options.textures = true;
    } else if (arg == "--format") {
      ok = take(options.format) && (options.format == "fbx" || options.format == "glb");
    } else if (arg == "--images") {
      ok = take(options.images) && options.images == "png";
    } else if (arg == "--out-dir") {
      ok = take(options.outDir);
    } else if (arg == "--jobs") {
      std::string jobs;
      ok = take(jobs) && ParseJobs(jobs, options.jobs);
    } else if (!arg.empty() && arg[0] == '-') {
      std::fprintf(stderr, "tarnwick-cli: unknown option %s\n\n%s", arg.c_str(), kUsage);
      return kExitNothingStarted;
    } else if (command.empty()) {
      command = arg;
    } else {
      options.arguments.push_back(arg);
    }
    if (!ok) {
      std::fprintf(stderr, "tarnwick-cli: %s needs a value%s\n", arg.c_str(),
                   arg == "--jobs"     ? " from 1 to 64"
                   : arg == "--format" ? ": fbx or glb"
                   : arg == "--images" ? ": png"
                   : arg == "--prefix" ? ": an existing folder"
                                       : "");
      return kExitNothingStarted;
    }
  }
  if (!options.arguments.empty()) options.argument = options.arguments[0];
  // Only a batch takes several words after its command.
  if (options.arguments.size() > 1 && !(command == "convert" && !options.outDir.empty()) && command != "extract") {
    std::fprintf(stderr, "tarnwick-cli: unexpected %s\n", options.arguments[1].c_str());
    return kExitNothingStarted;
  }
  if (command == "games") return RunGames(options);
  if (command == "list") return RunList(options);
  if (command == "files") return RunFiles(options);
  if (command == "extract") return RunExtract(options);
  if (command == "convert") return options.outDir.empty() ? RunConvert(options) : RunBatchConvert(options);
  std::fprintf(stderr, "%s%s", command.empty() ? "" : ("tarnwick-cli: unknown command " + command + "\n\n").c_str(),
               kUsage);
  return kExitNothingStarted;
}
