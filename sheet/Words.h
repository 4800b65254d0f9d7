#pragma once

#include <string>

#include "torva35/sheet/Sheet.h"

namespace TORVA35::sheet {

/// The words of the pages in one language. "%1", "%2" stand for what `Filled` puts there. A pair is for one and
/// for any other number.
struct Words {
  const char* language;  ///< as the `lang` attribute names it
  char point;            ///< in numbers, between whole and fraction

  // The sheet.
  const char* untitled;
  const char* name;
  const char* classOf;
  const char* date;
  const char* pageOf;
  const char* version;
  const char* page;
  const char* student;
  const char* nameGrid;
  const char* how;
  const char* onPaper;
  const char* onSheet;
  const char* questionsTo;
  const char* ofPoints[2];

  // The teacher's page.
  const char* answers;
  const char* questions[2];
  const char* points[2];
  const char* versions;
  const char* findings;
  const char* noFindings;
  const char* severities[3];
  const char* severity;
  const char* file;
  const char* question;
  const char* line;
  const char* finding;
  const char* keys;
  const char* keyOf;
  const char* row;
  const char* paper;
  const char* key;
  const char* noKey;
  const char* orWord;
  const char* pointsHead;
  const char* pointsWrong;
  const char* pointsNone;
  const char* text;
  const char* objectives;
  const char* renumbered;
  const char* handGraded;
  const char* asRead;
  const char* kind;
  const char* fateHead;
  const char* more;
  const char* correct;
  const char* fates[5];   ///< in the order of `Fate`
  const char* kinds[15];  ///< tf yn mc mtf nr co ma sa pr es ca subjective ot bi unknown
  const char* difficulty;
  const char* topic;
  const char* keywords;
  const char* miscellaneous;
  const char* reference;
  const char* notes;
};

/// Those of the language, or the English ones.
const Words& WordsOf(const std::string& language);

/// The kind of a question.
const char* KindName(const Words& words, Kind kind);

/// The text with what stands for "%1" and "%2".
std::string Filled(const std::string& text, const std::string& first, const std::string& second = {});

/// The shortest decimal of the number.
std::string NumberText(const Words& words, double number);

/// "1 point", "2.5 points"
std::string Counted(const Words& words, const char* const (&forms)[2], double number);

}  // namespace TORVA35::sheet
