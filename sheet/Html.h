#pragma once

#include <string>
#include <string_view>

namespace TORVA35::sheet {

/// A text of UTF-8 as content or attribute of a page that is HTML and XML at once. Line ends and tabs become
/// blanks; what XML cannot hold becomes U+FFFD.
std::string Escaped(std::string_view text);

/// A whole page around the content of its body.
std::string Document(std::string_view language, std::string_view title, std::string_view style,
                     std::string_view body);

}  // namespace TORVA35::sheet
