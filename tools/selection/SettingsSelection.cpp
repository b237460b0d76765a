#include "selection/SettingsSelection.h"

#include <string>
#include <vector>

namespace tools {
namespace {

using nvf::ref;
using nvf::Variant;

bool isOfOtherPart(const nvf::PropertySet& set, const SettingsTargets& targets) {
    if (!targets.parts) return false;
    for (const auto& [key, value] : set.valuesByKey()) {
        const bool isPart = key.toUtf8() == "context_part_id" && value.type() == Variant::INT;
        if (isPart) return !targets.parts->contains(value.getInt());
    }
    return false;
}

Variant onlyStates(const Variant& ids, const std::set<int>& states) {
    std::vector<Variant> left;
    for (const Variant& id : ids.getArray()) {
        if (id.type() != Variant::INT || states.contains(id.getInt())) left.push_back(id);
    }
    if (left.empty() && !states.empty()) left.emplace_back(*states.rbegin());
    return Variant(left);
}

ref<nvf::PropertySet> selectSet(const nvf::PropertySet& set, const SettingsTargets& targets) {
    const ref<nvf::PropertySet> left = new nvf::PropertySet(set.classType());
    for (const auto& [key, value] : set.valuesByKey()) {
        const std::string name = key.toUtf8();
        const bool isOfResult = name.ends_with("result_id") && value.type() == Variant::INT;
        const bool isOther =
            isOfResult && value.getInt() >= 0 && !targets.resultIds.contains(value.getInt());
        if (isOther) continue;
        const bool areStates = name == "state_ids" && value.type() == Variant::ARRAY;
        left->setValue(key, areStates ? onlyStates(value, targets.states) : value);
    }
    return left;
}

}  // namespace

ref<nvf::PropertySetCollection> selectSettings(const nvf::PropertySetCollection& settings,
                                               const SettingsTargets& targets) {
    ref<nvf::PropertySetCollection> left = new nvf::PropertySetCollection;
    for (std::size_t i = 0; i < settings.count(); ++i) {
        const nvf::PropertySet& set = *settings.propertySet(i);
        if (isOfOtherPart(set, targets)) continue;
        const ref<nvf::PropertySet> own = selectSet(set, targets);
        left->addPropertySet(own.p());
    }
    return left;
}

}  // namespace tools
