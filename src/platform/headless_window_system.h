#pragma once

#include <condition_variable>
#include <cstdio>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "platform/list_entries.h"
#include "platform/window_system.h"

// The window system without a display: each control is a record of its items, text and states,
// with the answers a real one gives (sorted insertion with the new index, kListErrSpace when a list
// is full, kListError for no selection). Calls from other threads wait until the main thread, the
// one that made this object, runs them in ProcessPending. Used by the tests and the command line.
class HeadlessWindowSystem final : public IWindowSystem {
 public:
  using Item = ListEntry;
  struct Control {
    ListEntries items;
    bool sorted = false;
    i32 selection = kListError;
    std::vector<i32> selected;  // with `selection` among them, in index order
    u32 progressDone = 0, progressTotal = 0;
    i32 topIndex = 0;
    std::string text;
    bool enabled = true;
    bool visible = true;
    bool marquee = false;
  };

  HeadlessWindowSystem();

  i32 AddString(i32 control, const char* text) override;
  i32 InsertString(i32 control, i32 index, const char* text) override;
  bool SetItemData(i32 control, i32 index, std::intptr_t data) override;
  std::intptr_t GetItemData(i32 control, i32 index) override;
  i32 GetCurSel(i32 control) override;
  bool SetCurSel(i32 control, i32 index) override;
  i32 GetTextLength(i32 control, i32 index) override;
  i32 GetText(i32 control, i32 index, char* out) override;
  void ResetContent(i32 control) override;
  i32 GetCount(i32 control) override;
  void SetTopIndex(i32 control, i32 index) override;
  void AddItems(i32 control, const ListItem* items, u32 count) override;
  std::vector<i32> GetSelectedItems(i32 control) override;
  void SetProgress(i32 control, u32 done, u32 total) override;
  void SetMarquee(i32 control, bool on, u32 stepMilliseconds) override;
  void SetText(i32 control, const char* text) override;
  bool GetText(i32 control, CStringBufferA& text) override;
  void Enable(i32 control, bool enable) override;
  void Show(i32 control, bool show) override;
  void PostQuit(i32 code) override;
  void Pump(u32 timeoutMs) override { ProcessPending(timeoutMs); }
  void Wake() override;

  // Main thread: runs the calls that other threads are waiting on. Waits up to `timeoutMs` for the
  // first when none is there yet; gives the number run.
  u32 ProcessPending(u32 timeoutMs = 0);
  bool QuitPosted() const;
  // Each line added to the log list is also written to `stream` (null: nowhere).
  void EchoLog(std::FILE* stream) { logEcho = stream; }
  // Selects `indices` of a list as a user's clicks do, the last of them taken last.
  void SelectItems(i32 control, const std::vector<i32>& indices);
  // At most `count` items in each list from now on; more give kListErrSpace.
  void SetListLimit(u32 count);
  // A copy of a control's state, taken on the main thread.
  Control Snapshot(i32 control);

 private:
  struct Call {
    std::function<void()> work;
    bool done = false;
  };
  // Runs `work` on the main thread, now if this is it, else through the queue.
  void OnMain(const std::function<void()>& work);
  Control& At(i32 control);

  std::thread::id mainThread;
  mutable std::mutex mutex;
  std::condition_variable arrived;
  std::condition_variable finished;
  std::deque<Call*> queue;
  std::map<i32, Control> controls;  // touched on the main thread only
  u32 listLimit = 0x7FFFFFFF;
  std::FILE* logEcho = nullptr;
  bool quit = false;
  bool woken = false;  // a Wake not yet seen by ProcessPending
};
