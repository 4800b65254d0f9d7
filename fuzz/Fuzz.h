#pragma once

#include <unistd.h>

#if defined(__linux__)
#include <sys/mman.h>
#endif

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "torva35/base/Text.h"
#include "torva35/errors/ErrorObject.h"
#include "torva35/errors/basError.h"
#include "torva35/errors/modStartup.h"
#include "torva35/platform/FaultGuard.h"

/// What the harnesses have in common. Each of them runs the library on bytes that nobody vouches for, and ends the
/// process when it does what it must never do.
namespace TORVA35::fuzz {

inline void Require(bool condition, const char* what, std::string_view detail = "") {
  if (condition) return;
  std::fprintf(stderr, "Not so: %s %.*s\n", what, static_cast<int>(detail.size()), detail.data());
  std::abort();
}

/// An error object that allows what bad input may lead to, and no more.
class Host : public ErrorObject {
 public:
  TaggedValue RaiseError(TaggedValue& vNumber, Long&, String& sDescription, String& sLocation, String&, String&,
                         String&, String&, Long&, String&, String&, String&, bool&) override {
    const Long number = *vNumber.As<Long>();
    const bool expected = number == kInvalidCall || number == kOverflow || number == kSubscriptOutOfRange ||
                          number == kTypeMismatch || number == kNothing || number == kDuplicateKey ||
                          (number == kTooMuchText && !tooMuchText);  // once for a load
    Require(expected, "a failure of bad input, and not",
            std::to_string(number) + " " + ToUtf8(sDescription) + " at " + ToUtf8(sLocation));
    ++failures;
    tooMuchText = tooMuchText || number == kTooMuchText;
    return 0;
  }

  TaggedValue MsgBoxEx(String, String, Long, TaggedValue, String, TaggedValue) override {
    ++dialogs;
    return reply;
  }

  Long failures = 0;
  bool tooMuchText = false;
  Long dialogs = 0;
  TaggedValue reply = 6;
};

/// The library ready for one input: a fresh error object, and processor faults left to the sanitizer or the
/// fuzzer, since the library would make reports of them, or nothing at all in a member that reports nothing.
inline Ref<Host> FreshHost() {
  static const bool started = [] {
    modStartup::Main();
    SetUnhandledExceptionFilter(nullptr);
    return true;
  }();
  static_cast<void>(started);
  const auto host = New<Host>();
  basError::goErr() = host;
  return host;
}

#if defined(__linux__)

/// A file in memory with the given bytes.
class InputFile {
 public:
  explicit InputFile(std::string_view bytes) : file_(memfd_create("input", MFD_CLOEXEC)) {
    Require(file_ >= 0 && write(file_, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()),
            "a file in memory");
  }
  ~InputFile() { close(file_); }
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;

  String Path() const { return u"/proc/self/fd/" + Decimal(file_); }

 private:
  int file_;
};

#else

/// A file with the given bytes.
class InputFile {
 public:
  explicit InputFile(std::string_view bytes)
      : path_(std::filesystem::temp_directory_path() / ("torva35-input-" + std::to_string(getpid()))) {
    std::ofstream file(path_, std::ios::binary);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    Require(file.flush().good(), "a file");
  }
  ~InputFile() {
    std::error_code error;
    std::filesystem::remove(path_, error);
  }
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;

  String Path() const { return path_.u16string(); }

 private:
  std::filesystem::path path_;
};

#endif

/// A name for a file that is written: in memory where the system has such a folder, and lets one write there.
inline String OutputPath() {
  static const struct Name {
    Name() {
      const std::filesystem::path shared("/dev/shm");
      const bool isOpen = access(shared.string().c_str(), W_OK) == 0;
      const auto folder = isOpen ? shared : std::filesystem::temp_directory_path();
      path = folder / ("torva35-fuzz-" + std::to_string(getpid()));
    }
    ~Name() {
      std::error_code error;
      std::filesystem::remove(path, error);
    }
    std::filesystem::path path;
  } name;
  return FromUtf8(name.path.string());
}

/// Takes decisions out of the input, byte by byte; 0 when there is none left.
class Decisions {
 public:
  explicit Decisions(std::string_view bytes) : bytes_(bytes) {}

  bool IsEmpty() const { return bytes_.empty(); }
  std::uint8_t Byte() {
    if (bytes_.empty()) return 0;
    const auto byte = static_cast<std::uint8_t>(bytes_.front());
    bytes_.remove_prefix(1);
    return byte;
  }
  /// From 0 to limit - 1.
  Long Below(Long limit) { return Byte() % limit; }
  /// True once in that many.
  bool OneIn(Long count) { return Below(count) == count - 1; }

 private:
  std::string_view bytes_;
};

}  // namespace TORVA35::fuzz
