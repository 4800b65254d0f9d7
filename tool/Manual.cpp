#include "Manual.h"

#include <CLI/CLI.hpp>
#include <sstream>

#include <torva35/TORVA35.h>

namespace tool {

using namespace TORVA35;

namespace {

// A text as troff takes it: backslashes and hyphens as themselves, and no line that begins like a request.
std::string Escaped(const std::string& text) {
  std::string escaped;
  for (const char c : text) {
    if ((c == '.' || c == '\'') && (escaped.empty() || escaped.back() == '\n')) escaped += "\\&";
    if (c == '\\') {
      escaped += "\\e";
    } else if (c == '-') {
      escaped += "\\-";
    } else {
      escaped += c;
    }
  }
  return escaped;
}

std::string Heading(const std::string& text) {
  return ToUtf8(Upper(FromUtf8(Escaped(text))));
}

std::string Names(const CLI::Option& option) {
  const std::string type = option.get_type_size() == 0 ? "" : option.get_type_name();
  return option.get_name(false, true) + (type.empty() ? "" : " " + type);
}

}  // namespace

std::string ManPage(const CLI::App& app) {
  std::string page = ".TH TORVA35 1 \"\" \"torva35 " TORVA35_VERSION
                     "\" \"User Commands\"\n"
                     ".SH NAME\ntorva35 \\- bubble sheets of printed tests that grade right\n"
                     ".SH SYNOPSIS\n.B torva35\n.RI [ options ]\n.I FILE...\n.SH DESCRIPTION\n" +
                     Escaped(app.get_description());
  for (const std::string& group : app.get_groups()) {
    if (group.empty()) continue;
    const auto options = app.get_options([&](const CLI::Option* option) { return option->get_group() == group; });
    if (options.empty()) continue;
    page += ".SH " + Heading(group) + "\n";
    for (const CLI::Option* option : options) {
      const std::string name = option->get_positional() ? option->get_name() : Names(*option);
      page += ".TP\n.B " + Escaped(name) + '\n' + Escaped(option->get_description()) + ".\n";
    }
  }
  // Headings of the footer end with a colon, and what stands below them is indented.
  std::istringstream footer(app.get_footer());
  bool open = false;
  for (std::string line; std::getline(footer, line);) {
    if (line.empty()) continue;
    if (line.front() == ' ') {
      page += Escaped(line.substr(2)) + '\n';
    } else {
      page += (open ? ".fi\n.SH " : ".SH ") + Heading(line.substr(0, line.size() - 1)) + "\n.nf\n";
      open = true;
    }
  }
  if (open) page += ".fi\n";
  return page + ".SH SEE ALSO\nThe folder /usr/share/doc/torva35 has all of the documentation.\n";
}

std::string Completion(const CLI::App& app, const std::map<std::string, std::string>& words) {
  std::string options;
  for (const CLI::Option* option : app.get_options()) {
    if (option->get_positional() || option->get_group().empty()) continue;
    for (const std::string& name : option->get_lnames()) options += (options.empty() ? "--" : " --") + name;
  }
  std::string cases;
  for (const auto& [option, itsWords] : words) cases += "    " + option + ") words='" + itsWords + "' ;;\n";
  // What has no words of its own is a name of a file, which bash completes by itself.
  return "_torva35() {\n  local words=\n  case $3 in\n" + cases + "    *) [[ $2 == -* ]] && words='" + options +
         "' ;;\n  esac\n  COMPREPLY=($(compgen -W \"$words\" -- \"$2\"))\n}\n"
         "complete -o default -F _torva35 torva35\n";
}

}  // namespace tool
