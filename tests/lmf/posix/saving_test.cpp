// Saves that fail, that end in the middle, and that another user makes.

#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "tests/TempFile.h"
#include "tests/platform/InChild.h"
#include "torva35/lmf/clsLmf.h"

namespace {

// Calls to the system up to the one at which the process ends, or that fails; 0 when none does.
int callsLeft = 0;
bool ends = false;

bool Fails() {
  if (callsLeft == 0 || --callsLeft > 0) return false;
  if (ends) raise(SIGKILL);
  errno = ENOSPC;
  return true;
}

}  // namespace

// The linker puts these in the place of the calls.
extern "C" {
int __real_openat(int folder, const char* name, int flags, mode_t mode);
int __wrap_openat(int folder, const char* name, int flags, mode_t mode) {
  // To look for leftovers, and to bring a name to the disk: a save does without.
  if ((flags & O_DIRECTORY) != 0) return __real_openat(folder, name, flags, mode);
  return Fails() ? -1 : __real_openat(folder, name, flags, mode);
}
int __real_fchmod(int file, mode_t mode);
int __wrap_fchmod(int file, mode_t mode) {
  return Fails() ? -1 : __real_fchmod(file, mode);
}
ssize_t __real_write(int file, const void* bytes, size_t size);
ssize_t __wrap_write(int file, const void* bytes, size_t size) {
  if (callsLeft == 1) __real_write(file, bytes, size / 2);
  return Fails() ? -1 : __real_write(file, bytes, size);
}
int __real_fsync(int file);
int __wrap_fsync(int file) {
  return Fails() ? -1 : __real_fsync(file);
}
int __real_renameat(int folder, const char* name, int newFolder, const char* newName);
int __wrap_renameat(int folder, const char* name, int newFolder, const char* newName) {
  return Fails() ? -1 : __real_renameat(folder, name, newFolder, newName);
}
}  // extern "C"

namespace TORVA35 {
namespace {

namespace fs = std::filesystem;

bool Save(const clsLmf& lmf, const std::string& path) {
  return lmf.Save(FromUtf8(path));
}

TEST(LmfFile, AFailedSaveLeavesTheOldFile) {
  const Folder folder;
  const std::string path = folder.File("a.lmf");
  clsLmf lmf;
  ASSERT_TRUE(Save(lmf, path));
  const std::string old = BytesOf(path);

  // As when the disk is full: the second buffer does not go out.
  lmf.Notes(String(200'000, u'x'));
  rlimit before;
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
  const rlimit small{100'000, before.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
  EXPECT_FALSE(Save(lmf, path));
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &before), 0);
  EXPECT_EQ(BytesOf(path), old);
  EXPECT_EQ(folder.Names(), std::vector<std::string>{"a.lmf"});
  EXPECT_TRUE(Save(lmf, path));
  EXPECT_GT(BytesOf(path).size(), 200'000u);

  ASSERT_EQ(mkfifo(folder.File("pipe").c_str(), 0600), 0);
  EXPECT_FALSE(lmf.Open(FromUtf8(folder.File("pipe"))));
  EXPECT_FALSE(Save(lmf, folder.File("pipe")));
  EXPECT_TRUE(fs::is_fifo(folder.File("pipe")));
}

// A save that stops at its n-th call to the system: what it gives, or how its process ended.
std::string StoppedSave(const clsLmf& lmf, const std::string& path, int n, bool killed) {
  return InChild([&] {
    ends = killed;
    callsLeft = n;
    const bool saved = Save(lmf, path);
    const bool stopped = std::exchange(callsLeft, 0) == 0;
    return std::string(!stopped ? "not stopped" : saved ? "saved" : "refused");
  });
}

TEST(LmfFile, WhereverASaveStopsTheFileIsWhole) {
  const Folder folder;
  const std::string path = folder.File("a.lmf");
  clsLmf old, lmf;
  lmf.Notes(String(200'000, u'x'));
  ASSERT_TRUE(Save(lmf, path));
  const std::string newBytes = BytesOf(path);
  ASSERT_TRUE(Save(old, path));
  const std::string oldBytes = BytesOf(path);
  for (const bool killed : {false, true}) {
    int stops = 0;
    int replaced = 0;
    for (;;) {
      ASSERT_TRUE(Save(old, path));
      const std::string end = StoppedSave(lmf, path, stops + 1, killed);
      if (end == "not stopped") break;
      ++stops;
      EXPECT_EQ(end, killed ? "ended by SIGKILL" : "refused") << stops;
      if (BytesOf(path) != oldBytes) ++replaced;
      EXPECT_TRUE(BytesOf(path) == oldBytes || BytesOf(path) == newBytes) << stops;
      EXPECT_TRUE(killed || folder.Names().size() == 1) << stops;
    }
    EXPECT_GE(stops, 6);
    EXPECT_EQ(replaced, 1);  // at the last call, which brings the new file's name to the disk
    EXPECT_EQ(BytesOf(path), newBytes);
  }
  // A save takes away what killed saves of this file have left, and not what belongs to another file.
  EXPECT_EQ(StoppedSave(lmf, path, 4, true), "ended by SIGKILL");
  EXPECT_EQ(folder.Names().size(), 2u);
  ASSERT_TRUE(Save(old, folder.File("b.lmf")));
  EXPECT_EQ(folder.Names().size(), 3u);
  ASSERT_TRUE(Save(old, path));
  EXPECT_EQ(folder.Names().size(), 2u);
  EXPECT_EQ(BytesOf(path), oldBytes);
}

TEST(LmfFile, ASaveKeepsAccessRightsAndFollowsALink) {
  const Folder folder;
  const std::string target = folder.File("target");
  Write(target, "old");
  fs::permissions(target, fs::perms(06640));
  fs::create_symlink("target", folder.File("link"));
  EXPECT_TRUE(Save(clsLmf(), folder.File("link")));
  EXPECT_TRUE(fs::is_symlink(folder.File("link")));
  EXPECT_EQ(fs::status(target).permissions(), fs::perms(06640));
  clsLmf opened;
  EXPECT_TRUE(opened.Open(FromUtf8(target)));
  // A link that leads to no file yet, by way of another folder's link.
  fs::create_directory(folder.File("inner"));
  fs::create_symlink("../link2", folder.File("inner/link"));
  fs::create_symlink("new", folder.File("link2"));
  EXPECT_TRUE(Save(clsLmf(), folder.File("inner/link")));
  EXPECT_TRUE(fs::is_symlink(folder.File("link2")));
  EXPECT_TRUE(fs::is_regular_file(folder.File("new")));
  fs::create_symlink("circle", folder.File("circle"));
  EXPECT_FALSE(Save(clsLmf(), folder.File("circle")));
  EXPECT_TRUE(fs::is_symlink(folder.File("circle")));
  // The name takes all the room that a name has.
  const std::string longName = folder.File(std::string(255, 'n').c_str());
  EXPECT_TRUE(Save(clsLmf(), longName));
  EXPECT_EQ(folder.Names().size(), 7u);
}

// Mode, and whether the group is still that of the old file, after a save by another user of these groups, who may
// write in the folder and not list it.
// contained: that one is root of a container which knows neither owner nor group of the file.
std::string SavedBySomebodyElse(unsigned mode, std::vector<gid_t> groups, bool contained = false) {
  constexpr uid_t kOwner = 12345, kSaver = 12346;
  constexpr gid_t kGroup = 23456;
  const Folder folder;
  const std::string path = folder.File("a");
  Write(path, "old");
  if (chown(path.c_str(), kOwner, kGroup) != 0) return "no right to give a file away";
  fs::permissions(path, fs::perms(mode));
  fs::permissions(folder.path, fs::perms(0733));
  const std::string end = InChild([&]() -> std::string {
    if (contained) {
      if (unshare(CLONE_NEWUSER) != 0) return "no container";
      Write("/proc/self/uid_map", "0 0 1");
      Write("/proc/self/setgroups", "deny");
      Write("/proc/self/gid_map", "0 0 1");
    } else if (setgroups(groups.size(), groups.data()) != 0 || setgid(kSaver) != 0 || setuid(kSaver) != 0) {
      return "no child";
    }
    return Save(clsLmf(), path) ? "saved" : "refused";
  });
  struct stat saved {};
  stat(path.c_str(), &saved);
  std::ostringstream text;
  text << end << ' ' << std::oct << (saved.st_mode & 07777) << (saved.st_gid == kGroup ? " group kept" : "")
       << (saved.st_uid == kOwner ? " old" : "");
  return text.str();
}

TEST(LmfFile, ASaveBySomebodyElseGivesNobodyMore) {
  if (geteuid() != 0) GTEST_SKIP() << "needs the rights to give a file away";
  EXPECT_EQ(SavedBySomebodyElse(0664, {23456}), "saved 664 group kept");
  EXPECT_EQ(SavedBySomebodyElse(06670, {23456}), "saved 2670 group kept");
  EXPECT_EQ(SavedBySomebodyElse(0666, {}), "saved 606");
  EXPECT_EQ(SavedBySomebodyElse(06676, {}), "saved 606");
  EXPECT_EQ(SavedBySomebodyElse(0626, {}), "saved 602");
  EXPECT_EQ(SavedBySomebodyElse(0644, {}), "refused 644 group kept old");
  const std::string contained = SavedBySomebodyElse(0666, {}, true);
  EXPECT_TRUE(contained == "saved 606" || contained.starts_with("no container")) << contained;
}

}  // namespace
}  // namespace TORVA35
