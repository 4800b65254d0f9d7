#include "torva35/platform/ThreadOwned.h"

#include <pthread.h>

namespace TORVA35 {
namespace {

struct Release {
  void (*release)(void* thing);
  void* thing;
  Release* next;
};

thread_local Release* releases = nullptr;

void ReleaseAll() {
  while (Release* const last = releases) {
    releases = last->next;
    last->release(last->thing);
    delete last;
  }
}

// Tells the library of the end of each thread. The key's destructor is gone with the library, so the threads that
// outlive it do not call into memory where it has been.
class ThreadEnds {
 public:
  ThreadEnds() {
    created_ = pthread_key_create(&key_, [](void*) { ReleaseAll(); }) == 0;
  }
  ~ThreadEnds() {
    ReleaseAll();
    if (created_) pthread_key_delete(key_);
  }

  // Without a key, or without memory for its value, the thread's things are leaked at its end.
  void Watch() {
    if (created_) pthread_setspecific(key_, this);
  }

 private:
  pthread_key_t key_{};
  bool created_ = false;
};

}  // namespace

void AtThreadEnd(void (*release)(void* thing), void* thing) {
  static ThreadEnds threadEnds;
  releases = new Release{release, thing, releases};
  threadEnds.Watch();
}

}  // namespace TORVA35
