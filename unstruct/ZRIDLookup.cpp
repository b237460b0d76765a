#include "ZRIDLookup.h"

namespace unstruct {

ZRIDLookup::ZRIDLookup(const ZRIntArray& ids) {
    m_indexOfID.reserve(static_cast<std::size_t>(ids.GetSize()));
    for (std::int64_t i = 0; i < ids.GetSize(); ++i) m_indexOfID.emplace(ids.Data()[i], i);
}

std::int64_t ZRIDLookup::IndexOf(std::int32_t id) const {
    const auto found = m_indexOfID.find(id);
    return found == m_indexOfID.end() ? -1 : found->second;
}

}  // namespace unstruct
