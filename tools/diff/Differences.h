#pragma once

#include <string>
#include <vector>

#include "Text.h"

namespace tools {

struct Difference {
    std::string place;
    std::string text;
    std::vector<std::string> notes;  ///< Lines that say more.
    Json details = Json::object();   ///< The same for JSON.
};

/// The differences between two files, in the order in which they are found. A place is a list of
/// pieces, "database 0, result STRESS, state 2"; what the user ignores is a pattern for one piece
/// or several that follow each other, or for the name of a result.
class Differences {
public:
    Differences(std::string a, std::string b, std::vector<std::string> ignored)
        : m_a(std::move(a)), m_b(std::move(b)), m_ignored(std::move(ignored)) {}

    bool empty() const { return m_items.empty(); }

    /// Whether the user does not want to know of a place and all that lies in it.
    bool ignores(const std::string& place) const;

    void add(Difference difference);
    void add(const std::string& place, const std::string& text) { add({place, text, {}}); }

    void onlyInA(const std::string& place) { add(place, "only in " + m_a); }
    void onlyInB(const std::string& place) { add(place, "only in " + m_b); }

    const std::string& nameOfA() const { return m_a; }
    const std::string& nameOfB() const { return m_b; }

    /// A line each, with its notes below it.
    std::string text() const;

    /// A list of objects with "place", "text" and the details.
    Json json() const;

private:
    const std::string m_a;
    const std::string m_b;
    const std::vector<std::string> m_ignored;
    std::vector<Difference> m_items;
};

}  // namespace tools
