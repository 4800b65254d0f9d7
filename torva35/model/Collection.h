#pragma once

#include <cstdint>
#include <memory>

#include "torva35/base/CallSite.h"
#include "torva35/base/Export.h"
#include "torva35/base/TaggedValue.h"
#include "torva35/base/Types.h"

namespace TORVA35 {

/// An ordered list with positions from 1 to `Count`, each item with at most one key.
///
/// An index is a tagged value: a String is a key, also when it holds digits; a number is a position, at its
/// nearest whole value, ties to the even one. Keys compare without regard to case and are unique within the list;
/// the empty key is a key like any other.
///
/// Raises, and then changes nothing: 13 for an index that is neither String nor number and for a key that is no
/// String, 9 for a position outside the list, 5 for a key that is not in it and for both Before and After at once,
/// 457 for a key in use.
///
/// Finding by position and by key takes constant time, and so do adding and removing at the place of the last
/// change and at the end; elsewhere the cost is the distance from there. An empty list is one null pointer.
class TORVA35_API Collection {
 public:
  Collection() noexcept;
  ~Collection();
  /// The other list is empty afterwards.
  Collection(Collection&&) noexcept;
  /// Likewise; the items that this list had are gone.
  Collection& operator=(Collection&&) noexcept;

  /// Number of items.
  Long Count() const;

  /// Inserts the item before Before, after After, or at the end. Missing stands for no key and no place.
  void Add(TaggedValue Item, const TaggedValue& Key = Missing, const TaggedValue& Before = Missing,
           const TaggedValue& After = Missing, CallSite at = CallSite::Current());
  /// Adds the item at the end, without a key.
  void Append(TaggedValue Item);
  /// Makes room for so many more items, so that adding them takes no memory but their own.
  void Reserve(std::int64_t added);
  /// The item at the index. The reference is good until the list changes.
  const TaggedValue& Item(const TaggedValue& Index, CallSite at = CallSite::Current()) const;
  /// Takes the item out; those after it move up one place.
  void Remove(const TaggedValue& Index, CallSite at = CallSite::Current());

  /// The item, or null where `Item` would raise. Valid until the list changes, as is what `Item` gives.
  const TaggedValue* Find(const TaggedValue& Index) const;
  /// Likewise, for a key that need not be a String of its own.
  const TaggedValue* FindKey(StringView key) const;
  /// The position of the item, from 1, or 0 where `Item` would raise.
  Long PositionOf(const TaggedValue& Index) const;

  /// The same items in the same order, with their keys or without.
  Collection Copy(bool keyed) const;

 private:
  struct Items;
  std::size_t NeedPlace(const TaggedValue& index, CallSite at) const;

  std::unique_ptr<Items> items_;
};

}  // namespace TORVA35
