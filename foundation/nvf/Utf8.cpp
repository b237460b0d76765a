#include "nvf/Utf8.h"

#include <algorithm>

namespace nvf {
namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr bool kWideIsUtf16 = sizeof(wchar_t) == 2;

bool isSurrogate(char32_t c) {
    return c >= 0xD800 && c <= 0xDFFF;
}

void appendWide(char32_t c, std::wstring& out) {
    if (kWideIsUtf16 && c > 0xFFFF) {
        out += static_cast<wchar_t>(0xD800 + ((c - 0x10000) >> 10));
        out += static_cast<wchar_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
    } else {
        out += static_cast<wchar_t>(c);
    }
}

void appendUtf8(char32_t c, std::string& out) {
    if (c < 0x80) {
        out += static_cast<char>(c);
    } else if (c < 0x800) {
        out += static_cast<char>(0xC0 | (c >> 6));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        out += static_cast<char>(0xE0 | (c >> 12));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (c >> 18));
        out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    }
}

// Length of the sequence that a lead byte announces, 0 for a byte that cannot lead.
int sequenceLength(unsigned char lead) {
    if (lead < 0x80) return 1;
    if (lead < 0xC2) return 0;
    if (lead < 0xE0) return 2;
    if (lead < 0xF0) return 3;
    return lead < 0xF5 ? 4 : 0;
}

char32_t takeCharacter(std::wstring_view& text) {
    const auto first = static_cast<char32_t>(text.front());
    text.remove_prefix(1);
    if (!isSurrogate(first)) return first > 0x10FFFF ? kReplacement : first;
    const bool isPair = kWideIsUtf16 && first < 0xDC00 && !text.empty() &&
                        (static_cast<char32_t>(text.front()) & 0xFC00) == 0xDC00;
    if (!isPair) return kReplacement;
    const auto second = static_cast<char32_t>(text.front());
    text.remove_prefix(1);
    return 0x10000 + ((first - 0xD800) << 10) + (second - 0xDC00);
}

}  // namespace

char32_t takeCharacter(std::string_view& bytes) {
    static constexpr char32_t kLeastOfLength[] = {0, 0, 0x80, 0x800, 0x10000};
    const auto lead = static_cast<unsigned char>(bytes.front());
    const int length = sequenceLength(lead);
    bytes.remove_prefix(1);
    if (length == 1) return lead;
    if (length == 0 || bytes.size() + 1 < static_cast<std::size_t>(length)) return kReplacement;
    char32_t c = lead & (0x7F >> length);
    for (int i = 0; i < length - 1; ++i) {
        const auto next = static_cast<unsigned char>(bytes[i]);
        if ((next & 0xC0) != 0x80) return kReplacement;
        c = (c << 6) | (next & 0x3F);
    }
    if (c < kLeastOfLength[length] || c > 0x10FFFF || isSurrogate(c)) return kReplacement;
    bytes.remove_prefix(length - 1);
    return c;
}

// Most texts are ASCII from end to end; their characters are copied at once.
std::wstring wideFromUtf8(std::string_view utf8) {
    const auto asciiEnd = std::ranges::find_if(utf8, [](char c) { return (c & 0x80) != 0; });
    std::wstring text(utf8.begin(), asciiEnd);
    utf8.remove_prefix(text.size());
    while (!utf8.empty()) appendWide(takeCharacter(utf8), text);
    return text;
}

std::string utf8FromWide(std::wstring_view text) {
    const auto asciiEnd = std::ranges::find_if(text, [](wchar_t c) { return c < 0 || c >= 0x80; });
    std::string utf8(text.begin(), asciiEnd);
    text.remove_prefix(utf8.size());
    while (!text.empty()) appendUtf8(takeCharacter(text), utf8);
    return utf8;
}

}  // namespace nvf
