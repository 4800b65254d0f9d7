#pragma once

#include <string>

namespace TORVA35::sheet {

/// Why a file is no test that can be read, in one line for people. By its content it is taken for an LMF file or
/// for an ExamView export.
std::string WhyRefused(const std::string& path);

}  // namespace TORVA35::sheet
