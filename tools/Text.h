#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "NuoCore/Str.h"
#include "ZRString.h"

namespace tools {

/// Members in the order in which they are added.
using Json = nlohmann::ordered_json;

/// A number with the fewest digits that bring the same value back.
std::string numberText(float value);
std::string numberText(double value);

/// A float as a JSON number of the same digits as numberText; null when it is not finite.
Json jsonNumber(float value);

inline std::string utf8(const nuo::Str& text) {
    return text.toStdString();
}
inline std::string utf8(const unstruct::ZRString& text) {
    return text.Bytes();
}

/// With control characters, which could steer a terminal, replaced by '?', and what is not UTF-8 by
/// U+FFFD.
std::string printable(std::string_view text);

/// A message of the library without the name of the file, for where the name stands anyway.
std::string withoutFileName(std::string message, const std::string& file);

/// "1 element", "2 elements".
std::string counted(std::uint64_t count, std::string_view singular);

/// "element 17".
std::string numbered(std::string_view what, std::int64_t number);

/// Bytes for people: "12.3 MB".
std::string byteText(std::uint64_t bytes);

}  // namespace tools
