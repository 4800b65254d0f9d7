#pragma once

#include <string>
#include <utility>
#include <vector>

#include "torva35/sheet/Sheet.h"

namespace TORVA35::sheet {

/// Collects findings.
class Findings {
 public:
  explicit Findings(std::vector<Finding>& list) : list_(list) {}

  /// About the test as a whole.
  void Add(Severity severity, const char* kind, std::string text) {
    list_.push_back({severity, kind, -1, 0, {}, 0, 0, std::move(text)});
  }
  /// About a file.
  void Add(Severity severity, const char* kind, int file, std::string text) {
    list_.push_back({severity, kind, file, 0, {}, 0, 0, std::move(text)});
  }
  /// About a question of a file.
  void Add(Severity severity, const char* kind, int file, const Question& question, std::string text) {
    list_.push_back(
        {severity, kind, file, question.number, question.id, question.line, question.column, std::move(text)});
  }
  /// About a place in a question of a file.
  void Add(Severity severity, const char* kind, int file, const Question& question, long line, long column,
           std::string text) {
    list_.push_back({severity, kind, file, question.number, question.id, line, column, std::move(text)});
  }

 private:
  std::vector<Finding>& list_;
};

}  // namespace TORVA35::sheet
