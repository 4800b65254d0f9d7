#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "torva35/base/CallSite.h"
#include "torva35/base/Export.h"
#include "torva35/base/Object.h"
#include "torva35/base/TaggedValue.h"
#include "torva35/base/Types.h"

namespace TORVA35 {

/// Flags as packed bits, at places from 0. For the library itself.
struct PackedFlags {
  /// The flag at a place, from 0 to `count` - 1.
  bool Get(std::size_t place) const { return (words[place / 64] >> place % 64 & 1) != 0; }
  /// Likewise.
  void Set(std::size_t place, bool value) {
    const std::uint64_t bit = std::uint64_t{1} << place % 64;
    words[place / 64] = value ? words[place / 64] | bit : words[place / 64] & ~bit;
  }

  std::vector<std::uint64_t> words;  ///< 64 flags each, the first one in the lowest bit
  std::size_t count = 0;             ///< number of flags
};

/// One flag of a question. It is a handle that keeps the flags alive: every handle of a position reads and writes
/// the same flag.
class TORVA35_API clsLmfObjectiveFlag : public Object {
 public:
  /// For the library itself: the flag at a place from 0.
  clsLmfObjectiveFlag(Ref<PackedFlags> flags, std::size_t place) : flags_(std::move(flags)), place_(place) {}

  /// True: the question belongs to the objective.
  virtual bool Value() const { return flags_->Get(place_); }
  virtual void Value(bool bValue) { flags_->Set(place_, bValue); }
  /// The flag read as a Boolean gives its value.
  operator bool() const { return Value(); }

 private:
  Ref<PackedFlags> flags_;
  std::size_t place_;
};

/// The flags of a question, parallel to the objectives of the file: flag k says whether the question belongs to
/// objective k. They are stored as bits. Positions run from 1; one that does not exist raises 9.
class TORVA35_API clsLmfObjectiveFlags : public Object {
 public:
  /// Number of flags.
  virtual Long Count() const { return static_cast<Long>(flags_ ? flags_->count : 0); }

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
  Ref<PackedFlags> flags_;  // nothing while there is no flag
};

}  // namespace TORVA35
