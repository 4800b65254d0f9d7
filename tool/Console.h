#pragma once

#include <map>
#include <string>

#include <torva35/sheet/Sheet.h>

namespace tool {

/// What the program says beside its results, on standard error.
class Console {
 public:
  /// quiet: shows no dialogs, and of the findings those that make the run fail; strict: warnings do.
  Console(bool quiet, bool strict) : quiet_(quiet), strict_(strict) {}

  /// Shows a dialog and returns the position of the button that was chosen; the first one where there is no
  /// terminal to ask at.
  int Ask(const TORVA35::sheet::Dialog& dialog);

  /// Shows how far the work is, on a terminal.
  void Show(const TORVA35::sheet::Progress& progress);
  /// Takes what `Show` has left away.
  void EndProgress();

  /// A line for each finding: "FILE:LINE:COLUMN: severity: text".
  void Print(const TORVA35::sheet::Result& result) const;

  /// One line about the run.
  static void Say(const std::string& text);

 private:
  bool quiet_;
  bool strict_;
  bool shown_ = false;
  std::map<std::string, std::string> seen_;  // texts of dialogs, with the file they were about
};

}  // namespace tool
