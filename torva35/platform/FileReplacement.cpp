#include "torva35/platform/FileReplacement.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <utility>

#include "torva35/base/Text.h"

namespace TORVA35 {
namespace {

// Where a symbolic link leads, so that the link stays and its target is replaced.
std::string Resolved(const std::string& path) {
  const std::unique_ptr<char, decltype(&std::free)> real(::realpath(path.c_str(), nullptr), &std::free);
  return real ? real.get() : path;
}

}  // namespace

// Through the other constructor, so that the destructor runs when this one is left by an exception.
FileReplacement::FileReplacement(const String& path) : FileReplacement() {
  // A path cannot hold a NUL; cut off there it would name another file.
  failed_ = path.find(u'\0') != path.npos || !Begin(Resolved(ToUtf8(path)));
}

FileReplacement::~FileReplacement() {
  if (file_ >= 0) close(file_);
  if (!temporaryName_.empty()) unlinkat(folder_, temporaryName_.c_str(), 0);
  if (folder_ >= 0) close(folder_);
}

bool FileReplacement::Begin(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  name_ = slash == path.npos ? path : path.substr(slash + 1);
  const std::string folder = slash == path.npos ? "." : path.substr(0, slash + 1);
  if (name_.empty()) return false;
  folder_ = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (folder_ < 0) return false;

  struct stat old;
  if (fstatat(folder_, name_.c_str(), &old, AT_SYMLINK_NOFOLLOW) != 0) return errno == ENOENT && Create();
  // A device or a pipe would be gone for everybody.
  if (!S_ISREG(old.st_mode) || faccessat(folder_, name_.c_str(), W_OK, AT_EACCESS) != 0 || !Create()) return false;
  // Not everybody may give a file away; whoever cannot keeps it under his own name.
  if (fchown(file_, old.st_uid, old.st_gid) != 0 && errno != EPERM) return false;
  return fchmod(file_, old.st_mode & 07777) == 0;
}

bool FileReplacement::Create() {
  static std::atomic<unsigned> count{0};
  do {
    std::string name = ".lmf-" + std::to_string(getpid()) + "-" + std::to_string(++count) + ".tmp";
    file_ = openat(folder_, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (file_ >= 0) temporaryName_ = std::move(name);
    // What an ended process of the same number has left stays in its place.
  } while (file_ < 0 && errno == EEXIST);
  return file_ >= 0;
}

void FileReplacement::Write(std::string_view bytes) {
  while (!failed_ && !bytes.empty()) {
    const ssize_t written = write(file_, bytes.data(), bytes.size());
    if (written >= 0) bytes.remove_prefix(static_cast<std::size_t>(written));
    failed_ = written < 0 && errno != EINTR;
  }
}

bool FileReplacement::Commit() {
  if (failed_ || fsync(file_) != 0) return false;
  const int file = file_;
  file_ = -1;
  if (close(file) != 0) return false;
  if (renameat(folder_, temporaryName_.c_str(), folder_, name_.c_str()) != 0) return false;
  temporaryName_.clear();
  // The name reaches the disk with the folder. Where the file system cannot do that for a folder, there is nothing
  // left to do; where it fails, the new file is complete, and only its name might not survive a crash.
  return fsync(folder_) == 0 || errno == EINVAL;
}

}  // namespace TORVA35
