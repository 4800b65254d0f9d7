#pragma once

#include <optional>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "torva35/base/ObjectList.h"
#include "torva35/base/Text.h"

namespace TORVA35 {

/// One learning objective of an LMF file.
class TORVA35_API clsLmfObjective : public Object {
 public:
  /// The objective's text, stored whole.
  virtual String Text() const { return text_; }
  virtual void Text(String sText) { text_ = std::move(sText); }

 private:
  String text_;
};

/// The learning objectives of an LMF file, with keys that compare without regard to case. After `clsLmf::Prepare`
/// or `Open` the first one is built in: "(All Questions)", without a key, so that no objective of a test meets it.
class TORVA35_API clsLmfObjectives : public ObjectList<clsLmfObjective> {
 public:
  /// Appends the objective itself, not a copy. Key: a String, or left out for none; later changes of the
  /// objective's text do not change it. Raises 91 when there is no objective, 13 for a key that is no String and
  /// 457 for a key in use, and then changes nothing.
  virtual void Add(Ref<clsLmfObjective> oObjective, const TaggedValue& Key = Missing,
                   CallSite at = CallSite::Current());
  /// True when the list has an objective with this key. Raises 13 for a key that is no String.
  virtual bool Exists(const TaggedValue& Key, CallSite at = CallSite::Current()) const;

  /// The same for a text, whatever a derived list says in `Exists`.
  bool HasKey(StringView sKey) const { return distinctKeys_.contains(sKey); }

  /// Puts the built-in objective first, unless it is there already.
  void AddBuiltIn();
  /// Whether it is there.
  bool HasBuiltIn() const { return hasBuiltIn_; }
  /// The key that the objective at a position was added with, or nothing. Raises like `Item`.
  std::optional<String> KeyOf(Long lPosition, CallSite at = CallSite::Current()) const;
  /// Removes the built-in objective, too.
  void RemoveAll();

 private:
  std::vector<std::optional<String>> keys_;  // parallel to the objectives
  std::unordered_set<String, HashNoCase, SameNoCase> distinctKeys_;
  bool hasBuiltIn_ = false;
};

}  // namespace TORVA35
