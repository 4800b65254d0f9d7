#include <nlohmann/json.hpp>

#include "torva35/sheet/Export.h"

namespace TORVA35::sheet {
namespace {

using Object = nlohmann::ordered_json;

const char* Word(Severity severity) {
  switch (severity) {
    case Severity::kNote:
      return "note";
    case Severity::kWarning:
      return "warning";
    default:
      return "error";
  }
}

const char* Word(Fate fate) {
  switch (fate) {
    case Fate::kKept:
      return "kept";
    case Fate::kUnsupported:
      return "unsupported";
    case Fate::kDuplicate:
      return "duplicate";
    case Fate::kUnreadable:
      return "unreadable";
    default:
      return "over-limit";
  }
}

const char* Word(Status status) {
  switch (status) {
    case Status::kDone:
      return "done";
    case Status::kRefused:
      return "refused";
    case Status::kCancelled:
      return "cancelled";
    default:
      return "failed";
  }
}

Object Json(const Question& question) {
  return {{"number", question.number},
          {"id", question.id},
          {"kind", KindWord(question.kind)},
          {"fate", Word(question.fate)},
          {"text", question.text},
          {"answers", question.answers},
          {"correct", question.correct},
          {"all", question.all},
          {"points", question.points},
          {"incorrectPoints", question.incorrectPoints},
          {"noResponsePoints", question.noResponsePoints},
          {"objectives", question.objectives},
          {"difficulty", question.difficulty},
          {"topic", question.topic},
          {"keywords", question.keywords},
          {"miscellaneous", question.miscellaneous},
          {"reference", question.reference},
          {"notes", question.notes},
          {"line", question.line},
          {"column", question.column}};
}

Object Json(const File& file) {
  Object questions = Object::array();
  for (const Question& question : file.questions) questions.push_back(Json(question));
  return {{"name", file.name},
          {"format", file.format == Format::kLmf ? "lmf" : "examview"},
          {"title", file.title},
          {"version", file.version},
          {"oddScale", file.oddScale},
          {"evenScale", file.evenScale},
          {"questions", std::move(questions)}};
}

Object Json(const Row& row) {
  return {{"number", row.number},
          {"paper", row.paper},
          {"kind", KindWord(row.kind)},
          {"labels", row.labels},
          {"several", row.several}};
}

Object Json(const Result& result, const Version& version) {
  Object answers = Object::array();
  for (std::size_t i = 0; i < version.answers.size(); ++i) {
    const Answer& answer = version.answers[i];
    std::vector<std::string> key;
    for (const int mark : answer.marks) key.push_back(result.rows[i].labels[static_cast<std::size_t>(mark - 1)]);
    answers.push_back({{"row", result.rows[i].number},
                       {"paper", answer.paper},
                       {"question", answer.question},
                       {"id", QuestionOf(result, version, answer).id},
                       {"marks", answer.marks},
                       {"key", key},
                       {"all", answer.all},
                       {"points", answer.points},
                       {"incorrectPoints", answer.incorrectPoints},
                       {"noResponsePoints", answer.noResponsePoints}});
  }
  return {{"name", version.name}, {"file", version.file}, {"answers", std::move(answers)}};
}

Object Json(const Finding& finding) {
  return {{"severity", Word(finding.severity)}, {"kind", finding.kind}, {"file", finding.file},
          {"number", finding.number},           {"id", finding.id},     {"line", finding.line},
          {"column", finding.column},           {"text", finding.text}};
}

}  // namespace

std::string Json(const Result& result) {
  Object json = {{"format", 1},
                 {"status", Word(result.status)},
                 {"title", result.title},
                 {"renumbered", result.renumbered},
                 {"files", Object::array()},
                 {"rows", Object::array()},
                 {"versions", Object::array()},
                 {"handGraded", Object::array()},
                 {"findings", Object::array()}};
  for (const File& file : result.files) json["files"].push_back(Json(file));
  for (const Row& row : result.rows) json["rows"].push_back(Json(row));
  for (const Version& version : result.versions) json["versions"].push_back(Json(result, version));
  for (const HandGraded& hand : result.handGraded) {
    json["handGraded"].push_back({{"name", hand.name}, {"text", hand.text}, {"points", hand.points}});
  }
  for (const Finding& finding : result.findings) json["findings"].push_back(Json(finding));
  return json.dump(2, ' ', false, Object::error_handler_t::replace) + '\n';
}

}  // namespace TORVA35::sheet
