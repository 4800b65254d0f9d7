#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace tool {

/// The files of a run: all of them, whole, or none.
class Outputs {
 public:
  /// Why something could not be written, in one line.
  struct Trouble {
    std::string text;
  };

  /// Files that must not be written to, under any of their names.
  void Protect(const std::string& path);

  /// Adds a file. write: gives its content into a file at the path that it is handed; False with no file when that
  /// fails. Throws `Trouble` for a path that cannot be written.
  void Add(const std::string& path, std::function<bool(const std::string& path)> write);
  void Add(const std::string& path, std::string content);

  /// Writes every file beside its place; then what goes straight out, which is standard output ("-", with all that
  /// waits in `std::cout`) and files that are no regular ones, such as a device; then puts the files in place.
  /// Throws when one of these fails; then all files are as they were.
  void Write();

 private:
  struct Output {
    std::string name;              // as it was given
    std::filesystem::path target;  // where links lead
    std::function<bool(const std::string& path)> write;
    std::string content;  // for what is written straight
    bool straight = false;
    bool replaces = false;              // there is a file
    std::filesystem::path temporary{};  // while it is there
    std::filesystem::path before{};     // likewise: the file that is replaced
    bool placed = false;
  };

  void CheckTarget(const Output& output) const;
  void WriteBeside(Output& output);
  static void WriteStraight(const Output& output);
  static void PutInPlace(Output& output);
  void Undo() noexcept;

  std::vector<std::filesystem::path> protected_;
  std::vector<Output> outputs_;
  std::vector<std::filesystem::path> folders_;  // that were made for the outputs
};

}  // namespace tool
