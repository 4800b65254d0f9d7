#pragma once

#include <string>
#include <vector>

#include "torva35/sheet/Sheet.h"

namespace TORVA35::sheet {

constexpr int kMostIdDigits = 20;
constexpr int kMostNameLetters = 30;

/// How the page looks.
struct PageOptions {
  std::string language = "en";  ///< "en", "de", "fr" or "es"; any other is "en"
  int idDigits = 0;             ///< digits of the student number's grid, at most `kMostIdDigits`; 0: no grid
  int nameLetters = 0;          ///< letters of a grid for the name, at most `kMostNameLetters`; 0: none
  int version = 0;              ///< the version that is printed as marked, from 1; 0: students mark theirs
};

/// The sheet that students get, as one HTML file that needs nothing else. Each page has the title, room for the
/// name, the version, the grid for the student's number, and, if there are several, its number to read and as a
/// bubble. It is made without a look at any key, so that nothing in it can tell the right answers.
///
/// It is well-formed XML too, has no script, prints on A4 and on Letter, and shows on a narrow screen one block
/// below the other.
std::string StudentPage(const Result& result, const PageOptions& options = {});

/// The teacher's page, likewise one file: keys of all versions, findings (first if one is an error), hand-graded
/// questions, the table of old and new numbers, and the questions as they were read.
std::string TeacherPage(const Result& result, const PageOptions& options = {});

}  // namespace TORVA35::sheet
