#pragma once

#include <cstdlib>

#if !defined(_WIN32)
#include <sys/mman.h>
#include <unistd.h>
#endif

#if defined(__x86_64__)
#include <x86intrin.h>
#endif

/// Real faults. None of the functions owns anything, since a fault abandons it.
namespace TORVA35::faults {

#define FAULTS __attribute__((noinline, no_sanitize("undefined", "address", "thread")))

FAULTS inline void NullRead() {
  int* volatile nowhere = nullptr;
  *const_cast<volatile int*>(nowhere);
}

FAULTS inline void IntegerDivision() {
  volatile int one = 1;
  volatile int zero = 0;
  volatile int result = one / zero;
  static_cast<void>(result);
}

// Each level uses what the next one gives, so that none of them becomes a loop.
FAULTS inline int Recursion(int depth) {
  volatile char level[256];
  level[0] = static_cast<char>(depth);
  return depth < 0 ? 0 : Recursion(depth + 1) + level[0];
}

FAULTS inline void EndlessRecursion() {
  volatile int result = Recursion(0);
  static_cast<void>(result);
}

FAULTS inline void IllegalInstruction() {
#if defined(__x86_64__)
  asm volatile("ud2");
#else
  asm volatile(".word 0");
#endif
}

#if !defined(_WIN32)
FAULTS inline void ReadBehindFileEnd() {
  char name[] = "/tmp/emptyXXXXXX";
  const int file = mkstemp(name);
  unlink(name);
  *static_cast<volatile char*>(mmap(nullptr, 4096, PROT_READ, MAP_SHARED, file, 0));
}
#endif

#if defined(__x86_64__)
FAULTS inline void FloatDivision() {
  _mm_setcsr(_mm_getcsr() & ~_MM_MASK_DIV_ZERO);
  volatile double zero = 0;
  volatile double result = 1 / zero;
  static_cast<void>(result);
}

FAULTS inline void PrivilegedInstruction() {
  asm volatile("hlt");
}
FAULTS inline void Breakpoint() {
  asm volatile("int3");
}
FAULTS inline void SingleStep() {
  __writeeflags(__readeflags() | 0x100);
  asm volatile("nop\nnop");
}

FAULTS inline void MisalignedRead() {
  alignas(8) char bytes[16] = {};
  volatile int* volatile odd = reinterpret_cast<volatile int*>(bytes + 1);
  __writeeflags(__readeflags() | 0x40000);
  *odd;
}
#endif

}  // namespace TORVA35::faults
