#include "torva35/model/clsTORVATestSequence.h"

#include "torva35/errors/Reported.h"
#include "torva35/model/Inside.h"

namespace TORVA35 {
namespace {

constexpr Location kInitialize(u"TORVA35 - clsTORVATestSequence.Class_Initialize");
constexpr Location kTerminate(u"TORVA35 - clsTORVATestSequence.Class_Terminate");
constexpr Location kCopy(u"TORVA35 - clsTORVATestSequence.Copy");

}  // namespace

clsTORVATestSequence::clsTORVATestSequence() {
  ReportedConstruction(kInitialize, [&] { order_ = Inside::New<clsTORVATestSequenceOrder>(); });
}

clsTORVATestSequence::~clsTORVATestSequence() {
  ReportedRelease(kTerminate, CallSite::Current(), order_);
}

Ref<clsTORVATestSequence> clsTORVATestSequence::Copy(const Ref<clsTORVATestQuestions>& oQuestions) const {
  return Reported(kCopy, Ref<clsTORVATestSequence>(), [&](Ref<clsTORVATestSequence>& result) {
    auto copy = New<clsTORVATestSequence>();
    copy->Answer(Answer());
    const Long count = Need(order_).Count();
    for (Long i = 1; i <= count; ++i) {
      const Long position = Need(order_).Item(i);
      Need(copy->order_).Add(Need(Inside::Find(Need(oQuestions), position)).ID());
    }
    result = std::move(copy);
  });
}

}  // namespace TORVA35
