#pragma once

#include "tests/merge/MergeFixture.h"
#include "tests/platform/Faults.h"

/// A host's own form and LMF model, of which one call faults: the n-th that the engine makes.
namespace TORVA35::faulty {

inline Long callsLeft = 0;

// One of the host's calls. Nothing is owned here when it faults.
inline void Step() {
  if (--callsLeft == 0) faults::NullRead();
}

// What all of the host's lists have in common.
template <class List, class T>
class ListOf : public List {
 public:
  Long Count() const override { return Step(), List::Count(); }
  Ref<T> Item(const TaggedValue& Index, CallSite at = CallSite::Current()) const override {
    return Step(), List::Item(Index, at);
  }
};

template <class List, class T>
class PartsOf : public ListOf<List, T> {
 public:
  bool Add(Ref<T> oItem, CallSite at = CallSite::Current()) override {
    return Step(), List::Add(std::move(oItem), at);
  }
};

class Strings : public clsTemplateStrings {
 public:
  Long Count() const override { return Step(), clsTemplateStrings::Count(); }
  String Item(const TaggedValue& Index, CallSite at = CallSite::Current()) const override {
    return Step(), clsTemplateStrings::Item(Index, at);
  }
  void Item(const TaggedValue& Index, String sText, CallSite at = CallSite::Current()) override {
    Step(), clsTemplateStrings::Item(Index, std::move(sText), at);
  }
};

class Question : public clsTemplateQuestion {
 public:
  Question() {
    const auto labels = New<Strings>();
    const auto values = New<Strings>();
    for (const char16_t* text : {u"1", u"2", u"3", u"4"}) labels->Add(text), values->Add(text);
    clsTemplateQuestion::Labels(labels);
    clsTemplateQuestion::Values(values);
  }
  bool Graded() const override { return Step(), clsTemplateQuestion::Graded(); }
  void Graded(bool bGraded) override { Step(), clsTemplateQuestion::Graded(bGraded); }
  String Text() const override { return Step(), clsTemplateQuestion::Text(); }
  void Text(String sText) override { Step(), clsTemplateQuestion::Text(std::move(sText)); }
  Ref<clsTemplateStrings> Labels() const override { return Step(), clsTemplateQuestion::Labels(); }
  void Labels(Ref<clsTemplateStrings> oLabels) override {
    Step(), clsTemplateQuestion::Labels(std::move(oLabels));
  }
  Long Number(bool bArgument, CallSite at = CallSite::Current()) const override {
    return Step(), clsTemplateQuestion::Number(bArgument, at);
  }
};

class Field : public clsTemplateField {
 public:
  Ref<clsTemplateQuestions> Questions() const override { return Step(), questions_; }
  Integer GroupID() const override { return Step(), clsTemplateField::GroupID(); }
  String Name() const override { return Step(), clsTemplateField::Name(); }

 private:
  Ref<clsTemplateQuestions> questions_ = New<PartsOf<clsTemplateQuestions, clsTemplateQuestion>>();
};

class Page : public clsTemplatePage {
 public:
  Ref<clsTemplateFields> Fields() const override { return Step(), fields_; }

 private:
  Ref<clsTemplateFields> fields_ = New<PartsOf<clsTemplateFields, clsTemplateField>>();
};

class Form : public clsTemplate {
 public:
  Ref<clsTemplatePages> Pages() const override { return Step(), pages_; }
  // The host's own work does not fault: what its frames own is its own.
  Ref<clsTemplate> Copy(bool, bool) const override {
    Step();
    const Long left = std::exchange(callsLeft, -1);
    auto copy = Make();
    callsLeft = left;
    return copy;
  }

  // A version field, and a field of four graded questions.
  static Ref<clsTemplate> Make() {
    auto form = New<Form>();
    auto page = New<Page>();
    for (const Long count : {1, 4}) {
      auto field = New<Field>();
      field->FieldClass(1);
      field->FieldType(1);
      for (Long q = 1; q <= count; ++q) {
        auto question = New<Question>();
        question->clsTemplateQuestion::Graded(count > 1);
        if (count == 1) question->clsTemplateQuestion::Labels()->clsTemplateStrings::Item(1, u"A");
        if (count == 1) question->clsTemplateQuestion::Labels()->clsTemplateStrings::Item(2, u"B");
        field->Questions()->Add(question);
      }
      page->Fields()->Add(field);
    }
    form->Pages()->Add(page);
    return form;
  }

 private:
  Ref<clsTemplatePages> pages_ = New<PartsOf<clsTemplatePages, clsTemplatePage>>();
};

class Objectives : public ListOf<clsLmfObjectives, clsLmfObjective> {
 public:
  void Add(Ref<clsLmfObjective> oObjective, const TaggedValue& Key, CallSite at) override {
    Step(), clsLmfObjectives::Add(std::move(oObjective), Key, at);
  }
  bool Exists(const TaggedValue& Key, CallSite at) const override {
    return Step(), clsLmfObjectives::Exists(Key, at);
  }
};

class Sequences : public ListOf<clsLmfSequences, clsLmfSequence> {
 public:
  void Add(Ref<clsLmfSequence> oSequence, CallSite at) override { Step(), clsLmfSequences::Add(oSequence, at); }
};

class Versions : public clsLmfVersions {
 public:
  Ref<clsLmfSequences> Sequences() const override { return Step(), sequences_; }
  Ref<clsLmfStrings> VersionNames() const override { return Step(), clsLmfVersions::VersionNames(); }

 private:
  Ref<clsLmfSequences> sequences_ = New<faulty::Sequences>();
};

class LmfQuestions : public ListOf<clsLmfQuestions, clsLmfQuestion> {
 public:
  void Add(Ref<clsLmfQuestion> oQuestion, CallSite at) override { Step(), clsLmfQuestions::Add(oQuestion, at); }
};

class Lmf : public clsLmf {
 public:
  Ref<clsLmfQuestions> Questions() const override { return Step(), questions_; }
  Ref<clsLmfVersions> Versions() const override { return Step(), versions_; }
  Ref<clsLmfObjectives> Objectives() const override { return Step(), objectives_; }

 private:
  Ref<clsLmfQuestions> questions_ = New<LmfQuestions>();
  Ref<clsLmfVersions> versions_ = New<faulty::Versions>();
  Ref<clsLmfObjectives> objectives_ = New<faulty::Objectives>();
};

}  // namespace TORVA35::faulty
