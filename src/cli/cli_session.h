#pragma once

#include <string>
#include <vector>

#include "app/actor_list.h"
#include "app/app_state.h"
#include "app/convert_actor.h"
#include "platform/headless_window_system.h"

// What every command shares: the options, and the application bound to a headless window whose
// log lines go to standard error.
struct CliOptions {
  std::string game;                    // --game: a known game's name; empty for the first one found
  std::string dataDir;                 // --data-dir: the per-user folder; empty for the platform's
  std::string gameDir;                 // --game-dir: an installation folder; skips discovery
  std::vector<std::string> prefixes;   // --prefix: Wine prefixes to look in before the usual ones
  std::string output;                  // convert -o
  std::string rig;                     // convert --rig: the animation set of the rig to take
  std::string argument;                // the pattern of list, the actor of convert: the first of `arguments`
  std::vector<std::string> arguments;  // every word after the command
  std::string outDir;                  // convert --out-dir: converts every actor that a pattern matches
  u32 jobs = 0;                        // convert --jobs: conversions at once; 0 for one per processor
  bool textures = false;               // convert --textures: the textures as PNG files beside each file
  std::string format;                  // convert --format: "fbx" or "glb"; empty: by -o's extension, FBX for a batch
  std::string images;                  // extract --images: "png" writes images as PNG; empty: as stored
};

class CliSession {
 public:
  CliSession();
  ~CliSession();
  // Finds the games (or opens --game-dir) and loads the chosen one. False, after a message, when
  // there is no game to load or it failed: nothing could start, exit status kExitNothingStarted.
  bool Open(const CliOptions& options);
  AppState& App() { return app; }
  HeadlessWindowSystem& Window() { return window; }
  // Waits for the running worker, serving its window calls.
  void Wait();

 private:
  HeadlessWindowSystem window;
  AppState app;
};

// The entries that the patterns match (see MatchingEntries); a pattern that matches none is
// reported as matching no `noun`.
std::vector<ListedEntry> SelectEntries(const std::vector<ListedEntry>& entries,
                                       const std::vector<std::string>& patterns, const char* noun);

// Every command's exit status.
constexpr int kExitDone = 0;            // all that was asked for was done
constexpr int kExitSomeFailed = 1;      // something failed or was skipped
constexpr int kExitNothingStarted = 2;  // no game, a game that can't be opened, wrong usage

int RunGames(const CliOptions& options);
int RunList(const CliOptions& options);
// The format --format names, or `otherwise` without it.
inline ExportFormat CliFormat(const CliOptions& options, ExportFormat otherwise) {
  if (options.format == "glb") return ExportFormat::kGlb;
  return options.format == "fbx" ? ExportFormat::kFbx : otherwise;
}

int RunFiles(const CliOptions& options);
int RunExtract(const CliOptions& options);
int RunConvert(const CliOptions& options);
int RunBatchConvert(const CliOptions& options);
