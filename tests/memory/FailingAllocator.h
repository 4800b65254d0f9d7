#pragma once

#include <expat.h>

#include <cstdint>
#include <cstdlib>
#include <new>

/// For the one source file of a program: its allocator, which fails when it is told to, for `new` and the XML
/// parser.
namespace TORVA35 {

struct FailingAllocator {
  static inline std::int64_t alive = 0;  ///< blocks
  static inline std::int64_t left = 0;   ///< allocations up to the one that fails; 0 when none does
  static inline bool all = false;        ///< whether all later ones fail, too
  static inline bool failed = false;     ///< whether one has

  static bool Fails() {
    if (left == 0 || --left > 0) return false;
    left = all ? 1 : 0;
    return failed = true;
  }
  // Out of line, or an optimizing compiler sees a block of `new` go to `free`.
  [[gnu::noinline]] static void* Allocate(std::size_t size) {
    if (Fails()) return nullptr;
    ++alive;
    return std::malloc(size);
  }
  static void* Reallocate(void* block, std::size_t size) {
    if (block == nullptr) return Allocate(size);
    return Fails() ? nullptr : std::realloc(block, size);
  }
  [[gnu::noinline]] static void Free(void* block) {
    if (block != nullptr) --alive;
    std::free(block);
  }
};

}  // namespace TORVA35

// The linker puts this in the place of XML_ParserCreate.
extern "C" XML_Parser __wrap_XML_ParserCreate(const XML_Char* encoding) {
  using Allocator = TORVA35::FailingAllocator;
  static constexpr XML_Memory_Handling_Suite kMemory{Allocator::Allocate, Allocator::Reallocate, Allocator::Free};
  return XML_ParserCreate_MM(encoding, &kMemory, nullptr);
}

// All forms in use: those that are left out would be a sanitizer's own.
// clang-format off
void* operator new(std::size_t size) {
  if (void* const block = TORVA35::FailingAllocator::Allocate(size)) return block;
  throw std::bad_alloc();
}
void* operator new[](std::size_t size) { return operator new(size); }
void operator delete(void* block) noexcept { TORVA35::FailingAllocator::Free(block); }
void operator delete[](void* block) noexcept { operator delete(block); }
void operator delete(void* block, std::size_t) noexcept { operator delete(block); }
void operator delete[](void* block, std::size_t) noexcept { operator delete(block); }
// clang-format on
