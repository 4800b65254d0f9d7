#include "torva35/platform/FileReplacement.h"

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "torva35/base/Text.h"

namespace TORVA35 {
namespace {

constexpr std::string_view kEnding = ".tmp";

// Where a symbolic link leads, so that the link stays and its target is replaced, or made.
std::string Resolved(std::string path) {
  constexpr int kMostLinks = 40;  // as the system follows
  for (int i = 0; i < kMostLinks; ++i) {
    const std::unique_ptr<char, decltype(&std::free)> real(::realpath(path.c_str(), nullptr), &std::free);
    if (real) return real.get();
    char target[4096];
    const ssize_t size = readlink(path.c_str(), target, sizeof target);
    if (size < 0 || size == static_cast<ssize_t>(sizeof target)) return path;
    const std::size_t slash = target[0] == '/' ? path.npos : path.rfind('/');
    path = (slash == path.npos ? std::string() : path.substr(0, slash + 1)) +
           std::string(target, static_cast<std::size_t>(size));
  }
  return path;
}

// A write beyond the largest size that a file may have fails, and does not end the process.
class NoFileSizeSignal {
 public:
  NoFileSizeSignal() {
    sigemptyset(&signal_);
    sigaddset(&signal_, SIGXFSZ);
    sigset_t pending;
    sigpending(&pending);
    wasPending_ = sigismember(&pending, SIGXFSZ) == 1;
    pthread_sigmask(SIG_BLOCK, &signal_, &before_);
  }
  ~NoFileSizeSignal() {
    const timespec now{};
    while (!wasPending_ && sigtimedwait(&signal_, nullptr, &now) < 0 && errno == EINTR) continue;
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
  }
  NoFileSizeSignal(const NoFileSizeSignal&) = delete;
  NoFileSizeSignal& operator=(const NoFileSizeSignal&) = delete;

 private:
  sigset_t signal_;
  sigset_t before_;
  bool wasPending_;
};

// The process of a temporary file, by its name: "PREFIX-PROCESS-COUNT.tmp". 0 for a file that is none of this
// prefix.
pid_t ProcessOf(std::string_view name, std::string_view prefix) {
  if (!name.starts_with(prefix) || !name.ends_with(kEnding)) return 0;
  name.remove_prefix(prefix.size());
  pid_t process = 0;
  const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), process);
  return error == std::errc() && end != name.data() + name.size() && *end == '-' ? process : 0;
}

bool IsGone(pid_t process) {
  return process > 0 && kill(process, 0) != 0 && errno == ESRCH;
}

}  // namespace

class FileReplacement::Work {
 public:
  explicit Work(const String& path);
  ~Work();
  Work(const Work&) = delete;
  Work& operator=(const Work&) = delete;

  void Write(std::string_view bytes);
  bool Commit();

 private:
  Work() = default;
  bool Begin(const std::string& path);
  bool Create(unsigned mode);
  bool TakeOver(unsigned owner, unsigned group, unsigned mode);
  void RemoveLeftovers() const;
  std::string TemporaryPrefix() const;

  int folder_ = -1;
  int file_ = -1;
  std::string name_;              // of the file that is replaced
  std::string temporaryName_;     // empty when there is none
  std::optional<unsigned> mode_;  // that the file gets at the end, where there is an old one
  bool failed_ = false;
};

FileReplacement::FileReplacement(const String& path) : work_(std::make_unique<Work>(path)) {}

FileReplacement::~FileReplacement() = default;

void FileReplacement::Write(std::string_view bytes) {
  work_->Write(bytes);
}

bool FileReplacement::Commit() {
  return work_->Commit();
}

// Through the other constructor, so that the destructor runs when this one is left by an exception.
FileReplacement::Work::Work(const String& path) : Work() {
  // A path cannot hold a NUL; cut off there it would name another file.
  failed_ = path.find(u'\0') != path.npos || !Begin(Resolved(ToUtf8(path)));
}

FileReplacement::Work::~Work() {
  if (file_ >= 0) close(file_);
  if (!temporaryName_.empty()) unlinkat(folder_, temporaryName_.c_str(), 0);
  if (folder_ >= 0) close(folder_);
}

bool FileReplacement::Work::Begin(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  name_ = slash == path.npos ? path : path.substr(slash + 1);
  const std::string folder = slash == path.npos ? "." : path.substr(0, slash + 1);
  if (name_.empty()) return false;
  // Not to be read: a folder that may be written is enough.
  folder_ = open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
  if (folder_ < 0) return false;
  RemoveLeftovers();

  struct stat old;
  if (fstatat(folder_, name_.c_str(), &old, AT_SYMLINK_NOFOLLOW) != 0) return errno == ENOENT && Create(0666);
  // A device or a pipe would be gone for all its users.
  if (!S_ISREG(old.st_mode) || faccessat(folder_, name_.c_str(), W_OK, AT_EACCESS) != 0) return false;
  // At no time wider than the old one: until owner and group are those of the old file, only the saver's.
  return Create(old.st_mode & 0600) && TakeOver(old.st_uid, old.st_gid, old.st_mode & 07777);
}

// Not everybody may give a file away: then it stays the saver's. Where not even the group can be kept, another
// group does not get what the old one had, and the old one, now among all others, no more than it had.
bool FileReplacement::Work::TakeOver(unsigned owner, unsigned group, unsigned mode) {
  // EINVAL: in a container that does not know the owner or the group.
  const auto mayNot = [] { return errno == EPERM || errno == EINVAL; };
  if (fchown(file_, owner, group) != 0) {
    if (!mayNot()) return false;
    mode &= ~static_cast<unsigned>(S_ISUID);
    if (fchown(file_, static_cast<uid_t>(-1), group) != 0) {
      if (!mayNot()) return false;
      const unsigned groups = (mode & S_IRWXG) >> 3;
      mode &= ~static_cast<unsigned>(S_IRWXG | S_ISGID | S_IRWXO) | groups;
    }
  }
  mode_ = mode;
  return true;
}

std::string FileReplacement::Work::TemporaryPrefix() const {
  // The name itself might leave no room for more.
  return ".lmf-" + std::to_string(std::hash<std::string>()(name_)) + '-';
}

bool FileReplacement::Work::Create(unsigned mode) {
  static std::atomic<unsigned> count{0};
  do {
    std::string name =
        TemporaryPrefix() + std::to_string(getpid()) + '-' + std::to_string(++count) + std::string(kEnding);
    file_ = openat(folder_, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    if (file_ >= 0) temporaryName_ = std::move(name);
    // What an ended process of the same number has left stays in its place.
  } while (file_ < 0 && errno == EEXIST);
  // A sign that the save is under way, for processes that cannot see this one by its number. Where there are no
  // locks, the number has to do.
  if (file_ >= 0) flock(file_, LOCK_EX | LOCK_NB);
  return file_ >= 0;
}

// What saves of this file have left whose processes were killed.
void FileReplacement::Work::RemoveLeftovers() const {
  const std::string prefix = TemporaryPrefix();
  const int readable = openat(folder_, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (readable < 0) return;
  const std::unique_ptr<DIR, int (*)(DIR*)> entries(fdopendir(readable), &closedir);
  if (entries == nullptr) {
    close(readable);
    return;
  }
  while (const dirent* entry = readdir(entries.get())) {
    if (!IsGone(ProcessOf(entry->d_name, prefix))) continue;
    const int file = openat(folder_, entry->d_name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (file < 0) continue;
    if (flock(file, LOCK_EX | LOCK_NB) == 0) unlinkat(folder_, entry->d_name, 0);
    close(file);
  }
}

void FileReplacement::Work::Write(std::string_view bytes) {
  const NoFileSizeSignal quiet;
  while (!failed_ && !bytes.empty()) {
    const ssize_t written = write(file_, bytes.data(), bytes.size());
    if (written >= 0) bytes.remove_prefix(static_cast<std::size_t>(written));
    failed_ = written < 0 && errno != EINTR;
  }
}

bool FileReplacement::Work::Commit() {
  // Last, since a write may take the set-user-ID and the set-group-ID bit away.
  if (failed_ || (mode_ && fchmod(file_, *mode_) != 0) || fsync(file_) != 0) return false;
  const int file = file_;
  file_ = -1;
  if (close(file) != 0) return false;
  if (renameat(folder_, temporaryName_.c_str(), folder_, name_.c_str()) != 0) return false;
  temporaryName_.clear();
  // The name reaches the disk with the folder. Where the folder may not be read, or the file system cannot do that
  // for a folder, there is nothing left to do; where it fails, the new file is complete, and only its name might
  // not survive a crash.
  const int folder = openat(folder_, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (folder < 0) return errno == EACCES;
  const bool synced = fsync(folder) == 0 || errno == EINVAL;
  close(folder);
  return synced;
}

}  // namespace TORVA35
