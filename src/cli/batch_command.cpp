#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>

#include "app/output_names.h"
#include "assets/wildcard_match.h"
#include "cli/batch_progress.h"
#include "cli/cli_session.h"
#include "platform/folders.h"
#include "platform/parallel_for.h"

namespace {

// Set by Ctrl-C: no further actor starts, those under way end whole. A second Ctrl-C ends the
// program at once.
std::atomic<bool> stopRequested{false};
static_assert(std::atomic<bool>::is_always_lock_free, "set from a signal handler");

void OnInterrupt(int) { stopRequested = true; }

void CatchInterrupt() {
  struct sigaction action {};
  action.sa_handler = OnInterrupt;
  action.sa_flags = SA_RESETHAND;
  sigemptyset(&action.sa_mask);
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
}

// The listed actors that any pattern matches, each once, in the list's order. A pattern that
// matches nothing is reported.
std::vector<BatchActor> Select(const ListEntries& items, const std::vector<std::string>& patterns,
                               const char* extension) {
  std::vector<bool> chosen(items.size(), false);
  for (const std::string& pattern : patterns) {
    bool any = false;
    for (size_t i = 0; i < items.size(); ++i) {
      if (!WildcardMatch(items[i].text.c_str(), pattern.c_str())) continue;
      chosen[i] = true;
      any = true;
    }
    if (!any) std::fprintf(stderr, "tarnwick-cli: no actor matches \"%s\"\n", pattern.c_str());
  }
  std::vector<BatchActor> actors;
  std::vector<std::string> names;
  for (size_t i = 0; i < items.size(); ++i) {
    if (!chosen[i]) continue;
    actors.push_back({reinterpret_cast<const PackEntry*>(items[i].data), items[i].text, {}});
    names.push_back(items[i].text);
  }
  const std::vector<std::string> outputs = OutputNames(names, extension);
  for (size_t i = 0; i < actors.size(); ++i) actors[i].output = outputs[i];
  return actors;
}

}  // namespace

// Every actor that a pattern matches, below --out-dir, --jobs at a time, from one opening of the game.
int RunBatchConvert(const CliOptions& options) {
  if (options.arguments.empty()) {
    std::fprintf(stderr, "tarnwick-cli: convert --out-dir needs at least one actor or pattern ('*' for all)\n");
    return 2;
  }
  if (!options.output.empty()) {
    std::fprintf(stderr, "tarnwick-cli: -o names one file; with --out-dir every actor gets its own\n");
    return 2;
  }
  if (!MakeFolders(options.outDir.c_str())) {
    std::fprintf(stderr, "tarnwick-cli: can't make the folder %s\n", options.outDir.c_str());
    return 2;
  }
  CliSession session;
  if (!session.Open(options, true)) return 2;
  const ExportFormat format = CliFormat(options, ExportFormat::kFbx);
  const std::vector<BatchActor> actors = Select(session.Window().Snapshot(kFileList).items, options.arguments,
                                                format == ExportFormat::kGlb ? ".glb" : ".fbx");
  if (actors.empty()) return 2;

  AppState& app = session.App();
  BatchSettings settings;
  settings.outDir = options.outDir;
  settings.jobs = options.jobs ? options.jobs : ProcessorCount();
  settings.rig = options.rig;
  settings.convert.batch = true;
  TextureStore textures(false);
  settings.convert.textures = options.textures;
  settings.convert.format = format;
  settings.convert.textureStore = &textures;
  CatchInterrupt();
  BatchProgress progress(stdout, isatty(STDOUT_FILENO) != 0, u32(actors.size()));
  std::vector<BatchActorResult> results;
  const BatchSummary summary =
      RunBatch(GameTables{app.packIndex, app.materials, app.rigs}, actors, settings, &progress, stopRequested, results);
  progress.Finish();
  PrintBatchSummary(stdout, actors, results, summary, progress.ElapsedSeconds(), stopRequested);
  return summary.written == actors.size() ? 0 : 1;
}
