#include "fbx/sdk/fbx_prepared_geometry.h"

#include "fbx/sdk/fbx_binary_writer.h"
#include "fbx/sdk/fbx_scene_writer.h"

FbxPreparedGeometry::~FbxPreparedGeometry() {
  {
    std::lock_guard<std::mutex> guard(lock);
    closing = true;
  }
  changed.notify_all();
  thread.Join();
}

void FbxPreparedGeometry::Add(const FbxMesh& mesh) {
  if (threadless) return;
  TOwned<Entry> entry(MemNew<Entry>());
  if (!entry || !WriteGeometryRecord(entry->holder, mesh)) return;
  entry->mesh = &mesh;
  {
    std::lock_guard<std::mutex> guard(lock);
    TOwned<Entry>* slot = entries.Append();
    if (!slot) return;
    *slot = std::move(entry);
  }
  if (!thread.Joinable() && !thread.Start(&FbxPreparedGeometry::Run, this)) {
    // Nothing deflates these records ahead: the document packs them with the rest.
    std::lock_guard<std::mutex> guard(lock);
    threadless = true;
    next = entries.Count();
    return;
  }
  changed.notify_all();
}

void FbxPreparedGeometry::Run(void* self) {
  auto& prepared = *static_cast<FbxPreparedGeometry*>(self);
  std::unique_lock<std::mutex> guard(prepared.lock);
  for (;;) {
    prepared.changed.wait(guard, [&] { return prepared.closing || prepared.next < prepared.entries.Count(); });
    // Once the document is being written, what is left goes to its workers instead.
    if (prepared.closing) return;
    Entry& entry = *prepared.entries[prepared.next++];
    if (entry.state != State::kWaiting) continue;
    entry.state = State::kDeflating;
    guard.unlock();
    // A refusal leaves arrays undeflated, and the document deflates them when it is written.
    (void)DeflateLargeArrays(entry.holder, 1);
    guard.lock();
    entry.state = State::kDone;
    prepared.changed.notify_all();
  }
}

bool FbxPreparedGeometry::Take(const FbxMesh& mesh, FbxRecord& objects) {
  std::unique_lock<std::mutex> guard(lock);
  closing = true;  // the thread finishes the record in hand and begins no other
  for (TOwned<Entry>& each : entries) {
    Entry& entry = *each;
    if (entry.mesh != &mesh || entry.state == State::kTaken) continue;
    changed.wait(guard, [&] { return entry.state != State::kDeflating; });
    FbxRecord* slot = entry.holder.children.Count() == 1 ? objects.children.Append() : nullptr;
    if (!slot) return false;
    *slot = std::move(entry.holder.children[0]);
    entry.state = State::kTaken;
    return true;
  }
  return false;
}
