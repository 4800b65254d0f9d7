#pragma once

#include <optional>

#include "torva35/base/CallSite.h"
#include "torva35/base/Object.h"
#include "torva35/base/TaggedValue.h"
#include "torva35/base/Types.h"
#include "torva35/model/clsTORVATestStrings.h"

namespace TORVA35 {

class clsTORVATest;

class clsTORVATestQuestion;

/// The labels of a question, most often without the copy that `QuestionScale` makes: a scale of the test is read
/// where it stands. Valid until the test changes.
class ScaleTexts {
 public:
  /// Those of `QuestionScale`. What it reports is reported; there may then be no scale.
  ScaleTexts(const clsTORVATest& test, const TaggedValue& vQuestionIndex);
  /// The whole scale that a question has at a position from 1, however many answers it has. Raises 91 when there
  /// is no scale.
  ScaleTexts(const clsTORVATest& test, const clsTORVATestQuestion& question, Long position,
             CallSite at = CallSite::Current());

  /// Number of labels. Raises 91 when there is no scale, as does `At`.
  Long Count(CallSite at = CallSite::Current()) const;
  /// The label at a position from 1; an empty one where there is none.
  String At(Long position, CallSite at = CallSite::Current()) const;

 private:
  friend struct KeyTexts;
  ScaleTexts() = default;
  bool ReadItself(const clsTORVATest& test, const TaggedValue& vQuestionIndex);

  Ref<clsTORVATestStrings> scale_;
  Long count_ = 0;  // the scale may have more, or fewer than these
};

/// The answer key of a question, as `CorrectAnswersAsString` gives it with commas and parentheses, without a
/// boundary and a scale for each of the two texts.
struct KeyTexts {
  /// Nothing where `CorrectAnswersAsString` has a copy to make or a failure to report: it is then to be asked.
  static std::optional<KeyTexts> Of(const clsTORVATest& test, const TaggedValue& vQuestionIndex,
                                    const clsTORVATestQuestion& question);

  String numbers;
  String labels;
};

}  // namespace TORVA35
