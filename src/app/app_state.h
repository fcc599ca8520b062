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
// installation folder that discovery found (empty until then).
struct GameSlot {
  const char* name;
  CStringBufferA folder;
};

constexpr u32 kGameCount = 8;

// Everything the program holds from start-up to shut-down: the window it speaks to, the games,
// the three tables of the loaded game and the worker.
struct AppState {
  AppState();
  ~AppState();
  AppState(const AppState&) = delete;
  AppState& operator=(const AppState&) = delete;

  IWindowSystem* window = nullptr;  // the main window's controls; null until the dialog exists
  IRenderWindow* renderWindow = nullptr;  // the preview, owned by the window; null without one
  TStringBufferA<512> lineBuffer;   // one log line at a time, under logLock
  CStringBufferA olderMakerFolder;
  CStringBufferA newerMakerFolder;
  CSpinLock logLock;
  // Written by the load worker while the controls that read them are disabled; atomic so that
  // the main thread's later reads are ordered after the worker's writes.
  std::atomic<bool> ready{false};
  std::atomic<i32> currentGame{-1};

  GameSlot games[kGameCount];
  PackIndex packIndex;
  MaterialDefinitionSet materials;
  RigTable rigs;

  // The one worker thread, if any, and whether it runs. A request while one runs is refused, and
  // shut-down waits for it. `createThread` starts threads; tests put one in that refuses.
  CThread worker;
  CThread::CreateFunction createThread = pthread_create;
  std::atomic<bool> workerBusy{false};
  std::atomic<bool> batchStop{false};  // set by Cancel: the running batch starts no further actor
};

// The known games, in table order.
extern const char* const kGameNames[kGameCount];
