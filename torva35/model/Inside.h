#pragma once

#include <memory>
#include <utility>

#include "torva35/base/Object.h"
#include "torva35/base/TaggedValue.h"
#include "torva35/base/Types.h"
#include "torva35/model/SharedTexts.h"
#include "torva35/model/clsTORVATestQuestions.h"
#include "torva35/model/clsTORVATestStrings.h"

namespace TORVA35 {

/// What the library may do with the lists of the test model and a host may not. The lists name it their friend.
class Inside {
 public:
  /// Creates a list that only the library creates.
  template <class T>
  static Ref<T> New() {
    struct Made : T {};  // the constructor of T is private
    return std::make_shared<Made>();
  }

  /// As `Count`, without a boundary of its own.
  template <class List>
  static Long Count(const List& list) {
    return list.items_.Count();
  }
  static Long Count(const clsTORVATestStrings& strings) { return strings.Size(); }

  /// As `Item`, without a boundary of its own.
  ///@{
  static Ref<clsTORVATestQuestion> Find(const clsTORVATestQuestions& questions, const TaggedValue& Index) {
    return questions.Find(Index);
  }
  static Integer Item(const clsTORVATestCorrect& correct, Integer position) {
    const TaggedValue* item = correct.items_.Find(Long{position});
    return item == nullptr ? Integer{-1} : *item->As<Integer>();
  }
  ///@}
  /// The text at the index without a copy, or null when there is none. Valid until the list changes.
  static const String* Find(const clsTORVATestStrings& strings, const TaggedValue& Index) {
    return strings.Find(Index);
  }

  /// Position of the first question that now has exactly the ID of the one at the index, or 0 when there is none
  /// there.
  static Long PositionOfID(const clsTORVATestQuestions& questions, const TaggedValue& Index) {
    return questions.PositionOfID(Index);
  }

  /// Adds texts with themselves as keys to an empty list.
  static void Take(clsTORVATestStrings& strings, std::unique_ptr<SharedSelection> selection) {
    strings.Take(std::move(selection));
  }
  /// Adds the texts of a list as `Copy` of it does.
  static void AddCopies(clsTORVATestStrings& to, const clsTORVATestStrings& from) { to.AddCopies(from); }
  /// As `Copy` of the second set, with an empty one to put the numbers in.
  static Ref<clsTORVATestCorrect> CopyTo(Ref<clsTORVATestCorrect> empty, const clsTORVATestCorrect& from) {
    return from.CopyTo(std::move(empty));
  }
  /// Whether a `Copy` has just these texts. May say no although it has.
  static bool CopiesAsItIs(const clsTORVATestStrings& strings) { return strings.CopiesAsItIs(); }
};

}  // namespace TORVA35
