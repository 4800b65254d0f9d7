#pragma once

#include <memory>
#include <string_view>

#include "torva35/base/Types.h"

namespace TORVA35 {

/// Writes a file that takes the place of another one in a single step: it does not appear before `Commit`, and
/// without a successful `Commit` nothing of it remains, except what a killed process leaves, which the next save
/// of the same file removes. A symbolic link is followed, also one that leads to no file yet. The new file has
/// owner, group and access rights of the old one as far as the system lets the saver give them, and is at no time
/// open to more people. Not kept: several names of the old file (hard links) and its access-control lists.
///
/// A port owes the same for its system's files. A file that grows too large fails and does not end the process.
///
/// On Windows a file that somebody else keeps open without letting it be deleted, a read-only one, and a link that
/// leads to no file are not replaced. The new file has attributes and access-control list of the old one;
/// alternate streams are not kept. On disks that cannot rename a file over one that is being read (no NTFS, or
/// before Windows 10), such a file is replaced in two steps, and is not there between them.
class FileReplacement {
 public:
  /// Begins the new file beside the one of this path, which need not exist. `Commit` gives False when that fails.
  explicit FileReplacement(const String& path);
  ~FileReplacement();
  FileReplacement(const FileReplacement&) = delete;
  FileReplacement& operator=(const FileReplacement&) = delete;

  /// Appends the bytes. After a failure this does nothing.
  void Write(std::string_view bytes);

  /// Brings the new file to the disk and gives it its name. False when anything has failed; the old file is then
  /// as it was, except where only the name could not be brought to the disk.
  bool Commit();

 private:
  class Work;  // the port's own
  std::unique_ptr<Work> work_;
};

}  // namespace TORVA35
