#include "container/ZRFxReadAhead.h"

#include <algorithm>
#include <new>

namespace unstruct {
namespace {

// Other entries, of this length together, may lie between one piece of a stream and the next.
constexpr uint64_t kGap = 4096;

}  // namespace

bool ZRFxReadAhead::Window::Holds(uint64_t nFrom, size_t nSize) const {
    return nFrom >= nOffset && nFrom - nOffset <= nLength && nSize <= nLength - (nFrom - nOffset);
}

bool ZRFxReadAhead::Window::IsFollowedBy(uint64_t nFrom) const {
    return nLength > 0 && nFrom >= nOffset && nFrom - nOffset <= nLength + kGap;
}

const uint8_t* ZRFxReadAhead::Get(ZRFxZipStorage* pStorage, uint64_t nOffset, size_t nSize) {
    for (size_t i = 0; i < m_aWindows.size(); ++i) {
        const Window& window = m_aWindows[i];
        if (!window.Holds(nOffset, nSize)) continue;
        m_nLast = i;
        return window.data.Buffer() + (nOffset - window.nOffset);
    }
    Window& window = Choose(nOffset);
    const size_t nWanted = window.IsFollowedBy(nOffset) ? 2 * window.nLength : 0;
    const uint64_t nLeft = pStorage->Size() - std::min(pStorage->Size(), nOffset);
    const uint64_t nLength =
        std::max<uint64_t>(nSize, std::min<uint64_t>(nLeft, std::min(nWanted, kMaxPiece)));
    window.nLength = 0;
    if (window.data.Length() < nLength && !window.data.Allocate(nLength)) {
        throw std::bad_alloc();
    }
    const size_t nRead = static_cast<size_t>(nLength);
    if (!pStorage->Read(nOffset, window.data.Buffer(), nRead)) return nullptr;
    window.nOffset = nOffset;
    window.nLength = nRead;
    return window.data.Buffer();
}

void ZRFxReadAhead::Clear() {
    for (Window& window : m_aWindows) window = Window();
}

ZRFxReadAhead::Window& ZRFxReadAhead::Choose(uint64_t nOffset) {
    const auto followed =
        std::find_if(m_aWindows.begin(), m_aWindows.end(),
                     [&](const Window& window) { return window.IsFollowedBy(nOffset); });
    m_nLast = followed != m_aWindows.end() ? static_cast<size_t>(followed - m_aWindows.begin())
                                           : 1 - m_nLast;
    return m_aWindows[m_nLast];
}

}  // namespace unstruct
