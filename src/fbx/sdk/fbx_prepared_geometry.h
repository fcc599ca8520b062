#pragma once

#include <condition_variable>
#include <mutex>

#include "core/array.h"
#include "core/memory_hooks.h"
#include "fbx/sdk/fbx_record.h"
#include "platform/thread.h"

class FbxMesh;

// Geometry records written while their scene is still being built, with their arrays deflated on
// a thread of their own while the caller goes on to the next mesh: a converted mesh no longer
// changes, and deflating is most of what writing a file costs. The document then takes these
// records instead of writing the meshes itself, and gives the same bytes.
class FbxPreparedGeometry {
 public:
  FbxPreparedGeometry() = default;
  FbxPreparedGeometry(const FbxPreparedGeometry&) = delete;
  FbxPreparedGeometry& operator=(const FbxPreparedGeometry&) = delete;
  ~FbxPreparedGeometry();

  // Writes the record of `mesh`, which must not change afterwards, and has its arrays deflated
  // behind the caller. Without memory or a thread the mesh is left to the document.
  void Add(const FbxMesh& mesh);
  // Moves the record made for `mesh` to the end of `objects`' children: at once when the thread has
  // not begun it (the document then deflates its arrays with the rest, on every processor), else
  // once the thread is done with it. The thread begins no record after the first Take. False when
  // none was made.
  [[nodiscard]] bool Take(const FbxMesh& mesh, FbxRecord& objects);

 private:
  enum class State { kWaiting, kDeflating, kDone, kTaken };
  struct Entry {
    const FbxMesh* mesh = nullptr;
    FbxRecord holder;  // the Geometry record is its one child
    State state = State::kWaiting;
  };

  static void Run(void* self);

  std::mutex lock;
  std::condition_variable changed;
  TArray<TOwned<Entry>> entries;  // each where it was made, while the array behind them grows
  u32 next = 0;                   // the first entry the thread has not looked at
  bool closing = false;
  bool threadless = false;  // the system refused the thread: the document deflates everything
  CThread thread;
};
