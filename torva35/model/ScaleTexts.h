#pragma once

#include "torva35/base/CallSite.h"
#include "torva35/base/Object.h"
#include "torva35/base/TaggedValue.h"
#include "torva35/base/Types.h"
#include "torva35/model/clsTORVATestStrings.h"

namespace TORVA35 {

class clsTORVATest;

/// The texts of `QuestionScale`, most often without the copy that it makes: to read them a scale of the test will
/// do. Good as long as nobody changes the test.
class ScaleTexts {
 public:
  /// Of a question. What `QuestionScale` reports is reported; there may then be no scale.
  ScaleTexts(const clsTORVATest& test, const TaggedValue& vQuestionIndex);
  /// Of a list itself.
  explicit ScaleTexts(Ref<clsTORVATestStrings> scale, CallSite at = CallSite::Current());

  /// Number of texts. Raises 91 when there is no scale, as does `At`.
  Long Count(CallSite at = CallSite::Current()) const;
  /// The text at a position from 1; an empty one where there is none.
  String At(Long place, CallSite at = CallSite::Current()) const;

 private:
  bool ReadItself(const clsTORVATest& test, const TaggedValue& vQuestionIndex);

  Ref<clsTORVATestStrings> scale_;
  Long count_ = 0;  // the scale may have more, or fewer than these
};

}  // namespace TORVA35
