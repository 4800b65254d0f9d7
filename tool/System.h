#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <system_error>

/// What the program asks of the system it runs on, beside what the library does.
namespace tool {

/// Makes the standard streams what the program counts on: they are open, UTF-8 goes through them as it is, and a
/// reader that goes away is a failed write. Called first of all.
void PrepareStreams();

/// Puts the arguments in UTF-8 where the system has handed them over in another form.
void PutArgumentsInUtf8(int& argc, char**& argv);

enum class Stream { kInput, kOutput, kError };
/// Whether somebody sits before the stream.
bool IsTerminal(Stream stream);

/// Columns of the terminal to which standard output goes; 0 where it goes elsewhere.
std::size_t TerminalWidth();

/// Columns that a character takes in a terminal: 0 to 2, or -1 for one that is not printed.
int CharacterColumns(char32_t character);

/// Makes an empty file that nobody else may read, in the folder for such files, and gives its path in UTF-8; an
/// empty one where that fails.
std::string MakeTemporaryFile();

/// Keeps a file under a second name, so that it can be put back when it has been replaced. The second name can be
/// removed whoever has the file open.
void KeepBefore(const std::filesystem::path& file, const std::filesystem::path& name, std::error_code& error);

/// A path between UTF-8, which is what the program and the library speak, and the form of the standard library.
///@{
std::filesystem::path PathOf(const std::string& utf8);
std::string Utf8Of(const std::filesystem::path& path);
///@}

}  // namespace tool
