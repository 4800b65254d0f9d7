#include "torva35/form/clsTemplate.h"

#include "torva35/base/Arithmetic.h"
#include "torva35/platform/Kept.h"

namespace TORVA35 {

clsTemplate::clsTemplate() : pages_(New<clsTemplatePages>()) {
  Hold(*pages_);
}

clsTemplate::~clsTemplate() {
  LetGo(*pages_);
}

template <class Visit>
void clsTemplate::EachField(Visit visit) const {
  const Kept pages(Pages());
  for (const Ref<clsTemplatePage>& page : *pages) {
    const Kept fields(page->Fields());
    for (const Ref<clsTemplateField>& field : *fields) visit(*field);
  }
}

Long clsTemplate::AllQuestions(CallSite at) const {
  Long count = 0;
  EachField(
      [&](const clsTemplateField& field) { count = CheckedAdd(count, Kept(field.Questions())->Count(), at); });
  return count;
}

Integer clsTemplate::PageCount(CallSite at) const {
  return Narrow<Integer>(Kept(Pages())->Count(), at);
}

Integer clsTemplate::QuestionCount(CallSite at) const {
  return Narrow<Integer>(AllQuestions(at), at);
}

Integer clsTemplate::GradedCount(CallSite at) const {
  Long count = 0;
  EachField([&](const clsTemplateField& field) {
    const Kept questions(field.Questions());
    for (const Ref<clsTemplateQuestion>& question : *questions) count = CheckedAdd(count, question->Graded(), at);
  });
  return Narrow<Integer>(count, at);
}

void clsTemplate::Clear() {
  Kept(Pages())->RemoveAll();
}

Array<String> clsTemplate::QuestionNames(Long lFirst, Long lLast, Long, String, Long, CallSite at) const {
  if (lFirst < 1 || lLast < lFirst - 1 || lLast > AllQuestions(at)) Raise(kSubscriptOutOfRange, at);
  std::vector<String> names;
  names.reserve(static_cast<std::size_t>(std::int64_t{lLast} - lFirst + 1));
  Long position = 0;
  EachField([&](const clsTemplateField& field) {
    const Kept questions(field.Questions());
    for (const Ref<clsTemplateQuestion>& question : *questions) {
      ++position;
      if (position >= lFirst && position <= lLast) names.push_back(question->Name());
    }
  });
  return Array<String>(1, std::move(names));
}

Ref<clsTemplate> clsTemplate::Copy(bool, bool) const {
  const Kept copy(New<clsTemplate>());
  const Kept pages(Pages());
  for (const Ref<clsTemplatePage>& page : *pages) copy->pages_->Add(page->Copy());
  return copy.Share();
}

void clsTemplate::NumberQuestions(CallSite at) const {
  if (numbered_) return;
  Long number = 0;
  Integer previousGroup = 0;
  EachField([&](const clsTemplateField& field) {
    const Integer group = field.GroupID();
    const bool visited = group == 0 || group != previousGroup;
    previousGroup = group;
    Long visits = visited ? field.QuestionCount(at) : 0;
    const Kept questions(field.Questions());
    for (const Ref<clsTemplateQuestion>& question : *questions) {
      if (visits-- > 0) ++number;
      // A question that was added to another form later belongs to that one.
      if (question->Form() == this) question->position_ = number;
    }
  });
  numbered_ = true;
}

}  // namespace TORVA35
