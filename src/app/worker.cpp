#include "app/worker.h"

#include "app/batch_worker.h"
#include "app/file_list.h"
#include "app/game_selection.h"

namespace {

constexpr i32 kFrameControls[] = {kFileList,     kRenderControl, kSearchEdit,       kGameCombo,    kConvertButton,
                                  kSearchButton, kGameButton,    kOpenFolderButton, kAllFilesCheck};
constexpr u32 kMarqueeStepMilliseconds = 30;

struct Task {
  AppState* app = nullptr;
  WorkerKind kind = WorkerKind::Load;
  u32 row = 0;
  TStringBufferA<128> filter;
  std::vector<BatchActor> actors;  // of a batch conversion, or the files of an extraction
  std::vector<bool> asPng;         // of an extraction: which files go as PNG
  std::string outDir;
  bool textures = false;
  ExportFormat format = ExportFormat::kFbx;
};

void Frame(AppState& app, const Task& task) {
  IWindowSystem& window = *app.window;
  for (i32 id : kFrameControls) window.Enable(id, false);
  window.Show(kProgressBar, true);
  window.Show(kStatusText, true);
  switch (task.kind) {
    case WorkerKind::Load: LoadGame(app, task.row); break;
    case WorkerKind::List: ListWalk(app); break;
    case WorkerKind::Search: SearchWalk(app, task.filter.Text()); break;
    case WorkerKind::Convert: ConvertBatch(app, task.actors, task.outDir, task.format, task.textures); break;
    case WorkerKind::Extract: ExtractFilesBatch(app, task.actors, task.asPng, task.outDir); break;
  }
  for (i32 id : kFrameControls) window.Enable(id, true);
  window.Show(kProgressBar, false);
  window.Show(kStatusText, false);
}

void RunTask(void* context) {
  const TOwned<Task> task(static_cast<Task*>(context));
  AppState& app = *task->app;
  Frame(app, *task);
  app.workerBusy = false;
  // The main thread may be waiting for the end in Pump; without this it sees it only at its timeout.
  app.window->Wake();
}

// The start that every kind shares, once its task is filled.
bool Launch(AppState& app, TOwned<Task> task, const char* statusText) {
  task->app = &app;
  app.window->SetMarquee(kProgressBar, true, kMarqueeStepMilliseconds);
  app.window->SetText(kStatusText, statusText);
  // A refused thread leaves the controls as they are: nothing disabled them yet.
  if (!app.worker.Start(RunTask, task.get(), app.createThread)) {
    app.workerBusy = false;
    return false;
  }
  (void)task.release();  // the worker frees it
  return true;
}

// Claims the one worker slot and collects the last worker's thread; null when a worker runs.
TOwned<Task> Claim(AppState& app) {
  if (!app.window || app.workerBusy.exchange(true)) return nullptr;
  app.worker.Join();
  TOwned<Task> task(MemNew<Task>());
  if (!task) app.workerBusy = false;
  return task;
}

}  // namespace

bool StartWorker(AppState& app, WorkerKind kind, u32 row, const char* filter) {
  TOwned<Task> task = Claim(app);
  if (!task) return false;
  if (filter && *filter && task->filter.Format("%s", filter) <= 0) {
    app.workerBusy = false;
    return false;
  }
  task->kind = kind;
  task->row = row;
  return Launch(app, std::move(task), kind == WorkerKind::Load ? "Initializing game data" : "Listing files...");
}

bool StartBatchWorker(AppState& app, std::vector<BatchActor> actors, std::string outDir, ExportFormat format,
                      bool textures) {
  TOwned<Task> task = Claim(app);
  if (!task) return false;
  task->kind = WorkerKind::Convert;
  task->actors = std::move(actors);
  task->outDir = std::move(outDir);
  task->textures = textures;
  task->format = format;
  return Launch(app, std::move(task), "Converting...");
}

bool StartExtractWorker(AppState& app, std::vector<BatchActor> files, std::vector<bool> asPng, std::string outDir) {
  TOwned<Task> task = Claim(app);
  if (!task) return false;
  task->kind = WorkerKind::Extract;
  task->actors = std::move(files);
  task->asPng = std::move(asPng);
  task->outDir = std::move(outDir);
  return Launch(app, std::move(task), "Extracting...");
}

void WaitForWorker(AppState& app) {
  while (app.workerBusy) app.window->Pump(10);
  app.worker.Join();
}

bool Idle(const AppState& app) { return app.window && !app.workerBusy; }
