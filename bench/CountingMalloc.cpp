// The allocator of the C library with a count around it. Defined in the executable, these functions replace those
// of the C library for every library of the process.

#include "bench/CountingMalloc.h"

#include <malloc.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* memory);
}

namespace TORVA35::bench {
namespace {

bool counting = false;
HeapUse use;
std::int64_t alive = 0;

// What a block really takes, so that what goes is what came: its usable size and the word before it.
std::int64_t SizeOf(void* memory) {
  return memory == nullptr ? 0 : static_cast<std::int64_t>(malloc_usable_size(memory) + sizeof(std::size_t));
}

void* Came(void* memory) {
  if (!counting || memory == nullptr) return memory;
  ++use.allocations;
  use.allocated += SizeOf(memory);
  alive += SizeOf(memory);
  use.peak = std::max(use.peak, alive);
  return memory;
}

void Goes(void* memory) {
  if (counting) alive -= SizeOf(memory);
}

}  // namespace

void StartCounting() {
  use = {};
  alive = 0;
  counting = true;
}

HeapUse StopCounting() {
  counting = false;
  return use;
}

}  // namespace TORVA35::bench

using TORVA35::bench::Came;
using TORVA35::bench::Goes;

extern "C" {

void* malloc(std::size_t size) {
  return Came(__libc_malloc(size));
}
void* calloc(std::size_t count, std::size_t size) {
  return Came(__libc_calloc(count, size));
}

void* realloc(void* memory, std::size_t size) {
  Goes(memory);
  return Came(__libc_realloc(memory, size));
}

void free(void* memory) {
  Goes(memory);
  __libc_free(memory);
}

void* memalign(std::size_t alignment, std::size_t size) {
  return Came(__libc_memalign(alignment, size));
}
void* aligned_alloc(std::size_t alignment, std::size_t size) {
  return Came(__libc_memalign(alignment, size));
}

int posix_memalign(void** memory, std::size_t alignment, std::size_t size) {
  *memory = Came(__libc_memalign(alignment, size));
  return *memory == nullptr ? ENOMEM : 0;
}

}  // extern "C"
