#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace tool {

/// The files of a run: all of them, whole, or none.
class Outputs {
 public:
  /// Files that must not be written to, under any of their names.
  void Protect(const std::string& path);

  /// Adds a file. write: gives its content into a file at the path that it is handed; False with no file when that
  /// fails. Throws `Trouble` for a path that cannot be written.
  void Add(const std::string& path, std::function<bool(const std::string& path)> write);
  void Add(const std::string& path, std::string content);

  /// Writes every file beside its place, then puts all in place. Throws `Trouble`; then nothing new is there.
  /// Files that are no regular ones, such as a device, and "-" are written to at the end.
  void Write();

  /// Why something could not be written, in one line.
  struct Trouble {
    std::string text;
  };

 private:
  struct Output {
    std::string name;              // as it was given
    std::filesystem::path target;  // where links lead
    std::filesystem::path temporary;
    std::function<bool(const std::string& path)> write;
    std::string content;  // for what is written straight
    bool straight = false;
  };

  void WriteBeside(Output& output);
  static void WriteStraight(const Output& output);
  void RemoveTemporaries() noexcept;

  std::vector<std::filesystem::path> protected_;
  std::vector<Output> outputs_;
  std::vector<std::filesystem::path> folders_;  // that were made for the outputs
};

}  // namespace tool
