#pragma once

#include <string>

namespace nvf {

/// Replaces by U+FFFD everything in a written document that XML 1.0 forbids: control characters and
/// references to them, U+FFFE, U+FFFF, and bytes that are not UTF-8. Returns whether there was any.
bool replaceForbiddenCharacters(std::string* xml);

}  // namespace nvf
