// Rich text as a plain string.
//
// Every level of the tree cleans the text of all levels below it again: blanks are halved twice, then line feeds
// go. Done to the letter, that is quadratic in the depth, and a recursion. So the text under construction is a
// list of words with runs of blanks between them, of which a level only touches the runs that its cleaning can
// still change, and the levels stand on a stack of their own.

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "torva35/base/Text.h"
#include "torva35/errors/Reported.h"
#include "torva35/import/ExamViewReader.h"

namespace TORVA35 {
namespace {

constexpr Location kNodeText(u"TORVA35 - clsTORVATest.NodeText");

// What two passes, each putting one blank in the place of two, leave of a run.
std::size_t Halved(std::size_t run) {
  return (run + 1) / 2;
}
std::size_t Cleaned(std::size_t run) {
  return Halved(Halved(run));
}

class Flattening {
 public:
  explicit Flattening(ExamViewNames& names) : names_(names) {
    // Enough for ordinary text.
    words_.reserve(16);
    levels_.reserve(8);
  }

  String Run(const IXMLDOMNode& root) {
    Visit(root);
    while (!levels_.empty()) {
      const IXMLDOMNode child = levels_.back().nextChild;
      if (child) {
        levels_.back().nextChild = child.NextSibling();
        Visit(child);
      } else {
        Leave();
      }
    }
    return Joined();
  }

 private:
  // Characters that no cleaning changes any more, and the blanks in front of them.
  struct Word {
    std::size_t blanks;
    std::string_view utf8;
  };

  // An element whose children are being visited. Its text is the words from firstWord on, and trailing_ blanks.
  struct Level {
    IXMLDOMNode nextChild;
    bool blankBehindChild;
    std::size_t firstWord;
    std::size_t firstChangeable;
    std::size_t blanksBefore;  // at the end of the text of the level around this one
  };

  void Visit(const IXMLDOMNode& node) {
    const IXMLDOMNode child = node.FirstChild();
    // An element that has no children has no characters either, so of these only "equation" gives text.
    switch (names_.Base(node)) {
      case ExamViewName::kText:
      case ExamViewName::kPara:
      case ExamViewName::kBoldItalicUnderline:
        if (child) return Enter(child, true);
        break;
      case ExamViewName::kFont:
      case ExamViewName::kSup:
      case ExamViewName::kVariable:
      case ExamViewName::kChoice:
        if (child) return Enter(child, false);
        break;
      case ExamViewName::kNone:
        if (!child) AddCharacters(node.Utf8());
        break;
      case ExamViewName::kEquation:
        if (!child) AddCharacters("equation");
        break;
      default:
        break;
    }
    EndChild();
  }

  void Enter(const IXMLDOMNode& firstChild, bool blankBehindChild) {
    levels_.push_back({firstChild, blankBehindChild, words_.size(), changeable_.size(), trailing_});
    trailing_ = 0;
  }

  void EndChild() {
    if (!levels_.empty() && levels_.back().blankBehindChild) ++trailing_;
  }

  // The text of the innermost level is complete: cleans it and hands it to the level around it.
  void Leave() {
    const Level level = levels_.back();
    levels_.pop_back();
    std::size_t kept = level.firstChangeable;
    for (std::size_t i = level.firstChangeable; i < changeable_.size(); ++i) {
      std::size_t& run = words_[changeable_[i]].blanks;
      run = Cleaned(run);
      if (run > 1) changeable_[kept++] = changeable_[i];
    }
    changeable_.resize(kept);
    trailing_ = Cleaned(trailing_);
    if (level.firstWord == words_.size()) {
      trailing_ += level.blanksBefore;
    } else {
      Widen(level.firstWord, level.blanksBefore);
    }
    EndChild();
  }

  void Widen(std::size_t word, std::size_t blanks) {
    const bool known = words_[word].blanks > 1;
    words_[word].blanks += blanks;
    if (!known && words_[word].blanks > 1) changeable_.push_back(word);
  }

  void AddWord(std::string_view utf8) {
    words_.push_back({0, utf8});
    Widen(words_.size() - 1, trailing_);
    trailing_ = 0;
  }

  // A node without children: its characters, cleaned. Blanks on both sides of a line feed meet only here, behind
  // the cleaning, so that they wait for that of the level above.
  void AddCharacters(std::string_view text) {
    for (std::size_t i = 0; i < text.size();) {
      if (text[i] == '\n') {
        ++i;
      } else if (text[i] == ' ') {
        const std::size_t end = std::min(text.find_first_not_of(' ', i), text.size());
        trailing_ += Cleaned(end - i);
        i = end;
      } else {
        const std::size_t end = WordEnd(text, i);
        AddWord(text.substr(i, end - i));
        i = end;
      }
    }
  }

  // A single blank between two other characters belongs to the word.
  static std::size_t WordEnd(std::string_view text, std::size_t i) {
    for (; i < text.size() && text[i] != '\n'; ++i) {
      if (text[i] == ' ' && (i + 1 == text.size() || text[i + 1] == ' ' || text[i + 1] == '\n')) break;
    }
    return i;
  }

  String Joined() const {
    std::size_t size = trailing_;
    for (const Word& word : words_) size += word.blanks + word.utf8.size();
    String text;
    text.reserve(size);
    for (const Word& word : words_) {
      text.append(word.blanks, u' ');
      AppendUtf8(text, word.utf8);
    }
    text.append(trailing_, u' ');
    return text;
  }

  ExamViewNames& names_;
  std::vector<Word> words_;
  std::vector<std::size_t> changeable_;  // words with more than one blank in front
  std::vector<Level> levels_;
  std::size_t trailing_ = 0;
};

}  // namespace

String NodeText(const IXMLDOMNode& oNode, ExamViewNames& names) {
  return Reported(kNodeText, String(), [&](String& result) { result = Flattening(names).Run(oNode); });
}

}  // namespace TORVA35
