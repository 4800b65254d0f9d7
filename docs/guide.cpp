// The program that docs/guide.md shows: guide EXAMPLES_FOLDER DOCS_FOLDER. A region between two marks of one name
// is a snippet of the guide, word for word (scripts/guide-snippets); what stands around it proves what the guide
// says of it, and that the numbers in docs/errors.md are those of the library.

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <torva35/TORVA35.h>
#include "torva35/errors/modvbCodeShieldSupport.h"

using namespace TORVA35;

namespace {

void Expect(bool condition, int line = __builtin_LINE()) {
  if (condition) return;
  std::cerr << "guide.cpp:" << line << ": not as the guide says\n";
  std::exit(1);
}

// [error-object]
class MyErrorObject : public ErrorObject {
 public:
  // Every failure comes here once.
  TaggedValue RaiseError(TaggedValue& vNumber, Long&, String& sDescription, String& sLocation, String&, String&,
                         String&, String&, Long&, String&, String&, String&, bool&) override {
    std::cerr << "failure " << *vNumber.As<Long>() << ": " << ToUtf8(sDescription) << " at " << ToUtf8(sLocation)
              << '\n';
    ++failures;
    return 0;
  }

  // Every dialog comes here, and its member waits for the answer.
  TaggedValue MsgBoxEx(String sTitle, String sText, Long /*lStyle*/, TaggedValue /*vOwner*/, String /*sButton1*/,
                       TaggedValue vButton2) override {
    std::cerr << ToUtf8(sTitle) << ": " << ToUtf8(sText) << '\n';
    dialogs.push_back(sTitle);
    const bool hasCancel = !vButton2.IsMissing();
    return hasCancel && cancel ? 2 : 1;  // 2: the user cancelled
  }

  int failures = 0;
  std::vector<String> dialogs;
  bool cancel = false;
};
// [error-object]

// [load]
// The test of an ExamView file, or nothing.
Ref<clsTORVATest> Load(const std::string& path) {
  auto oTest = New<clsTORVATest>();
  oTest->ImportObjectives(TORVATestImportObjectivesLearning | TORVATestImportObjectivesState);
  oTest->StateAbbreviation(u"OH");
  bool bUserCancelled = false;
  if (oTest->LoadXML(FromUtf8(path), false, bUserCancelled)) return oTest;
  if (!bUserCancelled) std::cerr << path << " is no ExamView file with questions\n";
  return nullptr;
}
// [load]

// [walk]
void PrintTest(const clsTORVATest& oTest) {
  const auto oQuestions = oTest.Questions();
  for (Long i = 1; i <= oQuestions->Count(); ++i) {
    const auto oQuestion = oQuestions->Item(i);
    std::cout << i << ". " << ToUtf8(oQuestion->QuestionText()) << '\n';
    const auto oAnswers = oQuestion->Answers();
    for (Long k = 1; k <= oAnswers->Count(); ++k) std::cout << "   - " << ToUtf8(oAnswers->Item(k)) << '\n';
  }
}
// [walk]

// [why]
std::string WhyRefused(const std::string& path) {
  DOMDocument document;
  if (!document.load(FromUtf8(path))) {
    const XmlParseError& error = document.parseError();
    return "line " + std::to_string(error.line) + ": " + ToUtf8(error.reason);
  }
  if (!document.selectSingleNode(u"examview")) return "the root element is not examview";
  return "it has no question";
}
// [why]

// [form]
// A field of questions that all offer the same labels.
Ref<clsTemplateField> Field(const String& sName, Long lQuestions, bool bGraded,
                            const std::vector<String>& labels) {
  auto oField = New<clsTemplateField>();
  oField->Name(sName);
  oField->FieldClass(1);  // 1 and 1: a field of choices, which takes labels from the test
  oField->FieldType(1);
  for (Long q = 1; q <= lQuestions; ++q) {
    oField->Questions()->AddNew();
    const auto oQuestion = oField->Questions()->Item(q);
    oQuestion->Name(sName + u" " + Decimal(q));
    oQuestion->Graded(bGraded);
    oQuestion->CorrectPoints(bGraded ? 1 : 0);
    for (const String& sLabel : labels) {
      oQuestion->Labels()->Add(sLabel);
      oQuestion->Values()->Add(Decimal(oQuestion->Labels()->Count()));
    }
  }
  return oField;
}

// One page: the version mark first, then the graded questions.
Ref<clsTemplate> MakeForm(Long lQuestions) {
  auto oPage = New<clsTemplatePage>();
  oPage->Fields()->Add(Field(u"Version", 1, false, {u"A", u"B", u"C"}));
  oPage->Fields()->Add(Field(u"Question", lQuestions, true, {u"1", u"2", u"3", u"4", u"5"}));
  auto oForm = New<clsTemplate>();
  oForm->Pages()->Add(oPage);
  return oForm;
}
// [form]

// [print-form]
void PrintForm(const clsTemplate& oForm) {
  for (const auto& oPage : *oForm.Pages()) {
    for (const auto& oField : *oPage->Fields()) {
      for (const auto& oQuestion : *oField->Questions()) {
        std::cout << ToUtf8(oQuestion->Name()) << ": " << ToUtf8(oQuestion->Text()) << " [";
        for (const String& sLabel : *oQuestion->Labels()) std::cout << ' ' << ToUtf8(sLabel);
        std::cout << (oQuestion->Graded() ? " ]\n" : " ] not graded\n");
      }
    }
  }
}
// [print-form]

// [print-key]
void PrintKey(const clsLmf& oLmf) {
  for (const auto& oQuestion : *oLmf.Questions()) {
    if (!oQuestion->Graded()) continue;
    std::cout << ToUtf8(oQuestion->Name()) << ": " << ToUtf8(oQuestion->CorrectLabels()->Item(1)) << ", worth "
              << oQuestion->CorrectPoints() << '\n';
  }
}

void PrintVersions(const clsLmf& oLmf) {
  const auto oVersions = oLmf.Versions();
  for (Long n = 1; n <= oVersions->VersionNames()->Count(); ++n) {
    std::cout << "version " << ToUtf8(oVersions->VersionNames()->Item(n)) << ':';
    const auto oOrder = oVersions->Sequences()->Item(n);
    for (Long place = 1; place <= oOrder->Count(); ++place) std::cout << ' ' << oOrder->Item(place);
    std::cout << '\n';
  }
}
// [print-key]

// [save]
// Saves what a merge has made, and reads it back as a test.
Ref<clsTORVATest> SaveAndLoad(const clsTORVA& oEngine, const std::string& path) {
  oEngine.MIVLMF()->Description(u"Unit 3");  // a merge empties both texts of the host
  oEngine.MIVLMF()->Notes(u"Room 12");
  if (!oEngine.MIVLMF()->Save(FromUtf8(path))) {
    std::cerr << path << " cannot be written; an old file is still whole\n";
    return nullptr;
  }
  auto oTest = New<clsTORVATest>();
  if (!oTest->LoadLMF(FromUtf8(path))) return nullptr;
  oTest->Title(u"Unit 3");  // comes from paths with "\" only
  return oTest;
}
// [save]

bool MergeBoth(const std::string& folder, const Ref<MyErrorObject>& oErr, const std::string& output) {
  // [begin]
  auto oEngine = New<clsTORVA>();
  oEngine->SetError(oErr);
  // [begin]

  // [tests]
  const auto oMaster = Load(folder + "/sample-test.xml");
  const auto oVersion = Load(folder + "/sample-test-b.xml");
  if (!oMaster || !oVersion) return false;
  oEngine->Tests()->Add(oMaster);   // the first one is the master test
  oEngine->Tests()->Add(oVersion);  // each later one is a version of it
  // [tests]
  Expect(oErr->dialogs == std::vector<String>(2, u"Partial Credit"));
  Expect(oMaster->Questions()->Count() == 12 && oMaster->Version() == u"A");
  PrintTest(*oMaster);

  // [clean-up]
  if (!oEngine->RemoveInvalid()) return false;
  // [clean-up]
  Expect(oErr->dialogs.size() == 4 && oErr->dialogs.back() == u"Invalid Question Type(s)");
  Expect(oMaster->Questions()->Count() == 10);

  // [versions]
  if (!oEngine->ValidTestVersions()) return false;
  oMaster->Sequences()->RemoveAll();
  oMaster->Sequences()->AddDefault(oMaster->Questions(), oMaster->Version());
  for (Long v = 2; v <= oEngine->Tests()->Count(); ++v) {
    if (!oMaster->AddSequence(oEngine->Tests()->Item(v))) return false;
  }
  // [versions]
  Expect(oMaster->Sequences()->Count() == 2);

  // [merge]
  oEngine->TemplateIn(MakeForm(12));
  oEngine->TemplateOut(New<clsTemplate>());  // some form, which Merge empties and replaces
  oEngine->SequenceQuestion(1);              // the version mark is the first question of the form
  if (!oEngine->Merge()) return false;
  PrintForm(*oEngine->TemplateOut());
  PrintKey(*oEngine->MIVLMF());
  PrintVersions(*oEngine->MIVLMF());
  // [merge]
  Expect(oErr->failures == 0 && oErr->dialogs.size() == 4);
  Expect(oEngine->SequenceQuestion() == 1);
  const auto oQuestions = oEngine->MIVLMF()->Questions();
  Expect(oQuestions->Count() == 13);  // 12 graded ones were wanted, 10 there are, and all stay on the form
  Expect(oQuestions->Item(11)->Graded() && !oQuestions->Item(12)->Graded());
  Expect(oQuestions->Item(8)->CorrectLabels()->Item(1) == u"(B,D)");
  Expect(oQuestions->Item(8)->CorrectPoints() == 1);  // of the form; the file says 2
  // A question of three answers in a row for any of the versions.
  Expect(oQuestions->Item(7)->Labels()->Count() == 5);
  Expect(oEngine->MIVLMF()->Versions()->Sequences()->Item(2)->Item(2) == 3);

  // [again]
  const auto oFirstForm = oEngine->TemplateOut();
  const auto oFirstFile = oEngine->MIVLMF();
  oEngine->TemplateOut(New<clsTemplate>());  // or the first result is emptied
  oEngine->MIVLMF(New<clsLmf>());            // likewise
  oEngine->SequenceQuestion(1);              // the first merge may have lowered it
  if (!oEngine->Merge()) return false;
  // [again]
  Expect(oFirstForm->QuestionCount() == 13 && oFirstFile->Questions()->Count() == 13);

  const auto oRead = SaveAndLoad(*oEngine, output);
  Expect(oRead && oRead->Title() == u"Unit 3" && oRead->Notes() == u"Room 12" && oRead->UserDefined());
  Expect(oRead->Questions()->Count() == 10 && oRead->Questions()->Item(1)->ID() == u"2");
  Expect(oRead->Sequences()->Count() == 2 && oRead->Sequences()->Item(2)->Answer() == u"B");
  Expect(oErr->failures == 0);
  return true;
}

void WithoutErrorObject() {
  // [message-box]
  SetMessageBoxHook([](const String& sText, const String& sTitle, Long) {
    std::cerr << ToUtf8(sTitle) << ": " << ToUtf8(sText) << '\n';
  });
  // [message-box]
  static int boxes = 0;
  SetMessageBoxHook([](const String&, const String&, Long) { ++boxes; });
  New<clsTORVA>()->Merge();  // a dialog is due, and there is nobody to show it
  Expect(boxes == 1);
  SetMessageBoxHook({});
}

void RaisingObjects() {
  // [raising]
  const auto oTest = New<clsTORVATest>();
  if (oTest->Questions()->Item(7) == nullptr) std::cerr << "no such question\n";  // the test model never raises
  try {
    New<clsTemplate>()->Pages()->Item(7);  // forms and LMF models do
  } catch (const Error& error) {
    std::cerr << error.what() << '\n';  // "9: Subscript out of range"
  }
  // [raising]
}

void OnThreads(const std::string& folder) {
  // [thread]
  std::thread worker([path = folder + "/sample-test.xml"] {
    auto oTest = New<clsTORVATest>();
    oTest->SetError(New<MyErrorObject>());  // this thread has none yet
    oTest->LoadXML(FromUtf8(path));
  });
  worker.join();
  // [thread]
}

void Index() {
  // [index]
  auto oList = New<clsTORVATestStrings>();
  oList->Add(u"red", u"5");
  oList->Add(u"green");
  oList->Item(2);     // "green": a number is a position, from 1
  oList->Item(u"5");  // "red": a text is a key, also when it holds digits
  oList->Item(5);     // "": there is no fifth item
  // [index]
  Expect(oList->Item(2) == u"green" && oList->Item(u"5") == u"red" && oList->Item(5).empty());
}

// A test of the elements below examview.
Ref<clsTORVATest> TestOf(const std::string& elements) {
  const std::string path =
      (std::filesystem::temp_directory_path() / ("guide-" + std::to_string(getpid()) + ".xml")).string();
  std::ofstream(path) << "<examview>" << elements << "</examview>";
  auto oTest = New<clsTORVATest>();
  Expect(oTest->LoadXML(FromUtf8(path)));
  std::filesystem::remove(path);
  return oTest;
}

std::string Choice(const std::string& id, const std::string& answer, const std::string& choices = "<b/><b/><b/>") {
  return "<question type='mc' question-id='" + id + "'><choices>" + choices + "</choices><answer>" + answer +
         "</answer></question>";
}
std::string Version(const std::string& name) {
  return "<header><version>" + name + "</version></header>";
}

Ref<clsTORVA> EngineOf(const std::vector<Ref<clsTORVATest>>& tests, const Ref<clsTemplate>& oForm) {
  auto oEngine = New<clsTORVA>();
  for (const auto& oTest : tests) oEngine->Tests()->Add(oTest);
  oEngine->TemplateIn(oForm);
  oEngine->TemplateOut(New<clsTemplate>());
  return oEngine;
}

// What the guide says of other orders and of what to plan for, where no test of the library says it as well.
void OtherOrders(MyErrorObject& err, const std::string& output) {
  const auto Reports = [&err](int count) { return std::exchange(err.failures, 0) == count; };

  const auto oA =
      TestOf(Version("A") + Choice("1", "B") + "<question question-id='2'><answer>École</answer></question>");
  const auto oB =
      TestOf(Version("B") + Choice("1", "B") + "<question question-id='2'><answer>École</answer></question>");
  auto oEngine = EngineOf({oA, oB}, MakeForm(1));
  Expect(oEngine->ValidTestVersions() && Reports(2));
  Expect(oEngine->RemoveInvalid() && oEngine->ValidTestVersions() && Reports(0));

  // A version mark after graded questions that are switched off.
  const std::vector<String> letters = {u"A", u"B", u"C"};
  auto oPage = New<clsTemplatePage>();
  oPage->Fields()->Add(Field(u"Question", 3, true, letters));
  oPage->Fields()->Add(Field(u"Version", 1, false, letters));
  auto oForm = New<clsTemplate>();
  oForm->Pages()->Add(oPage);
  oEngine = EngineOf({oA, oB}, oForm);
  oEngine->SequenceQuestion(4);
  Expect(oEngine->Merge() && oEngine->SequenceQuestion() == 2);

  // Versions that AddSequence has added reach no data file.
  oA->Sequences()->RemoveAll();
  oA->Sequences()->AddDefault(oA->Questions(), oA->Version());
  Expect(oA->AddSequence(oB) && oA->Sequences()->Count() == 2);
  oEngine = EngineOf({oA}, MakeForm(1));
  Expect(oEngine->Merge() && oEngine->MIVLMF()->Versions()->VersionMode() == 0);

  // One object for both forms.
  oEngine->TemplateOut(oEngine->TemplateIn());
  Expect(!oEngine->Merge() && Reports(1) && oEngine->TemplateIn()->QuestionCount() == 0);

  // Two versions of one name, two correct answers, and the points of a subjective question, through a file.
  const auto oTwo = TestOf(Version("A") + Choice("1", "A,C"));
  auto oEssay = New<clsTORVATestQuestion>();
  oEssay->ID(u"2");
  oEssay->QuestionType(TORVATestQuestionTypeSubjective);
  oEssay->SubjectivePoints(5);
  oTwo->Questions()->Add(oEssay);
  Expect(oTwo->Questions()->Item(1)->MultiplesPermitted());
  oEngine = EngineOf({oTwo, oTwo}, MakeForm(1));
  oEngine->SequenceQuestion(1);
  Expect(oEngine->ValidTestVersions() && oEngine->Merge());
  const auto oRead = SaveAndLoad(*oEngine, output);
  Expect(oRead && oRead->Sequences()->Count() == 1 && Reports(1));
  Expect(!oRead->Questions()->Item(1)->MultiplesPermitted());
  Expect(oRead->Questions()->Item(1)->Answers()->AsString(u"") == u"ABC");
  Expect(oRead->Questions()->Item(2)->SubjectivePoints() == 0);

  Expect(TestOf("<question question-id='1' bank-id='12'/><question question-id='11' bank-id='2'/>")
             ->Questions()
             ->Count() == 1);
  Expect(TestOf("<question/><question/>")->Questions()->Count() == 1 && Reports(2));
  Expect(TestOf(Choice("1", "A,E", "<b/><b/><b/><b/><b/>"))->CorrectAnswersAsString(1) == u"(A,)");
  Expect(TestOf(Version(" A ") + Choice("1", "A"))->Version() == u" A ");
  Expect(TestOf("<question><text><para>H<sub>2</sub>O <table>x</table>x<sup>2</sup></para></text></question>")
             ->Questions()
             ->Item(1)
             ->QuestionText() == u"H O x 2");
}

// The rows "| number | text | ..." and "| number | code | text | ..." of the tables.
void Numbers(const std::string& path) {
  std::ifstream file(path);
  int rows = 0;
  for (std::string line; std::getline(file, line);) {
    std::istringstream words(line);
    std::string bar, second, third;
    Long number = 0;
    if (!(words >> bar && bar == "|" && words >> number >> bar)) continue;
    std::getline(words, second, '|');
    std::getline(words, third, '|');
    const auto trimmed = [](const std::string& text) { return String(Trim(FromUtf8(text))); };
    if (second.starts_with(" 0x")) {
      const auto code = static_cast<Long>(std::stoul(second, nullptr, 16));
      Expect(number == ((code & 0x8EF) | 10000));
      Expect(modvbCodeShieldSupport::ExceptionName(code) == trimmed(third));
    } else {
      Expect(StandardText(number) == trimmed(second));
    }
    ++rows;
  }
  Expect(rows == 26);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  const std::string folder = argv[1];
  const std::string output =
      (std::filesystem::temp_directory_path() / ("guide-" + std::to_string(getpid()) + ".lmf")).string();

  // [once]
  const auto oErr = New<MyErrorObject>();
  // [once]
  const bool merged = MergeBoth(folder, oErr, output);
  Expect(merged);
  OtherOrders(*oErr, output);
  std::filesystem::remove(output);

  oErr->cancel = true;
  Expect(Load(folder + "/sample-test.xml") == nullptr);
  Expect(Load(folder + "/no-such-file.xml") == nullptr);
  Expect(WhyRefused(folder + "/no-such-file.xml").starts_with("line 0: "));
  RaisingObjects();
  OnThreads(folder);
  Index();
  Numbers(std::string(argv[2]) + "/errors.md");
  Expect(oErr->failures == 0);

  // [end]
  New<clsTORVA>()->SetError(nullptr);
  // [end]
  WithoutErrorObject();
  return 0;
}
