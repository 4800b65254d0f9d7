#include "TextTable.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <numeric>
#include <string_view>

#include "System.h"

namespace tool {

using namespace TORVA35;

namespace {

constexpr std::size_t kGap = 2;  // columns between two cells
constexpr std::size_t kLongestRule = 40;
constexpr std::size_t kLeastWrapped = 8;  // a column that wraps does not get narrower

// Units of the character at the beginning of the text, which is not empty.
std::size_t UnitsOfFirst(StringView text) {
  const bool pair = text.size() > 1 && (text[0] & 0xFC00) == 0xD800 && (text[1] & 0xFC00) == 0xDC00;
  return pair ? 2 : 1;
}

// Columns that the character takes in a terminal: 0 to 2, or -1 for a control character.
int ColumnsOfFirst(StringView text) {
  if (UnitsOfFirst(text) == 1) return CharacterColumns(text[0]);
  return CharacterColumns(0x10000 + (static_cast<char32_t>(text[0] - 0xD800) << 10) + (text[1] - 0xDC00u));
}

// The text without what a terminal would not print as itself.
String Printable(StringView text) {
  String result;
  while (!text.empty()) {
    const StringView first = text.substr(0, UnitsOfFirst(text));
    text.remove_prefix(first.size());
    const bool control = first[0] < 0x20 || (first[0] >= 0x7F && first[0] < 0xA0);
    if (ColumnsOfFirst(first) >= 0) {
      result += first;
    } else {
      result += control ? u' ' : u'\uFFFD';
    }
  }
  return result;
}

std::size_t ColumnsOf(StringView text) {
  std::size_t columns = 0;
  while (!text.empty()) {
    columns += static_cast<std::size_t>(std::max(0, ColumnsOfFirst(text)));
    text.remove_prefix(UnitsOfFirst(text));
  }
  return columns;
}

// The beginning of the text that fits the width; at least one character.
StringView Fitting(StringView text, std::size_t width) {
  std::size_t units = UnitsOfFirst(text);
  for (std::size_t columns = ColumnsOf(text.substr(0, units)); units < text.size();) {
    const StringView rest = text.substr(units);
    columns += ColumnsOf(rest.substr(0, UnitsOfFirst(rest)));
    if (columns > width) break;
    units += UnitsOfFirst(rest);
  }
  return text.substr(0, units);
}

}  // namespace

std::size_t OutputWidth() {
  if (const char* columns = std::getenv("COLUMNS")) {
    std::size_t width = 0;
    std::from_chars(columns, columns + std::string_view(columns).size(), width);
    return width;
  }
  return TerminalWidth();
}

std::string OneLine(StringView text) {
  return ToUtf8(Printable(text));
}

std::vector<String> Wrapped(StringView text, std::size_t width) {
  std::vector<String> lines;
  if (width == 0) return {String(text)};
  do {
    StringView line = text.empty() ? text : Fitting(text, width);
    text.remove_prefix(line.size());
    if (!text.empty() && text[0] != u' ') {
      // The line ends within a word, which belongs to the next line as a whole unless the word is all there is.
      const std::size_t space = line.rfind(u' ');
      if (space != line.npos && space > 0) {
        text = StringView(line.data() + space, line.size() - space + text.size());
        line = line.substr(0, space);
      }
    }
    lines.emplace_back(line);
    while (!text.empty() && text[0] == u' ') text.remove_prefix(1);
  } while (!text.empty());
  return lines;
}

void TextTable::Add(std::vector<String> cells) {
  for (String& cell : cells) cell = Printable(cell);
  rows_.push_back(std::move(cells));
}

std::vector<std::size_t> TextTable::Widths(std::size_t width) const {
  std::vector<std::size_t> widths;
  std::vector<std::size_t*> giving;
  widths.reserve(columns_.size());
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    widths.push_back(ColumnsOf(columns_[i].heading));
    for (const auto& row : rows_) widths[i] = std::max(widths[i], ColumnsOf(row[i]));
    if (columns_[i].kind == Kind::kWrapped) giving.push_back(&widths[i]);
  }
  if (width == 0) return widths;
  for (std::size_t* column : giving) *column = std::min(*column, width);
  const auto total = [&] { return std::accumulate(widths.begin(), widths.end(), kGap * (widths.size() - 1)); };
  while (!giving.empty() && total() > width) {
    std::size_t& widest =
        **std::max_element(giving.begin(), giving.end(), [](auto* a, auto* b) { return *a < *b; });
    if (widest <= kLeastWrapped) break;
    --widest;
  }
  return widths;
}

void TextTable::Print(std::ostream& out, std::size_t width) const {
  const std::vector<std::size_t> widths = Widths(width);

  const auto printLine = [&](const std::vector<String>& cells) {
    std::string line;
    std::size_t missing = 0;  // spaces due before the next cell: none are written at the end of a line
    for (std::size_t i = 0; i < cells.size(); ++i) {
      const std::size_t free = widths[i] - std::min(widths[i], ColumnsOf(cells[i]));
      const bool right = columns_[i].kind == Kind::kRight;
      if (!cells[i].empty()) {
        line.append(missing + (right ? free : 0), ' ').append(ToUtf8(cells[i]));
        missing = right ? 0 : free;
      } else {
        missing += widths[i];
      }
      missing += kGap;
    }
    out << line << '\n';
  };
  const auto printRow = [&](const std::vector<String>& cells) {
    std::vector<std::vector<String>> wrapped;
    std::size_t height = 1;
    for (std::size_t i = 0; i < cells.size(); ++i) {
      wrapped.push_back(Wrapped(cells[i], columns_[i].kind == Kind::kWrapped ? widths[i] : 0));
      height = std::max(height, wrapped[i].size());
    }
    for (std::size_t at = 0; at < height; ++at) {
      std::vector<String> line;
      line.reserve(wrapped.size());
      for (const auto& cell : wrapped) line.push_back(at < cell.size() ? cell[at] : String());
      printLine(line);
    }
  };

  std::vector<String> headings, rules;
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    headings.push_back(columns_[i].heading);
    rules.emplace_back(std::min(widths[i], kLongestRule), u'-');
  }
  printRow(headings);
  printLine(rules);
  for (const auto& row : rows_) printRow(row);
}

}  // namespace tool
