#include "platform/thread.h"

#include "core/memory_hooks.h"

namespace {

struct Launch {
  void (*body)(void*);
  void* context;
};

void* ThreadMain(void* argument) {
  const TOwned<Launch> launch(static_cast<Launch*>(argument));
  launch->body(launch->context);
  return nullptr;
}

}  // namespace

bool CThread::Start(void (*body)(void*), void* context, CreateFunction create) {
  if (started) return false;
  TOwned<Launch> launch(MemNew<Launch>(Launch{body, context}));
  if (!launch || create(&handle, nullptr, ThreadMain, launch.get()) != 0) return false;
  (void)launch.release();  // the thread frees it
  started = true;
  return true;
}

void CThread::Join() {
  if (!started) return;
  pthread_join(handle, nullptr);
  started = false;
}
