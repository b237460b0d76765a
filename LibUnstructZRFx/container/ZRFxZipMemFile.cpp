#include "container/ZRFxZipMemFile.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <utility>

namespace unstruct {

bool ZRFxZipMemFile::ReadAt(uint64_t nOffset, void* pData, size_t nSize) const {
    if (nOffset > m_nLength || nSize > m_nLength - nOffset) return false;
    if (nSize > 0) std::memcpy(pData, m_pData + nOffset, nSize);
    return true;
}

bool ZRFxZipMemFile::WriteAt(uint64_t nOffset, const void* pData, size_t nSize) {
    if (nSize == 0) return true;
    if (nOffset > std::numeric_limits<uint64_t>::max() - nSize) return false;
    if (!Reserve(nOffset + nSize)) return false;
    if (nOffset > m_nLength) std::memset(m_pData + m_nLength, 0, nOffset - m_nLength);
    std::memcpy(m_pData + nOffset, pData, nSize);
    m_nLength = std::max(m_nLength, static_cast<size_t>(nOffset) + nSize);
    return true;
}

void ZRFxZipMemFile::Truncate(uint64_t nLength) {
    m_nLength = static_cast<size_t>(std::min<uint64_t>(m_nLength, nLength));
}

bool ZRFxZipMemFile::Detach(ZRFxZipRawData* pRaw) {
    if (m_nLength > ZRFxZipRawData::kMaxLength) return false;
    if (m_nLength == 0) Clear();
    const uint32_t nLength = static_cast<uint32_t>(std::exchange(m_nLength, 0));
    m_nCapacity = 0;
    pRaw->Adopt(std::exchange(m_pData, nullptr), nLength);
    return true;
}

void ZRFxZipMemFile::Clear() {
    std::free(std::exchange(m_pData, nullptr));
    m_nLength = 0;
    m_nCapacity = 0;
}

void ZRFxZipMemFile::Swap(ZRFxZipMemFile& other) noexcept {
    std::swap(m_pData, other.m_pData);
    std::swap(m_nLength, other.m_nLength);
    std::swap(m_nCapacity, other.m_nCapacity);
}

bool ZRFxZipMemFile::Reserve(uint64_t nLength) {
    if (nLength <= m_nCapacity) return true;
    const uint64_t nGrown = m_nCapacity + std::max<uint64_t>(m_nGrowBy, m_nCapacity / 2);
    const size_t nCapacity = static_cast<size_t>(std::max(nLength, nGrown));
    void* pGrown = ZRFxSystem::Current().Reallocate(m_pData, nCapacity);
    if (!pGrown) return false;
    m_pData = static_cast<uint8_t*>(pGrown);
    m_nCapacity = nCapacity;
    return true;
}

bool ZRFxMemStorage::Read(uint64_t nOffset, void* pData, size_t nSize) {
    const bool bInside = nOffset <= Position() && nSize <= Position() - nOffset;
    if (!bInside) return Fail("the archive ends too early");
    return Target().ReadAt(nOffset, pData, nSize) || Fail("the memory file was cut");
}

bool ZRFxMemStorage::Write(const void* pData, size_t nSize) {
    if (!m_bWriting) Target().Truncate(m_nSize);
    m_bWriting = true;
    return Target().Append(pData, nSize) || Fail(ZRFxCause::OutOfMemory());
}

ZRFxCommitResult ZRFxMemStorage::EndCommit() {
    m_nSize = Position();
    if (m_bCreates) m_pFile->Swap(m_created);
    m_created.Clear();
    // What that one has written last is gone with the rest.
    if (m_pReplaced) m_pReplaced->m_bWriting = false;
    m_pReplaced = nullptr;
    m_bCreates = m_bWriting = false;
    return ZRFxCommitResult::kDone;
}

void ZRFxMemStorage::RollBack() {
    if (m_bWriting) Target().Truncate(m_nSize);
    m_bWriting = false;
}

std::unique_ptr<ZRFxZipStorage> ZRFxMemStorage::Successor() {
    auto pSuccessor = std::make_unique<ZRFxMemStorage>(m_pFile, true);
    pSuccessor->m_pReplaced = this;
    return pSuccessor;
}

}  // namespace unstruct
