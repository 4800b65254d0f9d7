#include "merge_exam/SheetDrawing.h"

#include <algorithm>
#include <cstdio>
#include <set>

#include "merge_exam/Form.h"

namespace merge_exam {

using namespace TORVA35;

namespace {

// All lengths are millimeters of the printed page.
constexpr double kSheetWidth = 180;
constexpr double kSheetHeight = 218;  // with the heading in front of it, a page of A4 or Letter less its margins
constexpr double kEdge = 7;           // around the fields; the corner marks stand here
constexpr double kMark = 4;           // side of a corner mark
constexpr double kGap = 4;            // between two fields
constexpr double kTitle = 6;          // height of a field's title
constexpr double kPad = 2;            // between the frame of a field and what it holds
constexpr double kRow = 6;            // from one question to the next
constexpr double kNumber = 9;         // width of a question's number, at least
constexpr double kDigit = 2.1;        // width of one of its digits
constexpr double kBubble = 4.4;       // height of a bubble, and the least width
constexpr double kPitch = 5.6;        // from one bubble to the next, at least
constexpr double kLetter = 1.6;       // width of a letter within a bubble
constexpr double kUprightRow = 4.9;
constexpr double kFrameWidth = kSheetWidth - 2 * kEdge;
constexpr std::size_t kMostAcross = 12;  // a question outside the test that offers more stands upright

std::string Mm(double length) {
  char text[32];
  std::snprintf(text, sizeof text, "%.2f", length);
  return text;
}

std::string Attribute(const char* name, double length) {
  return std::string(" ") + name + "=\"" + Mm(length) + '"';
}

std::string TextAt(double x, double y, const char* cssClass, StringView text) {
  return "<text class=\"" + std::string(cssClass) + '"' + Attribute("x", x) + Attribute("y", y) + ">" +
         Escaped(text) + "</text>";
}

std::string Box(double x, double y, double width, double height, double radius, const char* cssClass) {
  return "<rect class=\"" + std::string(cssClass) + '"' + Attribute("x", x) + Attribute("y", y) +
         Attribute("width", width) + Attribute("height", height) + Attribute("rx", radius) + "/>";
}

// As much of a label as fits into a bubble.
String Fitted(const String& label, double width) {
  const auto most = static_cast<std::size_t>(std::max(1.0, (width - 1) / kLetter));
  return label.size() <= most ? label : String(First(label, std::max<std::size_t>(1, most - 1))) + u"…";
}

struct Question {
  String name;
  String text;
  std::vector<String> labels;
  std::vector<String> values;
  std::set<String> keyValues;  // those of the correct answers
  Double points = 0;
  bool scored = false;  // or was, before it was switched off
  bool switchedOff = false;
  Long position = 0;
};

Question QuestionOf(const MergedQuestion& merged) {
  Question question;
  question.name = merged.oOutput->Name();
  question.text = merged.oOutput->Text();
  question.points = merged.oQuestion->CorrectPoints();
  question.labels.assign(merged.oQuestion->Labels()->begin(), merged.oQuestion->Labels()->end());
  question.values.assign(merged.oQuestion->Values()->begin(), merged.oQuestion->Values()->end());
  question.scored = merged.oOutput->Graded() || merged.switchedOff;
  question.switchedOff = merged.switchedOff;
  question.position = merged.position;
  if (merged.oOutput->Graded()) {
    // The key is one text: "2", or "(2,4)".
    const String key = merged.oOutput->CorrectValues()->Item(1);
    for (String value : Split(Trim(key), u",")) {
      std::erase_if(value, [](char16_t unit) { return unit == u'(' || unit == u')'; });
      question.keyValues.insert(value);
    }
  }
  return question;
}

// A field as it is drawn: its questions one below the other, or upright ones side by side.
class Field {
 public:
  Field(const clsTemplateField& oField, std::vector<Question> questions)
      : name_(oField.Name()), subjective_(oField.Subjective()), questions_(std::move(questions)) {
    std::size_t longest = 1;
    for (const Question& question : questions_) {
      most_ = std::max(most_, question.labels.size());
      scored_ = scored_ || question.scored;
      // A field with the name of its one question shows the name once.
      if (question.name != name_) {
        number_ = std::max({number_, kNumber, kDigit * static_cast<double>(question.name.size()) + 3});
      }
      for (const String& label : question.labels) longest = std::max(longest, label.size());
    }
    upright_ = !scored_ && most_ > kMostAcross;
    pitch_ = std::max(kPitch, static_cast<double>(longest) * kLetter + 2.2);
    pitch_ = std::min(pitch_,
                      (kFrameWidth - 2 * kPad - number_) / static_cast<double>(std::max<std::size_t>(1, most_)));
    // A name grid that is wider than the sheet would leave it.
    if (upright_) pitch_ = std::min(kPitch, (kFrameWidth - 2 * kPad) / static_cast<double>(questions_.size()));
  }

  std::size_t Count() const { return questions_.size(); }
  bool CanBreak() const { return !upright_ && !subjective_; }

  double Width() const {
    const double titled = 1.9 * static_cast<double>(name_.size()) + 2 * kPad;
    if (upright_) return std::max(titled, pitch_ * static_cast<double>(Count()) + 2 * kPad);
    if (subjective_) return std::max(titled, 40.0);
    return std::min(kFrameWidth, std::max(titled, number_ + pitch_ * static_cast<double>(most_) + 2 * kPad));
  }
  double Height(std::size_t count) const {
    if (upright_) return kTitle + kRow + kUprightRow * static_cast<double>(most_) + kPad;
    if (subjective_) return kTitle + 2 * kRow;
    return kTitle + kRow * static_cast<double>(count) + kPad;
  }

  // Draws `count` questions from the one at place `first` on, with the corner of the frame at (x, y).
  std::string Draw(std::size_t first, std::size_t count, double x, double y) const {
    std::string svg = "<g class=\"field\">" + Box(x, y, Width(), Height(count), 1.5, "frame") +
                      TextAt(x + kPad, y + 4, "title", name_);
    for (std::size_t i = 0; i < count; ++i) {
      const auto at = static_cast<double>(i);
      if (upright_) {
        svg += Upright(questions_[first + i], x + kPad + (at + 0.5) * pitch_, y + kTitle);
      } else if (subjective_) {
        svg += Subjective(questions_[first + i], x + kPad, y + kTitle);
      } else {
        if (i % 2 == 1) svg += Box(x + 0.5, y + kTitle + at * kRow, Width() - 1, kRow, 1, "stripe");
        svg += Across(questions_[first + i], x + kPad, y + kTitle + (at + 0.5) * kRow);
      }
    }
    return svg + "</g>\n";
  }

 private:
  std::string Begin(const Question& question) const {
    String title = question.name;
    if (!question.text.empty()) title += u": " + question.text;
    if (question.switchedOff) title += u" (not scored)";
    return "<g class=\"" + std::string(question.switchedOff ? "question off" : "question") + "\" id=\"q" +
           std::to_string(question.position) + "\"><title>" + Escaped(title) + "</title>";
  }

  std::string Bubble(const Question& question, std::size_t i, double x, double y) const {
    const double width = std::max(std::min(kBubble, pitch_ - 0.4), pitch_ - 1.2);
    const double height = std::min(kBubble, std::max(width, 2.0));
    const bool key = i < question.values.size() && question.keyValues.contains(question.values[i]);
    const String& label = question.labels[i];
    const char* cssClass = key ? "bubble key" : label.empty() ? "bubble none" : "bubble";
    std::string svg = "<g class=\"" + std::string(cssClass) + "\">" +
                      Box(x - width / 2, y - height / 2, width, height, height / 2, "ring");
    if (!label.empty()) svg += TextAt(x, y + 0.9, "label", Fitted(label, width));
    return svg + "</g>";
  }

  // A line of bubbles, with the middle of the line at y.
  std::string Across(const Question& question, double x, double y) const {
    std::string svg = Begin(question);
    if (number_ > 0) svg += TextAt(x + number_ - 2.5, y + 1.2, "number", question.name);
    for (std::size_t i = 0; i < question.labels.size(); ++i) {
      svg += Bubble(question, i, x + number_ + (static_cast<double>(i) + 0.5) * pitch_, y);
    }
    return svg + "</g>";
  }

  // A box to write into, and the bubbles below it, around a line at x.
  std::string Upright(const Question& question, double x, double y) const {
    std::string svg = Begin(question) + Box(x - pitch_ / 2 + 0.3, y, pitch_ - 0.6, kRow - 1, 0.5, "write");
    for (std::size_t i = 0; i < question.labels.size(); ++i) {
      svg += Bubble(question, i, x, y + kRow + (static_cast<double>(i) + 0.5) * kUprightRow);
    }
    return svg + "</g>";
  }

  // A box for the points that the teacher gives.
  std::string Subjective(const Question& question, double x, double y) const {
    return Begin(question) + Box(x, y, 14, kRow + 2, 0.5, "write") +
           TextAt(x + 16, y + 5, "hint", u"of " + TextOf(question.points) + u" points") + "</g>";
  }

  String name_;
  bool subjective_;
  std::vector<Question> questions_;
  std::size_t most_ = 0;
  bool scored_ = false;
  bool upright_ = false;
  double pitch_ = kPitch;
  double number_ = 0;
};

std::vector<Field> FieldsOf(const clsTORVA& oEngine) {
  std::vector<Field> fields;
  const std::vector<MergedQuestion> merged = MergedQuestions(oEngine);
  for (auto at = merged.begin(); at != merged.end();) {
    const auto oField = at->oField;
    std::vector<Question> questions;
    for (; at != merged.end() && at->oField == oField; ++at) questions.push_back(QuestionOf(*at));
    fields.emplace_back(*oField, std::move(questions));
  }
  return fields;
}

// Fills sheets from left to right and from top to bottom, in rows of fields.
class Sheets {
 public:
  void Place(const Field& field) {
    for (std::size_t first = 0; first < field.Count();) {
      const std::size_t count = Room(field, field.Count() - first);
      Put(field, first, count);
      first += count;
    }
  }

  std::vector<std::string> Finish() {
    if (!content_.empty()) EndSheet();
    return std::move(done_);
  }

 private:
  // How many questions of the field to draw at the next free place, which this finds.
  std::size_t Room(const Field& field, std::size_t left) {
    constexpr std::size_t kLeastTogether = 10;
    if (x_ + field.Width() > kSheetWidth - kEdge + 0.01 && x_ > kEdge) NewRow();
    const double free = kSheetHeight - kEdge - y_;
    if (field.Height(left) <= free) return left;
    const auto rows = static_cast<std::size_t>(std::max(0.0, (free - kTitle - kPad) / kRow));
    if (field.CanBreak() && rows >= kLeastTogether) return std::min(left, rows);
    if (!content_.empty()) {
      EndSheet();
      return Room(field, left);
    }
    return field.CanBreak() ? std::min(left, std::max<std::size_t>(1, rows)) : left;
  }

  void Put(const Field& field, std::size_t first, std::size_t count) {
    content_ += field.Draw(first, count, x_, y_);
    x_ += field.Width() + kGap;
    rowEnd_ = std::max(rowEnd_, y_ + field.Height(count));
  }

  void NewRow() {
    x_ = kEdge;
    y_ = rowEnd_ + kGap;
  }

  void EndSheet() {
    const double height = rowEnd_ + kEdge;
    const std::string id = "sheet" + std::to_string(done_.size() + 1);
    std::string svg =
        "<svg xmlns=\"http://www.w3.org/2000/svg\" role=\"img\" aria-labelledby=\"" + id + "-title " + id +
        "-desc\" viewBox=\"0 0 " + Mm(kSheetWidth) + ' ' + Mm(height) + "\">\n<title id=\"" + id +
        "-title\">Bubble sheet " + std::to_string(done_.size() + 1) + "</title><desc id=\"" + id +
        "-desc\">The fields of the form with their questions, and a bubble for each answer. The answer "
        "key also stands as a table on this page.</desc>\n";
    for (const double x : {0.0, kSheetWidth - kMark}) {
      for (const double y : {0.0, height - kMark}) svg += Box(x, y, kMark, kMark, 0, "mark");
    }
    done_.push_back(svg + '\n' + content_ + "</svg>\n");
    content_.clear();
    x_ = y_ = rowEnd_ = kEdge;
  }

  std::vector<std::string> done_;
  std::string content_;
  double x_ = kEdge;
  double y_ = kEdge;
  double rowEnd_ = kEdge;
};

}  // namespace

std::string Escaped(StringView text) {
  String escaped;
  for (const char16_t unit : text) {
    if (unit == u'&') {
      escaped += u"&amp;";
    } else if (unit == u'<') {
      escaped += u"&lt;";
    } else if (unit == u'>') {
      escaped += u"&gt;";
    } else if (unit == u'"') {
      escaped += u"&quot;";
    } else if (unit == u'\t' || unit == u'\n' || unit == u'\r') {
      escaped += u' ';
    } else {
      // XML has no other control characters, nor the last two units.
      escaped += unit < 0x20 || unit >= 0xFFFE ? u'\uFFFD' : unit;
    }
  }
  return ToUtf8(escaped);
}

std::vector<std::string> DrawSheets(const clsTORVA& oEngine) {
  Sheets sheets;
  for (const Field& field : FieldsOf(oEngine)) sheets.Place(field);
  return sheets.Finish();
}

}  // namespace merge_exam
