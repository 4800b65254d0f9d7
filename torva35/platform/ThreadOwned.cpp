#include "torva35/platform/ThreadOwned.h"

#include <pthread.h>

#include <memory>

namespace TORVA35 {
namespace {

struct Release {
  void (*release)(void* thing);
  void* thing;
  Release* next;
};

// Tells the library of the end of each thread. The key's destructor is gone with the library, so the threads that
// outlive it do not call into memory where it has been. Its value is the thread's list, the last one first.
class ThreadEnds {
 public:
  ThreadEnds() {
    created_ =
        pthread_key_create(&key_, [](void* list) { Instance().ReleaseAll(static_cast<Release*>(list)); }) == 0;
  }
  ~ThreadEnds() {
    if (!created_) return;
    ReleaseAll(List());
    pthread_key_delete(key_);
  }

  static ThreadEnds& Instance() {
    static ThreadEnds threadEnds;
    return threadEnds;
  }

  // Without a key, or without memory for its value, the thread's things are leaked at its end.
  void Add(void (*release)(void* thing), void* thing) {
    if (!created_) return;
    auto added = std::make_unique<Release>(Release{release, thing, List()});
    if (pthread_setspecific(key_, added.get()) == 0) static_cast<void>(added.release());
  }

 private:
  Release* List() const { return static_cast<Release*>(pthread_getspecific(key_)); }

  void ReleaseAll(Release* list) {
    // Put back, since the system has taken it: what is added meanwhile comes next.
    pthread_setspecific(key_, list);
    while (Release* const last = List()) {
      pthread_setspecific(key_, last->next);
      last->release(last->thing);
      delete last;
    }
  }

  pthread_key_t key_{};
  bool created_ = false;
};

}  // namespace

void AtThreadEnd(void (*release)(void* thing), void* thing) {
  ThreadEnds::Instance().Add(release, thing);
}

}  // namespace TORVA35
