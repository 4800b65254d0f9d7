#include "Tables.h"

#include "TextTable.h"

namespace tool {

using namespace TORVA35;
using namespace TORVA35::sheet;
using Column = TextTable::Kind;

namespace {

String Joined(const std::vector<std::string>& texts, const char* delimiter) {
  std::string joined;
  for (const std::string& text : texts) joined += (&text == texts.data() ? "" : delimiter) + text;
  return FromUtf8(joined);
}

void PrintLine(std::ostream& out, const char* name, StringView value) {
  if (!value.empty()) out << name << OneLine(value) << '\n';
}

void PrintTable(std::ostream& out, const std::string& title, const TextTable& table) {
  out << '\n' << OneLine(FromUtf8(title)) << "\n\n";
  table.Print(out, OutputWidth());
}

String Fate(const Question& question) {
  switch (question.fate) {
    case sheet::Fate::kKept:
      return {};
    case sheet::Fate::kUnsupported:
      return u"kind";
    case sheet::Fate::kDuplicate:
      return u"same ID";
    case sheet::Fate::kUnreadable:
      return u"unreadable";
    default:
      return u"limit";
  }
}

// The right answers by their numbers.
String Correct(const Question& question) {
  String text;
  for (const int answer : question.correct) text += (text.empty() ? u"" : u" ") + Decimal(answer);
  return text;
}

}  // namespace

void PrintQuestions(std::ostream& out, const Result& result) {
  for (const File& file : result.files) {
    PrintLine(out, "File:        ", FromUtf8(file.name));
    PrintLine(out, "Title:       ", FromUtf8(file.title));
    PrintLine(out, "Version:     ", FromUtf8(file.version));
    PrintLine(out, "Odd scale:   ", Joined(file.oddScale, " "));
    PrintLine(out, "Even scale:  ", Joined(file.evenScale, " "));
    TextTable table({{u"#", Column::kRight},
                     {u"ID"},
                     {u"Kind"},
                     {u"Answers", Column::kRight},
                     {u"Right"},
                     {u"Points", Column::kRight},
                     {u"Left out"},
                     {u"Objectives", Column::kWrapped},
                     {u"Text", Column::kWrapped}});
    for (const Question& question : file.questions) {
      table.Add({Decimal(question.number), FromUtf8(question.id), FromUtf8(KindWord(question.kind)),
                 Decimal(static_cast<Long>(question.answers.size())), Correct(question),
                 FromUtf8(PointsText(question.points)), Fate(question), Joined(question.objectives, "; "),
                 FromUtf8(question.text)});
    }
    PrintTable(out, "Questions", table);
    out << '\n';
  }
}

void PrintKeys(std::ostream& out, const Result& result) {
  PrintLine(out, "Title:    ", FromUtf8(result.title));
  for (const Version& version : result.versions) {
    PrintLine(out,
              ("Version:  " + OneLine(FromUtf8(version.name)) + (version.name.empty() ? "" : "  from ")).c_str(),
              FromUtf8(result.files[static_cast<std::size_t>(version.file)].name));
  }
  for (const Version& version : result.versions) {
    std::vector<TextTable::Column> columns = {{u"Row", Column::kRight}};
    if (result.renumbered) columns.push_back({u"Paper", Column::kRight});
    for (const TextTable::Column& column : {TextTable::Column{u"Bubbles"},
                                            {u"Key"},
                                            {u"Points", Column::kRight},
                                            {u"ID"},
                                            {u"Text", Column::kWrapped}}) {
      columns.push_back(column);
    }
    TextTable table(std::move(columns));
    for (std::size_t i = 0; i < result.rows.size(); ++i) {
      const Answer& answer = version.answers[i];
      const Question& question = QuestionOf(result, version, answer);
      std::vector<String> cells = {Decimal(result.rows[i].number)};
      if (result.renumbered) cells.push_back(Decimal(answer.paper));
      for (const std::string& cell : {std::string(), KeyText(result.rows[i], answer), PointsText(answer.points),
                                      question.id, question.text}) {
        cells.push_back(FromUtf8(cell));
      }
      cells[result.renumbered ? 2 : 1] = Joined(result.rows[i].labels, " ");
      table.Add(std::move(cells));
    }
    PrintTable(out, version.name.empty() ? "Key" : "Key of version " + version.name, table);
  }
  for (const HandGraded& hand : result.handGraded) {
    PrintLine(out, "By hand:  ", FromUtf8(hand.name + ", " + PointsText(hand.points) + " points: " + hand.text));
  }
}

}  // namespace tool
