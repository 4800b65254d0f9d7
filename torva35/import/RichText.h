#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "torva35/base/Types.h"
#include "torva35/import/ExamViewNames.h"
#include "torva35/xml/DOMDocument.h"

namespace TORVA35 {

/// Rich text as a plain string. One object serves all texts of a document: the room that one has taken, the next
/// uses.
///
/// Every level of the tree cleans the text of all levels below it again: blanks are halved twice, then line feeds
/// go. Done to the letter, that is quadratic in the depth, and a recursion. So the text under construction is a
/// list of words with runs of blanks between them, of which a level only touches the runs that its cleaning can
/// still change, and the levels stand on a stack of their own.
class RichText {
 public:
  explicit RichText(ExamViewNames& names) : names_(names) {}

  /// The text of a node and of all below it; empty after a failure, which is reported.
  String NodeText(const IXMLDOMNode& oNode);

 private:
  // Characters that no cleaning changes any more, and the blanks before them.
  struct Word {
    std::size_t blanks;
    std::string_view utf8;
  };

  // An element whose children are being visited. Its text is the words from firstWord on, and trailing_ blanks.
  struct Level {
    IXMLDOMNode nextChild;
    bool blankAfterChild;
    std::size_t firstWord;
    std::size_t firstChangeable;
    std::size_t blanksBefore;  // at the end of the text of the level around this one
  };

  String Flatten(const IXMLDOMNode& root);
  void Visit(const IXMLDOMNode& node);
  void Enter(const IXMLDOMNode& firstChild, bool blankAfterChild);
  void EndChild();
  void Leave();
  void Widen(std::size_t word, std::size_t blanks);
  void AddWord(std::string_view utf8);
  void AddCharacters(std::string_view text);
  String Joined() const;

  ExamViewNames& names_;
  std::vector<Word> words_;
  std::vector<std::size_t> changeable_;  // words with more than one blank before them
  std::vector<Level> levels_;
  std::size_t trailing_ = 0;
};

}  // namespace TORVA35
