#include "app/batch_worker.h"

#include "app/convert.h"
#include "app/file_list.h"
#include "app/log.h"
#include "app/output_names.h"
#include "app/worker.h"
#include "assets/normalize_path.h"
#include "platform/parallel_for.h"

namespace {

// Counts on the progress bar and logs each actor that didn't get its file.
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
  std::vector<BatchActor> actors;
  std::vector<std::string> names;
  for (i32 index : selected) {
    const std::intptr_t data = app.window->GetItemData(kFileList, index);
    const i32 length = app.window->GetTextLength(kFileList, index);
    if (data == kListError || data == 0 || length < 0) continue;
    std::string name(size_t(length), '\0');
    if (app.window->GetText(kFileList, index, name.data()) < 0) continue;
    actors.push_back({reinterpret_cast<const PackEntry*>(data), name, {}});
    names.push_back(std::move(name));
  }
  TStringBufferA<1024> path;
  if (actors.empty() || !folder.AskFolder(path)) return;
  const std::vector<std::string> outputs = OutputNames(names, ".fbx");
  for (size_t i = 0; i < actors.size(); ++i) actors[i].output = outputs[i];
  app.batchStop = false;
  (void)StartBatchWorker(app, std::move(actors), path.Text(), options.textures);
}

void OnCancelButton(AppState& app) { app.batchStop = true; }

void ConvertBatch(AppState& app, const std::vector<BatchActor>& actors, const std::string& outDir, bool textures) {
  app.window->Show(kCancelButton, true);
  app.window->SetProgress(kProgressBar, 0, u32(actors.size()));
  BatchSettings settings;
  settings.outDir = outDir;
  settings.jobs = ProcessorCount();
  settings.rigHint = "convert it alone to choose";
  settings.convert.batch = true;
  TextureStore store(false);
  settings.convert.textures = textures;
  settings.convert.textureStore = &store;
  WindowProgress progress(app, u32(actors.size()));
  std::vector<BatchActorResult> results;
  const BatchSummary summary = RunBatch(GameTables{app.packIndex, app.materials, app.rigs}, actors, settings,
                                        &progress, app.batchStop, results);
  TStringBufferA<1024> shown;
  DisplayPath(outDir.c_str(), shown);
  Log(app, "%s %u of %zu actors to %s: %u written, %u failed, %u skipped.",
      summary.notStarted ? "Stopped after" : "Converted", u32(actors.size()) - summary.notStarted, actors.size(),
      shown.Text(), summary.written, summary.failed, summary.skipped);
  app.window->Show(kCancelButton, false);
}
