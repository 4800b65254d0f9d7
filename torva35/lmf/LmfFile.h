#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>
#include <variant>
#include <vector>

#include "torva35/base/Types.h"
#include "torva35/lmf/clsLmf.h"
#include "torva35/platform/InputFile.h"

/// The LMF file, see docs/lmf-format.md. What reader and writer have to agree about stands here.
namespace TORVA35 {

/// Writes the model to a file. False when that fails, and then an old file stays as it was.
bool WriteLmf(const clsLmf& oLmf, const String& sPath);

/// Reads a file into an empty model. False when the file cannot be read or is not a valid LMF file; the model may
/// then hold a part of it.
bool ReadLmf(const String& sPath, clsLmf& oLmf);

namespace lmf_file {

constexpr std::string_view kVersion = "1";

/// The end of every file that has a checksum: eight hexadecimal digits stand between these two.
constexpr std::string_view kCheckBegin = "<check crc32=\"";
constexpr std::string_view kCheckEnd = "\"/></lmf>";
constexpr std::size_t kCheckDigits = 8;

/// The CRC-32 of the bytes so far, carried on over these. Begins with 0.
std::uint32_t Crc32(std::uint32_t crc, std::string_view bytes);

struct Attribute {
  std::string_view name;
  std::string_view value;
};

/// An element as it stands in a file.
struct Element {
  std::string_view name;
  std::vector<Attribute> attributes;     // in their order
  std::optional<std::string_view> text;  // of one that holds a text and nothing else
};

/// Is shown an element, and inside how many others it stands, and says whether it takes it.
using TakeElement = std::function<bool(const Element&, int depth)>;
/// Is told of the bytes of a file, in order, before they are taken apart.
using ReadListener = std::function<void(std::string_view)>;

/// Shows the elements of a file that stands as `Save` writes it, without the parser and in a fifth of its
/// instructions. The checksum begins behind the first `size` bytes. False, and no judgement, when an element is
/// not taken or anything is written otherwise: the parser then has to read the file from its beginning.
bool ScanLmf(InputFile& file, std::int64_t size, const ReadListener& listener, const TakeElement& take);

template <class T>
struct Property {
  T (clsLmfQuestion::*get)() const;
  void (clsLmfQuestion::*let)(T);
};

template <class T>
struct List {
  Ref<T> (clsLmfQuestion::*get)() const;
};

/// One attribute of a question's element and the member that it stands for.
struct Column {
  std::string_view name;
  std::variant<Property<String>, Property<bool>, Property<Integer>, Property<Long>, Property<Double>,
               List<clsLmfStrings>, List<clsLmfObjectiveFlags>>
      member;
};

using Question = clsLmfQuestion;

/// All of them, in the order in which they are written.
inline constexpr Column kColumns[] = {
    {"name", Property<String>{&Question::Name, &Question::Name}},
    {"text", Property<String>{&Question::Text, &Question::Text}},
    {"graded", Property<bool>{&Question::Graded, &Question::Graded}},
    {"subjective", Property<bool>{&Question::Subjective, &Question::Subjective}},
    {"mode", Property<Long>{&Question::QuestionMode, &Question::QuestionMode}},
    {"multiples", Property<Integer>{&Question::Multiples, &Question::Multiples}},
    {"carriedFlag1", Property<Integer>{&Question::CarriedFlag1, &Question::CarriedFlag1}},
    {"carriedFlag2", Property<Integer>{&Question::CarriedFlag2, &Question::CarriedFlag2}},
    {"labels", List<clsLmfStrings>{&Question::Labels}},
    {"values", List<clsLmfStrings>{&Question::Values}},
    {"correctLabels", List<clsLmfStrings>{&Question::CorrectLabels}},
    {"correctValues", List<clsLmfStrings>{&Question::CorrectValues}},
    {"correctCount", Property<Long>{&Question::CorrectCount, &Question::CorrectCount}},
    {"correctAnd", Property<bool>{&Question::CorrectAnd, &Question::CorrectAnd}},
    {"correctPoints", Property<Double>{&Question::CorrectPoints, &Question::CorrectPoints}},
    {"incorrectPoints", Property<Double>{&Question::IncorrectPoints, &Question::IncorrectPoints}},
    {"noResponsePoints", Property<Double>{&Question::NoResponsePoints, &Question::NoResponsePoints}},
    {"subjectivePoints", Property<Double>{&Question::SubjectivePoints, &Question::SubjectivePoints}},
    {"objectives", List<clsLmfObjectiveFlags>{&Question::ObjectiveFlags}},
    {"defaultText", Property<String>{&Question::DefaultText, &Question::DefaultText}},
    {"defaultValue", Property<Double>{&Question::DefaultValue, &Question::DefaultValue}},
    {"difficulty", Property<String>{&Question::Difficulty, &Question::Difficulty}},
    {"reference", Property<String>{&Question::Reference, &Question::Reference}},
    {"topic", Property<String>{&Question::Topic, &Question::Topic}},
    {"keywords", Property<String>{&Question::Keywords, &Question::Keywords}},
    {"miscellaneous", Property<String>{&Question::Miscellaneous, &Question::Miscellaneous}},
    {"notes", Property<String>{&Question::Notes, &Question::Notes}},
};

}  // namespace lmf_file
}  // namespace TORVA35
