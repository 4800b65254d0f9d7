#pragma once

#include <string>
#include <vector>

#include "torva35/sheet/Sheet.h"

namespace TORVA35::sheet {

/// How the page looks.
struct PageOptions {
  std::string language = "en";  ///< "en", "de", "fr" or "es"
  int idDigits = 0;             ///< digits of the student number's grid; 0: no grid
  int nameLetters = 0;          ///< letters of a grid for the name; 0: none
};

/// The sheet that students get, as one HTML file that needs nothing else: never the key.
std::string StudentPage(const Result& result, const PageOptions& options = {});

/// The teacher's page: keys of all versions, questions, findings.
std::string TeacherPage(const Result& result, const PageOptions& options = {});

}  // namespace TORVA35::sheet
