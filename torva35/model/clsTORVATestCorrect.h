#pragma once

#include "torva35/base/Arithmetic.h"
#include "torva35/base/Export.h"
#include "torva35/base/Object.h"
#include "torva35/base/TaggedValue.h"
#include "torva35/base/Types.h"
#include "torva35/model/Collection.h"

namespace TORVA35 {

/// The correct answers of a question: a set of 1-based positions in its `Answers`, in the order in which they were
/// added. A String as index is a number's decimal text ("3" asks for the answer 3), a number is a position in the
/// set. Numbers and their positions have 16 bits; a wider one is an overflow (6). Every failure is reported to the
/// error object, never raised.
class TORVA35_API clsTORVATestCorrect : public Object {
 public:
  clsTORVATestCorrect();

  /// Number of numbers.
  Long Count() const;

  /// Adds a number, from -32,768 to 32,767. Before, After: position or key of the neighbour; not both. Returns
  /// False, without a report, for a number that the set holds already; a number beyond 16 bits and a missing place
  /// are reported, then False.
  bool Add(AnyWhole Item, const TaggedValue& Before = Missing, const TaggedValue& After = Missing);

  /// Returns False when there is no such number, without a report.
  bool Remove(const TaggedValue& Index);

  /// Returns True when the set is empty afterwards. More than 32,767 numbers are an overflow (6), which is
  /// reported; then False, and the set is unchanged.
  bool RemoveAll();

  /// The number at the position from 1, or -1 when there is none. A position beyond 16 bits is reported; then 0.
  Integer Item(AnyWhole Index) const;
  Integer operator[](AnyWhole Index) const { return Item(Index); }

  /// Whether the number (a String) or the position (a number) is there. Nothing is reported.
  bool Exists(const TaggedValue& Index) const;

  /// A new set of the same numbers in the same order; nothing after a failure (more than 32,767 numbers).
  Ref<clsTORVATestCorrect> Copy() const;

  /// The sum of 2 to the power n - 1 over all numbers n. A number above 31 is an overflow (6), which is reported;
  /// the result is then the sum of the numbers before it. A number below 1 adds a fraction, which is rounded
  /// away at once (to the nearest whole number, ties to the even one). More than 32,767 numbers are reported, with
  /// 0.
  Long GetBitWiseRepresentation() const;

  /// Replaces the set by the numbers whose bits are set: bit n - 1 for the number n, from 1 to 31. The sign bit is
  /// not looked at.
  void ConvertBitWiseRepresentation(Long BitWiseValue);

 private:
  friend class Inside;

  // copy: an empty set for the numbers, or nothing for a new one.
  Ref<clsTORVATestCorrect> CopyTo(Ref<clsTORVATestCorrect> copy) const;
  Integer At(Long position) const;

  Collection items_;
};

}  // namespace TORVA35
