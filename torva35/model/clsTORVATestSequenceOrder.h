#pragma once

#include "torva35/base/Array.h"
#include "torva35/base/Export.h"
#include "torva35/base/Object.h"
#include "torva35/base/TaggedValue.h"
#include "torva35/base/Types.h"
#include "torva35/model/Collection.h"

namespace TORVA35 {

/// The question order of one version: for each question's ID its position in the version. An index that is a
/// String is an ID, without regard to case; a number is a position in this list, from 1. Every failure is reported
/// to the error object, never raised.
class TORVA35_API clsTORVATestSequenceOrder : public Object {
 public:
  /// Number of entries.
  Long Count() const;

  /// Adds the value `Count` + 1 under the ID. An ID that is there already is reported, and the order is unchanged.
  void Add(const String& sQuestionID);

  /// Does nothing when there is no such entry. The values of the entries after it do not change.
  void Remove(const TaggedValue& vKey);
  /// Removes every entry.
  void RemoveAll();

  /// The value, or 0 when there is no such entry, without a report.
  Long Item(const TaggedValue& vKey) const;
  Long operator[](const TaggedValue& vKey) const { return Item(vKey); }

  /// Nothing is reported, whatever the index.
  bool Exists(const TaggedValue& vKey) const;

  /// The values (not the IDs) in order, from the position lLowerBound on; no elements when there are none.
  Array<Long> AsArray(Long lLowerBound = 1) const;
  /// The values in decimal, with the delimiter between them.
  String AsString(const String& sDelimiter = u"\t") const;

 private:
  friend class Inside;

  clsTORVATestSequenceOrder();

  Collection items_;
};

}  // namespace TORVA35
