#pragma once

#include <map>
#include <string>
#include <vector>

namespace tools {

/// How far two numbers may lie apart and still be the same.
struct Tolerance {
    double relative = 0;  ///< As a part of the larger one.
    double absolute = 0;
    double floor = 0;  ///< Numbers that are both smaller than this are the same.

    bool holds(double a, double b) const;

    /// The same, where all that stands for "no value" is equal, and to nothing else.
    bool holds(float a, float b) const;
};

/// The tolerances of a comparison, as the user gives them: "1e-5" for all numbers, or
/// "STRESS=1e-3" for those of one result.
class Tolerances {
public:
    struct Texts {
        std::vector<std::string> relative;
        std::vector<std::string> absolute;
        std::vector<std::string> floor;
    };

    /// Takes texts that have been checked.
    explicit Tolerances(const Texts& texts);

    /// Empty for a good text, else a sentence that says what is wrong.
    static std::string check(const std::string& text);

    const Tolerance& general() const { return m_general; }

    /// Of a result; what is not given for it is as for all numbers.
    Tolerance of(const std::string& result) const;

private:
    using Member = double Tolerance::*;
    void add(const std::vector<std::string>& texts, Member member);

    Tolerance m_general;
    std::map<std::string, std::vector<std::pair<Member, double>>> m_own;  // by result
};

}  // namespace tools
