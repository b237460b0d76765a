#pragma once

#include "Log_p.h"
#include "NuoZRFx/Block.h"

namespace nuo::zrfx {

/// Runs a change of a block that has no result to tell its failure. A block that lacks it is not
/// written.
template <typename Change>
void change(Block& block, Change apply,
            const nvf::SourceLocation& where = nvf::SourceLocation::current()) {
    const auto applyAndTell = [&] {
        apply();
        return true;
    };
    if (!guarded(false, applyAndTell, where)) block.internal_setIncomplete();
}

}  // namespace nuo::zrfx
