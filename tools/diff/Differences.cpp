#include "diff/Differences.h"

#include <fnmatch.h>

#include <algorithm>

#include "Terminal.h"

namespace tools {
namespace {

constexpr std::string_view kSeparator = ", ";

// Where the pieces of a place begin, and one beyond the end as if another one followed.
std::vector<std::size_t> beginsOf(const std::string& place) {
    std::vector<std::size_t> begins{0};
    for (std::size_t at = place.find(kSeparator); at != std::string::npos;
         at = place.find(kSeparator, at + 1)) {
        begins.push_back(at + kSeparator.size());
    }
    begins.push_back(place.size() + kSeparator.size());
    return begins;
}

bool matches(const std::string& pattern, const std::string& pieces) {
    return fnmatch(pattern.c_str(), pieces.c_str(), 0) == 0 ||
           fnmatch(("result " + pattern).c_str(), pieces.c_str(), 0) == 0;
}

bool isIn(const std::string& place, const std::string& pattern) {
    const auto begins = beginsOf(place);
    for (std::size_t i = 0; i + 1 < begins.size(); ++i) {
        for (std::size_t j = i + 1; j < begins.size(); ++j) {
            const std::size_t length = begins[j] - kSeparator.size() - begins[i];
            if (matches(pattern, place.substr(begins[i], length))) return true;
        }
    }
    return false;
}

}  // namespace

bool Differences::ignores(const std::string& place) const {
    return std::ranges::any_of(m_ignored,
                               [&](const auto& pattern) { return isIn(place, pattern); });
}

void Differences::add(Difference difference) {
    if (!ignores(difference.place)) m_items.push_back(std::move(difference));
}

std::string Differences::text() const {
    std::string text;
    for (const Difference& item : m_items) {
        text += painted(printable(item.place), Paint::BOLD) + ": " +
                wrapped(printable(item.text), 2, item.place.size() + 2) + "\n";
        for (const std::string& note : item.notes) {
            text += "  " + wrapped(printable(note), 4, 2) + "\n";
        }
    }
    return text;
}

Json Differences::json() const {
    Json list = Json::array();
    for (const Difference& item : m_items) {
        Json json = {{"place", item.place}, {"text", item.text}};
        json.update(item.details);
        list.push_back(std::move(json));
    }
    return list;
}

}  // namespace tools
