#include <unistd.h>

#include <cstdio>

#include "app/extract_files.h"
#include "cli/batch_progress.h"
#include "cli/cli_session.h"
#include "cli/interrupt.h"
#include "platform/parallel_for.h"

// Every file that a pattern matches, below --out-dir, as stored or (--images png) images as PNG,
// --jobs at a time, from one opening of the game. The game's folder is only read.
int RunExtract(const CliOptions& options) {
  if (options.arguments.empty() || options.outDir.empty()) {
    std::fprintf(stderr, "tarnwick-cli: extract needs at least one pattern ('*' for all) and --out-dir DIR\n");
    return kExitNothingStarted;
  }
  if (!options.output.empty() || !options.format.empty() || !options.rig.empty() || options.textures) {
    std::fprintf(stderr, "tarnwick-cli: extract takes only --out-dir, --images and --jobs\n");
    return kExitNothingStarted;
  }
  CliSession session;
  if (!session.Open(options)) return kExitNothingStarted;
  const std::vector<ListedEntry> files = SelectEntries(PackFiles(session.App().packIndex), options.arguments, "file");
  if (files.empty()) return kExitNothingStarted;

  const ExtractSettings settings{.outDir = options.outDir,
                                 .jobs = options.jobs ? options.jobs : ProcessorCount(),
                                 .imagesAsPng = options.images == "png"};
  std::vector<bool> asPng;
  const std::vector<BatchActor> batch = ExtractBatch(files, settings, asPng);
  const std::atomic<bool>& stopRequested = CatchInterrupt();
  BatchProgress progress(stdout, isatty(STDOUT_FILENO) != 0, u32(batch.size()), "extracted");
  std::vector<BatchActorResult> results;
  const BatchSummary summary = RunExtract(batch, asPng, settings, &progress, stopRequested, results);
  progress.Finish();
  PrintBatchSummary(stdout, batch, results, summary, progress.ElapsedSeconds(), stopRequested, {"Extracted", "files"});
  return summary.written == batch.size() ? kExitDone : kExitSomeFailed;
}
