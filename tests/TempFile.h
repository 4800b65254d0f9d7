#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <string_view>

#include "torva35/base/Text.h"

namespace TORVA35 {

/// A file with the given bytes, gone when the object goes.
class TempFile {
 public:
  explicit TempFile(std::string_view bytes = {}) {
    static int count = 0;
    path_ = testing::TempDir() + "torva35-" + std::to_string(getpid()) + "-" + std::to_string(++count);
    Write(bytes);
  }
  ~TempFile() { std::remove(path_.c_str()); }
  TempFile(const TempFile&) = delete;
  TempFile& operator=(const TempFile&) = delete;

  void Write(std::string_view bytes) {
    std::ofstream file(path_, std::ios::binary);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  }
  String Path() const { return FromUtf8(path_); }

 private:
  std::string path_;
};

}  // namespace TORVA35
