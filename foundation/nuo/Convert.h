#pragma once

#include <new>
#include <string>

#include "NuoCore/Str.h"
#include "nvf/String.h"
#include "nvf/Utf8.h"

namespace nuo {

/// Converts between the strings of the public interface and those of the framework; nothing else
/// does. Throws std::bad_alloc when there is no memory, and for a lost text.
class Convert {
public:
    static nvf::String toNvfString(const Str& text) { return nvf::String(kept(text)); }
    static std::string toUtf8(const Str& text) { return nvf::utf8FromWide(kept(text)); }

    static Str toStr(const nvf::String& text) {
        Str converted;
        converted.m_text = text.text();
        return converted;
    }

private:
    static const std::wstring& kept(const Str& text) {
        if (text.m_isLost) throw std::bad_alloc();
        return text.m_text;
    }
};

}  // namespace nuo
