#include "Outputs.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>
#include <random>
#include <system_error>

namespace tool {

namespace fs = std::filesystem;

namespace {

constexpr char kStandardOutput[] = "-";

[[noreturn]] void Fail(const std::string& name, const std::string& why) {
  throw Outputs::Trouble{name + ": " + why};
}

std::string LastError() {
  return std::strerror(errno);
}

// The file that a path leads to, whether it is there or not.
fs::path Target(const fs::path& path) {
  std::error_code error;
  const fs::path target = fs::weakly_canonical(path, error);
  return error ? fs::absolute(path) : target;
}

bool SameFile(const fs::path& left, const fs::path& right) {
  std::error_code error;
  return left == right || fs::equivalent(left, right, error);
}

// A name that no other run has at the same time.
fs::path Beside(const fs::path& target) {
  static std::random_device random;
  fs::path name = target;
  name.replace_filename("." + target.filename().string() + "." + std::to_string(random()) + ".tmp");
  return name;
}

bool WriteContent(const std::string& path, const std::string& content) {
  errno = 0;
  std::ofstream file(path, std::ios::binary);
  file.write(content.data(), static_cast<std::streamsize>(content.size()));
  return file.flush().good();
}

}  // namespace

void Outputs::Protect(const std::string& path) {
  protected_.push_back(Target(path));
}

void Outputs::Add(const std::string& path, std::string content) {
  Output output{path, {}, {}, {}, std::move(content), false};
  std::error_code error;
  const fs::file_status status = path == kStandardOutput ? fs::file_status() : fs::status(path, error);
  output.straight =
      path == kStandardOutput || (fs::exists(status) && !fs::is_regular_file(status) && !fs::is_directory(status));
  if (output.straight) {
    outputs_.push_back(std::move(output));
    return;
  }
  Add(path, [content = std::move(output.content)](const std::string& at) { return WriteContent(at, content); });
}

void Outputs::Add(const std::string& path, std::function<bool(const std::string& path)> write) {
  Output output{path, Target(path), {}, std::move(write), {}, false};
  if (path == kStandardOutput) Fail(path, "cannot be written to standard output");
  if (fs::is_directory(output.target)) Fail(path, "is a folder");
  for (const fs::path& input : protected_) {
    if (SameFile(input, output.target)) Fail(path, "is a file to read, and is not overwritten");
  }
  for (const Output& other : outputs_) {
    if (!other.straight && SameFile(other.target, output.target)) Fail(path, "is to be written twice");
  }
  outputs_.push_back(std::move(output));
}

void Outputs::Write() {
  try {
    for (Output& output : outputs_) {
      if (!output.straight) WriteBeside(output);
    }
    for (const Output& output : outputs_) {
      if (output.straight) WriteStraight(output);
    }
    for (Output& output : outputs_) {
      if (output.straight) continue;
      std::error_code error;
      fs::rename(output.temporary, output.target, error);
      if (error) Fail(output.name, error.message());
      output.temporary.clear();
    }
  } catch (...) {
    RemoveTemporaries();
    throw;
  }
}

void Outputs::WriteBeside(Output& output) {
  std::error_code error;
  // A reader's folders are made as they are needed, and gone again when the run fails.
  std::vector<fs::path> missing;
  for (fs::path folder = output.target.parent_path(); !folder.empty() && !fs::exists(folder, error);
       folder = folder.parent_path()) {
    missing.push_back(folder);
  }
  std::for_each(missing.rbegin(), missing.rend(), [&](const fs::path& folder) {
    if (fs::create_directory(folder, error)) folders_.push_back(folder);
  });
  const fs::path temporary = Beside(output.target);
  output.temporary = temporary;
  errno = 0;
  if (!output.write(temporary.string())) Fail(output.name, errno != 0 ? LastError() : "cannot be written");
  const fs::file_status before = fs::status(output.target, error);
  if (!fs::exists(before)) return;
  if ((before.permissions() & fs::perms::owner_write) == fs::perms::none) Fail(output.name, "may not be written");
  fs::permissions(temporary, before.permissions(), error);
}

void Outputs::WriteStraight(const Output& output) {
  if (output.name == kStandardOutput) {
    std::cout.write(output.content.data(), static_cast<std::streamsize>(output.content.size()));
    return;  // whether it has arrived is seen at the end
  }
  if (!WriteContent(output.name, output.content))
    Fail(output.name, errno != 0 ? LastError() : "cannot be written");
}

void Outputs::RemoveTemporaries() noexcept {
  std::error_code error;
  for (const Output& output : outputs_) {
    if (!output.temporary.empty()) fs::remove(output.temporary, error);
  }
  std::for_each(folders_.rbegin(), folders_.rend(), [&](const fs::path& folder) { fs::remove(folder, error); });
}

}  // namespace tool
