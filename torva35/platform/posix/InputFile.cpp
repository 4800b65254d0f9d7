#include "torva35/platform/InputFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "torva35/base/Text.h"

namespace TORVA35 {
namespace {

constexpr const char16_t* kNotAFile = u"not a file that can be read";

String Words(int error) {
  return FromUtf8(std::strerror(error));
}

int Descriptor(std::intptr_t file) {
  return static_cast<int>(file);
}

}  // namespace

InputFile::InputFile(const String& path) {
  // A path cannot hold a NUL; cut off there it would name another file.
  if (path.find(u'\0') != path.npos) {
    problem_ = Words(ENOENT);
    return;
  }
  const std::string name = ToUtf8(path);
  constexpr int kFlags = O_RDONLY | O_CLOEXEC | O_NOCTTY;
  // Without O_NONBLOCK opening a pipe would wait for a writer.
  file_ = open(name.c_str(), kFlags | O_NONBLOCK);
  // Only a regular file says this: another process is giving up a lease on it, which is worth waiting for.
  if (file_ < 0 && errno == EWOULDBLOCK) file_ = open(name.c_str(), kFlags);
  struct stat status;
  if (file_ < 0 || fstat(Descriptor(file_), &status) != 0) {
    problem_ = errno == ENXIO ? kNotAFile : Words(errno);  // ENXIO: a socket, or a device that is not there
  } else if (!S_ISREG(status.st_mode)) {
    problem_ = S_ISDIR(status.st_mode) ? Words(EISDIR) : kNotAFile;
  } else {
    size_ = status.st_size;
  }
}

InputFile::~InputFile() {
  if (file_ >= 0) close(Descriptor(file_));
}

InputFile::InputFile(InputFile&& other) noexcept
    : file_(std::exchange(other.file_, -1)), size_(other.size_), problem_(std::move(other.problem_)) {}

std::size_t InputFile::ReadAt(std::int64_t offset, char* bytes, std::size_t size) {
  std::size_t done = 0;
  while (done < size && problem_.empty()) {
    const ssize_t count =
        pread(Descriptor(file_), bytes + done, size - done, offset + static_cast<std::int64_t>(done));
    if (count == 0) break;
    if (count > 0) {
      done += static_cast<std::size_t>(count);
    } else if (errno != EINTR) {
      problem_ = Words(errno);
    }
  }
  return done;
}

}  // namespace TORVA35
