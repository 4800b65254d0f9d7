#include "torva35/model/clsTORVATest.h"

#include "torva35/base/Arithmetic.h"
#include "torva35/errors/Reported.h"
#include "torva35/errors/basError.h"
#include "torva35/model/Inside.h"

namespace TORVA35 {
namespace {

constexpr Location kInitialize(u"TORVA35 - clsTORVATest.Class_Initialize");
constexpr Location kTerminate(u"TORVA35 - clsTORVATest.Class_Terminate");
constexpr Location kNumObjectives(u"TORVA35 - clsTORVATest.NumObjectives");
constexpr Location kClear(u"TORVA35 - clsTORVATest.Clear");
constexpr Location kSetError(u"TORVA35 - clsTORVATest.SetError");
constexpr Location kCopy(u"TORVA35 - clsTORVATest.Copy");

}  // namespace

clsTORVATest::clsTORVATest() {
  ReportedConstruction(kInitialize, [&] {
    questions_ = Inside::New<clsTORVATestQuestions>();
    sequences_ = Inside::New<clsTORVATestSequences>();
    multipleChoiceOddScale_ = New<clsTORVATestStrings>();
    multipleChoiceEvenScale_ = New<clsTORVATestStrings>();
    trueFalseScale_ = New<clsTORVATestStrings>();
    yesNoScale_ = New<clsTORVATestStrings>();
    multipleChoiceOddScale_->AddDelimitedString(u"A\tB\tC\tD");
    multipleChoiceEvenScale_->AddDelimitedString(u"A\tB\tC\tD");
    trueFalseScale_->AddDelimitedString(u"T\tF");
    yesNoScale_->AddDelimitedString(u"Y\tN");
  });
}

clsTORVATest::~clsTORVATest() {
  ReportedRelease(kTerminate, CallSite::Current(), questions_, sequences_, multipleChoiceOddScale_,
                  multipleChoiceEvenScale_, trueFalseScale_, yesNoScale_);
}

Long clsTORVATest::NumObjectives() const {
  return Reported(kNumObjectives, Long{0}, [&](Long& result) {
    Long sum = 0;
    const Long count = Need(questions_).Count();
    for (Long i = 1; i <= count; ++i) {
      sum = CheckedAdd(sum, Need(Need(Inside::Find(Need(questions_), i)).LearningObjectives()).Count());
    }
    result = sum;
  });
}

void clsTORVATest::Clear() {
  Reported(kClear, [&] {
    // Held by what the properties give, since a removal may report, and a host then set another list.
    Need(Sequences()).RemoveAll();
    Need(Questions()).RemoveAll();
    for (String* text : {&title_, &version_, &id_, &description_, &teacherID_, &createdBy_, &notes_})
      text->clear();
    userDefined_ = false;
    source_ = TORVATestSourceTypeUnknown;
  });
}

bool clsTORVATest::SetError(const Ref<Object>& oErr) {
  return Reported(kSetError, false, [&](bool& result) { result = basError::ReplaceErrorObject(oErr); });
}

Ref<clsTORVATest> clsTORVATest::Copy() const {
  return Reported(kCopy, Ref<clsTORVATest>(), [&](Ref<clsTORVATest>& result) {
    auto copy = New<clsTORVATest>();
    // Where memory ran out in its making, it lacks a list.
    clsTORVATestQuestions& copiedQuestions = Need(copy->questions_);
    clsTORVATestSequences& copiedSequences = Need(copy->sequences_);
    copy->MultipleChoiceEvenScale(Need(multipleChoiceEvenScale_).Copy());
    copy->MultipleChoiceOddScale(Need(multipleChoiceOddScale_).Copy());
    copy->YesNoScale(Need(yesNoScale_).Copy());
    copy->TrueFalseScale(Need(trueFalseScale_).Copy());
    copy->CreatedBy(CreatedBy());
    copy->Description(Description());
    copy->Notes(Notes());
    copy->TeacherID(TeacherID());
    copy->Title(Title());
    copy->UserDefined(true);
    copy->Version(Version());
    copy->Source(Source());
    const Long questions = Need(questions_).Count();
    for (Long i = 1; i <= questions; ++i) copiedQuestions.Add(Need(Inside::Find(Need(questions_), i)).Copy());
    const Long versions = Need(sequences_).Count();
    for (Long i = 1; i <= versions; ++i) copiedSequences.Add(Need(Need(sequences_).Item(i)).Copy(questions_));
    result = std::move(copy);
  });
}

}  // namespace TORVA35
