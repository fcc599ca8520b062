#include "app/batch_worker.h"

#include "app/actor_list.h"
#include "app/convert.h"
#include "app/extract_files.h"
#include "app/file_list.h"
#include "app/log.h"
#include "app/worker.h"
#include "assets/normalize_path.h"
#include "platform/parallel_for.h"

namespace {

// Counts on the progress bar and logs each actor or file that didn't get written.
class WindowProgress final : public IBatchObserver {
 public:
  WindowProgress(AppState& state, u32 count) : app(state), total(count) {}
  void ActorDone(const BatchActor& actor, const BatchActorResult& result, const BatchSummary& sofar) override {
    app.window->SetProgress(kProgressBar, sofar.written + sofar.failed + sofar.skipped, total);
    for (const std::string& note : result.notes) Log(app, "%s: %s", actor.name.c_str(), note.c_str());
    if (result.state == BatchState::kWritten) return;
    std::string line = result.line;
    while (!line.empty() && line.back() == '\n') line.pop_back();  // one line in the log, whatever the format
    Log(app, "%s %s: %s", result.state == BatchState::kSkipped ? "Skipped" : "Failed", actor.name.c_str(),
        line.c_str());
  }

 private:
  AppState& app;
  u32 total;
};

}  // namespace

void OnConvertButton(AppState& app, ISaveDialog& save, IRigDialog& rig, IFolderDialog& folder,
                     const ConvertOptions& options) {
  if (!Idle(app) || !app.ready) return;
  const std::vector<i32> selected = app.window->GetSelectedItems(kFileList);
  if (selected.size() < 2) return Convert(app, save, rig, options);
  TStringBufferA<1024> path;
  std::vector<BatchActor> actors = BatchOf(ListedEntries(app, selected));
  ExportFormat format = ExportFormat::kFbx;
  if (actors.empty() || !folder.AskOutputFolder(path, format)) return;
  NameOutputs(actors, format == ExportFormat::kGlb ? ".glb" : ".fbx");
  app.batchStop = false;
  (void)StartBatchWorker(app, std::move(actors), path.Text(), format, options.textures);
}

void OnExtractButton(AppState& app, IFolderDialog& folder) {
  if (!Idle(app) || !app.ready) return;
  const std::vector<ListedEntry> files = ListedEntries(app, app.window->GetSelectedItems(kFileList));
  TStringBufferA<1024> path;
  if (files.empty() || !folder.AskFolder(path)) return;
  const ExtractSettings settings{.outDir = path.Text(), .imagesAsPng = true};
  std::vector<bool> asPng;
  std::vector<BatchActor> batch = ExtractBatch(files, settings, asPng);
  app.batchStop = false;
  (void)StartExtractWorker(app, std::move(batch), std::move(asPng), settings.outDir);
}

void OnCancelButton(AppState& app) { app.batchStop = true; }

namespace {

// A batch in the window: Cancel shown and the progress bar counting while `run` works, then the
// summary line, "<done> N of M <items> to DIR: ...".
template <class Run>
void WindowBatch(AppState& app, size_t count, const std::string& outDir, const char* done, const char* items, Run run) {
  app.window->Show(kCancelButton, true);
  app.window->SetProgress(kProgressBar, 0, u32(count));
  WindowProgress progress(app, u32(count));
  std::vector<BatchActorResult> results;
  const BatchSummary summary = run(progress, results);
  TStringBufferA<1024> shown;
  DisplayPath(outDir.c_str(), shown);
  Log(app, "%s %u of %zu %s to %s: %u written, %u failed, %u skipped.", summary.notStarted ? "Stopped after" : done,
      u32(count) - summary.notStarted, count, items, shown.Text(), summary.written, summary.failed, summary.skipped);
  app.window->Show(kCancelButton, false);
}

}  // namespace

void ConvertBatch(AppState& app, const std::vector<BatchActor>& actors, const std::string& outDir, ExportFormat format,
                  bool textures) {
  TextureStore store(false);
  BatchSettings settings = BatchSettingsFor(outDir, ProcessorCount(), format, textures, store);
  settings.rigHint = "convert it alone to choose";
  WindowBatch(app, actors.size(), outDir, "Converted", "actors", [&](IBatchObserver& progress, auto& results) {
    return RunBatch(GameTables{app.packIndex, app.materials, app.rigs}, actors, settings, &progress, app.batchStop,
                    results);
  });
}

void ExtractFilesBatch(AppState& app, const std::vector<BatchActor>& files, const std::vector<bool>& asPng,
                       const std::string& outDir) {
  const ExtractSettings settings{.outDir = outDir, .jobs = ProcessorCount(), .imagesAsPng = true};
  WindowBatch(app, files.size(), outDir, "Extracted", "files", [&](IBatchObserver& progress, auto& results) {
    return RunExtract(files, asPng, settings, &progress, app.batchStop, results);
  });
}
