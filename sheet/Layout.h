#pragma once

#include <string>
#include <vector>

#include "torva35/sheet/Page.h"
#include "torva35/sheet/Sheet.h"

/// Where everything stands on the printed pages. The page for people and the files for a sheet reader are both
/// written from this, so they cannot disagree. It depends on no answer key.
///
/// Positions and lengths are whole tenths of a millimeter, from the top left corner of the sheet: what is between
/// the margins of a page of A4 or Letter, whichever is smaller.
namespace TORVA35::sheet {

constexpr int kSheetWidth = 1850;
constexpr int kSheetHeight = 2530;
constexpr int kMark = 70;          ///< side of a corner mark; the four stand in the corners of the sheet
constexpr int kMarkModule = 10;    ///< width of the mark's black ring, and of the white one within
constexpr int kBubble = 44;        ///< diameter of a bubble's ring
constexpr int kBubbleInside = 28;  ///< side of the square within the ring that a reader looks at

/// A rectangle.
struct Box {
  int x = 0, y = 0, width = 0, height = 0;
};

/// A bubble to fill in.
struct Bubble {
  int x = 0, y = 0;     ///< its middle
  std::string label;    ///< as printed
  std::string value;    ///< what a reader reports when it is filled
  bool filled = false;  ///< it is printed so
};

/// Bubbles in one line, equally far apart, from left to right or from top to bottom.
struct Strip {
  bool upright = false;
  int pitch = 0;  ///< from one bubble to the next
  std::vector<Bubble> bubbles;
};

/// What is filled in as one: a question, the version, the student's number. The values of the strips, one after
/// the other, are what it says.
struct Item {
  Box box;
  std::string field;    ///< name for a reader, of letters, digits and "_"; other than that of any item of the page
  std::string caption;  ///< printed at its left: the number of a row, the name of a hand-graded question
  std::string
      text;      ///< printed beside it: where a row stands on the papers, or the text of a hand-graded question
  int row = -1;  ///< position in `Result::rows`; -1: it is no row
  int labelWidth = 0;  ///< room at the right of each bubble, where its label stands; 0: the labels stand in the
                       ///< bubbles. Of a range of numbers: room at its left, for the name of the version
  double points = 0;   ///< of a hand-graded question
  std::vector<Strip> strips;
};

enum class BlockKind { kVersion, kPage, kStudent, kName, kNumbers, kQuestions, kHandGraded };

/// Items in a frame.
struct Block {
  BlockKind kind = BlockKind::kQuestions;
  Box box;
  int title = 0;   ///< height of the title at its top; 0: it has none
  int number = 0;  ///< width of the captions
  std::vector<Item> items;
};

/// One page. Title, name, version and the student's number are on each; the grid for the name is on the first.
struct SheetPage {
  std::vector<Block> blocks;
};

/// The pages, at least one.
std::vector<SheetPage> LayOut(const Result& result, const PageOptions& options);

/// The version whose bubble is printed filled, as a position in `Result::versions`: the one of the options, or the
/// only one; -1: students fill it in.
int PrintedVersion(const Result& result, const PageOptions& options);

/// Whether the papers of all versions have the same numbers.
bool PapersAgree(const Result& result);

/// Number of characters of a text of UTF-8.
std::size_t CharacterCount(const std::string& text);

/// Fixed places on each page.
///@{
constexpr Box kTitleBox{90, 0, 1060, 86};
constexpr Box kPageBox{1170, 0, 590, 86};
constexpr Box kBlanksBox{50, 92, 1750, 66};
constexpr Box kHowBox{50, 160, 1750, 40};
///@}

}  // namespace TORVA35::sheet
