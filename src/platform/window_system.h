#pragma once

#include <cstdint>
#include <vector>

#include "core/string_buffer.h"
#include "core/types.h"

class IRenderWindow;

// The controls of the main window, by id.
enum ControlId : i32 {
  kFileList = 1001,
  kSearchEdit = 1002,
  kLogList = 1004,
  kRenderControl = 1005,
  kConvertButton = 1006,
  kGameCombo = 1007,
  kSearchButton = 1008,
  kGameButton = 1009,
  kProgressBar = 1012,
  kStatusText = 1014,
  kInfoText = 1020,
  kCancelButton = 1021,      // stops a batch conversion; shown only while one runs
  kOpenFolderButton = 1022,  // "Open folder...": lists and opens any installation folder
  kAllFilesCheck = 1023,     // "All files": the file list holds every file of the packs
};

// Answers of the list operations.
constexpr i32 kListError = -1;     // no such item, or no selection
constexpr i32 kListErrSpace = -2;  // no room for another item

// An item for a list, with the data it carries.
struct ListItem {
  const char* text;
  std::intptr_t data;
};

// What the application asks of a window system: the operations on the main window's controls,
// addressed by id. Every call may come from a worker thread; it is then carried out on the main
// thread, and the worker waits for it. Lists that sort (the file list) insert in order and answer
// the new item's index.
class IWindowSystem {
 public:
  virtual ~IWindowSystem() = default;

  // Lists and the combo box.
  virtual i32 AddString(i32 control, const char* text) = 0;                // index or kListErrSpace
  virtual i32 InsertString(i32 control, i32 index, const char* text) = 0;  // -1: at the end
  virtual bool SetItemData(i32 control, i32 index, std::intptr_t data) = 0;
  virtual std::intptr_t GetItemData(i32 control, i32 index) = 0;  // kListError on failure
  virtual i32 GetCurSel(i32 control) = 0;                         // kListError for none
  virtual bool SetCurSel(i32 control, i32 index) = 0;
  virtual i32 GetTextLength(i32 control, i32 index) = 0;  // kListError on failure
  // Copies the item's text into `out` (which holds GetTextLength + 1 characters); its length, or
  // kListError.
  virtual i32 GetText(i32 control, i32 index, char* out) = 0;
  virtual void ResetContent(i32 control) = 0;
  virtual i32 GetCount(i32 control) = 0;
  virtual void SetTopIndex(i32 control, i32 index) = 0;
  // Each item as AddString then SetItemData with the index it got; an item that finds no room is
  // dropped. One crossing to the main thread for all, so a long list fills quickly.
  virtual void AddItems(i32 control, const ListItem* items, u32 count) = 0;

  // The selected items of a list that takes several, in index order. The current selection
  // (GetCurSel) is the one the user took last.
  virtual std::vector<i32> GetSelectedItems(i32 control) = 0;

  // Any control.
  virtual void SetMarquee(i32 control, bool on, u32 stepMilliseconds) = 0;
  // A progress bar that shows `done` of `total` instead of running to and fro.
  virtual void SetProgress(i32 control, u32 done, u32 total) = 0;
  virtual void SetText(i32 control, const char* text) = 0;
  // False when the control has no text to give.
  virtual bool GetText(i32 control, CStringBufferA& text) = 0;
  virtual void Enable(i32 control, bool enable) = 0;
  virtual void Show(i32 control, bool show) = 0;

  // The preview of the render control, or null when there is none. Owned by the window system.
  virtual IRenderWindow* RenderWindow() { return nullptr; }

  // Ends the main loop at its next pass.
  virtual void PostQuit(i32 code) = 0;
  // Main thread: serves the calls that workers wait on, waiting up to `timeoutMs` for one.
  virtual void Pump(u32 timeoutMs) = 0;
  // Any thread: ends the wait of a Pump without a call to serve, as a worker does when it ends.
  virtual void Wake() {}
};
