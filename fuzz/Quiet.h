#pragma once

#include "nvf/Assert.h"
#include "nvf/LogManager.h"

namespace fuzz {

/// Composes messages and drops them; failed assertions let the code go on, as in a program that
/// uses the library. Called first by every target.
inline void beQuiet() {
    struct Nowhere : nvf::LogDestination {
        void log(const nvf::String&, nvf::LogLevel, const nvf::String&,
                 const nvf::CodeLocation&) override {}
    };
    static const bool isQuiet = [] {
        nvf::LogManager::instance()->setDestination(nvf::ref<nvf::LogDestination>(new Nowhere));
        nvf::setReportMode(nvf::AssertReportMode::CONTINUE);
        return true;
    }();
    static_cast<void>(isQuiet);
}

}  // namespace fuzz
