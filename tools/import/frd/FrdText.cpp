#include "import/frd/FrdText.h"

#include <string>

#include "import/ImportNumbers.h"

namespace tools {
namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// "1.5-101" and "1D+3" as "1.5e-101" and "1e+3".
std::string withExponent(std::string_view text) {
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isSign = text[i] == '+' || text[i] == '-';
        if (isSign && i > 0 && (isDigit(text[i - 1]) || text[i - 1] == '.')) plain += 'e';
        plain += text[i] == 'D' || text[i] == 'd' ? 'e' : text[i];
    }
    return plain;
}

std::string_view withoutPlus(std::string_view text) {
    if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
    return text;
}

}  // namespace

std::string_view frdField(std::string_view line, std::size_t column, std::size_t width) {
    return column < line.size() ? line.substr(column, width) : std::string_view();
}

bool isFrdItem(std::string_view line, const char* key) {
    return line.size() >= 3 && line[0] == ' ' && line[1] == key[0] && line[2] == key[1];
}

std::string_view frdTrimmed(std::string_view text) {
    while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
    return text;
}

bool readFrdInteger(std::string_view field, int* value) {
    const std::string_view text = withoutPlus(frdTrimmed(field));
    *value = 0;
    return text.empty() || readInteger(text, value);
}

bool readFrdDouble(std::string_view field, double* value) {
    const std::string_view text = withoutPlus(frdTrimmed(field));
    return readDouble(text, value) || readDouble(withExponent(text), value);
}

bool readFrdFloat(std::string_view field, float* value) {
    const std::string_view text = withoutPlus(frdTrimmed(field));
    return readFloat(text, value) || readFloat(withExponent(text), value);
}

}  // namespace tools
