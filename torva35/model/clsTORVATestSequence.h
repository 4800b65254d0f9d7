#pragma once

#include <utility>

#include "torva35/base/Export.h"
#include "torva35/base/Object.h"
#include "torva35/base/Text.h"
#include "torva35/base/Types.h"
#include "torva35/model/clsTORVATestQuestions.h"
#include "torva35/model/clsTORVATestSequenceOrder.h"

namespace TORVA35 {

/// One version of a test: the text that marks it on a form, and its question order.
class TORVA35_API clsTORVATestSequence : public Object {
 public:
  clsTORVATestSequence();
  ~clsTORVATestSequence() override;

  /// The version's own order, never a copy. Setting replaces the reference.
  Ref<clsTORVATestSequenceOrder> Order() const { return order_; }
  void Order(Ref<clsTORVATestSequenceOrder> oValue) { order_ = std::move(oValue); }
  /// `Item` of the order; raises 91 to the caller when the order was set to nothing.
  Long operator[](const TaggedValue& vKey) const { return Need(order_).Item(vKey); }

  /// Kept to its first 50 units; the rest is dropped silently.
  String Answer() const { return answer_; }
  void Answer(String sValue) { answer_ = Cut(std::move(sValue), 50); }

  /// A new version with this `Answer`. Its order is built from the stored values: entry i is the ID of the
  /// question at position `Order.Item`(i) of oQuestions. A value that is no position there is reported; then
  /// nothing.
  Ref<clsTORVATestSequence> Copy(const Ref<clsTORVATestQuestions>& oQuestions) const;

 private:
  Ref<clsTORVATestSequenceOrder> order_;
  String answer_;
};

}  // namespace TORVA35
