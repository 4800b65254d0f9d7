#pragma once

#include <cstddef>
#include <utility>

#include "torva35/base/CallSite.h"
#include "torva35/base/Export.h"
#include "torva35/base/Object.h"
#include "torva35/base/TaggedValue.h"
#include "torva35/base/Types.h"

namespace TORVA35 {

/// One flag of a question. It is a handle that keeps the flags alive: every handle of a position reads and writes
/// the same flag.
class TORVA35_API clsLmfObjectiveFlag : public Object {
 public:
  /// True: the question belongs to the objective.
  virtual bool Value() const;
  virtual void Value(bool bValue);
  /// The flag read as a Boolean gives its value.
  operator bool() const { return Value(); }

 protected:
  /// For a host's own, which has a `Value` of its own too; this one's is False whatever it is set to.
  clsLmfObjectiveFlag() = default;

 private:
  friend class clsLmfObjectiveFlags;
  struct Packed;
  clsLmfObjectiveFlag(Ref<Packed> flags, std::size_t place) : flags_(std::move(flags)), place_(place) {}

  Ref<Packed> flags_;
  std::size_t place_ = 0;
};

/// The flags of a question, parallel to the objectives of the file: flag k says whether the question belongs to
/// objective k. They are stored as bits. Positions run from 1; one that does not exist raises 9.
class TORVA35_API clsLmfObjectiveFlags : public Object {
 public:
  /// Number of flags.
  virtual Long Count() const { return static_cast<Long>(Size()); }

  /// Appends one flag. Raises 13 for a value that is no Boolean.
  virtual void Add(const TaggedValue& vValue, CallSite at = CallSite::Current());
  /// The same as lCount times Add(False), in one step. Raises 5 for a negative count.
  virtual void AddFalse(Long lCount, CallSite at = CallSite::Current());

  /// A handle for the flag at the position.
  virtual Ref<clsLmfObjectiveFlag> Item(Long lPosition, CallSite at = CallSite::Current()) const;

  /// The value of a flag, without a handle for it.
  bool Value(Long lPosition, CallSite at = CallSite::Current()) const;
  void Value(Long lPosition, bool bValue, CallSite at = CallSite::Current());
  /// Position of the first True flag after lPosition, which may be 0 to begin with; 0 when there is none.
  Long NextTrue(Long lPosition) const;

  /// Handles that were handed out keep the flags that they had.
  void RemoveAll() { flags_.reset(); }

 private:
  std::size_t Size() const;

  Ref<clsLmfObjectiveFlag::Packed> flags_;  // nothing while there is no flag
};

}  // namespace TORVA35
