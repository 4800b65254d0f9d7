#include "torva35/merge/clsTORVA.h"

#include "torva35/errors/Reported.h"
#include "torva35/errors/basError.h"
#include "torva35/merge/Dialogs.h"
#include "torva35/model/Inside.h"

namespace TORVA35 {
namespace {

constexpr Location kInitialize(u"TORVA35 - clsTORVA.Class_Initialize");
constexpr Location kTerminate(u"TORVA35 - clsTORVA.Class_Terminate");
constexpr Location kSetError(u"TORVA35 - clsTORVA.SetError");

}  // namespace

clsTORVA::clsTORVA() {
  ReportedConstruction(kInitialize, [&] {
    tests_ = Inside::New<clsTORVATests>();
    lmf_ = New<clsLmf>();
  });
}

clsTORVA::~clsTORVA() {
  ReportedRelease(kTerminate, CallSite::Current(), templateIn_, templateOut_, tests_, lmf_);
}

bool clsTORVA::SetError(const Ref<Object>& oErr) {
  return Reported(kSetError, false, [&](bool& result) { result = basError::ReplaceErrorObject(oErr); });
}

void clsTORVA::Tell(const char16_t* title, String text, CallSite at) {
  if (verbose_) ShowDialog(title, std::move(text), *this, at);
}

}  // namespace TORVA35
