#include "torva35/model/clsTORVATestQuestions.h"

#include "torva35/errors/Reported.h"

namespace TORVA35 {
namespace {

constexpr Location kInitialize(u"TORVA35 - clsTORVATestQuestions.Class_Initialize");
constexpr Location kTerminate(u"TORVA35 - clsTORVATestQuestions.Class_Terminate");
constexpr Location kCount(u"TORVA35 - clsTORVATestQuestions.Count");
constexpr Location kAdd(u"TORVA35 - clsTORVATestQuestions.Add");
constexpr Location kRemove(u"TORVA35 - clsTORVATestQuestions.Remove");
constexpr Location kRemoveAll(u"TORVA35 - clsTORVATestQuestions.RemoveAll");
constexpr Location kItem(u"TORVA35 - clsTORVATestQuestions.Item");
constexpr Location kTypeCount(u"TORVA35 - clsTORVATestQuestions.TypeCount");

}  // namespace

clsTORVATestQuestions::clsTORVATestQuestions() {
  ReportedConstruction(kInitialize, [] {});
}

clsTORVATestQuestions::~clsTORVATestQuestions() {
  for (Long i = items_.Count(); i >= 1; --i) Find(i)->RemoveHolder(*this);
  ReportedReleaseItems(kTerminate, CallSite::Current(), items_);
}

Long clsTORVATestQuestions::Count() const {
  return Reported(kCount, Long{0}, [&](Long& result) { result = items_.Count(); });
}

bool clsTORVATestQuestions::Add(const Ref<clsTORVATestQuestion>& oQuestion, const TaggedValue& Before,
                                const TaggedValue& After) {
  return Reported(kAdd, false, [&](bool& result) {
    clsTORVATestQuestion& question = Need(oQuestion);
    question.MakeRoomForHolder();
    items_.Add(oQuestion, question.ID(), Before, After);
    question.AddHolder(*this);
    positionsMade_ = false;
    result = true;
  });
}

bool clsTORVATestQuestions::Remove(const TaggedValue& Index) {
  return Reported(kRemove, false, [&](bool& result) {
    if (items_.Find(Index) == nullptr) return;
    Need(Need(Find(Index)).LearningObjectives()).RemoveAll();
    Need(Need(Find(Index)).Answers()).RemoveAll();
    // What was emptied may have reported, and a host then changed the list.
    const Ref<clsTORVATestQuestion> question = Find(Index);
    items_.Remove(Index);
    question->RemoveHolder(*this);
    positionsMade_ = false;
    result = true;
  });
}

bool clsTORVATestQuestions::RemoveAll() {
  return Reported(kRemoveAll, false, [&](bool& result) {
    for (Long i = items_.Count(); i >= 1; --i) Remove(i);
    result = items_.Count() == 0;
  });
}

Ref<clsTORVATestQuestion> clsTORVATestQuestions::Item(const TaggedValue& Index) const {
  return Reported(kItem, Ref<clsTORVATestQuestion>(),
                  [&](Ref<clsTORVATestQuestion>& result) { result = Find(Index); });
}

bool clsTORVATestQuestions::Exists(const TaggedValue& Index) const {
  return Silently(false, [&](bool& result) { result = items_.Find(Index) != nullptr; });
}

Long clsTORVATestQuestions::TypeCount(Long eQuestionType) const {
  return Reported(kTypeCount, Long{0}, [&](Long& result) {
    Long matching = 0;
    const Long count = items_.Count();
    for (Long i = 1; i <= count; ++i) {
      if (Need(Find(i)).QuestionType() == eQuestionType) ++matching;
    }
    result = matching;
  });
}

Ref<clsTORVATestQuestion> clsTORVATestQuestions::Find(const TaggedValue& Index) const {
  const TaggedValue* item = items_.Find(Index);
  if (item == nullptr) return nullptr;
  return std::static_pointer_cast<clsTORVATestQuestion>(*item->As<Ref<Object>>());
}

Long clsTORVATestQuestions::PositionOfID(const TaggedValue& Index) const {
  if (idsAreKeys_) return items_.PositionOf(Index);  // no two keys are equal
  const Ref<clsTORVATestQuestion> question = Find(Index);
  if (question == nullptr) return 0;
  if (!positionsMade_) {
    positions_.clear();
    const Long count = items_.Count();
    for (Long i = 1; i <= count; ++i) positions_.emplace(Need(Find(i)).id_, i);
    positionsMade_ = true;
  }
  return positions_.at(question->id_);
}

}  // namespace TORVA35
