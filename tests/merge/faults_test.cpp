#include <thread>

#include "platform/clsLmf.h"
#include "tests/merge/MergeFixture.h"
#include "tests/platform/Faults.h"
#include "tests/platform/InChild.h"

namespace TORVA35 {
namespace {

const char16_t* const kMergeLocation = u"TORVA35 - clsTORVA.Merge";

// Failures, a word each, so that a child process can hand them over.
std::string WhatReached(const Recorder& host) {
  std::string text;
  for (const Failure& failure : host.failures) {
    text += std::to_string(failure.number) + (failure.location == kMergeLocation ? "@Merge " : "@other ");
  }
  return text;
}

class MemberFaults : public MergeTest {
 protected:
  // A merge that ends in a dialog, at which the host faults.
  std::string FaultInDialog(void (*cause)()) {
    return InChild([&] {
      engine->SetError(host);
      host->onDialog = cause;
      bool merged = false;
      for (int i = 0; i < 2; ++i) merged |= engine->Merge();
      host->onDialog = {};
      host->dialogs.clear();
      host->reply = 6;
      merged |= engine->Merge();  // the process lives on, and a dialog is a dialog again
      return WhatReached(*host) + (merged ? "merged" : "not merged") + " " + std::to_string(host->dialogs.size());
    });
  }
};

TEST_F(MemberFaults, AHostObjectThatFaultsInMerge) {
  EXPECT_EQ(FaultInDialog(faults::NullRead), "10005@Merge 10005@Merge not merged 1");
  EXPECT_EQ(FaultInDialog(faults::EndlessRecursion), "10237@Merge 10237@Merge not merged 1");
#if defined(__x86_64__)
  EXPECT_EQ(FaultInDialog(faults::IntegerDivision), "10132@Merge 10132@Merge not merged 1");
#endif
}

TEST_F(MemberFaults, AnErrorObjectThatFaultsWhileItIsTold) {
  class Faulting : public Recorder {
   public:
    TaggedValue RaiseError(TaggedValue&, Long&, String&, String&, String&, String&, String&, String&, Long&,
                           String&, String&, String&, bool&) override {
      faults::NullRead();
      return 0;
    }
  };
  EXPECT_EQ(
      InChild([&] {
        std::string box;
        SetMessageBoxHook([&](const String& text, const String&, Long) { box = ToUtf8(text); });
        engine->SetError(New<Faulting>());
        engine->Tests()->Remove(1);
        return box.substr(0, box.find("\r\n"));
      }),
      "Application error: (#10005) Application-defined or object-defined error occurred while trying to display:");
}

TEST_F(MemberFaults, EachThreadHasItsOwnErrorObjectAndFilter) {
  EXPECT_EQ(InChild([&] {
              std::string told[2];
              const auto run = [](std::string& result, void (*cause)()) {
                const auto own = New<Recorder>();
                const auto other = New<clsTORVA>();
                other->SetError(own);
                own->onDialog = cause;
                for (int i = 0; i < 20; ++i) other->Merge();
                result = own->failures.size() == 20 ? WhatReached(*own).substr(0, 12) : "lost";
              };
              std::thread first(run, std::ref(told[0]), faults::NullRead);
              std::thread second(run, std::ref(told[1]), faults::EndlessRecursion);
              first.join();
              second.join();
              return told[0] + told[1] + std::to_string(host->failures.size());
            }),
            "10005@Merge 10237@Merge 0");
}

}  // namespace
}  // namespace TORVA35
