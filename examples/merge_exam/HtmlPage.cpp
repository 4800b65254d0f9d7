#include "merge_exam/HtmlPage.h"

#include <fstream>

#include "merge_exam/Printing.h"
#include "merge_exam/SheetDrawing.h"

namespace merge_exam {

using namespace TORVA35;

namespace {

// Holds no "<" and no "&", so that it stands in XML as it is.
constexpr char kStyle[] = R"(
:root { --ink: #1c2430; --form: #b4436c; --paper: #fff; --soft: #f7eef2; --line: #d9dde3; }
* { box-sizing: border-box; }
body { margin: 0; padding: 2rem 1rem 4rem; background: #eceff3; color: var(--ink);
       font: 16px/1.45 system-ui, "Segoe UI", "DejaVu Sans", Arial, sans-serif; }
main { max-width: 56rem; margin: 0 auto; }
.switch { position: sticky; top: 0; z-index: 1; display: block; max-width: 56rem; margin: 0 auto 1rem;
          padding: .6rem 0; background: #eceff3; cursor: pointer; }
.switch::before { content: ""; display: inline-block; width: 2.4em; height: 1.3em; margin-right: .6em;
                  border-radius: 1em; vertical-align: -.25em;
                  background: radial-gradient(circle at .65em 50%, #fff 0 .48em, transparent .5em) #8b95a3; }
#show-key { position: absolute; opacity: 0; }
#show-key:focus-visible + .switch { outline: 3px solid #2f6fdb; outline-offset: 2px; }
#show-key:checked + .switch::before {
  background: radial-gradient(circle at 1.75em 50%, #fff 0 .48em, transparent .5em) #1d7a4f; }
section { margin: 0 0 1.5rem; padding: 1.5rem; background: var(--paper); border-radius: .6rem;
          box-shadow: 0 1px 4px rgb(20 30 45 / .18); }
h1, h2 { margin: 0; line-height: 1.2; overflow-wrap: anywhere; }
h1 { font-size: 1.5rem; }
h2 { margin: 0 0 .6rem; font-size: 1.15rem; }
.facts { margin: .2rem 0 0; color: #566072; }
.blanks { display: flex; gap: 1.2rem; margin: 1rem 0; font-size: .9rem; }
.blanks span { flex: 1; border-bottom: 1px solid var(--ink); }
.blanks span:first-child { flex: 2; }
svg { display: block; width: 100%; height: auto; font-family: inherit; }
svg .mark { fill: #000; }
svg .frame { fill: none; stroke: var(--form); stroke-width: .3; }
svg .stripe { fill: var(--soft); }
svg .ring { fill: #fff; stroke: var(--form); stroke-width: .28; }
svg .none .ring { stroke-dasharray: .5 .7; stroke-width: .2; }
svg .write { fill: #fff; stroke: var(--form); stroke-width: .3; }
svg text { fill: var(--ink); font-size: 3px; }
svg .title { font-size: 3px; font-weight: 600; fill: var(--form); }
svg .number { font-size: 3.2px; font-weight: 600; text-anchor: end; }
svg .label { font-size: 2.5px; text-anchor: middle; fill: var(--form); }
svg .hint { fill: #566072; }
svg .off { opacity: .35; }
#show-key:checked ~ main .key .ring { fill: var(--ink); stroke: var(--ink); }
#show-key:checked ~ main .key .label { fill: #fff; }
#show-key:not(:checked) ~ main .with-key { display: none; }
.table { overflow-x: auto; }
.table + .table { margin-top: 1.8rem; }
table { border-collapse: collapse; width: 100%; font-size: .92rem; }
.note { margin: 0 0 .4rem; color: #566072; }
th, td { padding: .3rem .6rem; border-bottom: 1px solid var(--line); text-align: left; vertical-align: top; }
thead th { border-bottom: 2px solid var(--ink); }
.figure { text-align: right; font-variant-numeric: tabular-nums; white-space: nowrap; }
.versions { width: auto; }
.versions th, .versions td { min-width: 4.5rem; }
@page { margin: 12mm; }
@media print {
  body { padding: 0; background: none; font-size: 10pt; }
  .switch, #show-key { display: none; }
  main { max-width: none; }
  section { margin: 0; padding: 0; border-radius: 0; box-shadow: none; }
  section + section { break-before: page; }
  .sheet { break-inside: avoid; }
  .sheet header { height: 30mm; overflow: hidden; }
  .sheet h1, .facts { white-space: nowrap; overflow: hidden; text-overflow: ellipsis; }
  .sheet h1 { font-size: 15pt; }
  svg { width: 180mm; margin: 0 auto; }
  svg * { -webkit-print-color-adjust: exact; print-color-adjust: exact; }
  #show-key:not(:checked) ~ main .teacher { display: none; }
  table { font-size: 9pt; }
  th, td { padding: .12rem .5rem; }
  tr { break-inside: avoid; }
  h2 { break-after: avoid; }
}
)";

std::string Cell(StringView text, const char* tag = "td", const char* cssClass = "") {
  const std::string name(tag);
  return "<" + name + (*cssClass == '\0' ? "" : std::string(" class=\"") + cssClass + "\"") + ">" + Escaped(text) +
         "</" + name + ">";
}

std::string Heading(StringView text, const char* cssClass = "") {
  std::string cell = Cell(text, "th", cssClass);
  return cell.insert(3, " scope=\"col\"");
}

std::string KeyTable(const clsTORVA& oEngine) {
  std::string html = "<div class=\"table with-key\">\n<h2>Answer key</h2>\n<table id=\"key\">\n<thead><tr>" +
                     Heading(u"Question", "figure") + Heading(u"Key") + Heading(u"Points", "figure") +
                     Heading(u"Objectives") + Heading(u"Text") + "</tr></thead>\n<tbody>\n";
  for (const auto& oQuestion : *oEngine.MIVLMF()->Questions()) {
    if (!oQuestion->Graded()) continue;
    html += "<tr>" + Cell(oQuestion->Name(), "td", "figure") + Cell(oQuestion->CorrectLabels()->Item(1)) +
            Cell(TextOf(oQuestion->CorrectPoints()), "td", "figure") +
            Cell(ObjectivesOf(*oQuestion, *oEngine.MIVLMF()->Objectives())) + Cell(oQuestion->Text()) + "</tr>\n";
  }
  return html + "</tbody>\n</table>\n</div>\n";
}

std::string VersionTable(const clsTORVA& oEngine) {
  const auto oVersions = oEngine.MIVLMF()->Versions();
  const auto oQuestions = oEngine.MIVLMF()->Questions();
  if (oVersions->VersionNames()->Count() == 0) return {};
  std::string html =
      "<div class=\"table\">\n<h2>Question order of the versions</h2>\n"
      "<p class=\"note\">Which question of the first version each version has at each place.</p>\n"
      "<table id=\"versions\" class=\"versions\">\n<thead><tr>" +
      Heading(u"Place", "figure");
  for (const String& name : *oVersions->VersionNames()) html += Heading(name, "figure");
  html += "</tr></thead>\n<tbody>\n";
  for (Long place = 1; place <= oQuestions->Count(); ++place) {
    if (!oQuestions->Item(place)->Graded()) continue;
    html += "<tr>" + Cell(oQuestions->Item(place)->Name(), "td", "figure");
    for (const auto& oSequence : *oVersions->Sequences()) {
      html += Cell(oQuestions->Item(oSequence->Item(place))->Name(), "td", "figure");
    }
    html += "</tr>\n";
  }
  return html + "</tbody>\n</table>\n</div>\n";
}

// "10 questions, 15.5 points, versions A, B, C"
String Facts(const clsTORVA& oEngine) {
  Long questions = 0;
  Double points = 0;
  for (const auto& oQuestion : *oEngine.MIVLMF()->Questions()) {
    if (!oQuestion->Graded()) continue;
    ++questions;
    points += oQuestion->CorrectPoints();
  }
  String versions;
  for (Long i = 1; i <= oEngine.Tests()->Count(); ++i) {
    const String version = oEngine.Tests()->Item(i)->Version();
    if (!version.empty()) versions += (versions.empty() ? u"" : u", ") + version;
  }
  const bool several = oEngine.Tests()->Count() > 1;
  return Decimal(questions) + (questions == 1 ? u" question, " : u" questions, ") + TextOf(points) +
         (points == 1 ? u" point" : u" points") +
         (versions.empty() ? String() : (several ? u", versions " : u", version ") + versions);
}

std::string Page(const clsTORVA& oEngine, bool showKey) {
  const String given = oEngine.Tests()->Item(1)->Title();
  const std::string title = Escaped(given.empty() ? u"Untitled test" : given);
  std::string html =
      "<!DOCTYPE html>\n<html lang=\"en\" xmlns=\"http://www.w3.org/1999/xhtml\">\n<head>\n<meta "
      "charset=\"utf-8\"/>\n"
      "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\"/>\n<title>" +
      title + "</title>\n<style>" + kStyle +
      "</style>\n</head>\n<body>\n<input type=\"checkbox\" id=\"show-key\"" +
      (showKey ? " checked=\"checked\"" : "") +
      "/><label class=\"switch\" for=\"show-key\">Show the answer key</label>\n<main>\n";
  for (const std::string& sheet : DrawSheets(oEngine)) {
    html += "<section class=\"sheet\">\n<header>\n<h1>" + title + "</h1>\n<p class=\"facts\">" +
            Escaped(Facts(oEngine)) +
            "</p>\n<p class=\"blanks\"><span>Name</span><span>Class</span><span>Date</span></p>\n</header>\n" +
            sheet + "</section>\n";
  }
  const std::string versions = VersionTable(oEngine);
  return html + "<section class=\"teacher" + (versions.empty() ? " with-key" : "") + "\">\n" + KeyTable(oEngine) +
         versions + "</section>\n</main>\n</body>\n</html>\n";
}

}  // namespace

bool WriteHtmlPage(const clsTORVA& oEngine, bool showKey, const std::string& path) {
  std::ofstream file(path, std::ios::binary);
  file << Page(oEngine, showKey);
  return file.flush().good();
}

}  // namespace merge_exam
