#pragma once

#include <set>

#include "nvf/PropertySetCollection.h"

namespace tools {

/// What viewer settings may refer to.
struct SettingsTargets {
    const std::set<int>& states;
    const std::set<int>& resultIds;
    const std::set<int>* parts;  ///< Null stands for all.
};

/// The settings without those of parts, states and results that are not there.
nvf::ref<nvf::PropertySetCollection> selectSettings(const nvf::PropertySetCollection& settings,
                                                    const SettingsTargets& targets);

}  // namespace tools
