#pragma once

#include <utility>
#include <vector>

#include "torva35/base/Array.h"
#include "torva35/base/ObjectList.h"
#include "torva35/lmf/clsLmfStrings.h"

namespace TORVA35 {

/// The order of the questions in one version of a test: entry k is the position in the file of the question that
/// this version prints at position k. Both run from 1.
class TORVA35_API clsLmfSequence : public Object {
 public:
  /// Number of entries.
  virtual Long Count() const { return static_cast<Long>(order_.size()); }
  /// The entry at a position. Raises 9 for a position that does not exist.
  virtual Long Item(Long lPosition, CallSite at = CallSite::Current()) const;
  /// Takes the whole order from the array, whatever its lower bound; an array without elements empties it.
  virtual void SetOrder(const Array<Long>& lOrder);

 private:
  std::vector<Long> order_;
};

/// The question orders of an LMF file, one for each version.
class TORVA35_API clsLmfSequences : public ObjectList<clsLmfSequence> {
 public:
  /// Appends the sequence itself, not a copy. Raises 91 when there is none.
  virtual void Add(Ref<clsLmfSequence> oSequence, CallSite at = CallSite::Current());
  /// Puts the natural order over lCount questions before the others, as the first sequence. Returns True. Raises 5
  /// for a negative count.
  virtual bool AddDefault(Long lCount, CallSite at = CallSite::Current());
  /// Empties the list.
  void RemoveAll() { items_.clear(); }
};

/// The version setup of an LMF file.
class TORVA35_API clsLmfVersions : public Object {
 public:
  clsLmfVersions();

  /// The question orders, one for each version. A merge puts the natural order first.
  virtual Ref<clsLmfSequences> Sequences() const { return sequences_; }
  /// The version identifiers, parallel to `Sequences`.
  virtual Ref<clsLmfStrings> VersionNames() const { return versionNames_; }

  /// Position of the question whose labels are the version identifiers; 0 when none was set.
  virtual Long SequenceQuestion() const { return sequenceQuestion_; }
  virtual void SequenceQuestion(Long lQuestion) { sequenceQuestion_ = lQuestion; }

  /// 2 when the file stores versions, that is when it has version names; else 0.
  virtual Long VersionMode() const;

  /// Removes orders and identifiers, and sets `SequenceQuestion` to 0.
  void Clear();

 private:
  Ref<clsLmfSequences> sequences_;
  Ref<clsLmfStrings> versionNames_;
  Long sequenceQuestion_ = 0;
};

}  // namespace TORVA35
