#include "ZRIDLookup.h"

namespace unstruct {

void ZRIDLookup::Update(const ZRIntArray& ids) {
    if (m_nNumItems == 0) m_indexOfID.reserve(static_cast<std::size_t>(ids.GetSize()));
    while (m_nNumItems < ids.GetSize()) Add(ids.Data()[m_nNumItems]);
}

std::int64_t ZRIDLookup::IndexOf(std::int32_t id) const {
    const auto found = m_indexOfID.find(id);
    return found == m_indexOfID.end() ? -1 : found->second;
}

}  // namespace unstruct
