#include "torva35/form/clsTemplate.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "tests/Values.h"

namespace TORVA35 {
namespace {

Ref<clsTemplateField> Field(Integer group, int questions) {
  auto field = New<clsTemplateField>();
  field->GroupID(group);
  for (int i = 0; i < questions; ++i) field->Questions()->AddNew();
  return field;
}

Ref<clsTemplatePage> Page(const std::vector<Ref<clsTemplateField>>& fields) {
  auto page = New<clsTemplatePage>();
  for (const auto& field : fields) page->Fields()->Add(field);
  return page;
}

// Of the first page.
Ref<clsTemplateField> FieldOf(const clsTemplate& form, Long field) {
  return form.Pages()->Item(1)->Fields()->Item(field);
}

std::vector<Long> Numbers(const clsTemplate& form) {
  std::vector<Long> numbers;
  for (const auto& page : *form.Pages()) {
    for (const auto& field : *page->Fields()) {
      for (const auto& question : *field->Questions()) numbers.push_back(question->Number(true));
    }
  }
  return numbers;
}

using Expected = std::vector<Long>;

TEST(clsTemplate, NumberFollowsTheOutputQuestionsOfAMerge) {
  clsTemplate form;
  const auto late = Field(7, 0);
  form.Pages()->Add(Page({Field(1, 2), Field(7, 2), Field(7, 2)}));
  form.Pages()->Add(Page({late, Field(0, 1), Field(7, 1), Field(8, 1)}));
  EXPECT_EQ(Numbers(form), (Expected{1, 2, 3, 4, 4, 4, 5, 6, 7}));

  late->Questions()->AddNew();
  EXPECT_EQ(Numbers(form), (Expected{1, 2, 3, 4, 4, 4, 4, 5, 6, 7})) << "a group reaches over the page";
  late->GroupID(9);
  EXPECT_EQ(Numbers(form), (Expected{1, 2, 3, 4, 4, 4, 5, 6, 7, 8}));
  const auto added = Field(0, 1);
  form.Pages()->Item(1)->Fields()->Add(added);
  EXPECT_EQ(Numbers(form), (Expected{1, 2, 3, 4, 4, 4, 5, 6, 7, 8, 9}));

  added->Questions()->Item(1)->Number(40);
  EXPECT_EQ(added->Questions()->Item(1)->Number(true), 40);
  form.Pages()->RemoveAll();
  EXPECT_EQ(late->Questions()->Item(1)->Number(true), 0);
}

TEST(clsTemplate, APartCountsInTheFormToWhichItWasAddedLast) {
  const auto shared = Field(0, 1);
  auto first = New<clsTemplate>(), second = New<clsTemplate>();
  first->Pages()->Add(Page({shared, Field(0, 1)}));
  second->Pages()->Add(Page({Field(0, 1), Field(0, 1), shared}));
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(Numbers(*second), (Expected{1, 2, 3}));
    EXPECT_EQ(Numbers(*first), (Expected{3, 2}));
  }
  second->Clear();
  EXPECT_EQ(Numbers(*first), (Expected{0, 2}));
  // It outlives the form.
  const auto pages = first->Pages();
  const auto question = FieldOf(*first, 2)->Questions()->Item(1);
  first.reset();
  EXPECT_EQ(question->Number(true), 0);
  pages->Add(Page({}));
  EXPECT_EQ(question->Number(true), 0);
}

TEST(clsTemplate, CountsAndNames) {
  clsTemplate form;
  EXPECT_EQ(form.QuestionNames(1, form.QuestionCount(), 0, u"\t", 0), Array<String>());
  EXPECT_TRUE(form.Pages()->Add(Page({Field(7, 2), Field(7, 1)})));
  for (Long q : {1, 2}) {
    FieldOf(form, 1)->Questions()->Item(q)->Name(u"Q" + Decimal(q));
    FieldOf(form, 1)->Questions()->Item(q)->Graded(true);
    EXPECT_EQ(Values({form.PageCount(), form.QuestionCount(), form.GradedCount()}), u"1 3 " + Decimal(q));
  }
  EXPECT_EQ(form.QuestionNames(1, 3, 0, u"\t", 0), Array<String>(1, {u"Q1", u"Q2", u""}));
  EXPECT_EQ(form.QuestionNames(2, 2, 0, u"\t", 0), Array<String>(1, {u"Q2"}));
  EXPECT_EQ(Raised([&] { form.QuestionNames(1, 4, 0, u"\t", 0); }), kSubscriptOutOfRange);
  EXPECT_EQ(Raised([&] { form.QuestionNames(0, 1, 0, u"\t", 0); }), kSubscriptOutOfRange);
  form.Clear();
  EXPECT_EQ(form.PageCount() + form.QuestionCount(), 0);

  form.Pages()->Add(Page({Field(0, 20000), Field(0, 12767)}));
  EXPECT_EQ(form.QuestionCount(), 32767);
  FieldOf(form, 2)->Questions()->AddNew();
  EXPECT_EQ(Raised([&] { form.QuestionCount(); }), kOverflow);
  EXPECT_EQ(form.GradedCount(), 0);
  EXPECT_EQ(FieldOf(form, 2)->Questions()->Item(12768)->Number(true), 32768);
}

TEST(clsTemplate, ACopyIsEqualAndSharesNothing) {
  auto form = New<clsTemplate>();
  form->Pages()->Add(Page({Field(7, 1), Field(7, 2)}));
  form->Pages()->Add(Page({}));
  const auto field = FieldOf(*form, 2);
  field->Name(u"Block");
  field->FieldType(4);
  const auto question = field->Questions()->Item(2);
  question->Name(u"Q");
  question->Graded(true);
  question->IncorrectPoints(-0.5);
  question->Number(77);
  question->Labels()->AddArray({u"A", u"B"});
  question->Values()->AddArray({u"1", u"2"});
  // One list in two questions becomes two lists.
  field->Questions()->Item(1)->Labels(question->Labels());
  field->Questions()->Item(1)->Values(nullptr);
  const auto copy = form->Copy(true, false);
  // Changes on either side stay there.
  question->Name(u"changed");
  question->Graded(false);
  field->Questions()->AddNew();
  const auto copied = FieldOf(*copy, 2);
  const auto first = copied->Questions()->Item(1), second = copied->Questions()->Item(2);
  first->Labels()->Item(1, u"");

  EXPECT_EQ(Values({copy->PageCount(), copy->QuestionCount(), copy->GradedCount(), form->GradedCount(),
                    copied->Name(), copied->FieldType(), copied->GroupID(), second->Name(),
                    second->IncorrectPoints(), Joined(*second->Labels()), Joined(*second->Values())}),
            u"2 3 1 0 Block 4 7 Q -0.5 A|B 1|2");
  EXPECT_EQ(Joined(*question->Labels()) + Joined(*first->Labels()), u"A|B|B");
  EXPECT_EQ(first->Values(), nullptr);
  form.reset();
  EXPECT_EQ(Numbers(*copy), (Expected{1, 1, 77}));
}

TEST(clsTemplate, IndexFailuresHaveTheirNumbers) {
  clsTemplateStrings strings({u"A", u"B"});
  EXPECT_EQ(strings.Item(2.5) + strings.Item(1.5f) + strings.Item(Integer{1}), u"BBA");
  for (const TaggedValue& index : std::vector<TaggedValue>{0, 3, 0.5, 2.51, 1e99, std::nan("")}) {
    EXPECT_EQ(Raised([&] { strings.Item(index); }), kSubscriptOutOfRange);
    EXPECT_EQ(Raised([&] { strings.Item(index, u"C"); }), kSubscriptOutOfRange);
  }
  for (const TaggedValue& index : std::vector<TaggedValue>{u"1", true, Empty, Null, Missing, nullptr}) {
    EXPECT_EQ(Raised([&] { strings.Item(index); }), kTypeMismatch);
  }
  EXPECT_EQ(Raised([&] { clsTemplate().Pages()->Add(nullptr); }), kNothing);
}

}  // namespace
}  // namespace TORVA35
