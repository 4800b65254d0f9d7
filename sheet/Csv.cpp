#include <string_view>

#include "torva35/sheet/Export.h"

namespace TORVA35::sheet {
namespace {

// In quotes where it must be.
std::string Quoted(std::string field) {
  if (field.find_first_of(",\"\r\n") == field.npos) return field;
  for (std::size_t at = 0; (at = field.find('"', at)) != field.npos; at += 2) field.insert(at, 1, '"');
  return '"' + field + '"';
}

// A text of the file. One that a spreadsheet would run as a formula gets an apostrophe first, which it does not
// show.
std::string Text(const std::string& text) {
  const bool formula = !text.empty() && std::string_view("=+-@\t\r").find(text.front()) != std::string_view::npos;
  return Quoted(formula ? "'" + text : text);
}

std::string Joined(const std::vector<std::string>& texts, std::string_view delimiter) {
  std::string joined;
  for (const std::string& text : texts) joined += (&text == texts.data() ? "" : std::string(delimiter)) + text;
  return joined;
}

}  // namespace

std::string Csv(const Result& result) {
  std::string csv = "version,row,paper,id,kind,labels,key,points,objectives\r\n";
  for (const Version& version : result.versions) {
    for (std::size_t i = 0; i < result.rows.size(); ++i) {
      const Row& row = result.rows[i];
      const Answer& answer = version.answers[i];
      const Question& question = QuestionOf(result, version, answer);
      csv += Text(version.name) + ',' + std::to_string(row.number) + ',' + std::to_string(answer.paper) + ',' +
             Text(question.id) + ',' + KindWord(row.kind) + ',' + Text(Joined(row.labels, " ")) + ',' +
             Text(KeyText(row, answer)) + ',' + PointsText(answer.points) + ',' +
             Text(Joined(question.objectives, "; ")) + "\r\n";
    }
  }
  return csv;
}

}  // namespace TORVA35::sheet
