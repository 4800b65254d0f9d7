// What is printed, what a reader is told, and what neither may say.

#include <gmock/gmock.h>

#include <map>
#include <nlohmann/json.hpp>
#include <set>

#include "sheet/Layout.h"
#include "tests/TempFile.h"
#include "torva35/sheet/Export.h"

namespace TORVA35::sheet {
namespace {

using nlohmann::json;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;

struct Point {
  int x, y;
  bool operator<(const Point& other) const { return std::pair(x, y) < std::pair(other.x, other.y); }
  bool operator==(const Point&) const = default;
};
void PrintTo(const Point& point, std::ostream* out) {
  *out << point.x << '/' << point.y;
}

Answer Key(int question, std::vector<int> marks, bool all = true, double points = 1, double wrong = 0,
           double none = 0) {
  Answer answer;
  answer.question = question;
  answer.paper = question + 1;
  answer.marks = std::move(marks);
  answer.all = all;
  answer.points = points;
  answer.incorrectPoints = wrong;
  answer.noResponsePoints = none;
  return answer;
}

// A sheet with rows of these labels, one after the other until there are enough, and the key "the first bubble".
Result Sheet(std::size_t rows, const std::vector<std::vector<std::string>>& labels,
             const std::vector<std::string>& versions = {"A", "B"}) {
  Result result;
  result.status = Status::kDone;
  result.title = "Quiz <1> & \"more\"";
  for (std::size_t i = 0; i < rows; ++i) {
    Row row;
    row.number = row.paper = static_cast<long>(i) + 1;
    row.labels = labels[i % labels.size()];
    result.rows.push_back(row);
  }
  for (const std::string& name : versions) {
    File file;
    file.name = name + ".xml";
    for (const Row& row : result.rows) {
      Question question;
      question.number = row.number;
      question.id = "id" + name;
      question.text = "What?";
      question.answers = row.labels;
      file.questions.push_back(question);
    }
    result.versions.push_back({name, static_cast<int>(result.files.size()), {}});
    for (std::size_t i = 0; i < rows; ++i) result.versions.back().answers.push_back(Key(static_cast<int>(i), {1}));
    result.files.push_back(file);
  }
  return result;
}

const std::vector<std::string> kAtoE = {"A", "B", "C", "D", "E"}, kFtoJ = {"F", "G", "H", "I", "J"},
                               kTrueFalse = {"T", "F"},
                               kAgree = {"Strongly agree", "Agree", "Neither", "Disagree", "Strongly disagree"};

std::vector<std::string> Many(int count) {
  std::vector<std::string> labels;
  for (int i = 1; i <= count; ++i) labels.push_back(std::to_string(i));
  return labels;
}

DOMDocument Parsed(const std::string& page) {
  const TempFile file(page);
  DOMDocument document;
  EXPECT_TRUE(document.load(file.Path()))
      << ToUtf8(document.parseError().reason) << " in line " << document.parseError().line;
  return document;
}

int Number(const IXMLDOMNode& node, StringView attribute) {
  return std::stoi(ToUtf8(node.get_attributes().getNamedItem(attribute).Text()));
}

// The bubbles that the page draws, sheet by sheet.
std::vector<std::set<Point>> Drawn(const std::string& page) {
  std::vector<std::set<Point>> sheets;
  const DOMDocument document = Parsed(page);
  IXMLDOMNodeList sections = document.getElementsByTagName(u"section");
  // Circles come in document order; each sheet begins with its corner marks.
  for (std::size_t begin = page.find("<section"); begin != std::string::npos;) {
    const std::size_t next = page.find("<section", begin + 1);
    const DOMDocument sheet = Parsed(page.substr(begin, page.find("</section>", begin) + 10 - begin));
    IXMLDOMNodeList circles = sheet.getElementsByTagName(u"circle");
    sheets.emplace_back();
    for (IXMLDOMNode circle = circles.nextNode(); circle; circle = circles.nextNode()) {
      EXPECT_TRUE(sheets.back().insert({Number(circle, u"cx"), Number(circle, u"cy")}).second);
    }
    begin = next;
  }
  EXPECT_EQ(sections.get_length(), static_cast<Long>(sheets.size()));
  return sheets;
}

// The bubbles that a reader looks at, as it works them out from the blocks.
std::map<Point, std::string> Read(const json& layout) {
  std::map<Point, std::string> bubbles;
  const int inside = layout["bubbleDimensions"][0];
  for (const json& block : layout["fieldBlocks"]) {
    const bool upright = block["direction"] == "vertical";
    for (std::size_t label = 0; label < block["fieldLabels"].size(); ++label) {
      for (std::size_t value = 0; value < block["bubbleValues"].size(); ++value) {
        const int along = static_cast<int>(value) * block["bubblesGap"].get<int>();
        const int across = static_cast<int>(label) * block["labelsGap"].get<int>();
        const int x = block["origin"][0].get<int>() + (upright ? across : along);
        const int y = block["origin"][1].get<int>() + (upright ? along : across);
        EXPECT_LT(x + inside, layout["pageDimensions"][0]);
        EXPECT_LT(y + inside, layout["pageDimensions"][1]);
        // The reader's page begins in the middle of a corner mark.
        bubbles[{x + inside / 2 + kMark / 2, y + inside / 2 + kMark / 2}] =
            block["fieldLabels"][label].get<std::string>() + "=" + block["bubbleValues"][value].get<std::string>();
      }
    }
  }
  return bubbles;
}

json FileAt(const std::vector<OutputFile>& files, const std::string& path) {
  for (const OutputFile& file : files) {
    if (file.path == path) return json::parse(file.content);
  }
  ADD_FAILURE() << "no " << path;
  return {};
}

struct Shape {
  const char* name;
  Result result;
  PageOptions options;
};
void PrintTo(const Shape& shape, std::ostream* out) {
  *out << shape.name;
}

std::vector<Shape> Shapes() {
  std::vector<std::string> versions;
  for (int i = 1; i <= 40; ++i) versions.push_back("Monday, group " + std::to_string(i));
  Result mixed = Sheet(150, {kTrueFalse, kAtoE, Many(31), kAgree, Many(80), {"x"}});
  mixed.handGraded.assign(30, {"Subjective", "Why?", 2.5});
  for (Version& version : mixed.versions) {
    for (Answer& answer : version.answers) answer.paper += answer.paper / 3 + version.file;
  }
  mixed.renumbered = true;
  return {{"Plain", Sheet(60, {kAtoE, kFtoJ, kTrueFalse, {}}), {}},
          {"Mixed", mixed, {.language = "fr", .idDigits = 9}},
          {"LargestGrids", Sheet(300, {kAtoE}, {"A"}), {.idDigits = 99, .nameLetters = 99}},
          {"ManyVersions", Sheet(200, {kAtoE}, versions), {.language = "de", .idDigits = 6, .nameLetters = 12}},
          {"LongestLabels", Sheet(20, {{std::string(400, 'w'), "no"}}, {""}), {}},
          {"Empty", Sheet(0, {kAtoE}, {"A", "B"}), {.language = "es"}}};
}

class Sheets : public testing::TestWithParam<Shape> {};

TEST_P(Sheets, DrawWhatAReaderLooksAt) {
  const auto& [name, result, options] = GetParam();
  const std::vector<std::set<Point>> drawn = Drawn(StudentPage(result, options));
  const std::vector<OutputFile> files = ReaderFiles(result, options);
  const std::string folder = files.front().path.substr(0, files.front().path.find('/') + 1);
  ASSERT_EQ(drawn.size(), LayOut(result, options).size());
  std::size_t next = 0;
  for (std::size_t page = 0; page < drawn.size(); ++page) {
    const std::string place = folder + (drawn.size() > 1 ? "page-" + std::to_string(page + 1) + "/" : "");
    const json layout = FileAt(files, place + "template.json");
    std::set<Point> read;
    for (const auto& [point, value] : Read(layout)) read.insert(point);
    EXPECT_EQ(drawn[page], read) << "page " << page + 1;
    // Each row stands on one page, in order.
    for (const json& field : layout["outputColumns"]) {
      if (field.get<std::string>()[0] != 'q') continue;
      while (next < result.rows.size() && result.rows[next].labels.empty()) ++next;  // a question without answers
      ASSERT_LT(next, result.rows.size());
      EXPECT_EQ(field, "q" + std::to_string(result.rows[next++].number));
    }
  }
  EXPECT_EQ(next + (result.rows.empty() ? 0 : result.rows.back().labels.empty()), result.rows.size());
}

TEST_P(Sheets, KeepBubblesApartAndWithinTheirPlace) {
  const auto& [name, result, options] = GetParam();
  std::size_t bubbles = 0;
  std::map<BlockKind, int> heads;  // what tells whose page it is stands at the same place on each
  for (const SheetPage& page : LayOut(result, options)) {
    std::vector<Bubble> all;
    for (std::size_t b = 0; b < page.blocks.size(); ++b) {
      const Box& box = page.blocks[b].box;
      if (page.blocks[b].kind <= BlockKind::kStudent) {
        EXPECT_EQ(heads.try_emplace(page.blocks[b].kind, box.x + kSheetWidth * box.y).first->second,
                  box.x + kSheetWidth * box.y);
      }
      EXPECT_GE(box.x, 50);
      EXPECT_LE(box.x + box.width, kSheetWidth - 50);
      EXPECT_LE(box.y + box.height, kSheetHeight - kMark) << "touches the corner marks";
      for (std::size_t other = 0; other < b; ++other) {
        const Box& before = page.blocks[other].box;
        EXPECT_TRUE(box.x >= before.x + before.width || before.x >= box.x + box.width ||
                    box.y >= before.y + before.height || before.y >= box.y + box.height)
            << "blocks " << other << " and " << b << " overlap";
      }
      for (const Item& item : page.blocks[b].items) {
        std::size_t count = 0;
        for (const Strip& strip : item.strips) {
          count += strip.bubbles.size();
          for (const Bubble& bubble : strip.bubbles) {
            EXPECT_GE(bubble.x - kBubble / 2, box.x);
            EXPECT_LE(bubble.x + kBubble / 2 + item.labelWidth, box.x + box.width);
            EXPECT_GE(bubble.y - kBubble / 2, box.y);
            EXPECT_LE(bubble.y + kBubble / 2, box.y + box.height);
            for (const Bubble& other : all) {
              ASSERT_GE(std::max(std::abs(bubble.x - other.x), std::abs(bubble.y - other.y)), kBubble + 2);
            }
          }
          all.insert(all.end(), strip.bubbles.begin(), strip.bubbles.end());
        }
        if (item.row >= 0) {
          EXPECT_EQ(count, result.rows[static_cast<std::size_t>(item.row)].labels.size());
        }
      }
    }
    bubbles += all.size();
  }
  EXPECT_EQ(bubbles == 0, result.versions[0].name.empty() && result.rows.empty());
}

TEST_P(Sheets, AreXmlAndTheSameForEveryKey) {
  auto [name, result, options] = GetParam();
  const std::string page = StudentPage(result, options);
  Parsed(TeacherPage(result, options));
  for (Version& version : result.versions) {
    for (Answer& answer : version.answers) {
      const long paper = answer.paper;
      answer = Key(answer.question, {2, 3}, false, 7, -1, 0.5);
      answer.paper = paper;
    }
  }
  for (Row& row : result.rows) row.several = !row.several;
  for (File& file : result.files) {
    for (Question& question : file.questions) {
      question.correct = {2};
      question.answers = {"wrong", "right"};
      question.notes = "the second";
    }
  }
  EXPECT_EQ(StudentPage(result, options), page);
}

INSTANTIATE_TEST_SUITE_P(Shapes, Sheets, testing::ValuesIn(Shapes()),
                         [](const testing::TestParamInfo<Shape>& shape) { return std::string(shape.param.name); });

TEST(StudentPage, ShowsTheNumbersOfPagesVersionsAndRows) {
  Result result = Sheet(150, {kAtoE}, {"A", "B", "C"});
  for (Version& version : result.versions) {
    for (Answer& answer : version.answers) answer.paper += 10;
  }
  result.renumbered = true;
  const std::string page = StudentPage(result, {.version = 2});
  EXPECT_THAT(page, HasSubstr("Page 1 of 2"));
  EXPECT_THAT(page, HasSubstr("Page 2 of 2"));
  EXPECT_THAT(page, HasSubstr("Version <bdi>B</bdi>"));
  EXPECT_THAT(page, HasSubstr("11–160"));
  EXPECT_THAT(page, HasSubstr("1–150"));
  for (const SheetPage& sheet : LayOut(result, {.version = 2})) {
    for (const Block& block : sheet.blocks) {
      if (block.kind == BlockKind::kVersion) {
        EXPECT_FALSE(block.items[0].strips[0].bubbles[0].filled);
        EXPECT_TRUE(block.items[0].strips[0].bubbles[1].filled);
      }
    }
  }
  EXPECT_THAT(StudentPage(result, {.language = "de"}), HasSubstr("Seite 2 von 2"));
  // Papers with other numbers have a table of their own.
  result.versions[2].answers[149].paper = 170;
  const std::string three = StudentPage(result);
  for (const char* range : {">A: 11–160<", ">B: 11–160<", ">C: 11–159<", ">C: 170<"}) {
    EXPECT_THAT(three, HasSubstr(range));
    EXPECT_THAT(page, Not(HasSubstr(range)));
  }
}

// Texts of the user that a careless writer would let through as markup, or that are no XML.
TEST(Pages, HoldAnyText) {
  const std::string nasty = "</script><b>&amp;\" ' \x01 \xff \xE2\x82 ]]> שלום";
  Result result = Sheet(2, {{nasty, nasty + "2"}}, {nasty, nasty + "B"});
  result.title = nasty;
  result.handGraded = {{nasty, nasty, 1}};
  result.findings = {{Severity::kError, "kind", 0, 1, nasty, 1, 1, nasty}};
  for (File& file : result.files) file.name = file.questions[0].text = file.questions[0].topic = nasty;
  Parsed(StudentPage(result));
  Parsed(TeacherPage(result));
  EXPECT_THAT(StudentPage(result), Not(HasSubstr("<b>")));
  for (const OutputFile& file : ReaderFiles(result)) {
    if (file.path.ends_with(".json")) {
      EXPECT_TRUE(json::accept(file.content)) << file.path;
    }
  }
}

TEST(TeacherPage, ShowsKeysAndFindings) {
  Result result = Sheet(3, {kAtoE});
  result.versions[1].answers[1] = Key(1, {2, 4}, true, 2.5);
  result.versions[1].answers[2] = Key(2, {3, 5}, false);
  result.versions[0].answers[0].marks = {};
  result.findings = {{Severity::kWarning, "picture", 1, 3, "q<3", 12, 5, "A picture was left out"}};
  const std::string page = TeacherPage(result, {.language = "de"});
  EXPECT_THAT(page, HasSubstr("<bdi>B</bdi> <bdi>D</bdi>"));
  EXPECT_THAT(page, HasSubstr("<bdi>C</bdi> <small>oder</small> <bdi>E</bdi>"));
  EXPECT_THAT(page, HasSubstr("<div>2,5</div>"));
  EXPECT_THAT(page, HasSubstr("<span class=\"none\">keine</span>"));
  EXPECT_THAT(page, HasSubstr("A picture was left out"));
  EXPECT_THAT(page, HasSubstr("<div>12:5</div>"));
  EXPECT_LT(page.find("id=\"keys\""), page.find("id=\"findings\""));
  result.findings[0].severity = Severity::kError;
  const std::string wrong = TeacherPage(result);
  EXPECT_GT(wrong.find("id=\"keys\""), wrong.find("id=\"findings\""));
}

TEST(ReaderFiles, GiveEachVersionItsKeyAndPoints) {
  Result result = Sheet(6, {kAtoE, kAtoE, kAtoE, kAgree, kTrueFalse, kAtoE}, {"A", "b/2", "B:2", "nul", ""});
  result.versions[1].answers = {
      Key(0, {2}), Key(1, {1, 3}, true, 2),  Key(2, {1, 3}, false, 2, -0.5, 0.25), Key(3, {2, 5}),
      Key(4, {}),  Key(5, {5}, true, 1, 0.5)};
  const std::vector<OutputFile> files = ReaderFiles(result);
  std::set<std::string> folders;
  for (const OutputFile& file : files) folders.insert(file.path.substr(0, file.path.find('/')));
  EXPECT_THAT(folders, ElementsAre("A", "B_2-2", "b_2", "nul-2", "version-5"));

  const json evaluation = FileAt(files, "b_2/evaluation.json");
  EXPECT_EQ(evaluation["options"]["questions_in_order"], json({"q1", "q2", "q3", "q4", "q6"}));
  EXPECT_EQ(evaluation["options"]["answers_in_order"],
            json({"B", "AC", json({"A", "C"}), "Agree;Strongly disagree;", "E"}));
  std::map<std::string, json> marking;
  for (const auto& [name, scheme] : evaluation["marking_schemes"].items()) {
    if (name == "DEFAULT") {
      EXPECT_EQ(scheme, json({{"correct", 1.0}, {"incorrect", 0.0}, {"unmarked", 0.0}}));
    } else {
      for (const json& question : scheme["questions"]) marking[question] = scheme["marking"];
      EXPECT_EQ(name.starts_with("BONUS"), scheme["marking"]["incorrect"] > 0);
    }
  }
  EXPECT_THAT(marking, SizeIs(3));
  EXPECT_EQ(marking["q2"]["correct"], 2.0);
  EXPECT_EQ(marking["q3"], json({{"correct", 2.0}, {"incorrect", -0.5}, {"unmarked", 0.25}}));
  EXPECT_EQ(marking["q6"]["incorrect"], 0.5);
}

// A reader joins what is marked in a row: no two sets of bubbles may read the same.
TEST(ReaderFiles, TellEverySetOfBubblesApart) {
  for (const std::vector<std::string>& labels :
       {kAtoE, std::vector<std::string>{"1", "11", "111"}, {"A", "A", "B"}, {"a;", "a", ";"}, {"é", "e"}}) {
    std::set<std::string> texts;
    const std::vector<SheetPage> pages = LayOut(Sheet(1, {labels}, {""}), {});
    const std::vector<Bubble>& bubbles = pages[0].blocks.back().items[0].strips[0].bubbles;
    for (unsigned set = 0; set < 1u << bubbles.size(); ++set) {
      std::string text;
      for (std::size_t i = 0; i < bubbles.size(); ++i) text += set >> i & 1 ? bubbles[i].value : "";
      EXPECT_TRUE(texts.insert(text).second) << text;
    }
  }
}

TEST(ReaderFiles, LeaveOutPagesWithoutBubbles) {
  Result result = Sheet(0, {kAtoE}, {""});
  result.handGraded.assign(3, {"Subjective", "Why?", 1});
  EXPECT_THAT(ReaderFiles(result), SizeIs(0));
}

TEST(Pages, HoldTwentyThousandRows) {
  const Result result = Sheet(20000, {kAtoE, kFtoJ}, {"A", "B", "C"});
  const PageOptions options{.idDigits = 8};
  const std::string page = StudentPage(result, options);
  std::size_t rows = 0, filled = 0;
  const std::vector<SheetPage> pages = LayOut(result, options);
  for (const SheetPage& sheet : pages) {
    for (const Block& block : sheet.blocks) {
      for (const Item& item : block.items) {
        rows += item.row >= 0;
        if (block.kind != BlockKind::kPage) continue;
        for (const Strip& strip : item.strips) {
          for (const Bubble& bubble : strip.bubbles) filled += bubble.filled;
        }
      }
    }
  }
  EXPECT_EQ(rows, result.rows.size());
  EXPECT_EQ(filled, 3 * pages.size()) << "a bubble for each digit of each page's number";
  EXPECT_THAT(page, HasSubstr("Page " + std::to_string(pages.size()) + " of " + std::to_string(pages.size())));
  EXPECT_EQ(Parsed(page).getElementsByTagName(u"section").get_length(), static_cast<Long>(pages.size()));
}

}  // namespace
}  // namespace TORVA35::sheet
