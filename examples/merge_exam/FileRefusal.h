#pragma once

#include <string>

namespace merge_exam {

/// What a file is meant to be.
enum class FileKind { kExamView, kLmf };

/// Why the library did not take a file, in one line: the library itself answers with no more than False. Reads the
/// file a second time.
std::string WhyRefused(const std::string& path, FileKind kind);

}  // namespace merge_exam
