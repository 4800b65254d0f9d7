#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <filesystem>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "tests/LmfText.h"
#include "tests/TempFile.h"
#include "tests/lmf/Folder.h"
#include "tests/platform/Wine.h"
#include "torva35/lmf/clsLmf.h"

namespace TORVA35 {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

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

// A file that stands as Save writes it is read without the parser; one with an empty line is not.
TEST(LmfFile, OpensAlikeWithAndWithoutTheParser) {
  clsLmf lmf;
  FillNasty(lmf);
  const TempFile file;
  ASSERT_TRUE(lmf.Save(file.Path()));
  const std::string whole = Bytes(ToUtf8(file.Path()));
  const std::string saved = whole.substr(0, whole.find(lmf_file::kCheckBegin));
  const auto bothWays = [](std::string body) {
    const String opened = Opened(WithChecksum(body));
    EXPECT_EQ(Opened(WithChecksum(body.insert(body.find('\n'), "\n"))), opened) << body;
    return opened;
  };
  EXPECT_EQ(bothWays(saved), LmfText(lmf));

  const std::string head =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<lmf version=\"1\">\n<objectives>\n"
      "<objective text=\"All\"/>\n</objectives>\n<questions>\n";
  const std::string tail = "</questions>\n<versions>\n<sequence>1</sequence>\n</versions>\n";
  const std::string name(100'000, 'x');
  const std::pair<std::string, bool> rows[] = {
      {"<question/>\n", true},
      {"<question notes=\"n\" topic=\"t\" name=\"&amp;&lt;&quot;>'\"/>\n", true},
      {"<question name=\"" + name + "\"/>\n<question/>\n", true},
      // Only the parser takes these.
      {"<question  name='n'/>\n", true},
      {"<question name=\"&#65;&gt;\"/> <!-- and -->\n", true},
      {"<question name=\"a\tb\rc\nd\"/>\n", true},
      {"<question></question><question>\n</question>\n", true},
      // Nobody takes these.
      {"<question name=\"n\" name=\"n\"/>\n", false},
      {"<question name=\"<\"/>\n", false},
      {"<question name=\"&\"/>\n", false},
      {"<question name=\"&nbsp;\"/>\n", false},
      {"<question name=\"\x01\"/>\n", false},
      {"<question name=\"\xC3\"/>\n", false},
      {"<question name=\"\xED\xA0\x80\"/>\n", false},
      {"<question name=\"\xEF\xBF\xBE\"/>\n", false},
      {"<question name=\"n\"\n", false},
      {"<question name/>\n", false},
      {"<question>text</question>\n", false},
      {"<question color=\"x\"/>\n", false},
      {"</question>\n", false},
      {"</questions>\n<questions>\n", false},
      {"<sequence>1</sequence>\n", false},
  };
  for (const auto& [question, good] : rows) {
    EXPECT_EQ(bothWays(head + question + tail) != u"refused", good) << question;
  }
  const std::string second = (head + tail).substr(head.find('\n') + 1);
  for (const std::string& other : {head, head + tail.substr(0, 13), tail, head + tail + "</lmf>\n" + second,
                                   head.substr(0, 39) + "<lmf version=\"1\"/>\n" + second}) {
    EXPECT_EQ(bothWays(other), u"refused") << other;
  }
  EXPECT_NE(bothWays(head + tail.substr(0, tail.size() - 1)), u"refused");
}

TEST(LmfFile, TheDocumentedExampleIsWhatSaveWrites) {
  const std::string page = Bytes(TEST_DATA "/../../docs/lmf-format.md");
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
  // Nobody reads that to its end.
  Write(folder.File("large"), "");
  fs::resize_file(folder.File("large"), 20ULL << 30);
  EXPECT_FALSE(lmf.Open(FromUtf8(folder.File("large"))));
}

TEST(LmfFile, AFileOpensAsOneOfThoseThatTakeItsPlace) {
  if (kWine) GTEST_SKIP() << "Wine takes two steps to replace a file that is being read";
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
