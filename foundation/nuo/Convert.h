#pragma once

#include "NuoCore/Str.h"
#include "nvf/String.h"

namespace nuo {

/// The one bridge between the strings of the public interface and those of the framework.
class Convert {
public:
    static nvf::String toNvfString(const Str& text) { return nvf::String(text.toStdWString()); }
    static Str toStr(const nvf::String& text) { return Str(text.text()); }
};

}  // namespace nuo
