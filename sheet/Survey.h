#pragma once

#include <string>
#include <vector>

#include "torva35/sheet/Sheet.h"

namespace TORVA35::sheet {

/// What an export holds beside what the library reads of it: where each question stands, and what of it is lost.
struct Survey {
  /// A loss within a question, or beside the questions.
  struct Loss {
    Severity severity;
    const char* kind;
    long line, column;
    std::string text;
  };

  /// A text of the file, and where it stands.
  struct Value {
    std::string text;
    long line = 0, column = 0;
  };

  /// A question element.
  struct Element {
    std::string id;  ///< as the library makes it
    std::string type;
    std::string text;  ///< all characters of its text, in one line
    long line, column;
    std::vector<Value> keys;  ///< texts of its key, mostly one
    Value points;             ///< their text; line 0: the file does not say them
    Value misplaced;          ///< the first choice that another name or place was due to; empty: there is none
    std::vector<Loss> losses;
  };

  std::vector<Element> elements;  ///< in the order of the document
  std::vector<Loss> losses;
  std::string letters;      ///< those of the first element of choice letters, upper-cased; empty without one
  std::string numbering;    ///< how the paper numbers its questions; empty when the file does not say
  bool objectives = false;  ///< some question has an objective
};

Survey SurveyExport(const DOMDocument& document);

}  // namespace TORVA35::sheet
