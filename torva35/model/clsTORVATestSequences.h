#pragma once

#include "torva35/base/Export.h"
#include "torva35/base/Object.h"
#include "torva35/base/TaggedValue.h"
#include "torva35/base/Types.h"
#include "torva35/model/Collection.h"
#include "torva35/model/clsTORVATestQuestions.h"
#include "torva35/model/clsTORVATestSequence.h"

namespace TORVA35 {

/// The versions of a test, each filed under the `Answer` that it had when it was added. Positions count from 1; an
/// index that is a String is an `Answer`, without regard to case. Every failure is reported to the error object,
/// never raised.
class TORVA35_API clsTORVATestSequences : public Object {
 public:
  ~clsTORVATestSequences() override;

  /// Number of versions.
  Long Count() const;

  /// Adds the version itself, not a copy, at the end. Returns True. An `Answer` that is in use or no version at
  /// all is reported; then False, and the list is unchanged.
  bool Add(const Ref<clsTORVATestSequence>& oSequence);

  /// Adds a version with the order of oQuestions. Returns False, and adds nothing, when the list holds a version
  /// already. An ID that occurs twice is reported, and the version has one entry fewer.
  bool AddDefault(const Ref<clsTORVATestQuestions>& oQuestions, const String& sAnswer = u"A");

  /// Returns False when there is no such version, without a report.
  bool Remove(const TaggedValue& vKey);
  /// Returns True when the list is empty afterwards.
  bool RemoveAll();

  /// The version, or nothing when there is none, without a report.
  Ref<clsTORVATestSequence> Item(const TaggedValue& vKey) const;
  Ref<clsTORVATestSequence> operator[](const TaggedValue& vKey) const { return Item(vKey); }

  /// Nothing is reported, whatever the index.
  bool Exists(const TaggedValue& vKey) const;

 private:
  friend class Inside;

  clsTORVATestSequences();

  Collection items_;
};

}  // namespace TORVA35
