#pragma once

#include <vector>

#include <torva35/TORVA35.h>

namespace merge_exam {

/// Where the field stands that tells the versions apart.
enum class VersionPlace { kFront, kBack, kNone };

/// What the form is to look like.
struct FormOptions {
  TORVA35::Long questions = 0;  ///< graded questions; 0: as many as the test has
  TORVA35::Long answers = 0;    ///< answer positions of each; 0: as many as the test needs
  TORVA35::Long columns = 0;    ///< fields that the graded questions are split over; 0: one for every 25 of them
  TORVA35::Long nameGrid = 0;   ///< letters of the name grid; 0: no name grid
  VersionPlace version = VersionPlace::kNone;
  std::vector<TORVA35::String> versionLabels;  ///< empty: the `Version` of each test
};

/// A form, and what the engine has to know about it.
struct Form {
  TORVA35::Ref<TORVA35::clsTemplate> oTemplate;
  TORVA35::Long sequenceQuestion = 0;  ///< for `SequenceQuestion` of the engine; 0: there is no version field
};

/// Builds a form of one page for the first test.
Form BuildForm(const FormOptions& options, const TORVA35::clsTORVATests& tests);

/// A question of the merged form with the question that the merge has made for it in the data file.
struct MergedQuestion {
  TORVA35::Ref<TORVA35::clsTemplateField> oField;
  TORVA35::Ref<TORVA35::clsTemplateQuestion> oQuestion;
  TORVA35::Ref<TORVA35::clsLmfQuestion> oOutput;
  TORVA35::Long position;  ///< of oOutput in the data file, from 1
  bool switchedOff;        ///< graded on the form as it was, but behind the last question of the test
};

/// All questions of a merged form, in order.
std::vector<MergedQuestion> MergedQuestions(const TORVA35::clsTORVA& oEngine);

}  // namespace merge_exam
