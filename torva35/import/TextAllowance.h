#pragma once

#include <algorithm>
#include <cstddef>

#include "torva35/base/CallSite.h"
#include "torva35/base/Error.h"
#include "torva35/xml/DOMDocument.h"

namespace TORVA35 {

/// How much text the questions of one document may take from it: ten times what it holds, and always 8 MiB.
/// Without a limit, questions that stand in each other's notes would each take the text of all those within, and a
/// small file would fill the memory. Rich text needs none: it leaves out a question within. A load ends where its
/// allowance does.
class TextAllowance {
 public:
  explicit TextAllowance(const DOMDocument& document)
      : left_(std::max(std::size_t{8} << 20, 10 * document.Root().Utf8().size())) {}

  /// The text of an element. A text that is too long for what is left raises 14.
  String Take(const IXMLDOMNode& element, CallSite at = CallSite::Current()) {
    const std::size_t size = element.Utf8().size();
    isExceeded_ = size > left_;
    if (isExceeded_) Raise(kTooMuchText, at);
    left_ -= size;
    return element.Text();
  }

  /// Whether a text was too long.
  bool IsExceeded() const { return isExceeded_; }

 private:
  std::size_t left_;  // UTF-8
  bool isExceeded_ = false;
};

}  // namespace TORVA35
