// A host that knows the library only as it is installed: consumer EXAMVIEW_FILE merges the test into a form and
// prints the key. It needs what a real one does: its own error object, virtual members, failures thrown to it, and
// folders and headers that have the same names as the library's.

#include <torva35/TORVA35.h>
#include <torva35/merge/Component.h>

#include <iostream>

#include "base/Types.h"
#include "errors/basError.h"
#include "model/Collection.h"

using namespace TORVA35;

namespace {

class HostErrors : public ErrorObject {
 public:
  TaggedValue RaiseError(TaggedValue& vNumber, Long&, String& sDescription, String&, String&, String&, String&,
                         String&, Long&, String&, String&, String&, bool&) override {
    std::cerr << ToUtf8(TextOf(vNumber)) << ' ' << ToUtf8(sDescription) << '\n';
    return 0;
  }
  TaggedValue MsgBoxEx(String, String, Long, TaggedValue, String, TaggedValue) override { return 1; }
};

Ref<clsTemplate> Form(Long lQuestions) {
  auto oField = New<clsTemplateField>();
  oField->FieldClass(1);
  oField->FieldType(1);
  for (Long q = 1; q <= lQuestions; ++q) {
    oField->Questions()->AddNew();
    oField->Questions()->Item(q)->Graded(true);
    for (const char16_t* label : host::Labels{u"1", u"2", u"3", u"4", u"5"}) {
      oField->Questions()->Item(q)->Labels()->Add(label);
      oField->Questions()->Item(q)->Values()->Add(label);
    }
  }
  auto oPage = New<clsTemplatePage>();
  oPage->Fields()->Add(oField);
  auto oForm = New<clsTemplate>();
  oForm->Pages()->Add(oPage);
  return oForm;
}

bool Merge(const char* file) {
  auto oEngine = New<clsTORVA>();
  oEngine->SetError(New<HostErrors>());
  auto oTest = New<clsTORVATest>();
  if (!oTest->LoadXML(FromUtf8(file))) return false;
  oEngine->Tests()->Add(oTest);
  oEngine->TemplateIn(Form(12));
  oEngine->TemplateOut(New<clsTemplate>());
  if (!oEngine->RemoveInvalid() || !oEngine->Merge()) return false;
  for (const auto& oQuestion : *oEngine->MIVLMF()->Questions()) {
    if (oQuestion->Graded()) std::cout << ToUtf8(oQuestion->CorrectLabels()->Item(1)) << ' ';
  }
  std::cout << '\n';
  oEngine->SetError(nullptr);
  return true;
}

bool CatchesFailures() {
  try {
    New<clsTemplatePages>()->Item(1);
  } catch (const Error& error) {
    return error.Number() == host::kOutOfRange;
  }
  return false;
}

bool MakesObjectsByName() {
  const ClassFactory* factory = nullptr;
  return DllGetClassObject(u"clsTORVATestCorrect", &factory) == kComponentOk &&
         std::dynamic_pointer_cast<clsTORVATestCorrect>(factory->CreateInstance()) != nullptr;
}

}  // namespace

int main(int argc, char** argv) {
  const bool good =
      argc == 2 && Merge(argv[1]) && CatchesFailures() && MakesObjectsByName() && Object::AliveCount() == 0;
  return good ? 0 : 1;
}
