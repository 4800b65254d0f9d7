#pragma once

#include <cstddef>
#include <cstdint>

#include "torva35/base/Types.h"

namespace TORVA35 {

/// A file that is read. Its name is looked up once: all that is asked later is asked of the file that was found
/// then, whatever takes the name in the meantime.
///
/// What a port owes:
///  - Only a regular file opens. Anything else (a folder, a pipe, a socket, a device) is a problem at once, and
///    opening it does not wait for anybody.
///  - A file that `FileReplacement` is about to replace opens as the old one or as the new one, and stays readable
///    as that until it is closed; an open one does not keep `FileReplacement` from its work.
///  - Problems are values; only exhausted memory is thrown. They have the same words on all systems for a file
///  that
///    is not there, a folder, and rights that are missing.
///
/// On Windows a file that another program keeps to itself is a problem, and paths may have any length.
class InputFile {
 public:
  /// Opens the file of this path, which is in the form that the system uses for paths.
  explicit InputFile(const String& path);
  ~InputFile();
  /// Takes the open file over.
  InputFile(InputFile&& other) noexcept;
  InputFile& operator=(InputFile&&) = delete;

  /// Why the file could not be opened or read; empty as long as nothing has failed.
  const String& Problem() const { return problem_; }

  /// Its size in bytes when it was opened; 0 where that failed. A file of the system's own may hold more.
  std::int64_t Size() const { return size_; }

  /// Reads the bytes from the offset on, `size` of them, into `bytes`, and gives how many that were: fewer where
  /// the file ends, or after a failure, for which `Problem` then has the words.
  std::size_t ReadAt(std::int64_t offset, char* bytes, std::size_t size);

 private:
  std::intptr_t file_ = -1;  // the system's number of it, or -1
  std::int64_t size_ = 0;
  String problem_;
};

}  // namespace TORVA35
