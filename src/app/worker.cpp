#include "app/worker.h"

#include "app/file_list.h"
#include "app/game_selection.h"

namespace {

constexpr i32 kFrameControls[] = {kFileList,      kRenderControl, kSearchEdit, kGameCombo,
                                  kConvertButton, kSearchButton,  kGameButton};
constexpr u32 kMarqueeStepMilliseconds = 30;

struct Task {
  AppState* app = nullptr;
  WorkerKind kind = WorkerKind::Load;
  u32 row = 0;
  TStringBufferA<128> filter;
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
  }
  for (i32 id : kFrameControls) window.Enable(id, true);
  window.Show(kProgressBar, false);
  window.Show(kStatusText, false);
}

void RunTask(void* context) {
  const TOwned<Task> task(static_cast<Task*>(context));
  Frame(*task->app, *task);
  task->app->workerBusy = false;
}

}  // namespace

bool StartWorker(AppState& app, WorkerKind kind, u32 row, const char* filter) {
  if (!app.window || app.workerBusy.exchange(true)) return false;
  app.worker.Join();  // the last one has ended; its thread is collected
  TOwned<Task> task(MemNew<Task>());
  if (!task || (filter && *filter && task->filter.Format("%s", filter) <= 0)) {
    app.workerBusy = false;
    return false;
  }
  task->app = &app;
  task->kind = kind;
  task->row = row;
  app.window->SetMarquee(kProgressBar, true, kMarqueeStepMilliseconds);
  app.window->SetText(kStatusText, kind == WorkerKind::Load ? "Initializing game data" : "Listing files...");
  // A refused thread leaves the controls as they are: nothing disabled them yet.
  if (!app.worker.Start(RunTask, task.get(), app.createThread)) {
    app.workerBusy = false;
    return false;
  }
  (void)task.release();  // the worker frees it
  return true;
}

void WaitForWorker(AppState& app) {
  while (app.workerBusy) app.window->Pump(10);
  app.worker.Join();
}

bool Idle(const AppState& app) { return app.window && !app.workerBusy; }
