#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace unstruct {

/// A text that does not change, alone or as a part of a longer one that several share. Made so that
/// a directory of very many entries is one piece of memory.
class ZRFxSharedText {
public:
    ZRFxSharedText() = default;
    ZRFxSharedText(const char* s) : ZRFxSharedText(std::string_view(s)) {}
    ZRFxSharedText(const std::string& s) : ZRFxSharedText(std::string_view(s)) {}
    /// Keeps a copy.
    ZRFxSharedText(std::string_view s) : m_nSize(s.size()) {
        if (s.empty()) return;
        const auto pCopy = std::make_shared<char[]>(s.size());
        std::copy(s.begin(), s.end(), pCopy.get());
        m_pFirst = std::shared_ptr<const char>(pCopy, pCopy.get());
    }
    /// Keeps the whole text, of which `part` is a part.
    ZRFxSharedText(const std::shared_ptr<const std::string>& pWhole, std::string_view part)
        : m_pFirst(pWhole, part.data()), m_nSize(part.size()) {}

    operator std::string_view() const { return {m_pFirst.get(), m_nSize}; }
    const char* data() const { return m_pFirst.get(); }
    size_t size() const { return m_nSize; }
    bool empty() const { return m_nSize == 0; }
    void clear() { *this = ZRFxSharedText(); }

    friend bool operator==(const ZRFxSharedText& a, const ZRFxSharedText& b) {
        return std::string_view(a) == std::string_view(b);
    }

private:
    std::shared_ptr<const char> m_pFirst;
    size_t m_nSize = 0;
};

}  // namespace unstruct
