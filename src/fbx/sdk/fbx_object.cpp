#include "fbx/sdk/fbx_object.h"

#include <sys/time.h>
#include <ctime>

#include "fbx/sdk/fbx_binary_writer.h"

namespace {

FbxCreationTime LocalTimeNow() {
  timeval now{};
  gettimeofday(&now, nullptr);
  tm local{};
  const time_t seconds = now.tv_sec;
  localtime_r(&seconds, &local);
  return {local.tm_year + 1900, local.tm_mon + 1, local.tm_mday,          local.tm_hour,
          local.tm_min,         local.tm_sec,     i32(now.tv_usec / 1000)};
}

}  // namespace

void FbxObject::Destroy() {
  if (manager) manager->Remove(this);
}

FbxManager* FbxManager::Create() { return MemNew<FbxManager>(); }

void FbxManager::Destroy() { MemDelete(this); }

void FbxManager::GetFileFormatVersion(int& major, int& minor, int& revision) {
  major = int(kFbxFileVersion / 1000);
  minor = int(kFbxFileVersion / 100 % 10);
  revision = int(kFbxFileVersion % 100);
}

FbxCreationTime FbxManager::CreationTime() const { return timeSource ? timeSource() : LocalTimeNow(); }

bool FbxManager::Adopt(FbxObject* object, const char* name) {
  object->manager = this;
  object->id = nextId;
  return object->objectName.Assign(name ? name : "");
}

FbxObject* FbxManager::Keep(TOwned<FbxObject> object) {
  TOwned<FbxObject>* slot = objects.Append();
  if (!slot) return nullptr;
  ++nextId;
  *slot = std::move(object);
  return slot->get();
}

void FbxManager::Remove(const FbxObject* object) {
  u32 at = 0;
  while (at < objects.Count() && objects[at].get() != object) ++at;
  if (at == objects.Count()) return;
  // Later objects move down one place, so the order of creation is kept.
  TOwned<FbxObject> removed = std::move(objects[at]);
  for (u32 i = at + 1; i < objects.Count(); ++i) objects[i - 1] = std::move(objects[i]);
  (void)objects.SetSize(objects.Count() - 1);
}
