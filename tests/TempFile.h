#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "torva35/base/Text.h"

namespace TORVA35 {

inline void Write(const std::string& path, std::string_view bytes) {
  std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}
inline std::string BytesOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// A name in the folder for temporary files that no other object of this process or of others has.
inline std::string TempName() {
  static int count = 0;
  return testing::TempDir() + "torva35-" + std::to_string(getpid()) + "-" + std::to_string(++count);
}

/// A file with the given bytes, gone when the object goes.
class TempFile {
 public:
  explicit TempFile(std::string_view bytes = {}) { Write(path_, bytes); }
  ~TempFile() { std::remove(path_.c_str()); }
  TempFile(const TempFile&) = delete;
  TempFile& operator=(const TempFile&) = delete;

  String Path() const { return FromUtf8(path_); }
  std::string Bytes() const { return BytesOf(path_); }

 private:
  const std::string path_ = TempName();
};

/// A folder of its own, gone with all that is in it when the object goes.
struct Folder {
  Folder() { std::filesystem::create_directory(path); }
  ~Folder() { std::filesystem::remove_all(path); }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;

  std::string File(const char* name) const { return path + "/" + name; }
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(path))
      names.push_back(entry.path().filename().string());
    return names;
  }

  const std::string path = TempName();
};

}  // namespace TORVA35
