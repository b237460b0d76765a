#pragma once

#include <map>

#include "blocks/results/ZRFxResultBlock.h"
#include "blocks/results/ZRFxResultValuesBlock.h"

namespace nuo::zrfx {

/// The significant digits of the result values of a database that a program has asked for, at the
/// values or at the result that lists them, whichever is written first.
class Digits {
public:
    /// Gives a block that is about to be written the digits that are known of it otherwise, until
    /// the end of the scope, and notes those that it has of its own.
    class Scope {
    public:
        Scope(Digits* digits, unstruct::ZRFxBlock* block);
        ~Scope();
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;

    private:
        unstruct::ZRFxResultBlock* m_result = nullptr;
        unstruct::ZRFxResultValuesBlock* m_values = nullptr;
    };

private:
    int ofValues(const unstruct::ZRFxResultValuesBlock& values);
    int ofResult(const unstruct::ZRFxResultBlock& result);

    std::map<int, int> m_byValues;  // by id of the values block
};

}  // namespace nuo::zrfx
