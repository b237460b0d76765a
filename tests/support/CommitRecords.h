#pragma once

#include <algorithm>
#include <string>

#include "ZRByteOrder.h"
#include "container/ZRFxCodec.h"
#include "container/ZRFxCommitRecord.h"

namespace ziptest {

// Where the fields of a commit record stand.
constexpr size_t kRecordListing = 48;  // Length as stored; 8 bytes on, unpacked.
constexpr size_t kRecordTails = 64;
constexpr size_t kRecordHeaderCrc = 84;
constexpr size_t kRecordHeader = 88;
constexpr size_t kRecordFooter = 20;

template <typename Integer>
void StoreAt(std::string* pBytes, size_t nAt, Integer nValue) {
    unstruct::StoreLittleEndian(reinterpret_cast<uint8_t*>(pBytes->data()) + nAt, nValue);
}

inline uint64_t NumberAt(const std::string& sBytes, size_t nAt) {
    return unstruct::LoadLittleEndian<uint64_t>(reinterpret_cast<const uint8_t*>(sBytes.data()) +
                                                nAt);
}

// Makes the checksums of a changed record right again, its own offset too, so that only what it
// claims is wrong.
inline void SealRecordAt(std::string* pBytes, size_t nAt) {
    if (pBytes->size() - nAt < kRecordHeader + kRecordFooter) return;
    const auto crc = [&](size_t nSize) {
        return unstruct::ZRFxCodec::Crc32(0, pBytes->data() + nAt, nSize);
    };
    StoreAt(pBytes, nAt + 8, uint64_t{nAt});
    StoreAt(pBytes, nAt + kRecordHeaderCrc, crc(kRecordHeaderCrc));
    const uint64_t nLeft = pBytes->size() - nAt - kRecordHeader - kRecordFooter;
    const uint64_t nListing = std::min(NumberAt(*pBytes, nAt + kRecordListing), nLeft);
    const uint64_t nTails = std::min(NumberAt(*pBytes, nAt + kRecordTails), nLeft - nListing);
    const size_t nFooter = kRecordHeader + static_cast<size_t>(nListing + nTails);
    StoreAt(pBytes, nAt + nFooter, uint64_t{nAt});
    StoreAt(pBytes, nAt + nFooter + 8, crc(nFooter + 8));
}

inline void SealRecords(std::string* pBytes) {
    const std::string_view sMagic = unstruct::ZRFxCommitRecord::kMagic;
    for (size_t i = pBytes->find(sMagic); i != std::string::npos; i = pBytes->find(sMagic, i + 1)) {
        SealRecordAt(pBytes, i);
    }
}

}  // namespace ziptest
