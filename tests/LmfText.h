#pragma once

#include <cstdio>
#include <string>
#include <string_view>

#include "torva35/base/Text.h"
#include "torva35/lmf/LmfFile.h"
#include "torva35/lmf/clsLmf.h"

namespace TORVA35 {

/// Everything that an LMF model holds as one text, a line for each member of each object, so that two models can
/// be compared and a difference can be read.
inline String LmfText(const clsLmf& oLmf) {
  String all;
  const auto line = [&](StringView name, const TaggedValue& value) {
    all += String(name) + u": " + TextOf(value) + u"\n";
  };
  const auto strings = [&](StringView name, const clsLmfStrings& list) {
    for (Long i = 1; i <= list.Count(); ++i) line(String(name) + u" " + Decimal(i), list.Item(i));
  };

  line(u"Description", oLmf.Description());
  line(u"Notes", oLmf.Notes());
  line(u"Mode", oLmf.Mode());
  line(u"PageCount", oLmf.PageCount());
  for (Long i = 1; i <= oLmf.Objectives()->Count(); ++i) {
    line(u"Objective", oLmf.Objectives()->Item(i)->Text());
    if (const auto key = oLmf.Objectives()->KeyOf(i)) line(u"Key", *key);
  }
  line(u"HasBuiltIn", oLmf.Objectives()->HasBuiltIn());
  const auto versions = oLmf.Versions();
  line(u"SequenceQuestion", versions->SequenceQuestion());
  line(u"VersionMode", versions->VersionMode());
  strings(u"VersionNames", *versions->VersionNames());
  for (const auto& sequence : *versions->Sequences()) {
    String order;
    for (Long i = 1; i <= sequence->Count(); ++i) order += u" " + Decimal(sequence->Item(i));
    line(u"Sequence", order);
  }
  for (const auto& question : *oLmf.Questions()) {
    line(u"Name", question->Name());
    line(u"Text", question->Text());
    strings(u"Labels", *question->Labels());
    strings(u"Values", *question->Values());
    strings(u"CorrectLabels", *question->CorrectLabels());
    strings(u"CorrectValues", *question->CorrectValues());
    String flags;
    for (Long i = 1; i <= question->ObjectiveFlags()->Count(); ++i) {
      flags += *question->ObjectiveFlags()->Item(i) ? u'1' : u'0';
    }
    line(u"ObjectiveFlags", flags);
    line(u"Graded", question->Graded());
    line(u"Subjective", question->Subjective());
    line(u"CarriedFlag1", question->CarriedFlag1());
    line(u"CarriedFlag2", question->CarriedFlag2());
    line(u"QuestionMode", question->QuestionMode());
    line(u"Multiples", question->Multiples());
    line(u"DefaultText", question->DefaultText());
    line(u"DefaultValue", question->DefaultValue());
    line(u"CorrectCount", question->CorrectCount());
    line(u"CorrectAnd", question->CorrectAnd());
    line(u"CorrectPoints", question->CorrectPoints());
    line(u"IncorrectPoints", question->IncorrectPoints());
    line(u"NoResponsePoints", question->NoResponsePoints());
    line(u"SubjectivePoints", question->SubjectivePoints());
    line(u"Difficulty", question->Difficulty());
    line(u"Reference", question->Reference());
    line(u"Topic", question->Topic());
    line(u"Keywords", question->Keywords());
    line(u"Miscellaneous", question->Miscellaneous());
    line(u"Notes", question->Notes());
  }
  return all;
}

/// A whole file from all that stands before its checksum.
inline std::string WithChecksum(std::string_view body) {
  char digits[9];
  std::snprintf(digits, sizeof(digits), "%08x", static_cast<unsigned>(lmf_file::Crc32(0, body)));
  std::string file(body);
  return file.append(lmf_file::kCheckBegin).append(digits).append(lmf_file::kCheckEnd);
}

}  // namespace TORVA35
