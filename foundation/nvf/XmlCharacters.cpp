#include "nvf/XmlCharacters.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "nvf/Utf8.h"

namespace nvf {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

bool isForbiddenControl(int c) {
    return c < 0x20 && c != '\t' && c != '\n' && c != '\r';
}

// A character, or a reference to a control character.
struct Piece {
    std::size_t length;
    bool isForbidden;
};

// Control characters are written as references of two digits.
Piece referencePiece(std::string_view xml) {
    const auto isDigit = [&](std::size_t i) { return xml[i] >= '0' && xml[i] <= '9'; };
    const bool isReference =
        xml.size() >= 5 && xml[1] == '#' && isDigit(2) && isDigit(3) && xml[4] == ';';
    if (!isReference || !isForbiddenControl((xml[2] - '0') * 10 + xml[3] - '0')) return {1, false};
    return {5, true};
}

Piece firstPiece(std::string_view xml) {
    const auto first = static_cast<unsigned char>(xml.front());
    if (first == '&') return referencePiece(xml);
    if (first < 0x80) return {1, isForbiddenControl(first)};
    std::string_view rest = xml;
    const char32_t c = takeCharacter(rest);
    const std::size_t length = xml.size() - rest.size();
    return {length, length == 1 || c == 0xFFFE || c == 0xFFFF};
}

// Whether a byte of a word is zero, and perhaps one above such a byte: by Mycroft's formula.
constexpr std::uint64_t kEachByte = 0x0101010101010101;
std::uint64_t zeroBytes(std::uint64_t word) {
    return (word - kEachByte) & ~word & (0x80 * kEachByte);
}

// Neither control characters, nor what may begin a reference, nor anything beyond ASCII.
bool areEightPlain(const char* text) {
    std::uint64_t word = 0;
    std::memcpy(&word, text, sizeof(word));
    const std::uint64_t controls = (word - 0x20 * kEachByte) & ~word;
    return ((word | controls) & (0x80 * kEachByte)) == 0 &&
           zeroBytes(word ^ ('&' * kEachByte)) == 0;
}

// Nearly all of a document is plain.
std::size_t skipPlain(std::string_view xml, std::size_t from) {
    while (xml.size() - from >= 8 && areEightPlain(xml.data() + from)) from += 8;
    return from;
}

// From there on, or the end where there is none.
std::size_t findForbidden(std::string_view xml, std::size_t from) {
    while (from < xml.size()) {
        from = skipPlain(xml, from);
        if (from == xml.size()) break;
        const Piece piece = firstPiece(xml.substr(from));
        if (piece.isForbidden) break;
        from += piece.length;
    }
    return from;
}

}  // namespace

bool replaceForbiddenCharacters(std::string* xml) {
    std::size_t found = findForbidden(*xml, 0);
    if (found == xml->size()) return false;
    std::string clean;
    std::size_t done = 0;
    for (; found < xml->size(); found = findForbidden(*xml, done)) {
        clean.append(*xml, done, found - done).append(kReplacement);
        done = found + firstPiece(std::string_view(*xml).substr(found)).length;
    }
    clean.append(*xml, done);
    xml->swap(clean);
    return true;
}

}  // namespace nvf
