#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "torva35/platform/CharacterConverter.h"
#include "torva35/xml/DOMDocument.h"

namespace TORVA35 {

/// Turns the bytes of a document into the UTF-8 that the parser gets. The encoding is that of the byte order mark,
/// else the one that the document declares, else UTF-8. The mark stays, as the character that it is. Bytes that
/// are no character become one that UTF-8 does not have, so that the parser refuses the document in that place.
class XmlDecoder {
 public:
  /// Finds the encoding out; the outcome has a reason when that is not possible. head: how the document begins,
  /// with the whole declaration if it has one. isWhole: whether that is the document from beginning to end.
  XmlParseError Begin(std::string_view head, bool isWhole);

  /// Whether the bytes are UTF-8 as they stand.
  bool IsUtf8() const { return form_ == Form::kUtf8; }
  bool HasMark() const { return hasMark_; }

  /// Appends the UTF-8 of bytes that go on where the last ones were used up to. Gives how many of them are used:
  /// all but the beginning of a character at their end, unless they are the document's last ones. Stops when the
  /// UTF-8 is `most` bytes long or longer.
  std::size_t Convert(std::string_view bytes, bool areLast, std::string& utf8,
                      std::size_t most = std::string::npos);

 private:
  enum class Form { kUtf8, kUtf16Little, kUtf16Big, kUtf32Little, kUtf32Big, kOther };

  bool Use(std::string_view name);
  bool UseConverter(const std::string& name);
  std::size_t ConvertOne(std::string_view bytes, std::string& utf8);
  std::size_t ConvertOther(std::string_view bytes, std::string& utf8);
  std::size_t Width() const;
  char32_t UnitAt(std::string_view bytes, std::size_t index) const;

  Form form_ = Form::kUtf8;
  bool hasMark_ = false;
  // Of an encoding that the system's converter knows: the UTF-8 of each byte that is a character by itself, and
  // nothing for one that begins a longer character.
  std::unique_ptr<CharacterConverter> converter_;
  std::array<std::string, 256> single_;
  std::u32string characters_;
};

}  // namespace TORVA35
