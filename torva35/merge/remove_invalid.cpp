// Taking out of the tests what a form cannot grade.

#include <vector>

#include "torva35/base/Arithmetic.h"
#include "torva35/base/Text.h"
#include "torva35/errors/Reported.h"
#include "torva35/merge/Dialogs.h"
#include "torva35/merge/clsTORVA.h"
#include "torva35/model/Inside.h"

namespace TORVA35 {
namespace {

constexpr Location kRemoveInvalid(u"TORVA35 - clsTORVA.RemoveInvalid");

constexpr const char16_t* kInvalidFile =
    u"An error occurred while removing invalid question types from the file. The file is invalid. "
    u"Operation aborted.";
constexpr const char16_t* kTypesRemoved =
    u"Warning: The file contains one or more question types that are not supported. "
    u"The unsupported question types were removed.";
constexpr const char16_t* kNoneSupported =
    u"An error occurred importing the test. The file does not contain any supported questions.";
constexpr const char16_t* kTooMany =
    u"Warning: The file contains more questions than are supported. One or more questions were removed.";
constexpr const char16_t* kSupportedTypes =
    u"Supported Question Types: Multiple Choice, True/False, Yes/No\r\n\r\n"
    u"\tNote: Modified True/False questions are NOT supported.\r\n\r\n";

bool IsSupported(Long type) {
  return type >= TORVATestQuestionTypeTrueFalse &&
         (type <= TORVATestQuestionTypeMultipleChoice || type == TORVATestQuestionTypeSubjective);
}

String Figures(Long total, Long removed, Long remaining) {
  return u"Total Questions: " + Decimal(total) + kLine + u"Removed Questions: " + Decimal(removed) + kLine +
         u"Remaining Questions: " + Decimal(remaining);
}

// Takes out what is not supported. Returns the positions that those questions had, from the last to the first.
std::vector<Long> RemoveUnsupported(clsTORVATestQuestions& questions) {
  std::vector<Long> removed;
  for (Long i = questions.Count(); i >= 1; --i) {
    if (IsSupported(Need(Inside::Find(questions, i)).QuestionType())) continue;
    removed.push_back(i);
    questions.Remove(i);
  }
  return removed;
}

String AscendingList(const std::vector<Long>& descending) {
  String list;
  for (auto number = descending.rbegin(); number != descending.rend(); ++number) {
    if (!list.empty()) list += u", ";
    list += Decimal(*number);
  }
  return list;
}

}  // namespace

bool clsTORVA::RemoveInvalid(Long lMaxQuestions) {
  return Reported(kRemoveInvalid, false, [&](bool& result) {
    const Long tests = Need(tests_).Count();
    for (Long t = 1; t <= tests; ++t) {
      const Ref<clsTORVATest> test = Need(tests_).Item(t);
      if (test == nullptr) {
        Tell(u"Invalid File", kInvalidFile);
        return;
      }
      const Ref<clsTORVATestQuestions> questions = test->Questions();
      const Long before = Need(questions).Count();
      const std::vector<Long> unsupported = RemoveUnsupported(*questions);
      const auto removed = static_cast<Long>(unsupported.size());
      if (removed > 0) {
        if (before > removed) {
          Tell(u"Invalid Question Type(s)", kTypesRemoved + String(kBlankLine) + kSupportedTypes +
                                                u"Unsupported Question Number(s): " + AscendingList(unsupported) +
                                                kBlankLine + Figures(before, removed, questions->Count()));
        } else {
          Tell(u"No Supported Questions", kNoneSupported + String(kBlankLine) + kSupportedTypes +
                                              Figures(before, removed, questions->Count()));
          return;
        }
      }
      Long overLimit = 0;
      if (lMaxQuestions > 0) {
        const Long total = questions->Count();
        const Long firstBehind = CheckedAdd(lMaxQuestions, 1);
        for (Long i = total; i >= firstBehind; --i, ++overLimit) questions->Remove(i);
        if (overLimit > 0) {
          Tell(u"Maximum Number of Questions", kTooMany + String(kBlankLine) + u"Number of Supported Questions: " +
                                                   Decimal(lMaxQuestions) + kBlankLine +
                                                   Figures(total, overLimit, questions->Count()));
        }
      }
      if (removed > 0 || overLimit > 0) {
        Need(test->Sequences()).RemoveAll();
        Need(test->Sequences()).AddDefault(test->Questions(), test->Version());
      }
    }
    result = true;
  });
}

}  // namespace TORVA35
