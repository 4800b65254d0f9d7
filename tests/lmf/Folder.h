#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "torva35/base/Text.h"
#include "torva35/lmf/clsLmf.h"

namespace TORVA35 {

// A folder of its own, gone when the object goes.
struct Folder {
  Folder() { std::filesystem::create_directory(path); }
  ~Folder() { std::filesystem::remove_all(path); }

  std::string File(const char* name) const { return path + "/" + name; }
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(path))
      names.push_back(entry.path().filename().string());
    return names;
  }

  std::string path = testing::TempDir() + "torva35-lmf-" + std::to_string(getpid());
};

inline std::string Bytes(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

inline void Write(const std::string& path, std::string_view bytes) {
  std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

inline bool Save(const clsLmf& lmf, const std::string& path) {
  return lmf.Save(FromUtf8(path));
}

}  // namespace TORVA35
