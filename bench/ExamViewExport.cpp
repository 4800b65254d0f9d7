#include "bench/ExamViewExport.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string_view>

namespace TORVA35::bench {
namespace {

constexpr std::string_view kWords[] = {
    "river",    "granite", "a",       "current", "the",    "pressure", "of",       "valley",
    "measured", "below",   "and",     "salt",    "colony", "in",       "northern", "orbit",
    "to",       "signal",  "copper",  "harvest", "is",     "glacier",  "pulse",    "by",
    "mineral",  "season",  "charter", "with",    "market", "nerve",    "théorie",  "lens",
};
constexpr std::string_view kAnswerLetters = "ABCDE";

// Random numbers that are the same on every machine and in every run.
class Dice {
 public:
  explicit Dice(unsigned seed) : state_(seed * 2654435761u + 1) {}
  unsigned Below(unsigned limit) {
    state_ = state_ * 1664525 + 1013904223;
    return (state_ >> 16) % limit;
  }

 private:
  unsigned state_;
};

class Writer {
 public:
  std::string Document(const ExportShape& shape) {
    out_.reserve(static_cast<std::size_t>(shape.questions) * 1000 + 4000);
    Head(shape);
    for (int position = 0; position < shape.questions; ++position) {
      Question((position + shape.questions - shape.rotation) % shape.questions + 1, shape);
    }
    out_ += "</examview>\n";
    return std::move(out_);
  }

 private:
  void Head(const ExportShape& shape) {
    out_ +=
        "<?xml version='1.0' encoding='utf-8' standalone='yes'?>\n"
        "<examview type='test' platform='Windows' app-version='5.1.0'>\n"
        "    <header>\n        <title>Generated test</title>\n        <version>";
    out_ += shape.version;
    out_ += "</version>\n    </header>\n    <font-table>\n";
    for (std::string_view font : {"Serif", "Sans", "Symbols"}) {
      out_ += "        <font-entry>\n";
      Element("            ", "charset", "ansi");
      Element("            ", "name", font);
      out_ += "        </font-entry>\n";
    }
    out_ += "    </font-table>\n    <preferences>\n";
    for (std::string_view kind : {"tf", "mtf", "mc", "yn", "nr", "co", "ma", "sa", "pr", "es", "ca", "ot"}) {
      ((out_ += "        <") += kind) += " value='yes'/>\n";
    }
    out_ +=
        "        <mc-choice-sequence value='abcde'/>\n    </preferences>\n"
        "    <test-header page='first'><para tabs='R10440'><b>Name: ____________ ID: "
        "<field field-type='version'/></b></para></test-header>\n"
        "    <instruction type='mc'><b>Multiple choice</b><font size='10'>\n</font>"
        "<i>Choose the best answer.</i></instruction>\n";
  }

  void Question(int number, const ExportShape& shape) {
    Dice dice(static_cast<unsigned>(number));
    const std::string id = std::to_string(number);
    out_ += "    <question type='mc' question-id='" + id + "' bank-id='0'>\n        <text><para><font size='10'>" +
            id + " ";
    Words(dice, 6);
    out_ += " <b>";
    Words(dice, 2);
    out_ += "</b> ";
    Words(dice, 4);
    out_ += " <i>not</i> ";
    Words(dice, 3);
    out_ += " &amp; so on?</font></para></text>\n        <choices columns='1'>\n";
    for (char letter = 'a'; letter <= 'e'; ++letter) {
      ((out_ += "            <choice-") += letter) += "><font size='10'>";
      Words(dice, 3);
      ((out_ += "</font></choice-") += letter) += ">\n";
    }
    out_ += "        </choices>\n        <answer>";
    out_ += kAnswerLetters[dice.Below(static_cast<unsigned>(kAnswerLetters.size()))];
    out_ += "</answer>\n        <info>\n";
    Element("            ", "points", "2");
    Element("            ", "difficulty", "Medium");
    Element("            ", "text-objective", "Objective " + std::to_string(number % shape.objectives + 1));
    Element("            ", "topic", "Chapter " + std::to_string(dice.Below(20)));
    out_ += "            <keywords>";
    Words(dice, 2);
    out_ += "</keywords>\n        </info>\n    </question>\n";
  }

  void Words(Dice& dice, int count) {
    for (int i = 0; i < count; ++i) {
      if (i > 0) out_ += ' ';
      out_ += kWords[dice.Below(static_cast<unsigned>(std::size(kWords)))];
    }
  }

  void Element(std::string_view indent, std::string_view name, std::string_view text) {
    ((((((out_ += indent) += '<') += name) += '>') += text) += "</") += name;
    out_ += ">\n";
  }

  std::string out_;
};

}  // namespace

std::string MakeExport(const ExportShape& shape) {
  return Writer().Document(shape);
}

void WriteExport(const std::string& path, const ExportShape& shape) {
  const std::string bytes = MakeExport(shape);
  std::ofstream file(path, std::ios::binary);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  file.close();
  if (!file) {
    std::perror(path.c_str());
    std::exit(EXIT_FAILURE);
  }
}

}  // namespace TORVA35::bench
