#pragma once

#include <map>
#include <string>

namespace CLI {
class App;
}

namespace tool {

/// The manual page, in the troff macros of `man`, from what `--help` shows.
std::string ManPage(const CLI::App& app);

/// What makes bash complete options, the words that some of them take, and file names.
std::string Completion(const CLI::App& app, const std::map<std::string, std::string>& words);

}  // namespace tool
