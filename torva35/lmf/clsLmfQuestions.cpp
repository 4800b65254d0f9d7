#include "torva35/lmf/clsLmfQuestions.h"

namespace TORVA35 {

void clsLmfQuestions::Add(Ref<clsLmfQuestion> oQuestion, CallSite at) {
  Need(oQuestion, at);
  items_.push_back(std::move(oQuestion));
}

}  // namespace TORVA35
