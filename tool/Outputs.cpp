#include "Outputs.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>
#include <random>
#include <system_error>

#include "Stop.h"
#include "System.h"

namespace tool {

namespace fs = std::filesystem;

namespace {

constexpr char kStandardOutput[] = "-";
constexpr char kOutputDevice[] = "/dev/stdout";  // where it leads, on systems that have it

[[noreturn]] void Fail(const std::string& name, const std::string& why) {
  throw Outputs::Trouble{name + ": " + why};
}

std::string LastError() {
  return errno != 0 ? std::strerror(errno) : "cannot be written";
}

// The file that a path leads to, whether it is there or not.
fs::path Target(const fs::path& path) {
  std::error_code error;
  // Absolute first: a name of which nothing is there yet would stay as it is.
  const fs::path target = fs::weakly_canonical(fs::absolute(path), error);
  return error ? fs::absolute(path) : target;
}

bool SameFile(const fs::path& left, const fs::path& right) {
  std::error_code error;
  return left == right || fs::equivalent(left, right, error);
}

// A name that no other run has at the same time.
fs::path Beside(const fs::path& target) {
  static std::random_device random;
  constexpr std::size_t kMost = 200;  // bytes of a name, which a system has 255 for
  fs::path name = target;
  name.replace_filename(
      PathOf("." + Utf8Of(target.filename()).substr(0, kMost) + "." + std::to_string(random()) + ".tmp"));
  return name;
}

bool WriteContent(const std::string& path, const std::string& content) {
  errno = 0;
  std::ofstream file(PathOf(path), std::ios::binary);
  file.write(content.data(), static_cast<std::streamsize>(content.size()));
  return file.flush().good();
}

}  // namespace

void Outputs::Protect(const std::string& path) {
  protected_.push_back(Target(PathOf(path)));
  std::error_code error;
  const fs::path output(kOutputDevice);
  if (fs::is_regular_file(output, error) && fs::equivalent(output, protected_.back(), error)) {
    Fail(path, "is standard output, too");
  }
}

void Outputs::Add(const std::string& path, std::string content) {
  std::error_code error;
  const fs::file_status status = path == kStandardOutput ? fs::file_status() : fs::status(PathOf(path), error);
  Output output{path, Target(PathOf(path == kStandardOutput ? kOutputDevice : path)), {}, std::move(content)};
  output.straight =
      path == kStandardOutput || (fs::exists(status) && !fs::is_regular_file(status) && !fs::is_directory(status));
  if (output.straight) {
    CheckTarget(output);
    outputs_.push_back(std::move(output));
    return;
  }
  Add(path, [content = std::move(output.content)](const std::string& at) { return WriteContent(at, content); });
}

void Outputs::Add(const std::string& path, std::function<bool(const std::string& path)> write) {
  std::error_code error;
  Output output{path, Target(PathOf(path)), std::move(write), {}};
  output.replaces = fs::exists(output.target, error);
  if (path == kStandardOutput) Fail(path, "cannot be written to standard output");
  if (fs::is_directory(output.target, error)) Fail(path, "is a folder");
  if (fs::equivalent(output.target, kOutputDevice, error)) Fail(path, "is standard output, which is called \"-\"");
  CheckTarget(output);
  outputs_.push_back(std::move(output));
}

void Outputs::CheckTarget(const Output& output) const {
  for (const fs::path& input : protected_) {
    if (SameFile(input, output.target)) Fail(output.name, "is a file to read, and is not overwritten");
  }
  for (const Output& other : outputs_) {
    if (SameFile(other.target, output.target)) Fail(output.name, "is to be written twice");
  }
}

void Outputs::Write() {
  try {
    for (Output& output : outputs_) {
      if (!output.straight) WriteBeside(output);
    }
    for (const Output& output : outputs_) {
      if (output.straight) WriteStraight(output);
    }
    if (!std::cout.flush()) Fail("standard output", "cannot be written");
    CheckStop();
    for (Output& output : outputs_) {
      if (!output.straight) PutInPlace(output);
    }
  } catch (...) {
    Undo();
    throw;
  }
  std::error_code error;
  for (const Output& output : outputs_) {
    if (!output.before.empty()) fs::remove(output.before, error);
  }
}

void Outputs::WriteBeside(Output& output) {
  CheckStop();
  std::error_code error;
  // A reader's folders are made as they are needed, and gone again when the run fails.
  std::vector<fs::path> missing;
  for (fs::path folder = output.target.parent_path(); !folder.empty() && !fs::exists(folder, error);
       folder = folder.parent_path()) {
    missing.push_back(folder);
  }
  std::for_each(missing.rbegin(), missing.rend(), [&](const fs::path& folder) {
    if (fs::create_directory(folder, error)) folders_.push_back(folder);
    if (error) Fail(output.name, error.message());
  });
  output.temporary = Beside(output.target);
  errno = 0;
  const std::string temporary = Utf8Of(output.temporary);
  // An empty file first: what keeps it from being there is then told as the system says it.
  if (!WriteContent(temporary, "") || !output.write(temporary)) Fail(output.name, LastError());
  const fs::file_status before = fs::status(output.target, error);
  if (!fs::exists(before)) return;
  if ((before.permissions() & fs::perms::owner_write) == fs::perms::none) Fail(output.name, "may not be written");
  fs::permissions(output.temporary, before.permissions(), error);
}

void Outputs::WriteStraight(const Output& output) {
  CheckStop();
  if (output.name == kStandardOutput) {
    std::cout << output.content;
  } else if (!WriteContent(output.name, output.content)) {
    Fail(output.name, LastError());
  }
}

void Outputs::PutInPlace(Output& output) {
  std::error_code error;
  // On some systems names that differ in case are of one file, which is seen only now.
  if (fs::exists(output.target, error) && !output.replaces) Fail(output.name, "is there by now");
  if (output.replaces) {
    const fs::path before = Beside(output.target);
    KeepBefore(output.target, before, error);
    if (error) Fail(output.name, error.message());
    output.before = before;
  }
  fs::rename(output.temporary, output.target, error);
  if (error) Fail(output.name, error.message());
  output.placed = true;
}

void Outputs::Undo() noexcept {
  std::error_code error;
  for (const Output& output : outputs_) {
    if (output.placed && output.replaces) {
      fs::rename(output.before, output.target, error);
    } else if (output.placed) {
      fs::remove(output.target, error);
    } else {
      if (!output.temporary.empty()) fs::remove(output.temporary, error);
      if (!output.before.empty()) fs::remove(output.before, error);
    }
  }
  std::for_each(folders_.rbegin(), folders_.rend(), [&](const fs::path& folder) { fs::remove(folder, error); });
}

}  // namespace tool
