#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

#include "torva35/base/TaggedValue.h"
#include "torva35/base/Text.h"
#include "torva35/base/Types.h"
#include "torva35/model/Collection.h"

namespace TORVA35 {

/// How much of a text a list takes when the text is added, in units.
constexpr std::size_t kAddedUnits = 50;

/// Whether a text comes through `Copy` of its list as it is.
inline bool IsCopyable(StringView text) {
  return text.size() <= kAddedUnits && text.find(u'\t') == StringView::npos;
}

/// Texts of which many lists take some in the same order, as the questions of an LMF file take its objectives.
/// Each text has itself as key. Places count from 0.
class SharedTexts {
 public:
  using Place = std::uint32_t;

  void Add(const String& text);

  const String& Text(Place place) const { return texts_[place].text; }
  const String& Key(Place place) const { return texts_[place].key; }
  /// The first place whose key is the same without regard to case.
  Place First(Place place) const { return texts_[place].first; }
  /// The first place of a key; where there is none, one that no text has.
  Place First(StringView key) const;
  /// Whether no two keys are the same.
  bool AreDistinct() const { return first_.size() == texts_.size(); }
  bool AreCopyable() const { return areCopyable_; }

 private:
  struct Entry {
    String text;  // as a list takes it
    String key;
    Place first;
  };

  std::vector<Entry> texts_;
  std::unordered_map<String, Place, HashNoCase, SameNoCase> first_;
  bool areCopyable_ = true;
};

/// What one list takes of shared texts: four bytes for each, where a list of its own takes several hundred.
struct SharedSelection {
  /// The text at an index, or null. As `Collection::Find`.
  const String* Find(const TaggedValue& index) const;
  /// A list of its own with the same texts and keys.
  Collection ToCollection() const;

  std::shared_ptr<const SharedTexts> all;
  std::vector<SharedTexts::Place> places;  // rising; no two have the same key
  bool isKeyed = true;
};

}  // namespace TORVA35
