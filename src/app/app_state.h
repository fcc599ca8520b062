#pragma once

#include <atomic>

#include "assets/pack_index.h"
#include "core/spin_lock.h"
#include "core/string_buffer.h"
#include "gamedata/material_definitions.h"
#include "gamedata/rig_table.h"
#include "platform/thread.h"
#include "platform/window_system.h"

// One row of the known-game table: the display name, which is also the digest's base name, and the
// installation folder that discovery found (empty until then). Rows past the known games hold the
// folders opened by hand, named after the folder.
struct GameSlot {
  const char* name;
  CStringBufferA folder;
  // Found through a Wine prefix: its files are named as on Windows, where case doesn't count.
  bool windowsCase = false;
  CStringBufferA label;  // a folder opened by hand: its name, which `name` points into
};

constexpr u32 kGameCount = 8;
constexpr u32 kOpenedFolderCount = 8;
constexpr u32 kGameSlotCount = kGameCount + kOpenedFolderCount;

// Everything the program holds from start-up to shut-down: the window it speaks to, the games,
// the three tables of the loaded game and the worker.
struct AppState {
  AppState();
  ~AppState();
  AppState(const AppState&) = delete;
  AppState& operator=(const AppState&) = delete;

  IWindowSystem* window = nullptr;        // the main window's controls; null until the dialog exists
  IRenderWindow* renderWindow = nullptr;  // the preview, owned by the window; null without one
  TStringBufferA<512> lineBuffer;         // one log line at a time, under logLock
  CStringBufferA userFolder;              // the native per-user folder, normalised
  CStringBufferA olderMakerFolder;
  CStringBufferA newerMakerFolder;
  CSpinLock logLock;
  // Written by the load worker while the controls that read them are disabled; atomic so that
  // the main thread's later reads are ordered after the worker's writes.
  std::atomic<bool> ready{false};
  std::atomic<i32> currentGame{-1};

  GameSlot games[kGameSlotCount];
  u32 openedFolders = 0;  // rows kGameCount and up that a folder opened by hand fills
  PackIndex packIndex;
  MaterialDefinitionSet materials;
  RigTable rigs;

  // The one worker thread, if any, and whether it runs. A request while one runs is refused, and
  // shut-down waits for it. `createThread` starts threads; tests put one in that refuses.
  CThread worker;
  CThread::CreateFunction createThread = pthread_create;
  std::atomic<bool> workerBusy{false};
  std::atomic<bool> batchStop{false};  // set by Cancel: the running batch starts no further actor
  // "All files": the file list holds every file of the packs, not the actor definitions alone, and
  // Convert takes the selected files out as they are. Changed on the main thread while no worker runs.
  std::atomic<bool> allFiles{false};
};

// The known games, in table order.
extern const char* const kGameNames[kGameCount];

// The rows that may be selected: the known games and the folders opened so far.
inline u32 GameRowCount(const AppState& app) { return kGameCount + app.openedFolders; }
