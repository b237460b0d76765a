#pragma once

#include <string>
#include <utility>

#include "nvf/FirstError.h"

namespace unstruct {

/// Why an operation of the container failed: a clause for the middle of a message, without an end,
/// and the reason that programs act on.
struct ZRFxCause {
    ZRFxCause() = default;
    ZRFxCause(const char* sWhy, nvf::Reason eWhy = nvf::Reason::DAMAGED)
        : sText(sWhy), eReason(eWhy) {}
    ZRFxCause(std::string sWhy, nvf::Reason eWhy = nvf::Reason::DAMAGED)
        : sText(std::move(sWhy)), eReason(eWhy) {}

    static ZRFxCause OutOfMemory() { return {"out of memory", nvf::Reason::OUT_OF_MEMORY}; }
    static ZRFxCause TooLarge() {
        return {"the entry is larger than 4 GiB", nvf::Reason::TOO_LARGE};
    }
    /// The program has stopped the operation by its progress callback.
    static ZRFxCause Stopped() { return {"stopped by the program", nvf::Reason::CANCELLED}; }
    /// sWhat, and what the system says of errno.
    static ZRFxCause System(const std::string& sWhat);

    /// The same of something that is not the archive: "'path': why".
    ZRFxCause Of(const std::string& sPath) const { return {"'" + sPath + "': " + sText, eReason}; }

    bool IsNone() const { return sText.empty(); }

    std::string sText;
    nvf::Reason eReason = nvf::Reason::NONE;
};

}  // namespace unstruct
