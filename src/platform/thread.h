#pragma once

#include <pthread.h>

// A thread that is joined, never detached. Started through pthread so that a system that refuses
// a thread gives a false result instead of an exception.
class CThread {
 public:
  // pthread_create's signature; tests pass one that refuses.
  using CreateFunction = int (*)(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);

  CThread() = default;
  CThread(const CThread&) = delete;
  CThread& operator=(const CThread&) = delete;
  ~CThread() { Join(); }

  // Runs `body(context)` on a new thread. False, with nothing started and `context` untouched, when
  // a thread is still held here or the system refuses one.
  [[nodiscard]] bool Start(void (*body)(void*), void* context, CreateFunction create = pthread_create);
  // Waits for the thread to end; nothing when none was started.
  void Join();
  bool Joinable() const { return started; }

 private:
  pthread_t handle{};
  bool started = false;
};
