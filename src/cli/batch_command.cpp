#include <unistd.h>

#include <atomic>
#include <cstdio>

#include "cli/batch_progress.h"
#include "cli/cli_session.h"
#include "cli/interrupt.h"
#include "platform/folders.h"
#include "platform/parallel_for.h"

// Every actor that a pattern matches, below --out-dir, --jobs at a time, from one opening of the game.
int RunBatchConvert(const CliOptions& options) {
  if (options.arguments.empty()) {
    std::fprintf(stderr, "tarnwick-cli: convert --out-dir needs at least one actor or pattern ('*' for all)\n");
    return kExitNothingStarted;
  }
  if (!options.output.empty()) {
    std::fprintf(stderr, "tarnwick-cli: -o names one file; with --out-dir every actor gets its own\n");
    return kExitNothingStarted;
  }
  if (!MakeFolders(options.outDir.c_str())) {
    std::fprintf(stderr, "tarnwick-cli: can't make the folder %s\n", options.outDir.c_str());
    return kExitNothingStarted;
  }
  CliSession session;
  if (!session.Open(options)) return kExitNothingStarted;
  AppState& app = session.App();
  const ExportFormat format = CliFormat(options, ExportFormat::kFbx);
  std::vector<BatchActor> actors = BatchOf(SelectEntries(ListedEntries(app), options.arguments, "actor"));
  if (actors.empty()) return kExitNothingStarted;
  NameOutputs(actors, format == ExportFormat::kGlb ? ".glb" : ".fbx");

  TextureStore textures(false);
  BatchSettings settings = BatchSettingsFor(options.outDir, options.jobs ? options.jobs : ProcessorCount(), format,
                                            options.textures, textures);
  settings.rig = options.rig;
  settings.rigHint = "choose one with --rig NAME";
  const std::atomic<bool>& stopRequested = CatchInterrupt();
  BatchProgress progress(stdout, isatty(STDOUT_FILENO) != 0, u32(actors.size()));
  std::vector<BatchActorResult> results;
  const BatchSummary summary =
      RunBatch(GameTables{app.packIndex, app.materials, app.rigs}, actors, settings, &progress, stopRequested, results);
  progress.Finish();
  PrintBatchSummary(stdout, actors, results, summary, progress.ElapsedSeconds(), stopRequested);
  return summary.written == actors.size() ? kExitDone : kExitSomeFailed;
}
