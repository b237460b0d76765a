#include "Digits_p.h"

#include <algorithm>
#include <climits>

namespace nuo::zrfx {

using namespace unstruct;

Digits::Scope::Scope(Digits* digits, ZRFxBlock* block) {
    if (block->GetType() == BLOCK_RESULT_VALUES) {
        auto* values = static_cast<ZRFxResultValuesBlock*>(block);
        const int known = digits->ofValues(*values);
        if (known == 0) return;
        m_values = values;
        values->SetSignificantDigits(known);
    } else if (block->GetType() == BLOCK_RESULTS) {
        auto* result = static_cast<ZRFxResultBlock*>(block);
        const int known = digits->ofResult(*result);
        if (known == 0) return;
        result->GetDescription().SetSignificantDigits(known);
        m_result = result;
    }
}

Digits::Scope::~Scope() {
    if (m_values) m_values->SetSignificantDigits(0);
    if (m_result) m_result->GetDescription().SetSignificantDigits(0);
}

// 0 when the block has its own, or nothing is known.
int Digits::ofValues(const ZRFxResultValuesBlock& values) {
    if (values.GetSignificantDigits() > 0) {
        m_byValues[values.GetID()] = values.GetSignificantDigits();
        return 0;
    }
    const auto found = m_byValues.find(values.GetID());
    return found == m_byValues.end() ? 0 : found->second;
}

// The same; of values that differ, the fewest digits.
int Digits::ofResult(const ZRFxResultBlock& result) {
    const int own = result.GetDescription().GetSignificantDigits();
    if (own == 0 && m_byValues.empty()) return 0;
    int fewest = INT_MAX;
    for (std::int64_t s = 0; s < result.GetStateCount(); ++s) {
        for (const int id : result.GetState(s)->m_aiValuesBlockIDs) {
            if (own > 0) m_byValues.try_emplace(id, own);
            const auto found = m_byValues.find(id);
            if (found != m_byValues.end()) fewest = std::min(fewest, found->second);
        }
    }
    return own > 0 || fewest == INT_MAX ? 0 : fewest;
}

}  // namespace nuo::zrfx
