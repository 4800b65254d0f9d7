#pragma once

#include <unordered_map>

#include "torva35/base/Export.h"
#include "torva35/base/Object.h"
#include "torva35/base/TaggedValue.h"
#include "torva35/base/Types.h"
#include "torva35/model/Collection.h"
#include "torva35/model/clsTORVATestQuestion.h"

namespace TORVA35 {

/// The questions of a test, in its order, each filed under the ID that it had when it was added. Positions count
/// from 1; an index that is a String is an ID, without regard to case. Every failure is reported to the error
/// object, never raised.
class TORVA35_API clsTORVATestQuestions : public Object {
 public:
  ~clsTORVATestQuestions() override;

  /// Number of questions.
  Long Count() const;

  /// Adds the question itself, not a copy. Before, After: position or ID of the neighbour; not both. Returns True.
  /// An ID that is in use, a missing place or no question at all is reported; then False, and the list is
  /// unchanged.
  bool Add(const Ref<clsTORVATestQuestion>& oQuestion, const TaggedValue& Before = Missing,
           const TaggedValue& After = Missing);

  /// Empties `LearningObjectives` and `Answers` of the question, which other holders will find empty, and takes it
  /// out. Returns False when there is no such question, without a report.
  bool Remove(const TaggedValue& Index);

  /// Removes every question as `Remove` does, from the last. Returns True when the list is empty afterwards.
  bool RemoveAll();

  /// The question, or nothing when there is none, without a report.
  Ref<clsTORVATestQuestion> Item(const TaggedValue& Index) const;
  Ref<clsTORVATestQuestion> operator[](const TaggedValue& Index) const { return Item(Index); }

  /// Nothing is reported, whatever the index.
  bool Exists(const TaggedValue& Index) const;

  /// How many questions are of this kind.
  Long TypeCount(Long eQuestionType) const;

 private:
  friend class Inside;
  friend class clsTORVATestQuestion;

  clsTORVATestQuestions();

  Ref<clsTORVATestQuestion> Find(const TaggedValue& Index) const;
  Long PositionOfID(const TaggedValue& Index) const;
  void IDChanged() {
    idsAreKeys_ = false;
    positionsMade_ = false;
  }

  Collection items_;
  bool idsAreKeys_ = true;  // every question has the ID under which it is filed
  // Else from the ID that a question has now to the first position that has it, made when it is asked for.
  mutable std::unordered_map<StringView, Long> positions_;
  mutable bool positionsMade_ = false;
};

}  // namespace TORVA35
