// Lines of text data files. What is read and written again must read as the same.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "Quiet.h"
#include "data/ZRFxTextData.h"

namespace {

using namespace unstruct;

void require(bool holds) {
    if (!holds) std::abort();
}

std::string_view lineOf(const std::string& text) {
    require(!text.empty() && text.back() == '\n');
    return std::string_view(text).substr(0, text.size() - 1);
}

void readInts(std::string_view line) {
    ZRIntArray items;
    if (!textdata::ParseIntLine(line, items)) return;
    std::string text;
    textdata::AppendIntLine(items.Data(), static_cast<int>(items.GetSize()), text);
    ZRIntArray again;
    require(textdata::ParseIntLine(lineOf(text), again));
    require(std::equal(items.begin(), items.end(), again.begin(), again.end()));
}

void readFloats(std::string_view line, int count) {
    float items[textdata::kTensorComponents];
    if (!textdata::ParseFloatLine(line, count, items)) return;
    std::string text;
    textdata::AppendFloatLine(items, count, text);
    float again[textdata::kTensorComponents];
    require(textdata::ParseFloatLine(lineOf(text), count, again));
    std::string textAgain;
    textdata::AppendFloatLine(again, count, textAgain);
    require(text == textAgain);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::beQuiet();
    std::string_view text(reinterpret_cast<const char*>(data), size);
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        readInts(line);
        for (const int count : {1, 3, textdata::kTensorComponents}) readFloats(line, count);
    }
    return 0;
}
