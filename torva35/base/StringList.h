#pragma once

#include <utility>
#include <vector>

#include "torva35/base/Array.h"
#include "torva35/base/CallSite.h"
#include "torva35/base/Export.h"
#include "torva35/base/Object.h"
#include "torva35/base/TaggedValue.h"
#include "torva35/base/Types.h"

namespace TORVA35 {

/// The lists of strings of a form and of an LMF file. Positions run from 1 to `Count`; an index is a number, and
/// the nearest whole one counts, ties to the even one. A position that does not exist raises 9, an index that is
/// no number 13. Strings are stored whole.
class TORVA35_API StringList : public Object {
 public:
  /// An empty list.
  StringList() = default;

  /// Number of strings.
  virtual Long Count() const { return static_cast<Long>(items_.size()); }

  /// The string at a position.
  virtual String Item(const TaggedValue& Index, CallSite at = CallSite::Current()) const;
  /// Replaces the string at a position; the list keeps its length.
  virtual void Item(const TaggedValue& Index, String sText, CallSite at = CallSite::Current());

  /// Appends the string. Returns True.
  virtual bool Add(String sText);
  /// Room for lCount strings in all, so that adding them takes no more.
  void Reserve(Long lCount) { items_.reserve(static_cast<std::size_t>(lCount)); }
  /// Appends every string of the array, in order; none for an array without elements. Returns True.
  virtual bool AddArray(const Array<String>& sTexts);

  /// All strings, in order.
  virtual Array<String> AsArray(Long lLowerBound = 1) const;

  /// Empties the list.
  virtual void RemoveAll() { items_.clear(); }

  /// The strings in order.
  auto begin() const { return items_.begin(); }
  auto end() const { return items_.end(); }

 protected:
  /// A list of these strings.
  explicit StringList(std::vector<String> items) : items_(std::move(items)) {}

 private:
  std::vector<String> items_;
};

}  // namespace TORVA35
