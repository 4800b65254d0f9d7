#include "Layout.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

namespace TORVA35::sheet {
namespace {

constexpr int kLeft = 50;  // what stands below the heading keeps within these, clear of the corner marks
constexpr int kRight = 1800;
constexpr int kTop = 208;
constexpr int kBottom = 2440;
constexpr int kWidth = kRight - kLeft;
constexpr int kGap = 30;    // between two blocks
constexpr int kPad = 10;    // between the frame of a block and what it holds
constexpr int kTitle = 48;  // height of a block's title
constexpr int kRow = 60;    // from one row to the next
constexpr int kDigit = 21;  // width of a digit of a row's number
constexpr int kPitch = 56;  // from one bubble to the next
constexpr int kLeastPitch = 50;
constexpr int kUprightPitch = 52;
constexpr int kUprightRow = 50;
constexpr int kLetter = 17;       // width of a letter of a label beside its bubble
constexpr int kLabelLine = 34;    // height of a line of it
constexpr int kLeastLabel = 200;  // no narrower, for the sake of one line
constexpr int kMostLabel = 700;
constexpr int kMostVersionLines = 10;
constexpr int kMostSpare = 150;
constexpr int kHandGraded = 130;
constexpr int kHandGradedWidth = 860;

// The characters of a text of UTF-8.
std::vector<std::string> Characters(const std::string& text) {
  std::vector<std::string> characters;
  for (const char unit : text) {
    const bool continues = (static_cast<unsigned char>(unit) & 0xC0) == 0x80;
    if (!continues || characters.empty()) characters.emplace_back();
    characters.back() += unit;
  }
  return characters;
}

// Width of a text beside a bubble: characters of three bytes and more may be as wide as they are high.
int LabelWidth(const std::string& label) {
  int width = 0;
  for (const std::string& character : Characters(label)) width += character.size() < 3 ? kLetter : 2 * kLetter;
  return width;
}

// What a reader reports for the bubbles of a row. It joins the values of all that are filled, so that no joined
// text may stand for two sets of bubbles.
std::vector<std::string> ValuesOf(const std::vector<std::string>& labels) {
  const std::set<std::string> different(labels.begin(), labels.end());
  bool single = different.size() == labels.size();
  bool closed = single;
  for (const std::string& label : labels) {
    single = single && CharacterCount(label) == 1;
    closed = closed && !label.empty() && label.find(';') == std::string::npos;
  }
  if (single) return labels;
  std::vector<std::string> values;
  for (std::size_t i = 0; i < labels.size(); ++i)
    values.push_back((closed ? labels[i] : std::to_string(i + 1)) + ";");
  return values;
}

// Bubbles from left to right, in as many lines as they need. The item begins at the top left corner of its block.
void PutAcross(Item& item, const std::vector<std::string>& labels, int number, int width) {
  const auto count = static_cast<int>(labels.size());
  const int room = std::max(kLeastPitch, width - number - 2 * kPad);
  int widest = 0;
  bool inside = true;
  for (const std::string& label : labels) {
    widest = std::max(widest, LabelWidth(label));
    inside = inside && CharacterCount(label) <= 2;
  }
  int pitch = kPitch;
  int height = kRow;
  if (inside) {
    if (count * pitch > room) pitch = std::clamp(room / count, kLeastPitch, kPitch);
  } else {
    // Labels take two lines or three each, if the whole row then fits into one line.
    const int share = room / count - kPitch;
    item.labelWidth = std::min({widest + kPad, kMostLabel, room - kPitch});
    if (share < item.labelWidth && share >= kLeastLabel && widest <= 2 * share) item.labelWidth = share;
    pitch = kPitch + item.labelWidth;
    const int lines = widest <= item.labelWidth ? 1 : (widest + widest / 8) / item.labelWidth + 1;
    height = std::clamp(lines * kLabelLine + 10, kRow, 10 * kRow);
  }
  const int across = std::clamp(room / pitch, 1, std::max(1, count));
  const std::vector<std::string> values = ValuesOf(labels);
  for (int i = 0; i < count; ++i) {
    if (i % across == 0) item.strips.push_back({false, pitch, {}});
    const auto at = static_cast<std::size_t>(i);
    item.strips.back().bubbles.push_back({kPad + number + i % across * pitch + std::min(pitch, kPitch) / 2,
                                          i / across * height + height / 2, labels[at], values[at], false});
  }
  const auto lines = static_cast<int>(std::max<std::size_t>(1, item.strips.size()));
  item.box = {0, 0, number + across * pitch + 2 * kPad, lines * height};
}

// A grid: for each character a column with a box to write into, and the bubbles below it.
Block Grid(BlockKind kind, const std::string& field, int columns, const std::vector<std::string>& labels) {
  Block block;
  block.kind = kind;
  block.title = kTitle;
  Item item;
  item.field = field;
  const auto rows = static_cast<int>(labels.size());
  item.box = {0, kTitle, std::max(360, columns * kUprightPitch + 2 * kPad), kRow + rows * kUprightRow + kPad};
  for (int column = 0; column < columns; ++column) {
    Strip strip{true, kUprightRow, {}};
    for (int row = 0; row < rows; ++row) {
      const std::string& label = labels[static_cast<std::size_t>(row)];
      strip.bubbles.push_back({kPad + column * kUprightPitch + kUprightPitch / 2,
                               kTitle + kRow + row * kUprightRow + kUprightRow / 2, label, label, false});
    }
    item.strips.push_back(std::move(strip));
  }
  block.box = {0, 0, item.box.width, kTitle + item.box.height};
  block.items.push_back(std::move(item));
  return block;
}

void Move(Item& item, int x, int y) {
  item.box.x += x;
  item.box.y += y;
  for (Strip& strip : item.strips) {
    for (Bubble& bubble : strip.bubbles) {
      bubble.x += x;
      bubble.y += y;
    }
  }
}

void Move(Block& block, int x, int y) {
  block.box.x += x;
  block.box.y += y;
  for (Item& item : block.items) Move(item, x, y);
}

std::vector<std::string> Texts(char first, char last) {
  std::vector<std::string> texts;
  for (char text = first; text <= last; ++text) texts.emplace_back(1, text);
  return texts;
}

class Planner {
 public:
  Planner(const Result& result, const PageOptions& options) : result_(result), options_(options) {
    long largest = 0;
    for (const Row& row : result.rows) largest = std::max(largest, row.number);
    for (const Version& version : result.versions) {
      for (const Answer& answer : version.answers) largest = std::max(largest, answer.paper);
    }
    digits_ = static_cast<int>(std::to_string(largest).size());
    number_ = std::max(90, kDigit * digits_ + 32);
    RangeItems();
    RowItems();
    HandGradedItems();
  }

  // How many pages there are decides how much room the row with the page's number needs, and the other way round.
  std::vector<SheetPage> Pages() {
    std::size_t count = 1;
    for (;;) {
      std::vector<SheetPage> pages = PagesOf(count);
      if (PageDigits(pages.size()) <= PageDigits(count)) {
        for (std::size_t i = 0; i < pages.size(); ++i) NumberPage(pages[i], i, pages.size());
        return pages;
      }
      count = pages.size();
    }
  }

 private:
  struct Flowing {
    BlockKind kind;
    Item item;
  };

  // Where a number of the papers is on the sheet: for each version, if they differ.
  void RangeItems() {
    if (!result_.renumbered) return;
    const bool agree = PapersAgree(result_);
    for (const Version& version : result_.versions) {
      RangeItems(version, agree ? std::string() : version.name + ":");
      if (agree) return;
    }
  }

  void RangeItems(const Version& version, const std::string& name) {
    const std::vector<Row>& rows = result_.rows;
    const auto range = [](long first, long last) {
      return std::to_string(first) + (first == last ? "" : "–" + std::to_string(last));
    };
    const auto paper = [&](std::size_t i) { return version.answers[i].paper; };
    for (std::size_t first = 0; first < rows.size();) {
      std::size_t next = first + 1;
      while (next < rows.size() && paper(next) == paper(next - 1) + 1 &&
             rows[next].number == rows[next - 1].number + 1) {
        ++next;
      }
      Item item;
      item.caption = range(paper(first), paper(next - 1));
      item.text = range(rows[first].number, rows[next - 1].number);
      if (!name.empty()) {
        item.caption = name + " " + item.caption;
        item.labelWidth = std::min(LabelWidth(name), kMostLabel);
      }
      item.box = {0, 0, item.labelWidth + std::max(420, 4 * kDigit * digits_ + 180), 50};
      flowing_.push_back({BlockKind::kNumbers, std::move(item)});
      first = next;
    }
  }

  void RowItems() {
    std::map<long, int> seen;
    for (std::size_t i = 0; i < result_.rows.size(); ++i) {
      const Row& row = result_.rows[i];
      Item item;
      item.row = static_cast<int>(i);
      item.caption = std::to_string(row.number);
      item.field = "q" + item.caption;
      if (const int times = ++seen[row.number]; times > 1) item.field += "x" + std::to_string(times);
      PutAcross(item, row.labels, number_, kWidth);
      flowing_.push_back({BlockKind::kQuestions, std::move(item)});
    }
  }

  void HandGradedItems() {
    for (const HandGraded& question : result_.handGraded) {
      Item item;
      item.caption = question.name;
      item.text = question.text;
      item.points = question.points;
      item.box = {0, 0, kHandGradedWidth, kHandGraded};
      flowing_.push_back({BlockKind::kHandGraded, std::move(item)});
    }
  }

  // Lines of the row with the page's number: up to ten pages have a bubble each, more a line for each digit.
  static std::size_t PageDigits(std::size_t pages) {
    return pages < 2 ? 0 : pages <= 10 ? 1 : std::to_string(pages).size();
  }

  Block VersionBlock() const {
    std::vector<std::string> names = Names();
    Block block;
    block.kind = BlockKind::kVersion;
    block.title = kTitle;
    Item item;
    item.field = "version";
    PutAcross(item, names, 0, kWidth);
    if (item.strips.size() > kMostVersionLines) {  // so that there is room for questions
      for (std::string& name : names) {
        if (const auto characters = Characters(name); characters.size() > 2) name = characters[0] + characters[1];
      }
      item.strips.clear();
      item.labelWidth = 0;
      PutAcross(item, names, 0, kWidth);
    }
    const std::vector<std::string> values = ValuesOf(Names());
    std::size_t at = 0;
    const int printed = PrintedVersion(result_, options_);
    for (Strip& strip : item.strips) {
      for (Bubble& bubble : strip.bubbles) {
        bubble.filled = static_cast<int>(at) == printed;
        bubble.value = values[at++];
      }
    }
    Move(item, 0, kTitle);
    block.box = {0, 0, std::max(220, item.box.width), kTitle + item.box.height + kPad};
    block.items.push_back(std::move(item));
    return block;
  }

  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const Version& version : result_.versions) names.push_back(version.name);
    return names;
  }

  static Block PageBlock(std::size_t pages) {
    Block block;
    block.kind = BlockKind::kPage;
    block.title = kTitle;
    Item item;
    item.field = "page";
    item.box = {0, kTitle, 0, 0};
    for (std::size_t digit = 0; digit < PageDigits(pages); ++digit) {
      std::vector<std::string> labels = Texts('0', '9');
      if (pages <= 10) {
        labels.clear();
        for (std::size_t page = 1; page <= pages; ++page) labels.push_back(std::to_string(page));
      }
      Item line;
      PutAcross(line, labels, 0, kWidth);
      Move(line, 0, kTitle + static_cast<int>(digit) * kRow);
      // "1;" would be exact, too, but one bubble alone is filled.
      for (Bubble& bubble : line.strips[0].bubbles) bubble.value = bubble.label;
      item.box.width = line.box.width;
      item.box.height += kRow;
      item.strips.push_back(std::move(line.strips[0]));
    }
    block.box = {0, 0, std::max(220, item.box.width), kTitle + item.box.height + kPad};
    block.items.push_back(std::move(item));
    return block;
  }

  static void NumberPage(SheetPage& page, std::size_t index, std::size_t pages) {
    for (Block& block : page.blocks) {
      if (block.kind != BlockKind::kPage) continue;
      std::vector<Strip>& strips = block.items[0].strips;
      std::size_t left = index + 1;
      for (std::size_t i = strips.size(); i-- > 0; left /= 10) {
        strips[i].bubbles[pages <= 10 ? index : left % 10].filled = true;
      }
    }
  }

  // The blocks that stand above the questions, in lines from left to right.
  void PutHead(SheetPage& page, bool first, std::size_t pages) const {
    int x = kLeft;
    int y = kTop;
    int below = kTop;
    const auto put = [&](Block block) {
      if (x > kLeft && x + block.box.width > kRight) {
        x = kLeft;
        y = below;
      }
      Move(block, x, y);
      x += block.box.width + kGap;
      below = std::max(below, block.box.y + block.box.height + kGap);
      page.blocks.push_back(std::move(block));
    };
    if (result_.versions.size() > 1 || (result_.versions.size() == 1 && !result_.versions[0].name.empty())) {
      put(VersionBlock());
    }
    if (pages > 1) put(PageBlock(pages));
    x = kLeft;
    y = below;
    if (const int digits = std::clamp(options_.idDigits, 0, kMostIdDigits); digits > 0) {
      put(Grid(BlockKind::kStudent, "student", digits, Texts('0', '9')));
    }
    if (const int letters = std::clamp(options_.nameLetters, 0, kMostNameLetters); first && letters > 0) {
      put(Grid(BlockKind::kName, "name", letters, Texts('A', 'Z')));
    }
  }

  // The lowest line that the blocks of the page leave free between two sides.
  static int FreeFrom(const SheetPage& page, int left, int right) {
    int free = kTop;
    for (const Block& block : page.blocks) {
      if (block.box.x < right + kGap && left < block.box.x + block.box.width + kGap) {
        free = std::max(free, block.box.y + block.box.height + kGap);
      }
    }
    return free;
  }

  // Puts a column of items at x, from the one at place `next` on, as many as fit: items of one kind, as wide as
  // the widest of them. Returns how many; `least` are put whether they fit or not.
  std::size_t PutColumn(SheetPage& page, int x, std::size_t next, std::size_t least) const {
    Block block;
    block.kind = flowing_[next].kind;
    block.title = block.kind == BlockKind::kNumbers ? kTitle : 0;
    block.number = number_;
    block.box = {x, 0, 0, 2 * kPad + block.title};
    std::size_t count = 0;
    for (; next + count < flowing_.size() && flowing_[next + count].kind == block.kind; ++count) {
      const Box& box = flowing_[next + count].item.box;
      const int width = std::max(block.box.width, box.width);
      const int top = FreeFrom(page, x, x + width);
      if (count >= least && (x + width > kRight || top + block.box.height + box.height > kBottom)) break;
      block.box = {x, top, width, block.box.height + box.height};
    }
    if (count == 0) return 0;
    // A column below a grid is as wide as the grid, if that is not much: the next one then stands beside the grid.
    for (const Block& above : page.blocks) {
      const int right = above.box.x + above.box.width;
      if (above.box.x == x && right > x + block.box.width && right < x + block.box.width + kMostSpare &&
          FreeFrom(page, x, right) == block.box.y) {
        block.box.width = right - x;
      }
    }
    int y = block.box.y + kPad + block.title;
    for (std::size_t i = 0; i < count; ++i) {
      Item item = flowing_[next + i].item;
      Move(item, x, y);
      item.box.width = block.box.width;
      y += item.box.height;
      block.items.push_back(std::move(item));
    }
    page.blocks.push_back(std::move(block));
    return count;
  }

  // Where the block ends that reaches least far beyond x.
  static int NextColumn(const SheetPage& page, int x) {
    int next = kRight;
    for (const Block& block : page.blocks) {
      const int right = block.box.x + block.box.width + kGap;
      if (right > x) next = std::min(next, right);
    }
    return next;
  }

  std::vector<SheetPage> PagesOf(std::size_t expected) const {
    std::vector<SheetPage> pages;
    std::size_t next = 0;
    do {
      SheetPage page;
      PutHead(page, pages.empty(), expected);
      const std::size_t head = page.blocks.size();
      for (int x = kLeft; next < flowing_.size() && x < kRight;) {
        // A page after the first has the least head: what does not fit there fits nowhere.
        const std::size_t least = page.blocks.size() == head && !pages.empty() ? 1 : 0;
        const std::size_t count = PutColumn(page, x, next, least);
        next += count;
        if (count == 0) x = NextColumn(page, x);
      }
      pages.push_back(std::move(page));
    } while (next < flowing_.size());
    return pages;
  }

  const Result& result_;
  const PageOptions& options_;
  int digits_ = 1;
  int number_ = 0;
  std::vector<Flowing> flowing_;  // the items that fill the pages, in columns
};

}  // namespace

std::size_t CharacterCount(const std::string& text) {
  return Characters(text).size();
}

bool PapersAgree(const Result& result) {
  const std::vector<Version>& versions = result.versions;
  return std::all_of(versions.begin(), versions.end(), [&](const Version& version) {
    return std::equal(version.answers.begin(), version.answers.end(), versions[0].answers.begin(),
                      versions[0].answers.end(),
                      [](const Answer& left, const Answer& right) { return left.paper == right.paper; });
  });
}

int PrintedVersion(const Result& result, const PageOptions& options) {
  if (options.version >= 1 && options.version <= static_cast<int>(result.versions.size()))
    return options.version - 1;
  return result.versions.size() == 1 ? 0 : -1;
}

std::vector<SheetPage> LayOut(const Result& result, const PageOptions& options) {
  return Planner(result, options).Pages();
}

}  // namespace TORVA35::sheet
