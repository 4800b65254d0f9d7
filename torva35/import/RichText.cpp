#include "torva35/import/RichText.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

#include "torva35/base/Text.h"
#include "torva35/errors/Reported.h"

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

// Of eight bytes, those that are this one: the highest bit of each.
std::uint64_t Equal(std::uint64_t bytes, char byte) {
  constexpr std::uint64_t kOnes = 0x0101010101010101;
  constexpr std::uint64_t kLow = 0x7F * kOnes;
  const std::uint64_t differing = bytes ^ kOnes * static_cast<unsigned char>(byte);
  return ~(((differing & kLow) + kLow) | differing | kLow);
}

// A single blank between two other characters belongs to the word.
std::size_t WordEnd(std::string_view text, std::size_t i) {
  // Eight at a time as long as none ends a word, the last of which only the next eight tell.
  for (std::uint64_t bytes; text.size() - i > sizeof(bytes); i += sizeof(bytes) - 1) {
    std::memcpy(&bytes, text.data() + i, sizeof(bytes));
    const std::uint64_t blanks = Equal(bytes, ' ');
    if ((Equal(bytes, '\n') | (blanks & blanks >> 8)) != 0) break;
  }
  for (; i < text.size() && text[i] != '\n'; ++i) {
    if (text[i] == ' ' && (i + 1 == text.size() || text[i + 1] == ' ' || text[i + 1] == '\n')) break;
  }
  return i;
}

}  // namespace

String RichText::NodeText(const IXMLDOMNode& oNode) {
  return Reported(kNodeText, String(), [&](String& result) { result = Flatten(oNode); });
}

String RichText::Flatten(const IXMLDOMNode& root) {
  // What a failure has left.
  words_.clear();
  changeable_.clear();
  levels_.clear();
  trailing_ = 0;
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

void RichText::Visit(const IXMLDOMNode& node) {
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

void RichText::Enter(const IXMLDOMNode& firstChild, bool blankAfterChild) {
  levels_.push_back({firstChild, blankAfterChild, words_.size(), changeable_.size(), trailing_});
  trailing_ = 0;
}

void RichText::EndChild() {
  if (!levels_.empty() && levels_.back().blankAfterChild) ++trailing_;
}

// The text of the innermost level is complete: cleans it and hands it to the level around it.
void RichText::Leave() {
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

void RichText::Widen(std::size_t word, std::size_t blanks) {
  const bool known = words_[word].blanks > 1;
  words_[word].blanks += blanks;
  if (!known && words_[word].blanks > 1) changeable_.push_back(word);
}

void RichText::AddWord(std::string_view utf8) {
  words_.push_back({0, utf8});
  Widen(words_.size() - 1, trailing_);
  trailing_ = 0;
}

// A node without children: its characters, cleaned. Blanks on both sides of a line feed meet only here, after
// the cleaning, so that they wait for that of the level above.
void RichText::AddCharacters(std::string_view text) {
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

String RichText::Joined() const {
  std::size_t size = trailing_;
  for (const Word& word : words_) size += word.blanks + word.utf8.size();
  // A character has no more units than bytes; what no word takes, blanks fill.
  String text(size, u' ');
  char16_t* end = text.data();
  for (const Word& word : words_) end = CopyUtf8(end + word.blanks, word.utf8);
  text.resize(static_cast<std::size_t>(end - text.data()) + trailing_);
  return text;
}

}  // namespace TORVA35
