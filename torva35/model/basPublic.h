#pragma once

#include "torva35/base/Export.h"
#include "torva35/base/Object.h"
#include "torva35/base/TaggedValue.h"
#include "torva35/base/Types.h"

namespace TORVA35 {
class clsLmf;
class clsTORVATest;
}  // namespace TORVA35

/// Functions that belong to no object.
namespace TORVA35::basPublic {

/// The value as text; empty for Null, Empty and a missing argument. An object is reported (13); then empty.
TORVA35_API String CString(const TaggedValue& v);

/// Fills a test, which must have been cleared, with the graded and subjective questions, objectives and versions
/// of an LMF model. Returns False when one of the two is nothing, and after a failure, which is reported; the test
/// then keeps what was added.
TORVA35_API bool BuildTestFromLMF(const Ref<clsTORVATest>& oTest, const Ref<clsLmf>& oLmf);

}  // namespace TORVA35::basPublic
