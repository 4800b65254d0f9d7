#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "tests/LmfText.h"
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
using namespace std::string_literals;

// A folder of its own, gone when the object goes.
struct Folder {
  Folder() { fs::create_directory(path); }
  ~Folder() { fs::remove_all(path); }

  std::string File(const char* name) const { return path + "/" + name; }
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(path)) names.push_back(entry.path().filename());
    return names;
  }

  std::string path = testing::TempDir() + "torva35-lmf-" + std::to_string(getpid());
};

std::string Bytes(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void Write(const std::string& path, std::string_view bytes) {
  std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

bool Save(const clsLmf& lmf, const std::string& path) {
  return lmf.Save(FromUtf8(path));
}

// The model that Open makes of these bytes, or "refused"; a refusal has to leave an empty model.
String Opened(std::string_view bytes) {
  const TempFile file(bytes);
  clsLmf lmf;
  lmf.Prepare();
  lmf.Description(u"from before");
  lmf.Questions()->Add(New<clsLmfQuestion>());
  if (lmf.Open(file.Path())) return LmfText(lmf);
  EXPECT_EQ(LmfText(lmf), LmfText(clsLmf()));
  return u"refused";
}

// Each of these strings is lost by some naive way of storing it.
const std::vector<String> kNasty = {
    u"",
    u" ",
    u" \t\r\n ",
    u" both ends ",
    u"a\r\nb\rc\nd",
    u"<a href=\"x\">&amp;'</a>]]>",
    u"\\",
    u"\\u0041\\\\|",
    u"|",
    u"a|b|",
    String(u"NUL \0 inside", 12),
    String(1, u'\0'),
    u"\u0001\u001F\u007F\u0085\u009F\u2028\uFEFF\uFFFD",
    u"\uFFFE\uFFFF",
    String{0xD800},
    String{u'x', 0xDC00, 0xD83D},
    String{0xDC00, 0xD800},
    u"\U0001F600é€\U0010FFFF",
};

Ref<clsLmfQuestion> NastyQuestion(std::size_t seed) {
  auto text = [&, i = seed]() mutable { return kNasty[i++ % kNasty.size()]; };
  auto question = New<clsLmfQuestion>();
  question->Name(text());
  question->Text(text());
  question->DefaultText(text());
  question->Difficulty(text());
  question->Reference(text());
  question->Topic(text());
  question->Keywords(text());
  question->Miscellaneous(text());
  question->Notes(text());
  for (std::size_t i = 0; i < seed; ++i) question->Labels()->Add(text());
  for (std::size_t i = 0; i < seed / 2; ++i) question->Values()->Add(text());
  question->CorrectLabels()->Add(text());
  question->CorrectValues()->Add(text());
  question->CorrectValues()->Add(text());
  question->ObjectiveFlags()->AddFalse(static_cast<Long>(seed));
  for (std::size_t i = 1; i <= seed; i += 1 + i / 3) question->ObjectiveFlags()->Value(static_cast<Long>(i), true);
  question->Graded(seed % 2 == 0);
  question->Subjective(seed % 3 == 0);
  question->CorrectAnd(seed % 5 == 0);
  return question;
}

void FillNasty(clsLmf& lmf) {
  lmf.Prepare();
  lmf.Description(kNasty[4]);
  lmf.Notes(kNasty[2]);
  lmf.Mode(std::numeric_limits<Long>::min());
  lmf.PageCount(std::numeric_limits<Long>::max());
  for (std::size_t i = 0; i < kNasty.size(); ++i) {
    auto objective = New<clsLmfObjective>();
    objective->Text(kNasty[i]);
    if (i % 4 == 3) {
      lmf.Objectives()->Add(objective);
    } else {
      lmf.Objectives()->Add(objective, kNasty[i]);
    }
    lmf.Versions()->VersionNames()->Add(kNasty[i]);
    lmf.Questions()->Add(NastyQuestion(i * 5));
  }
  lmf.Versions()->SequenceQuestion(-7);
  lmf.Versions()->Sequences()->AddDefault(18);
  auto sequence = New<clsLmfSequence>();
  lmf.Versions()->Sequences()->Add(sequence);
  sequence = New<clsLmfSequence>();
  sequence->SetOrder(Array<Long>(1, {3, -1, std::numeric_limits<Long>::max(), std::numeric_limits<Long>::min()}));
  lmf.Versions()->Sequences()->Add(sequence);

  const auto numbers = lmf.Questions()->Item(1);
  numbers->QuestionMode(std::numeric_limits<Long>::min());
  numbers->CorrectCount(std::numeric_limits<Long>::max());
  numbers->Multiples(std::numeric_limits<Integer>::min());
  numbers->CarriedFlag1(std::numeric_limits<Integer>::max());
  numbers->CarriedFlag2(-1);
  numbers->CorrectPoints(0.1);
  numbers->IncorrectPoints(-std::numeric_limits<Double>::infinity());
  numbers->NoResponsePoints(std::numeric_limits<Double>::quiet_NaN());
  numbers->SubjectivePoints(std::numeric_limits<Double>::denorm_min());
  numbers->DefaultValue(1.0 / 3);
}

TEST(LmfFile, AnOpenedModelIsEqualToTheSavedOne) {
  const Folder folder;
  clsLmf lmf;
  FillNasty(lmf);
  lmf.Questions()->Item(2)->CorrectPoints(-0.0);
  ASSERT_TRUE(Save(lmf, folder.File("a")));
  clsLmf opened;
  ASSERT_TRUE(opened.Open(FromUtf8(folder.File("a"))));
  EXPECT_EQ(LmfText(opened), LmfText(lmf));
  EXPECT_TRUE(std::signbit(opened.Questions()->Item(2)->CorrectPoints()));
  EXPECT_TRUE(opened.Objectives()->Exists(kNasty[5]));
  ASSERT_TRUE(Save(opened, folder.File("b")));
  EXPECT_EQ(Bytes(folder.File("b")), Bytes(folder.File("a")));
}

TEST(LmfFile, ObjectivesWithoutTheBuiltInOneGetItWithAFlag) {
  clsLmf lmf;
  auto objective = New<clsLmfObjective>();
  objective->Text(u"x");
  lmf.Objectives()->Add(objective, u"x");
  lmf.Questions()->Add(New<clsLmfQuestion>());
  lmf.Questions()->Add(New<clsLmfQuestion>());
  lmf.Questions()->Item(2)->ObjectiveFlags()->Add(true);
  const TempFile file;
  ASSERT_TRUE(lmf.Save(file.Path()));
  clsLmf opened;
  ASSERT_TRUE(opened.Open(file.Path()));
  lmf.Prepare();
  lmf.Questions()->Item(2)->ObjectiveFlags()->RemoveAll();
  lmf.Questions()->Item(2)->ObjectiveFlags()->Add(false);
  lmf.Questions()->Item(2)->ObjectiveFlags()->Add(true);
  EXPECT_EQ(LmfText(opened), LmfText(lmf));
}

TEST(LmfFile, NoByteCanBeLostOrChanged) {
  clsLmf lmf;
  lmf.Prepare();
  lmf.Questions()->Add(NastyQuestion(4));
  lmf.Versions()->Sequences()->AddDefault(1);
  const TempFile file;
  ASSERT_TRUE(lmf.Save(file.Path()));
  const std::string good = Bytes(ToUtf8(file.Path()));
  ASSERT_NE(Opened(good), u"refused");
  for (std::size_t i = 0; i < good.size(); ++i) {
    EXPECT_EQ(Opened(good.substr(0, i)), u"refused") << i;
    std::string changed = good;
    changed[i] = static_cast<char>(changed[i] ^ 1);
    EXPECT_EQ(Opened(changed), u"refused") << i;
  }
  EXPECT_EQ(Opened(good + "\n"), u"refused");
}

TEST(LmfFile, TheDocumentedExampleIsWhatSaveWrites) {
  const std::string page = Bytes(fs::path(TEST_DATA).parent_path().parent_path() / "docs/lmf-format.md");
  const std::size_t begin = page.find("```xml\n") + 7;
  const std::string example = page.substr(begin, page.find("\n```", begin) - begin);
  const TempFile file(example);
  clsLmf lmf;
  ASSERT_TRUE(lmf.Open(file.Path()));
  ASSERT_TRUE(lmf.Save(file.Path()));
  EXPECT_EQ(Bytes(ToUtf8(file.Path())), example);
}

// Files of other writers may lack the checksum, so that the reader has to look itself.
std::string Document(std::string_view attributes, std::string_view objectives, std::string_view questions,
                     std::string_view versions) {
  return "<lmf " + std::string(attributes) + "><objectives>" + std::string(objectives) +
         "</objectives><questions>" + std::string(questions) + "</questions>" + std::string(versions) + "</lmf>";
}

TEST(LmfFile, AFileWrittenByHandOpens) {
  const String opened =
      Opened(Document("version='1' mode='1'", "<objective text='All'/><objective text='a' key='K'/>",
                      "<!-- one --><question text='\\u00e9|\\\\' labels='A||' graded='0'\n"
                      "objectives='5:88' correctPoints='1e1'/>",
                      "<versions names='|'><sequence>\n 1  2\n</sequence><sequence/></versions>"));
  for (const StringView line : {u"Mode: 1", u"Objective: All", u"Key: K", u"Text: é|\\", u"Labels 1: A",
                                u"Labels 2: ", u"ObjectiveFlags: 10001", u"CorrectPoints: 10", u"VersionNames 1: ",
                                u"VersionMode: 2", u"Sequence:  1 2", u"Sequence: "}) {
    EXPECT_NE(opened.find(u"\n" + String(line) + u"\n"), opened.npos) << ToUtf8(line);
  }
}

TEST(LmfFile, ForeignAndInconsistentFilesAreRefused) {
  const auto with = [](std::string_view attributes, std::string_view objectives = "<objective/>",
                       std::string_view questions = "", std::string_view versions = "<versions/>") {
    return Opened(Document(attributes, objectives, questions, versions));
  };
  ASSERT_NE(with("version='1'"), u"refused");
  ASSERT_NE(with("version='1'", "<objective/>", "<question/>"), u"refused");
  for (const char* bytes : {"", "no XML", "<lmf/>", "<LMF version='1'/>"}) EXPECT_EQ(Opened(bytes), u"refused");
  for (const char* root :
       {"", "version='2'", "version='1' color='x'", "version='1' mode='2147483648'", "version='1' mode=''"}) {
    EXPECT_EQ(with(root), u"refused") << root;
  }
  for (const char* objectives :
       {"", "<objective key='x'/>", "<objective/>text", "<objective/><objective key='x'/><objective key='X'/>"}) {
    EXPECT_EQ(with("version='1'", objectives), u"refused") << objectives;
  }
  for (const char* attributes :
       {"color='x'", "text='\\'", "text='\\u12'", "text='\\u12 4'", "text='\\n'", "labels='A'", "graded='2'",
        "graded=''", "multiples='32768'", "multiples='1.5'", "correctPoints='1e999'", "correctPoints='1,5'",
        "objectives='2000000000:0'", "objectives='-1:'", "objectives='5:8'", "objectives='4:80'",
        "objectives='3:1'", "objectives='4:g'", "objectives='4'"}) {
    const std::string question = "<question " + std::string(attributes) + "/>";
    EXPECT_EQ(with("version='1'", "<objective/>", question), u"refused") << question;
  }
  for (const char* questions : {"<q/>", "<question><x/></question>"}) {
    EXPECT_EQ(with("version='1'", "<objective/>", questions), u"refused") << questions;
  }
  for (const char* versions :
       {"", "<versions/><versions/>", "<versions/><check crc32='00000000'/>",
        "<versions><sequence>1 x</sequence></versions>", "<versions><sequence>1<x/>2</sequence></versions>",
        "<versions><sequence>4294967297</sequence></versions>"}) {
    EXPECT_EQ(with("version='1'", "<objective/>", "", versions), u"refused") << versions;
  }

  const Folder folder;
  clsLmf lmf;
  EXPECT_FALSE(lmf.Open(FromUtf8(folder.File("missing"))));
  EXPECT_FALSE(lmf.Open(FromUtf8(folder.path)));
  EXPECT_FALSE(lmf.Open(u""));
  ASSERT_EQ(mkfifo(folder.File("pipe").c_str(), 0600), 0);
  EXPECT_FALSE(lmf.Open(FromUtf8(folder.File("pipe"))));
  // Nobody reads that to its end.
  Write(folder.File("large"), "");
  ASSERT_EQ(truncate(folder.File("large").c_str(), 20LL << 30), 0);
  EXPECT_FALSE(lmf.Open(FromUtf8(folder.File("large"))));
}

TEST(LmfFile, AFileOpensAsOneOfThoseThatTakeItsPlace) {
  const TempFile file;
  const auto save = [&](std::size_t length) {
    clsLmf lmf;
    lmf.Notes(String(length, u'x'));
    EXPECT_TRUE(lmf.Save(file.Path()));
  };
  save(10);
  std::atomic<bool> saving = true;
  std::thread saver([&] {
    for (int i = 0; i < 300; ++i) save(i % 2 == 0 ? 500 : 10);
    saving = false;
  });
  for (clsLmf lmf; saving;) {
    EXPECT_TRUE(lmf.Open(file.Path()));
    EXPECT_TRUE(lmf.Notes().size() == 10 || lmf.Notes().size() == 500);
  }
  saver.join();
}

TEST(LmfFile, AFailedSaveLeavesTheOldFile) {
  const Folder folder;
  const std::string path = folder.File("a.lmf");
  clsLmf lmf;
  lmf.Notes(u"old");
  ASSERT_TRUE(Save(lmf, path));
  const std::string old = Bytes(path);

  // As when the disk is full: the second buffer does not go out.
  lmf.Notes(String(200000, u'x'));
  rlimit before;
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
  const rlimit small{100000, before.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
  const bool saved = Save(lmf, path);
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &before), 0);

  EXPECT_FALSE(saved);
  EXPECT_EQ(Bytes(path), old);
  EXPECT_EQ(folder.Names(), std::vector<std::string>{"a.lmf"});
  EXPECT_TRUE(Save(lmf, path));
  EXPECT_GT(Bytes(path).size(), 200000u);

  EXPECT_FALSE(Save(lmf, folder.File("none/a.lmf")));
  EXPECT_FALSE(Save(lmf, folder.path));
  EXPECT_FALSE(Save(lmf, folder.path + "/"));
  EXPECT_FALSE(Save(lmf, ""));
  EXPECT_FALSE(lmf.Save(FromUtf8(folder.File("b")) + String(1, u'\0')));
  EXPECT_EQ(folder.Names(), std::vector<std::string>{"a.lmf"});
  ASSERT_EQ(mkfifo(folder.File("pipe").c_str(), 0600), 0);
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
  const std::string newBytes = Bytes(path);
  ASSERT_TRUE(Save(old, path));
  const std::string oldBytes = Bytes(path);
  for (const bool killed : {false, true}) {
    int stops = 0;
    int replaced = 0;
    for (;;) {
      ASSERT_TRUE(Save(old, path));
      const std::string end = StoppedSave(lmf, path, stops + 1, killed);
      if (end == "not stopped") break;
      ++stops;
      EXPECT_EQ(end, killed ? "ended by SIGKILL" : "refused") << stops;
      if (Bytes(path) != oldBytes) ++replaced;
      EXPECT_TRUE(Bytes(path) == oldBytes || Bytes(path) == newBytes) << stops;
      EXPECT_TRUE(killed || folder.Names().size() == 1) << stops;
    }
    EXPECT_GE(stops, 6);
    EXPECT_EQ(replaced, 1);  // at the last call, which brings the new file's name to the disk
    EXPECT_EQ(Bytes(path), newBytes);
  }
  // A save takes away what killed saves of this file have left, and not what belongs to another file.
  EXPECT_EQ(StoppedSave(lmf, path, 4, true), "ended by SIGKILL");
  EXPECT_EQ(folder.Names().size(), 2u);
  ASSERT_TRUE(Save(old, folder.File("b.lmf")));
  EXPECT_EQ(folder.Names().size(), 3u);
  ASSERT_TRUE(Save(old, path));
  EXPECT_EQ(folder.Names().size(), 2u);
  EXPECT_EQ(Bytes(path), oldBytes);
}

TEST(LmfFile, ASaveKeepsAccessRightsAndFollowsALink) {
  const Folder folder;
  const std::string target = folder.File("target");
  Write(target, "old");
  fs::permissions(target, fs::perms(0640));
  fs::create_symlink("target", folder.File("link"));
  EXPECT_TRUE(Save(clsLmf(), folder.File("link")));
  EXPECT_TRUE(fs::is_symlink(folder.File("link")));
  EXPECT_EQ(fs::status(target).permissions(), fs::perms(0640));
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
std::string SavedBySomebodyElse(unsigned mode, std::vector<gid_t> groups) {
  constexpr uid_t kOwner = 12345, kSaver = 12346;
  constexpr gid_t kGroup = 23456;
  const Folder folder;
  const std::string path = folder.File("a");
  Write(path, "old");
  if (chown(path.c_str(), kOwner, kGroup) != 0) return "no right to give a file away";
  fs::permissions(path, fs::perms(mode));
  fs::permissions(folder.path, fs::perms(0733));
  const std::string end = InChild([&]() -> std::string {
    if (setgroups(groups.size(), groups.data()) != 0 || setgid(kSaver) != 0 || setuid(kSaver) != 0)
      return "no child";
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
  EXPECT_EQ(SavedBySomebodyElse(0644, {}), "refused 644 group kept old");
}

// A host's own parts: what their members say, and not what the base classes hold.
struct HostObjectives final : clsLmfObjectives {
  Long Count() const override { return 2; }
  Ref<clsLmfObjective> Item(const TaggedValue& Index, CallSite at) const override {
    auto objective = New<clsLmfObjective>();
    objective->Text(NumberOf(Index) == 1 ? u"(All Questions)" : u"own");
    if (fails) Raise(kTypeMismatch, at);
    return objective;
  }
  bool Exists(const TaggedValue& Key, CallSite) const override { return *Key.As<String>() == u"own"; }
  bool fails = false;
};

struct HostFlags final : clsLmfObjectiveFlags {
  HostFlags() { all->AddFalse(2), all->Value(2, true); }
  Long Count() const override { return 2; }
  Ref<clsLmfObjectiveFlag> Item(Long lPosition, CallSite) const override { return all->Item(lPosition); }
  Ref<clsLmfObjectiveFlags> all = New<clsLmfObjectiveFlags>();
};

struct HostLmf final : clsLmf {
  Ref<clsLmfObjectives> Objectives() const override { return own; }
  Ref<HostObjectives> own = New<HostObjectives>();
};

struct HostQuestion final : clsLmfQuestion {
  Ref<clsLmfObjectiveFlags> ObjectiveFlags() const override { return own; }
  Ref<HostFlags> own = New<HostFlags>();
};

TEST(LmfFile, AHostsOwnPartsAreSavedAsTheySay) {
  HostLmf lmf;
  lmf.Questions()->Add(New<HostQuestion>());
  const TempFile file;
  ASSERT_TRUE(lmf.Save(file.Path()));
  clsLmf opened;
  ASSERT_TRUE(opened.Open(file.Path()));
  EXPECT_EQ(opened.Objectives()->Count(), 2);
  EXPECT_TRUE(opened.Objectives()->Exists(u"own"));
  EXPECT_FALSE(opened.Questions()->Item(1)->ObjectiveFlags()->Value(1));
  EXPECT_TRUE(opened.Questions()->Item(1)->ObjectiveFlags()->Value(2));
  lmf.own->fails = true;
  EXPECT_FALSE(lmf.Save(file.Path()));
}

}  // namespace
}  // namespace TORVA35
