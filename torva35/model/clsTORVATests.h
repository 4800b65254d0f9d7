#pragma once

#include "torva35/base/Export.h"
#include "torva35/base/Object.h"
#include "torva35/base/TaggedValue.h"
#include "torva35/base/Types.h"
#include "torva35/model/Collection.h"
#include "torva35/model/clsTORVATest.h"

namespace TORVA35 {

/// The tests of an engine: the first one is the master test, the others are its versions. Positions count from 1;
/// an index that is a String is the key under which a test was added, without regard to case. Every failure is
/// reported to the error object, never raised.
class TORVA35_API clsTORVATests : public Object {
 public:
  ~clsTORVATests() override;

  /// Number of tests.
  Long Count() const { return items_.Count(); }

  /// Adds the test itself, not a copy. Key: optional, unique without regard to case. Before, After: position or
  /// key of the neighbour; not both. A key in use, a missing place or no test at all is reported, and the list is
  /// unchanged.
  void Add(const Ref<clsTORVATest>& Item, const TaggedValue& Key = Missing, const TaggedValue& Before = Missing,
           const TaggedValue& After = Missing);

  /// An index that the list does not have is reported.
  void Remove(const TaggedValue& Index);
  /// Removes every test; the tests themselves stay as they are.
  void RemoveAll();

  /// The test, or nothing when there is none. No failure is reported.
  Ref<clsTORVATest> Item(const TaggedValue& Index) const;
  Ref<clsTORVATest> operator[](const TaggedValue& Index) const { return Item(Index); }

  /// Nothing is reported, whatever the index.
  bool Exists(const TaggedValue& Index) const;

 private:
  friend class Inside;

  clsTORVATests();

  Collection items_;
};

}  // namespace TORVA35
