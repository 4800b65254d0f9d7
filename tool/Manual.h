#pragma once

#include <string>

namespace CLI {
class App;
}

namespace tool {

/// The manual page, in the troff macros of `man`, from what `--help` shows.
std::string ManPage(const CLI::App& app);

/// What makes bash complete options and file names.
std::string Completion(const CLI::App& app);

}  // namespace tool
