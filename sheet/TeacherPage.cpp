#include <algorithm>
#include <string>

#include "Html.h"
#include "Layout.h"
#include "Words.h"
#include "torva35/sheet/Page.h"

namespace TORVA35::sheet {
namespace {

constexpr char kStyle[] = R"(
:root { --ink: #1c2430; --soft: #4b5566; --line: #d3d8df; --head: #eef1f5; --error: #a3142c; --warning: #7a4b00;
        --note: #1f5a85; --good: #14603b; color-scheme: light; }
* { box-sizing: border-box; }
body { margin: 0; padding: 1.5rem 1rem 4rem; background: #e9ecf0; color: var(--ink);
       font: 16px/1.45 system-ui, "Segoe UI", "DejaVu Sans", Arial, sans-serif; }
main { max-width: 64rem; margin: 0 auto; }
header, section { margin: 0 0 1.25rem; padding: 1.25rem; background: #fff; border-radius: .5rem; }
h1, h2 { margin: 0; line-height: 1.2; overflow-wrap: anywhere; }
h1 { font-size: 1.5rem; }
h2 { margin-bottom: .75rem; font-size: 1.2rem; }
p { margin: .3rem 0 0; }
.facts { color: var(--soft); }
.wide { overflow-x: auto; }
table { border-collapse: collapse; width: 100%; }
.narrow { width: auto; }
.beside { display: flex; flex-wrap: wrap; align-items: flex-start; gap: 1rem 2rem; }
.file { white-space: nowrap; }
.narrow th, .narrow td { min-width: 4.5rem; }
th, td { padding: .35rem .6rem; border-bottom: 1px solid var(--line); text-align: start; vertical-align: top; }
thead th { background: var(--head); border-bottom: 2px solid var(--ink); white-space: nowrap; }
.figure { text-align: end; font-variant-numeric: tabular-nums; white-space: nowrap; }
.key { font-weight: 700; white-space: nowrap; }
.none, .error { color: var(--error); font-weight: 700; }
.warning { color: var(--warning); font-weight: 700; }
.note { color: var(--note); font-weight: 700; }
.good { color: var(--good); }
.text { min-width: 14rem; overflow-wrap: anywhere; }
.id { overflow-wrap: anywhere; min-width: 4rem; }
.text p { margin: 0; }
.lost td { background: #f6f6f7; }
ol { margin: .25rem 0 0; padding-inline-start: 1.4rem; }
li.right { font-weight: 700; color: var(--good); }
small { font-size: .875em; color: var(--soft); }
@media (max-width: 40rem) {
  body { padding: 0; background: #fff; }
  header, section { margin: 0; padding: 1rem .75rem; border-radius: 0; border-bottom: 6px solid #e9ecf0; }
  .stack thead { display: none; }
  .stack, .stack tbody { display: block; }
  .stack tr { display: grid; grid-template-columns: max-content 1fr; gap: .1rem .75rem; padding: .6rem 0;
              border-bottom: 1px solid var(--line); }
  .stack td { display: contents; text-align: start; }
  .stack td.empty { display: none; }
  .stack td > div { min-width: 0; overflow-wrap: anywhere; text-align: start; white-space: normal; }
  .stack td::before { color: var(--soft); }
  .lost td > div { background: none; }
}
@page { margin: 12mm; }
@media print {
  body { padding: 0; background: none; font-size: 10pt; }
  main { max-width: none; }
  header, section { margin: 0 0 6mm; padding: 0; border-radius: 0; }
  .own { break-before: page; }
  table { font-size: 9pt; }
  th, td { padding: .12rem .4rem; }
  tr { break-inside: avoid; }
  ol { columns: 2; }
  .text { min-width: 60mm; }
  h2 { break-after: avoid; }
  * { -webkit-print-color-adjust: exact; print-color-adjust: exact; }
}
)";

struct Column {
  std::string head;
  const char* cssClass = "";
  bool autoDirection = false;  // texts of the user may run from right to left
};

// A table. With a name its rows become small lists on a narrow screen, where each cell has the heading of its
// column beside it: `Heads` has the rules for that.
class Table {
 public:
  Table(const std::vector<Column>& columns, const std::string& cssClass)
      : columns_(columns), html_("<div class=\"wide\"><table class=\"" + cssClass + "\">\n<thead><tr>") {
    for (const Column& column : columns_) {
      html_ +=
          "<th scope=\"col\" class=\"" + std::string(column.cssClass) + "\">" + Escaped(column.head) + "</th>";
    }
    html_ += "</tr></thead>\n<tbody>\n";
  }

  static std::string Heads(const std::vector<Column>& columns, const std::string& name) {
    std::string rules;
    for (std::size_t i = 0; i < columns.size(); ++i) {
      rules += ".stack." + name + " td:nth-child(" + std::to_string(i + 1) + ")::before { content: \"" +
               columns[i].head + "\"; }\n";
    }
    return rules;
  }

  // Cells are HTML already; those beyond the columns are left out. On a narrow screen an empty one has no place.
  void Row(const std::vector<std::string>& cells, const char* cssClass = "") {
    html_ += *cssClass == '\0' ? "<tr>" : std::string("<tr class=\"") + cssClass + "\">";
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      const Column& column = columns_[i];
      html_ += "<td class=\"" + std::string(column.cssClass) + (cells[i].empty() ? " empty" : "") +
               (column.autoDirection ? "\"><div dir=\"auto\">" : "\"><div>") + cells[i] + "</div></td>";
    }
    html_ += "</tr>\n";
  }

  std::string Html() && { return std::move(html_) + "</tbody>\n</table></div>\n"; }

 private:
  const std::vector<Column>& columns_;
  std::string html_;
};

class Teacher {
 public:
  Teacher(const Result& result, const PageOptions& options) : result_(result), words_(WordsOf(options.language)) {
    const bool objectives = std::any_of(result.files.begin(), result.files.end(), [](const File& file) {
      return std::any_of(file.questions.begin(), file.questions.end(),
                         [](const Question& question) { return !question.objectives.empty(); });
    });
    if (!objectives) return;
    keys_.push_back({words_.objectives, "id", true});
    questions_.push_back({words_.objectives, "id", true});
  }

  std::string Html() const {
    const std::string title = result_.title.empty() ? words_.untitled : result_.title;
    std::string body = "<main>\n<header>\n<h1 dir=\"auto\">" + Escaped(title) + "</h1>\n<p class=\"facts\">" +
                       Escaped(Facts()) + "</p>\n</header>\n";
    const std::string keys = result_.rows.empty() ? std::string() : Keys();
    body += result_.Has(Severity::kError) ? Findings() + keys : keys + Findings();  // what matters first
    if (result_.renumbered) body += Numbers();
    for (const Version& version : result_.versions) body += VersionKey(version);
    if (!result_.handGraded.empty()) body += ByHand();
    for (const File& file : result_.files) body += Questions(file);
    const std::string style = kStyle + std::string("@media (max-width: 40rem) {\n") +
                              Table::Heads(findings_, "findings") + Table::Heads(keys_, "keys") +
                              Table::Heads(byHand_, "byHand") + Table::Heads(questions_, "questions") + "}\n";
    return Document(words_.language, std::string(words_.answers) + " – " + title, style, body + "</main>\n");
  }

 private:
  std::string Facts() const {
    double points = 0;
    if (!result_.versions.empty()) {
      for (const Answer& answer : result_.versions[0].answers) points += answer.points;
    }
    for (const HandGraded& question : result_.handGraded) points += question.points;
    const std::size_t questions = result_.rows.size() + result_.handGraded.size();
    std::string facts = Counted(words_, words_.questions, static_cast<double>(questions)) + " · " +
                        Counted(words_, words_.points, points);
    if (result_.versions.size() > 1) {
      facts += std::string(" · ") + words_.versions + ": ";
      for (std::size_t i = 0; i < result_.versions.size(); ++i) facts += (i ? ", " : "") + NameOf(i);
    }
    return facts;
  }

  std::string NameOf(std::size_t version) const {
    const std::string& name = result_.versions[version].name;
    return name.empty() ? std::to_string(version + 1) : name;
  }

  std::string Number(double number) const { return NumberText(words_, number); }

  static std::string NumberOrNothing(long number) { return number > 0 ? std::to_string(number) : std::string(); }

  std::string Findings() const {
    std::string html = "<section id=\"findings\">\n<h2>" + Escaped(words_.findings) + "</h2>\n";
    if (result_.findings.empty()) return html + "<p>" + Escaped(words_.noFindings) + "</p>\n</section>\n";
    Table table(findings_, "stack findings");
    std::vector<const Finding*> findings;
    for (const Finding& finding : result_.findings) findings.push_back(&finding);
    std::stable_sort(findings.begin(), findings.end(),
                     [](const Finding* left, const Finding* right) { return left->severity > right->severity; });
    static constexpr const char* kClasses[] = {"note", "warning", "error"};
    for (const Finding* finding : findings) {
      const auto severity = static_cast<std::size_t>(finding->severity);
      const bool inFile = finding->file >= 0 && static_cast<std::size_t>(finding->file) < result_.files.size();
      std::string line = NumberOrNothing(finding->line);
      if (finding->line > 0 && finding->column > 0) line += ":" + std::to_string(finding->column);
      table.Row({"<span class=\"" + std::string(kClasses[severity]) + "\">" +
                     Escaped(words_.severities[severity]) + "</span>",
                 inFile ? Escaped(result_.files[static_cast<std::size_t>(finding->file)].name) : "",
                 NumberOrNothing(finding->number), Escaped(finding->id), line,
                 "<span lang=\"en\" dir=\"auto\">" + Escaped(finding->text) + "</span>"});
    }
    return html + std::move(table).Html() + "</section>\n";
  }

  std::string Key(const Row& row, const Answer& answer) const {
    std::string key;
    for (const int mark : answer.marks) {
      if (mark < 1 || static_cast<std::size_t>(mark) > row.labels.size()) continue;
      if (!key.empty()) key += answer.all ? " " : " <small>" + Escaped(words_.orWord) + "</small> ";
      key += "<bdi>" + Escaped(row.labels[static_cast<std::size_t>(mark - 1)]) + "</bdi>";
    }
    return key.empty() ? "<span class=\"none\">" + Escaped(words_.noKey) + "</span>" : key;
  }

  // A section with a line for each row of the sheet: short tables, side by side where there is room.
  template <class Cells>
  std::string ByRow(const char* id, const char* title, const std::vector<Column>& columns, Cells cells) const {
    constexpr std::size_t kTogether = 25;
    std::string html =
        std::string("<section id=\"") + id + "\">\n<h2>" + Escaped(title) + "</h2>\n<div class=\"beside\">\n";
    for (std::size_t first = 0; first < result_.rows.size(); first += kTogether) {
      Table table(columns, "narrow");
      for (std::size_t i = first; i < std::min(first + kTogether, result_.rows.size()); ++i) table.Row(cells(i));
      html += std::move(table).Html();
    }
    return html + "</div>\n</section>\n";
  }

  std::string Keys() const {
    std::vector<Column> columns = {{words_.row, "figure"}};
    for (std::size_t i = 0; i < result_.versions.size(); ++i) columns.push_back({NameOf(i), "key"});
    if (result_.versions.size() == 1) columns.back().head = words_.key;
    return ByRow("keys", words_.keys, columns, [&](std::size_t i) {
      std::vector<std::string> cells = {std::to_string(result_.rows[i].number)};
      for (const Version& version : result_.versions) {
        cells.push_back(i < version.answers.size() ? Key(result_.rows[i], version.answers[i]) : "");
      }
      return cells;
    });
  }

  std::string Numbers() const {
    const std::size_t papers = PapersAgree(result_) ? 1 : result_.versions.size();
    std::vector<Column> columns = {{words_.onSheet, "figure"}};
    for (std::size_t v = 0; v < papers; ++v) {
      columns.push_back({words_.onPaper + (papers > 1 ? " " + NameOf(v) : std::string()), "figure"});
    }
    return ByRow("numbers", words_.renumbered, columns, [&](std::size_t i) {
      std::vector<std::string> cells = {std::to_string(result_.rows[i].number)};
      for (std::size_t v = 0; v < papers; ++v) {
        cells.push_back(std::to_string(result_.versions[v].answers[i].paper));
      }
      return cells;
    });
  }

  // The key of one version with what its paper asks at each row.
  std::string VersionKey(const Version& version) const {
    const auto index = static_cast<std::size_t>(&version - result_.versions.data());
    Table table(keys_, "stack keys");
    for (std::size_t i = 0; i < result_.rows.size() && i < version.answers.size(); ++i) {
      const Answer& answer = version.answers[i];
      std::string points = Number(answer.points);
      if (answer.incorrectPoints != 0)
        points += " <small>" + Escaped(words_.pointsWrong) + " " + Number(answer.incorrectPoints) + "</small>";
      if (answer.noResponsePoints != 0)
        points += " <small>" + Escaped(words_.pointsNone) + " " + Number(answer.noResponsePoints) + "</small>";
      const Question* question = QuestionOf(version, answer);
      table.Row({std::to_string(result_.rows[i].number), NumberOrNothing(answer.paper),
                 Key(result_.rows[i], answer), points, question ? Escaped(question->id) : "",
                 question ? Escaped(question->text) : "", question ? Joined(question->objectives) : ""});
    }
    const std::string name =
        result_.versions.size() == 1 && version.name.empty() ? words_.keys : Filled(words_.keyOf, NameOf(index));
    return "<section class=\"own\" id=\"version-" + std::to_string(index + 1) + "\">\n<h2>" + Escaped(name) +
           "</h2>\n" + std::move(table).Html() + "</section>\n";
  }

  const Question* QuestionOf(const Version& version, const Answer& answer) const {
    const auto file = static_cast<std::size_t>(version.file);
    const auto question = static_cast<std::size_t>(answer.question);
    if (version.file < 0 || file >= result_.files.size() || answer.question < 0 ||
        question >= result_.files[file].questions.size()) {
      return nullptr;
    }
    return &result_.files[file].questions[question];
  }

  static std::string Joined(const std::vector<std::string>& texts) {
    std::string joined;
    for (const std::string& text : texts) joined += (joined.empty() ? "" : ", ") + Escaped(text);
    return joined;
  }

  std::string ByHand() const {
    Table table(byHand_, "stack byHand");
    for (const HandGraded& question : result_.handGraded) {
      table.Row({Escaped(question.name), Number(question.points), Escaped(question.text)});
    }
    return "<section id=\"by-hand\">\n<h2>" + Escaped(words_.handGraded) + "</h2>\n" + std::move(table).Html() +
           "</section>\n";
  }

  // The text of a question, its answers with the right ones, and whatever else the file says of it.
  std::string Whole(const Question& question) const {
    std::string html = "<p dir=\"auto\">" + Escaped(question.text) + "</p>";
    if (!question.answers.empty()) {
      html += "<ol dir=\"auto\">";
      for (std::size_t i = 0; i < question.answers.size(); ++i) {
        const bool right = std::find(question.correct.begin(), question.correct.end(), static_cast<int>(i + 1)) !=
                           question.correct.end();
        html += right ? "<li class=\"right\"><bdi>" : "<li><bdi>";
        html += Escaped(question.answers[i]) + "</bdi>" +
                (right ? " ✓ <small>" + Escaped(words_.correct) + "</small></li>" : "</li>");
      }
      html += "</ol>";
    }
    const auto add = [&](const char* name, const std::string& text) {
      if (!text.empty()) html += "<p><small>" + Escaped(name) + ":</small> <bdi>" + Escaped(text) + "</bdi></p>";
    };
    add(words_.difficulty, question.difficulty);
    add(words_.topic, question.topic);
    add(words_.keywords, question.keywords);
    add(words_.miscellaneous, question.miscellaneous);
    add(words_.reference, question.reference);
    add(words_.notes, question.notes);
    return html;
  }

  std::string Questions(const File& file) const {
    const auto index = static_cast<std::size_t>(&file - result_.files.data());
    Table table(questions_, "stack questions");
    for (const Question& question : file.questions) {
      const bool kept = question.fate == Fate::kKept;
      const std::string fate = Escaped(words_.fates[static_cast<std::size_t>(question.fate)]);
      table.Row({std::to_string(question.number), Escaped(question.id), Escaped(KindName(words_, question.kind)),
                 kept ? fate : "<span class=\"warning\">" + fate + "</span>", Number(question.points),
                 Whole(question), Joined(question.objectives)},
                kept ? "" : "lost");
    }
    return "<section class=\"own\" id=\"file-" + std::to_string(index + 1) + "\">\n<h2>" +
           Filled(Escaped(words_.asRead), "<bdi>" + Escaped(file.name) + "</bdi>") + "</h2>\n" +
           std::move(table).Html() + "</section>\n";
  }

  const Result& result_;
  const Words& words_;
  const std::vector<Column> findings_ = {{words_.severity},           {words_.file, "file", true},
                                         {words_.question, "figure"}, {"ID", "id", true},
                                         {words_.line, "figure"},     {words_.finding, "text"}};
  std::vector<Column> keys_ = {{words_.row, "figure"}, {words_.paper, "figure"},
                               {words_.key, "key"},    {words_.pointsHead, "figure"},
                               {"ID", "id", true},     {words_.text, "text", true}};
  const std::vector<Column> byHand_ = {
      {words_.question, "id", true}, {words_.pointsHead, "figure"}, {words_.text, "text", true}};
  std::vector<Column> questions_ = {
      {words_.question, "figure"},   {"ID", "id", true},   {words_.kind}, {words_.fateHead},
      {words_.pointsHead, "figure"}, {words_.text, "text"}};
};

}  // namespace

std::string TeacherPage(const Result& result, const PageOptions& options) {
  return Teacher(result, options).Html();
}

}  // namespace TORVA35::sheet
