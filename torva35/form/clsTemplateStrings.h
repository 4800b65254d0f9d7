#pragma once

#include <utility>
#include <vector>

#include "torva35/base/StringList.h"

namespace TORVA35 {

/// The labels or the values of a form question, one for each answer position.
class TORVA35_API clsTemplateStrings : public StringList {
 public:
  /// An empty list.
  clsTemplateStrings() = default;
  /// A list of these strings.
  explicit clsTemplateStrings(std::vector<String> sTexts) : StringList(std::move(sTexts)) {}

  /// A new list with the same strings.
  Ref<clsTemplateStrings> Copy() const { return New<clsTemplateStrings>(std::vector<String>(begin(), end())); }
};

}  // namespace TORVA35
