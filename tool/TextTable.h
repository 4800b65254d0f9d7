#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

#include <torva35/TORVA35.h>

namespace tool {

/// Columns of the terminal that standard output goes to; 0, which stands for no limit, where it is no terminal.
/// The variable COLUMNS overrules both.
std::size_t OutputWidth();

/// The text for one line of a terminal: control characters, which a file could use to take the terminal over,
/// become spaces.
std::string OneLine(TORVA35::StringView text);

/// Breaks a text at its spaces into lines of at most this many columns; 0: one line. A longer word is cut.
std::vector<TORVA35::String> Wrapped(TORVA35::StringView text, std::size_t width);

/// A table for the terminal. Columns are as wide as their cells; those that wrap give way until the table fits.
class TextTable {
 public:
  enum class Kind { kLeft, kRight, kWrapped };
  struct Column {
    TORVA35::String heading;
    Kind kind = Kind::kLeft;
  };

  explicit TextTable(std::vector<Column> columns) : columns_(std::move(columns)) {}

  /// One cell for each column.
  void Add(std::vector<TORVA35::String> cells);
  /// width: that of the terminal; 0 for no limit.
  void Print(std::ostream& out, std::size_t width) const;

 private:
  std::vector<std::size_t> Widths(std::size_t width) const;

  std::vector<Column> columns_;
  std::vector<std::vector<TORVA35::String>> rows_;
};

}  // namespace tool
