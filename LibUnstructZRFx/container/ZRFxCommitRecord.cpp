#include "container/ZRFxCommitRecord.h"

#include <algorithm>
#include <cstring>
#include <random>

#include "ZRByteOrder.h"

namespace unstruct {
namespace {

constexpr size_t kHeaderSize = 88;
constexpr size_t kHeaderCrcAt = 84;
constexpr size_t kFooterSize = 20;
constexpr std::string_view kFooterMagic = "ZRFxEnd\x1A";
constexpr uint32_t kListingPacked = 1;
constexpr uint32_t kTailsPacked = 2;
constexpr uint32_t kTailsEncrypted = 4;
constexpr int kLevel = 6;

uint8_t* Bytes(std::string* s) {
    return reinterpret_cast<uint8_t*>(s->data());
}
const uint8_t* Bytes(std::string_view s) {
    return reinterpret_cast<const uint8_t*>(s.data());
}

// No more than this many times its length is unpacked, so that memory stays in proportion to the
// file.
constexpr uint64_t kMostPacking = 64;

// Deflated when that makes it shorter, but not by more than a reader takes.
bool Packed(std::string_view sRaw, ZRFxCodec* pCodec, std::string* pPacked) {
    pPacked->resize(sRaw.size());
    size_t nPacked = 0;
    const bool bPacked = sRaw.size() > 1 &&
                         pCodec->Deflate(kLevel, sRaw.data(), sRaw.size(), pPacked->data(),
                                         sRaw.size() - 1, &nPacked) &&
                         nPacked > 0 && nPacked >= sRaw.size() / kMostPacking;
    pPacked->resize(nPacked);
    if (!bPacked) pPacked->assign(sRaw);
    return bPacked;
}

bool Unpacked(std::string_view sPacked, bool bPacked, uint64_t nSize, ZRFxCodec* pCodec,
              std::string* pRaw) {
    if (!bPacked) {
        pRaw->assign(sPacked);
        return sPacked.size() == nSize;
    }
    if (nSize / kMostPacking > sPacked.size()) return false;
    pRaw->resize(static_cast<size_t>(nSize));
    return pCodec->Inflate(sPacked.data(), sPacked.size(), pRaw->data(), pRaw->size());
}

void PutName(std::string* s, const std::string& sName) {
    AppendLittleEndian(s, static_cast<uint16_t>(sName.size()));
    s->append(sName);
}

// Takes values off the front of a text; false from the first on that is not there.
class Taker {
public:
    explicit Taker(std::string_view s) : m_s(s) {}

    template <typename Integer>
    bool Number(Integer* pValue) {
        if (m_s.size() < sizeof(Integer)) return false;
        *pValue = LoadLittleEndian<Integer>(Bytes(m_s));
        m_s.remove_prefix(sizeof(Integer));
        return true;
    }
    bool Name(std::string* pName) {
        uint16_t nSize = 0;
        if (!Number(&nSize) || m_s.size() < nSize) return false;
        pName->assign(m_s.substr(0, nSize));
        m_s.remove_prefix(nSize);
        return nSize > 0;
    }
    std::string_view Rest() const { return m_s; }

private:
    std::string_view m_s;
};

}  // namespace

ZRFxCommitRecord::Run ZRFxCommitRecord::NewRun() {
    std::random_device device;
    Run run;
    for (size_t i = 0; i < run.size(); i += sizeof(uint32_t)) {
        StoreLittleEndian(run.data() + i, static_cast<uint32_t>(device()));
    }
    return run;
}

bool ZRFxCommitRecord::SetTails(std::string_view sTails, ZRFxCodec* pCodec, ZRFxCipher* pCipher) {
    m_nTails = sTails.size();
    m_nFlags = Packed(sTails, pCodec, &m_sTails) ? kTailsPacked : 0;
    if (!pCipher->HasPassword() || sTails.empty()) return true;
    const size_t nData = m_sTails.size();
    m_sTails.insert(0, ZRFxCipher::kPrefixSize, '\0');
    m_sTails.append(ZRFxCipher::kSuffixSize, '\0');
    m_nFlags |= kTailsEncrypted;
    return pCipher->Encrypt(unstruct::Bytes(&m_sTails), nData) || Fail("cannot encrypt");
}

bool ZRFxCommitRecord::GetTails(ZRFxCodec* pCodec, ZRFxCipher* pCipher, std::string* pTails) {
    const bool bPacked = (m_nFlags & kTailsPacked) != 0;
    if (!HasEncryptedTails()) {
        return Unpacked(m_sTails, bPacked, m_nTails, pCodec, pTails) || Fail("damaged data");
    }
    if (!pCipher->HasPassword()) return Fail("the entry needs a password");
    const size_t nOverhead = ZRFxCipher::Overhead(ZRFxCipher::Strength::k256);
    if (m_sTails.size() < nOverhead) return Fail("the encrypted entry is cut");
    std::string sPlain(m_sTails.size() - nOverhead, '\0');
    const ZRFxCipher::Result eResult =
        pCipher->Decrypt(ZRFxCipher::Strength::k256, unstruct::Bytes(m_sTails), m_sTails.size(),
                         unstruct::Bytes(&sPlain));
    if (eResult != ZRFxCipher::Result::kDone) return Fail(ZRFxCipher::MessageOf(eResult));
    return Unpacked(sPlain, bPacked, m_nTails, pCodec, pTails) || Fail("damaged data");
}

std::string ZRFxCommitRecord::Bytes(uint64_t nOwnOffset, ZRFxCodec* pCodec) const {
    const std::string sListing = Listing();
    std::string sPacked;
    const uint32_t nPacked = Packed(sListing, pCodec, &sPacked) ? kListingPacked : 0;
    std::string s;
    s.reserve(kHeaderSize + sPacked.size() + m_sTails.size() + kFooterSize);
    s.append(kMagic);
    AppendLittleEndian(&s, nOwnOffset);
    s.append(reinterpret_cast<const char*>(run.data()), run.size());
    for (const uint64_t nValue : {nPrevious, nBase, uint64_t{sPacked.size()},
                                  uint64_t{sListing.size()}, uint64_t{m_sTails.size()}, m_nTails}) {
        AppendLittleEndian(&s, nValue);
    }
    AppendLittleEndian(&s, m_nFlags | nPacked);
    AppendLittleEndian(&s, ZRFxCodec::Crc32(0, s.data(), s.size()));
    s.append(sPacked).append(m_sTails);
    AppendLittleEndian(&s, nOwnOffset);
    AppendLittleEndian(&s, ZRFxCodec::Crc32(0, s.data(), s.size()));
    s.append(kFooterMagic);
    return s;
}

bool ZRFxCommitRecord::EndsAt(ZRFxZipStorage* pStorage, uint64_t nAt, uint64_t* pOffset) {
    uint8_t aFooter[kFooterSize];
    if (nAt < kHeaderSize + kFooterSize ||
        !pStorage->Read(nAt - kFooterSize, aFooter, kFooterSize) ||
        std::memcmp(aFooter + 12, kFooterMagic.data(), kFooterMagic.size()) != 0) {
        return false;
    }
    *pOffset = LoadLittleEndian<uint64_t>(aFooter);
    return *pOffset <= nAt - kHeaderSize - kFooterSize;
}

bool ZRFxCommitRecord::Load(ZRFxZipStorage* pStorage, uint64_t nAt, ZRFxCodec* pCodec) {
    uint8_t aHeader[kHeaderSize];
    const uint64_t nLeft = pStorage->Size() - std::min(pStorage->Size(), nAt);
    if (nLeft < kHeaderSize + kFooterSize || !pStorage->Read(nAt, aHeader, kHeaderSize)) {
        return false;
    }
    const auto value = [&](size_t nField) { return LoadLittleEndian<uint64_t>(aHeader + nField); };
    const uint64_t nListingStored = value(48);
    const uint64_t nTailsStored = value(64);
    const uint64_t nMost = nLeft - kHeaderSize - kFooterSize;
    if (std::memcmp(aHeader, kMagic.data(), kMagic.size()) != 0 || value(8) != nAt ||
        LoadLittleEndian<uint32_t>(aHeader + kHeaderCrcAt) !=
            ZRFxCodec::Crc32(0, aHeader, kHeaderCrcAt) ||
        nListingStored > nMost || nTailsStored > nMost - nListingStored) {
        return false;
    }
    std::string sRest(static_cast<size_t>(nListingStored + nTailsStored + kFooterSize), '\0');
    if (!pStorage->Read(nAt + kHeaderSize, sRest.data(), sRest.size())) return false;
    const uint8_t* pFooter = unstruct::Bytes(sRest) + sRest.size() - kFooterSize;
    const uint32_t nCrc = ZRFxCodec::Crc32(ZRFxCodec::Crc32(0, aHeader, kHeaderSize), sRest.data(),
                                           sRest.size() - kFooterSize + 8);
    if (LoadLittleEndian<uint64_t>(pFooter) != nAt ||
        LoadLittleEndian<uint32_t>(pFooter + 8) != nCrc ||
        std::memcmp(pFooter + 12, kFooterMagic.data(), kFooterMagic.size()) != 0) {
        return false;
    }
    nOffset = nAt;
    nEnd = nAt + kHeaderSize + sRest.size();
    std::memcpy(run.data(), aHeader + 16, run.size());
    nPrevious = value(32);
    nBase = value(40);
    m_nTails = value(72);
    m_nFlags = LoadLittleEndian<uint32_t>(aHeader + 80);
    m_sTails.assign(sRest, static_cast<size_t>(nListingStored), static_cast<size_t>(nTailsStored));
    std::string sListing;
    return Unpacked(std::string_view(sRest).substr(0, static_cast<size_t>(nListingStored)),
                    (m_nFlags & kListingPacked) != 0, value(56), pCodec, &sListing) &&
           ParseListing(sListing);
}

bool ZRFxCommitRecord::HasEncryptedTails() const {
    return (m_nFlags & kTailsEncrypted) != 0;
}

std::string ZRFxCommitRecord::Listing() const {
    std::string s;
    AppendLittleEndian(&s, static_cast<uint32_t>(asRemoved.size()));
    for (const std::string& sName : asRemoved) PutName(&s, sName);
    AppendLittleEndian(&s, static_cast<uint32_t>(aEdits.size()));
    for (const Edit& edit : aEdits) {
        PutName(&s, edit.sName);
        AppendLittleEndian(&s, edit.nKept);
        AppendLittleEndian(&s, edit.nTail);
    }
    return s + sLines;
}

bool ZRFxCommitRecord::ParseListing(std::string_view sListing) {
    Taker taker(sListing);
    uint32_t nRemoved = 0;
    uint32_t nEdits = 0;
    if (!taker.Number(&nRemoved)) return false;
    for (uint32_t i = 0; i < nRemoved; ++i) {
        if (!taker.Name(&asRemoved.emplace_back())) return false;
    }
    if (!taker.Number(&nEdits)) return false;
    uint64_t nLeft = m_nTails;
    for (uint32_t i = 0; i < nEdits; ++i) {
        Edit& edit = aEdits.emplace_back();
        if (!taker.Name(&edit.sName) || !taker.Number(&edit.nKept) || !taker.Number(&edit.nTail) ||
            edit.nTail > nLeft) {
            return false;
        }
        nLeft -= edit.nTail;
    }
    sLines.assign(taker.Rest());
    return nLeft == 0;
}

}  // namespace unstruct
