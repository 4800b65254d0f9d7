#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/LmfText.h"
#include "tests/TempFile.h"

namespace TORVA35 {
namespace {

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
const Array<String> kNasty = Split(
    u"# # \t\r\n # both ends #a\r\nb\rc\nd#<a href=\"x\">&amp;'</a>]]>#\\#\\u0041\\\\|#|#a|b|#NUL \0 inside#\0#"
    u"\u0001\u001F\u007F\u0085\u009F\u2028\uFEFF\uFFFD#\uFFFE\uFFFF#\xD800#x\xDC00\xD83D#\xDC00\xD800#"
    u"\U0001F600é€\U0010FFFF"s,
    u"#");

// One of them: the first comes again after the last.
const String& Nasty(Long place) {
  return kNasty[place % kNasty.Size()];
}

Ref<clsLmfQuestion> NastyQuestion(Long seed) {
  auto question = New<clsLmfQuestion>();
  Long next = seed;
#define SET_TEXT(member) question->member(Nasty(next++));
#define SET_BOOLEAN(member) question->member(++next % 3 == 0);
#define SET_LIST(member) \
  for (Long i = next++ % 7 * seed / 9; i > 0; --i) question->member()->Add(Nasty(next++));
  LMF_TEXTS(SET_TEXT);
  LMF_BOOLEANS(SET_BOOLEAN);
  LMF_LISTS(SET_LIST);
  question->ObjectiveFlags()->AddFalse(seed);
  for (Long i = 1; i <= seed; i += 1 + i / 3) question->ObjectiveFlags()->Value(i, true);
  return question;
}

void FillNasty(clsLmf& lmf) {
  constexpr Long kLeast = std::numeric_limits<Long>::min(), kLargest = std::numeric_limits<Long>::max();
  lmf.Prepare();
  lmf.Description(Nasty(4));
  lmf.Notes(Nasty(2));
  lmf.Mode(kLeast);
  lmf.PageCount(kLargest);
  for (Long i = 0; i < kNasty.Size(); ++i) {
    auto objective = New<clsLmfObjective>();
    objective->Text(Nasty(i));
    lmf.Objectives()->Add(objective, i % 4 == 3 ? TaggedValue(Missing) : Nasty(i));
    lmf.Versions()->VersionNames()->Add(Nasty(i));
    lmf.Questions()->Add(NastyQuestion(i * 5));
  }
  lmf.Versions()->SequenceQuestion(-7);
  lmf.Versions()->Sequences()->AddDefault(18);
  for (const Array<Long>& order : {Array<Long>(), Array<Long>(1, {3, -1, kLargest, kLeast})}) {
    auto sequence = New<clsLmfSequence>();
    sequence->SetOrder(order);
    lmf.Versions()->Sequences()->Add(sequence);
  }
  const auto numbers = lmf.Questions()->Item(1);
  Integer whole = -2;
#define SET_WHOLE(member) numbers->member(whole++);
  LMF_WHOLES(SET_WHOLE);
  numbers->QuestionMode(kLeast);
  numbers->CorrectCount(kLargest);
  numbers->Multiples(std::numeric_limits<Integer>::min());
  using Numbers = std::numeric_limits<Double>;
  auto points = {0.1, -Numbers::infinity(), Numbers::quiet_NaN(), Numbers::denorm_min(), 1.0 / 3};
  const Double* next = points.begin();
#define SET_POINTS(member) numbers->member(*next++);
  LMF_POINTS(SET_POINTS);
  lmf.Questions()->Item(2)->CorrectPoints(-0.0);
}

TEST(LmfFile, AnOpenedModelIsEqualToTheSavedOne) {
  clsLmf lmf;
  FillNasty(lmf);
  const TempFile first, second;
  ASSERT_TRUE(lmf.Save(first.Path()));
  clsLmf opened;
  ASSERT_TRUE(opened.Open(first.Path()));
  EXPECT_EQ(LmfText(opened), LmfText(lmf));
  EXPECT_TRUE(std::signbit(opened.Questions()->Item(2)->CorrectPoints()));
  EXPECT_TRUE(opened.Objectives()->Exists(Nasty(5)));
  ASSERT_TRUE(opened.Save(second.Path()));
  EXPECT_EQ(second.Bytes(), first.Bytes());
}

TEST(LmfFile, ObjectivesWithoutTheBuiltInOneGetItWithAFlag) {
  clsLmf lmf;
  lmf.Objectives()->Add(New<clsLmfObjective>(), u"x");
  for (int i = 0; i < 2; ++i) lmf.Questions()->Add(New<clsLmfQuestion>());
  const auto flags = lmf.Questions()->Item(2)->ObjectiveFlags();
  flags->Add(true);
  const TempFile file;
  ASSERT_TRUE(lmf.Save(file.Path()));
  clsLmf opened;
  ASSERT_TRUE(opened.Open(file.Path()));
  lmf.Prepare();
  flags->RemoveAll();
  for (const bool flag : {false, true}) flags->Add(flag);
  EXPECT_EQ(LmfText(opened), LmfText(lmf));
}

TEST(LmfFile, NoByteCanBeLostOrChanged) {
  clsLmf lmf;
  lmf.Prepare();
  lmf.Questions()->Add(NastyQuestion(4));
  lmf.Versions()->Sequences()->AddDefault(1);
  const TempFile file;
  ASSERT_TRUE(lmf.Save(file.Path()));
  const std::string good = file.Bytes();
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
  const std::string whole = file.Bytes();
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
  std::string name;  // longer than what is read at once, and unlike itself everywhere
  for (int i = 0; name.size() < 200'000; ++i) name += std::to_string(i);
  const auto expect = [&](bool good, std::initializer_list<std::string> rows) {
    for (const std::string& row : rows) EXPECT_EQ(bothWays(head + row + tail) != u"refused", good) << row;
  };
  expect(true, {"<question/>\n", "<question notes=\"n\" topic=\"t\" name=\"&amp;&lt;&quot;>'\"/>\n",
                "<question name=\"" + name + "\"/>\n<question/>\n"});
  // Only the parser takes these.
  expect(true, {"<question  name='n'/>\n", "<question name=\"&#65;&gt;\"/> <!-- and -->\n",
                "<question name=\"a\tb\rc\nd\"/>\n", "<question></question><question>\n</question>\n"});
  // Nobody takes these.
  for (const char* value : {"<", "&", "&nbsp;", "\x01", "\xC3", "\xED\xA0\x80", "\xEF\xBF\xBE", "n\" name=\"n"}) {
    expect(false, {"<question name=\"" + std::string(value) + "\"/>\n"});
  }
  expect(false, {"xquestion/>\n", "<question name=\"n\"\n", "<question name/>\n", "<question>text</question>\n",
                 "<question color=\"x\"/>\n", "</question>\n"});
  expect(false, {"</questions>\n<questions>\n", "<sequence>1</sequence>\n"});
  const std::string second = (head + tail).substr(head.find('\n') + 1);
  for (const std::string& other : {head, head + tail.substr(0, 13), tail, head + tail + "</lmf>\n" + second,
                                   head.substr(0, 39) + "<lmf version=\"1\"/>\n" + second}) {
    EXPECT_EQ(bothWays(other), u"refused") << other;
  }
  EXPECT_NE(bothWays(head + tail.substr(0, tail.size() - 1)), u"refused");
}

TEST(LmfFile, TheDocumentedExampleIsWhatSaveWrites) {
  const std::string page = BytesOf(TEST_DATA "/../../docs/lmf-format.md");
  const std::size_t begin = page.find("```xml\n") + 7;
  const std::string example = page.substr(begin, page.find("\n```", begin) - begin);
  const TempFile file(example);
  clsLmf lmf;
  ASSERT_TRUE(lmf.Open(file.Path()));
  ASSERT_TRUE(lmf.Save(file.Path()));
  EXPECT_EQ(file.Bytes(), example);
}

// Files of other writers may lack the checksum, so that the reader has to look itself.
struct Document {
  std::string attributes = "version='1'", objectives = "<objective/>", questions = "", versions = "<versions/>";
  String Open() const {
    return Opened("<lmf " + attributes + "><objectives>" + objectives + "</objectives><questions>" + questions +
                  "</questions>" + versions + "</lmf>");
  }
};

TEST(LmfFile, AFileWrittenByHandOpens) {
  EXPECT_EQ((Document{.attributes = "version='1' mode='1'",
                      .objectives = "<objective text='All'/><objective text='a' key='K'/>",
                      .questions = "<!-- one --><question text='\\u00e9|\\\\' labels='A||' graded='0'\n"
                                   "objectives='5:88' correctPoints='1e1'/>",
                      .versions = "<versions names='|'><sequence>\n 1  2\n</sequence><sequence/></versions>"}
                 .Open()),
            u"¦¦1 0 True\nVersions: 0 2 1 \nSequence: 1|2\nSequence: \nObjective: All\nObjective: a¦K\n\n"
            u"Text: é|\\\nCorrectPoints: 10\nLabels: 2 A¦\nFlags: 10001\n");
}

TEST(LmfFile, ForeignAndInconsistentFilesAreRefused) {
  ASSERT_NE(Document().Open(), u"refused");
  ASSERT_NE(Document{.questions = "<question/>"}.Open(), u"refused");
  for (const char* bytes : {"", "no XML", "<lmf/>", "<LMF version='1'/>"}) EXPECT_EQ(Opened(bytes), u"refused");
  std::vector<Document> rows;
  for (const char* attributes :
       {"", "version='2'", "version='1' color='x'", "version='1' mode='2147483648'", "version='1' mode=''"}) {
    rows.push_back({.attributes = attributes});
  }
  for (const char* objectives :
       {"", "<objective key='x'/>", "<objective/>text", "<objective/><objective key='x'/><objective key='X'/>"}) {
    rows.push_back({.objectives = objectives});
  }
  for (const char* attributes :
       {"color='x'", "text='\\'", "text='\\u12'", "text='\\u12 4'", "text='\\n'", "labels='A'", "graded='2'",
        "graded=''", "multiples='32768'", "multiples='1.5'", "correctPoints='1e999'", "correctPoints='1,5'",
        "objectives='2000000000:0'", "objectives='-1:'", "objectives='5:8'", "objectives='4:80'",
        "objectives='3:1'", "objectives='4:g'", "objectives='4'"}) {
    rows.push_back({.questions = "<question " + std::string(attributes) + "/>"});
  }
  for (const char* questions : {"<q/>", "<question><x/></question>"}) rows.push_back({.questions = questions});
  for (const char* versions :
       {"", "<versions/><versions/>", "<versions/><check crc32='00000000'/>",
        "<versions><sequence>1 x</sequence></versions>", "<versions><sequence>1<x/>2</sequence></versions>",
        "<versions><sequence>4294967297</sequence></versions>"}) {
    rows.push_back({.versions = versions});
  }
  for (const Document& row : rows) {
    EXPECT_EQ(row.Open(), u"refused") << row.attributes << row.objectives << row.questions << row.versions;
  }
}

TEST(LmfFile, PathsThatCannotBeOpenedOrSaved) {
  const Folder folder;
  clsLmf lmf;
  // Nobody reads that to its end.
  Write(folder.File("large"), "");
  std::filesystem::resize_file(folder.File("large"), 20ULL << 30);
  for (const std::string& path : {folder.File("missing"), folder.File("large"), folder.path, ""s}) {
    EXPECT_FALSE(lmf.Open(FromUtf8(path))) << path;
  }
  for (const std::string& path :
       {folder.File("none/a.lmf"), folder.path, folder.path + "/", ""s, folder.File("b") + '\0'}) {
    EXPECT_FALSE(lmf.Save(FromUtf8(path))) << path;
  }
  EXPECT_EQ(folder.Names(), std::vector<std::string>{"large"});
}

// A host's own parts: what their members say, and not what the base classes hold.
struct HostObjectives final : clsLmfObjectives {
  Long Count() const override { return 2; }
  Ref<clsLmfObjective> Item(const TaggedValue& Index, CallSite at) const override {
    if (fails) Raise(kTypeMismatch, at);
    auto objective = New<clsLmfObjective>();
    objective->Text(NumberOf(Index) == 1 ? u"(All Questions)" : u"own");
    return objective;
  }
  bool Exists(const TaggedValue& Key, CallSite) const override { return *Key.As<String>() == u"own"; }
  bool fails = false;
};
struct HostFlags final : clsLmfObjectiveFlags {
  Long Count() const override { return 2; }
  Ref<clsLmfObjectiveFlag> Item(Long lPosition, CallSite) const override {
    const auto flags = New<clsLmfObjectiveFlags>();
    flags->Add(lPosition == 2);
    return flags->Item(1);
  }
};
struct HostLmf final : clsLmf {
  Ref<clsLmfObjectives> Objectives() const override { return own; }
  Ref<HostObjectives> own = New<HostObjectives>();
};
struct HostQuestion final : clsLmfQuestion {
  Ref<clsLmfObjectiveFlags> ObjectiveFlags() const override { return New<HostFlags>(); }
};

TEST(LmfFile, AHostsOwnPartsAreSavedAsTheySay) {
  HostLmf lmf;
  lmf.Questions()->Add(New<HostQuestion>());
  const TempFile file;
  ASSERT_TRUE(lmf.Save(file.Path()));
  clsLmf opened;
  ASSERT_TRUE(opened.Open(file.Path()));
  EXPECT_EQ(opened.Objectives()->KeyOf(2), u"own");
  EXPECT_EQ(LmfText(*opened.Questions()->Item(1)), u"Flags: 01\n");
  lmf.own->fails = true;
  EXPECT_FALSE(lmf.Save(file.Path()));
}

}  // namespace
}  // namespace TORVA35
