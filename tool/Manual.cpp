#include "Manual.h"

#include <CLI/CLI.hpp>
#include <sstream>

namespace tool {
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

std::string Names(const CLI::Option& option) {
  const std::string type = option.get_type_size() == 0 ? "" : option.get_type_name();
  return option.get_name(false, true) + (type.empty() ? "" : " " + type);
}

}  // namespace

std::string ManPage(const CLI::App& app) {
  std::string page = ".TH TORVA35 1 \"\" \"torva35 " TORVA35_VERSION
                     "\"\n.SH NAME\ntorva35 \\- bubble sheets of printed "
                     "tests\n.SH SYNOPSIS\n.B torva35\n.I FILE...\n.RI [ options ]\n.SH DESCRIPTION\n" +
                     Escaped(app.get_description());
  for (const std::string& group : app.get_groups()) {
    if (group.empty()) continue;
    const auto options = app.get_options([&](const CLI::Option* option) { return option->get_group() == group; });
    if (options.empty()) continue;
    page += ".SH \"" + Escaped(group == "Options" ? "ARGUMENTS AND OPTIONS" : group) + "\"\n";
    for (const CLI::Option* option : options) {
      const std::string name = option->get_positional() ? option->get_name() : Names(*option);
      page += ".TP\n.B " + Escaped(name) + '\n' + Escaped(option->get_description()) + ".\n";
    }
  }
  // The headings of the footer end with a colon.
  std::istringstream footer(app.get_footer());
  for (std::string line; std::getline(footer, line);) {
    if (line.empty()) {
      page += ".PP\n";
    } else if (line.front() != ' ' && line.back() == ':') {
      page += ".SH " + Escaped(line.substr(0, line.size() - 1)) + '\n';
    } else {
      page += (line.front() == ' ' ? ".br\n" : "") + Escaped(line.substr(line.find_first_not_of(' '))) + '\n';
    }
  }
  return page;
}

std::string Completion(const CLI::App& app) {
  std::string all;
  for (const CLI::Option* option : app.get_options()) {
    if (option->get_positional() || option->get_group().empty()) continue;
    for (const std::string& name : option->get_lnames()) all += (all.empty() ? "--" : " --") + name;
  }
  return "_torva35() {\n  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]}\n"
         "  case $before in\n"
         "    --language) COMPREPLY=($(compgen -W 'en de fr es' -- \"$word\")); return ;;\n"
         "    --objectives) COMPREPLY=($(compgen -W 'learning local state national' -- \"$word\")); return ;;\n"
         "    --reader) COMPREPLY=($(compgen -d -- \"$word\")); return ;;\n  esac\n"
         "  if [[ $word == -* ]]; then\n    COMPREPLY=($(compgen -W '" +
         all +
         "' -- \"$word\"))\n  else\n"
         "    COMPREPLY=($(compgen -f -- \"$word\"))\n  fi\n}\ncomplete -o filenames -F _torva35 torva35\n";
}

}  // namespace tool
