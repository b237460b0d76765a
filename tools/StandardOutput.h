#pragma once

#include <string>
#include <string_view>

#include "Text.h"

namespace tools {

/// Writes text to standard output. A failure is kept for closeStandardOutput().
void print(std::string_view text);

/// Writes one JSON document to standard output. Text in it that is not UTF-8 is replaced.
void printJson(const Json& json);

/// Writes what is left and closes standard output. False, with the cause of the first failure, when
/// anything that was printed is not there; to be called once, at the end.
bool closeStandardOutput(std::string* cause);

}  // namespace tools
