#include "import/frd/FrdForm.h"

#include "import/frd/FrdElementType.h"

namespace tools {
namespace {

constexpr std::uint64_t kSmallestElement = 12;  // bytes

}  // namespace

FrdForm::Outcome FrdForm::damaged(const std::string& reason) {
    m_reason = reason;
    return DAMAGED;
}

FrdForm::Outcome FrdForm::unknownType(int type) {
    return damaged("an element of unknown type " + std::to_string(type));
}

FrdElementGroup* FrdForm::elementGroup(int type, int material, std::uint64_t count) {
    const FrdElementType* known = frdElementType(type);
    if (!known) return nullptr;
    const auto [found, isNew] = m_content.elements.try_emplace({material, type});
    FrdElementGroup& group = found->second;
    if (isNew && m_content.elements.size() == 1) {  // most often there is one only
        const std::uint64_t most = m_content.file.size() / kSmallestElement;
        reserve(group.ids, count, most);
        reserve(group.nodes, std::min(count, most) * known->order.size(), UINT64_MAX);
    }
    return &group;
}

}  // namespace tools
