#pragma once

#include <algorithm>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace TORVA35::sheet {

/// A question as a paper prints it.
struct ExamQuestion {
  std::string kind;  // the file's word
  std::string id;
  int choices = 0;           // for "mc"
  std::vector<int> correct;  // from 0
  double points = 1;

  bool Graded() const { return kind == "tf" || kind == "mc" || kind == "yn"; }
};

/// A test as a teacher has it, apart from any file: what is printed, and what is right.
struct Exam {
  std::string version;
  std::string odd, even;  // letters of questions with odd and even numbers
  std::vector<ExamQuestion> questions;

  /// What the paper prints beside an answer.
  std::string Letter(std::size_t at, int choice) const {
    const std::string& kind = questions[at].kind;
    if (kind == "tf") return choice == 0 ? "T" : "F";
    if (kind == "yn") return choice == 0 ? "Y" : "N";
    const std::string& letters = (at + 1) % 2 != 0 ? odd : even;
    return {letters[static_cast<std::size_t>(choice)]};
  }

  std::string Xml() const {
    std::string xml = "<examview><header><title>Exam</title><version>" + version +
                      "</version></header><mc-choice-sequence value='" + odd + (even == odd ? "" : "_" + even) +
                      "'/>";
    for (const ExamQuestion& question : questions) {
      xml += "<question type='" + question.kind + "' question-id='" + question.id + "'><text>Asks " + question.id +
             "</text>";
      if (question.kind == "mc") {
        xml += "<choices>";
        for (char c = 'a'; c < 'a' + question.choices; ++c) {
          xml += std::string("<choice-") + c + ">" + question.id + c + "</choice-" + c + ">";
        }
        xml += "</choices>";
      }
      xml += "<answer>";
      for (const int& choice : question.correct) {
        if (&choice != question.correct.data()) xml += ",";
        if (question.kind == "mc") xml += static_cast<char>('A' + choice);
        if (question.kind == "tf") xml += choice == 0 ? "True" : "False";
        if (question.kind == "yn") xml += choice == 0 ? "Yes" : "No";
      }
      xml += "</answer><info><points>" + std::to_string(question.points) + "</points></info></question>";
    }
    return xml + "</examview>";
  }
};

/// A random test: sections of one kind each, as such programs print them, also of kinds that no sheet can grade.
/// Each has fewer than `longest` questions.
inline Exam RandomExam(std::mt19937& random, int longest = 6) {
  const auto below = [&](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
  static constexpr std::pair<const char*, const char*> kLetters[] = {
      {"ABCDEFGH", "ABCDEFGH"}, {"ABCDE", "FGHIJ"}, {"ABCDE", "FGHJK"}, {"ABCDEFGH", "JKLMNPQR"}};
  const auto& letters = kLetters[below(4)];
  Exam exam{"A", letters.first, letters.second, {}};
  for (const char* kind : {"tf", "mtf", "mc", "yn", "ma", "mc", "es"}) {
    for (int left = below(longest); left > 0; --left) {
      ExamQuestion question{
          kind, std::to_string(exam.questions.size() * 7 % 101 + 1), 0, {}, 0.5 * (1 + below(6))};
      question.id += "x" + std::to_string(exam.questions.size());
      question.choices = question.kind == std::string("mc") ? 2 + below(static_cast<int>(exam.odd.size()) - 1) : 2;
      question.correct = {below(question.choices)};
      if (question.choices > 2 && below(4) == 0) {
        const int other = (question.correct.front() + 1 + below(question.choices - 1)) % question.choices;
        question.correct.push_back(other);
      }
      exam.questions.push_back(question);
    }
  }
  exam.questions.push_back({"mc", "last", 3, {1}, 2});  // so that something can be graded
  return exam;
}

/// The same test in another order: questions change places within their section.
inline Exam Shuffled(const Exam& exam, std::string version, std::mt19937& random) {
  Exam other = exam;
  other.version = std::move(version);
  for (auto begin = other.questions.begin(); begin != other.questions.end();) {
    const auto end =
        std::find_if(begin, other.questions.end(), [&](const ExamQuestion& q) { return q.kind != begin->kind; });
    std::shuffle(begin, end, random);
    begin = end;
  }
  return other;
}

}  // namespace TORVA35::sheet
