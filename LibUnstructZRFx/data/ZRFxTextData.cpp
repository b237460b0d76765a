#include "data/ZRFxTextData.h"

#include <algorithm>
#include <charconv>

#include "ZRUndefined.h"
#include "nvf/Number.h"

namespace unstruct::textdata {
namespace {

constexpr const char* kUndefined = "UNDEF";
constexpr int kSignificantDigits = 6;
constexpr int kMostIntsPerLine = 20;

template <typename... Format>
void appendNumber(std::string& text, auto value, Format... format) {
    char number[48];
    text.append(number, std::to_chars(number, number + sizeof(number), value, format...).ptr);
}

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r';
}

// Takes the next word off the front of a line; empty at its end.
std::string_view takeWord(std::string_view& line) {
    const auto begin = std::find_if_not(line.begin(), line.end(), isBlank);
    const auto end = std::find_if(begin, line.end(), isBlank);
    const std::string_view word(begin, end);
    line.remove_prefix(static_cast<std::size_t>(end - line.begin()));
    return word;
}

}  // namespace

void AppendIntLine(const std::int32_t* items, int count, std::string& text) {
    for (int i = 0; i < count; ++i) {
        appendNumber(text, items[i]);
        if (count > 1) text += ' ';
    }
    text += '\n';
}

void AppendFloatLine(const float* components, int count, std::string& text) {
    if (std::all_of(components, components + count, IsUndefined)) {
        text += kUndefined;
    } else {
        for (int i = 0; i < count; ++i) {
            if (i > 0) text += ' ';
            appendNumber(text, components[i], std::chars_format::general, kSignificantDigits);
        }
    }
    text += '\n';
}

void AppendUbyteLine(unsigned char item, std::string& text) {
    appendNumber(text, static_cast<int>(item));
    text += '\n';
}

bool ParseIntLine(std::string_view line, ZRIntArray& items) {
    for (int count = 0; count < kMostIntsPerLine; ++count) {
        const std::string_view word = takeWord(line);
        if (word.empty()) return count > 0;
        std::int32_t item = 0;
        if (!nvf::parseNumber(word, item) || !items.Add(item)) return false;
    }
    return takeWord(line).empty();
}

bool ParseFloatLine(std::string_view line, int count, float* components) {
    for (int i = 0; i < count; ++i) {
        const std::string_view word = takeWord(line);
        if (i == 0 && word == kUndefined) {
            std::fill(components, components + count, kUndefinedValue);
            break;
        }
        if (!nvf::parseNumber(word, components[i])) return false;
    }
    return takeWord(line).empty();
}

}  // namespace unstruct::textdata
