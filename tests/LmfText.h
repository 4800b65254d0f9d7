#pragma once

#include <cstdio>
#include <string>
#include <string_view>
#include <type_traits>

#include "tests/Values.h"
#include "torva35/lmf/LmfFile.h"
#include "torva35/lmf/clsLmf.h"

namespace TORVA35 {

// The members of an LMF question: X is given the name of each.
#define LMF_TEXTS(X) X(Name) X(Text) X(DefaultText) DESCRIPTIONS(X)
#define LMF_BOOLEANS(X) X(Graded) X(Subjective) X(CorrectAnd)
#define LMF_WHOLES(X) X(CarriedFlag1) X(CarriedFlag2) X(QuestionMode) X(Multiples) X(CorrectCount)
#define LMF_POINTS(X) X(CorrectPoints) X(IncorrectPoints) X(NoResponsePoints) X(SubjectivePoints) X(DefaultValue)
#define LMF_VALUES(X) LMF_TEXTS(X) LMF_BOOLEANS(X) LMF_WHOLES(X) LMF_POINTS(X)
#define LMF_LISTS(X) X(Labels) X(Values) X(CorrectLabels) X(CorrectValues)

inline String Flags(const clsLmfObjectiveFlags& flags) {
  String text;
  for (Long i = 1; i <= flags.Count(); ++i) text += *flags.Item(i) ? u'1' : u'0';
  return text;
}

/// What the question holds: a line for each member that is not empty, 0 or False. A list has its count before it.
inline String LmfText(const clsLmfQuestion& question) {
  String all;
  const auto line = [&](StringView name, const auto& value) {
    if (value != std::remove_cvref_t<decltype(value)>()) all += String(name) + u": " + TextOf(value) + u"\n";
  };
  const auto list = [&](StringView name, const clsLmfStrings& texts) {
    line(name, texts.Count() == 0 ? u"" : Decimal(texts.Count()) + u" " + Joined(texts, u"¦"));
  };
#define LMF_LINE(member) line(u"" #member, question.member());
#define LMF_LIST(member) list(u"" #member, *question.member());
  LMF_VALUES(LMF_LINE);
  LMF_LISTS(LMF_LIST);
  line(u"Flags", Flags(*question.ObjectiveFlags()));
  return all;
}

/// Everything that the model holds, likewise, so that two can be compared and a difference can be read.
inline String LmfText(const clsLmf& oLmf) {
  const auto versions = oLmf.Versions();
  String all = oLmf.Description() + u"¦" + oLmf.Notes() + u"¦" +
               Values({oLmf.Mode(), oLmf.PageCount(), oLmf.Objectives()->HasBuiltIn()}) + u"\nVersions: " +
               Values({versions->SequenceQuestion(), versions->VersionMode(), versions->VersionNames()->Count()}) +
               u" " + Joined(*versions->VersionNames(), u"¦") + u"\n";
  for (const auto& sequence : *versions->Sequences()) all += u"Sequence: " + Joined(*sequence) + u"\n";
  for (Long i = 1; i <= oLmf.Objectives()->Count(); ++i) {
    const auto key = oLmf.Objectives()->KeyOf(i);
    all += u"Objective: " + oLmf.Objectives()->Item(i)->Text() + (key ? u"¦" + *key : u"") + u"\n";
  }
  for (const auto& question : *oLmf.Questions()) all += u"\n" + LmfText(*question);
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
