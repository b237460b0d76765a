#include "data/ZRFxReadBounds.h"

namespace unstruct {

void ZRFxReadBounds::Start(std::uint64_t archiveLength) {
    if (m_depth++ > 0) return;
    m_data = kMostDataPerByte * archiveLength;
    m_documents = kAnyDocuments + kMostDocumentsPerByte * archiveLength;
}

void ZRFxReadBounds::End() {
    --m_depth;
}

bool ZRFxReadBounds::Take(std::uint64_t numBytes, std::uint64_t* left) const {
    if (m_depth == 0) return true;
    if (numBytes > *left) return false;
    *left -= numBytes;
    return true;
}

}  // namespace unstruct
