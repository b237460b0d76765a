// The one-block transform of SHA-1 has no other interface than the old one, and key derivation is
// nothing but thousands of single blocks.
#define OPENSSL_SUPPRESS_DEPRECATED

#include "container/ZRFxCipher.h"

#include <openssl/core_names.h>
#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/params.h>
#include <openssl/rand.h>
#include <openssl/sha.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <new>

#include "ZRByteOrder.h"

namespace unstruct {
namespace {

constexpr int kRounds = 1000;
constexpr size_t kDigestSize = 20;
constexpr size_t kHashBlock = 64;
constexpr size_t kAesBlock = 16;
// Key stream made at once: it stays in the first-level cache with the data it meets.
constexpr size_t kBatch = 8192;

using Digest = std::array<uint8_t, kDigestSize>;

// HMAC-SHA1 under one key, its two key blocks hashed once. Only for the derivation, which hashes
// the same short messages thousands of times.
class KeyedHash {
public:
    KeyedHash(const uint8_t* pKey, size_t nSize) {
        uint8_t aBlock[kHashBlock] = {};
        if (nSize > kHashBlock) {
            SHA1(pKey, nSize, aBlock);
        } else if (nSize > 0) {
            std::memcpy(aBlock, pKey, nSize);
        }
        StartWith(aBlock, 0x36, &m_inner);
        StartWith(aBlock, 0x5C, &m_outer);
        OPENSSL_cleanse(aBlock, sizeof(aBlock));
    }
    ~KeyedHash() {
        OPENSSL_cleanse(&m_inner, sizeof(m_inner));
        OPENSSL_cleanse(&m_outer, sizeof(m_outer));
    }

    Digest Of(const uint8_t* pMessage, size_t nSize) const {
        Digest aDigest;
        SHA_CTX context = m_inner;
        SHA1_Update(&context, pMessage, nSize);
        SHA1_Final(aDigest.data(), &context);
        context = m_outer;
        SHA1_Update(&context, aDigest.data(), aDigest.size());
        SHA1_Final(aDigest.data(), &context);
        OPENSSL_cleanse(&context, sizeof(context));
        return aDigest;
    }

    // nRounds times the hash of the digest, XORed together: each is one padded block inside and one
    // outside, whose padding never changes.
    Digest Iterate(Digest aDigest, int nRounds) const {
        Digest aSum = aDigest;
        uint8_t aBlock[kHashBlock] = {};
        aBlock[kDigestSize] = 0x80;
        constexpr unsigned nBits = 8 * (kHashBlock + kDigestSize);
        aBlock[kHashBlock - 2] = nBits >> 8;
        aBlock[kHashBlock - 1] = nBits & 0xFF;
        std::memcpy(aBlock, aDigest.data(), kDigestSize);
        for (int i = 0; i < nRounds; ++i) {
            Transform(m_inner, aBlock);
            Transform(m_outer, aBlock);
            for (size_t j = 0; j < kDigestSize; ++j) aSum[j] ^= aBlock[j];
        }
        OPENSSL_cleanse(aBlock, sizeof(aBlock));
        return aSum;
    }

private:
    static void StartWith(const uint8_t* pKeyBlock, uint8_t nPad, SHA_CTX* pContext) {
        uint8_t aBlock[kHashBlock];
        for (size_t i = 0; i < kHashBlock; ++i) aBlock[i] = pKeyBlock[i] ^ nPad;
        SHA1_Init(pContext);
        SHA1_Update(pContext, aBlock, kHashBlock);
        OPENSSL_cleanse(aBlock, sizeof(aBlock));
    }

    // Hashes the block from the start state and puts the digest at its front.
    static void Transform(const SHA_CTX& start, uint8_t* pBlock) {
        SHA_CTX context;
        context.h0 = start.h0;
        context.h1 = start.h1;
        context.h2 = start.h2;
        context.h3 = start.h3;
        context.h4 = start.h4;
        SHA1_Transform(&context, pBlock);
        const SHA_LONG aState[] = {context.h0, context.h1, context.h2, context.h3, context.h4};
        for (size_t i = 0; i < 5; ++i) {
            for (size_t j = 0; j < 4; ++j) {
                pBlock[4 * i + j] = static_cast<uint8_t>(aState[i] >> (24 - 8 * j));
            }
        }
    }

    SHA_CTX m_inner;
    SHA_CTX m_outer;
};

const EVP_CIPHER* CipherOf(ZRFxCipher::Strength eStrength) {
    switch (eStrength) {
        case ZRFxCipher::Strength::k128:
            return EVP_aes_128_ecb();
        case ZRFxCipher::Strength::k192:
            return EVP_aes_192_ecb();
        case ZRFxCipher::Strength::k256:
            break;
    }
    return EVP_aes_256_ecb();
}

void Xor(const uint8_t* pFrom, const uint8_t* pStream, uint8_t* pTo, size_t nSize) {
    size_t i = 0;
    for (; i + sizeof(uint64_t) <= nSize; i += sizeof(uint64_t)) {
        uint64_t nFrom;
        uint64_t nStream;
        std::memcpy(&nFrom, pFrom + i, sizeof(nFrom));
        std::memcpy(&nStream, pStream + i, sizeof(nStream));
        nFrom ^= nStream;
        std::memcpy(pTo + i, &nFrom, sizeof(nFrom));
    }
    for (; i < nSize; ++i) pTo[i] = pFrom[i] ^ pStream[i];
}

}  // namespace

struct ZRFxCipher::Engine {
    EVP_CIPHER_CTX* pCipher = EVP_CIPHER_CTX_new();
    EVP_MAC* pMac = EVP_MAC_fetch(nullptr, "HMAC", nullptr);
    EVP_MAC_CTX* pMacContext = pMac ? EVP_MAC_CTX_new(pMac) : nullptr;
    alignas(64) uint8_t aCounters[kBatch] = {};
    alignas(64) uint8_t aStream[kBatch] = {};

    Engine() = default;
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;
    ~Engine() {
        EVP_CIPHER_CTX_free(pCipher);
        EVP_MAC_CTX_free(pMacContext);
        EVP_MAC_free(pMac);
        OPENSSL_cleanse(aStream, sizeof(aStream));
    }

    bool Authenticate(const uint8_t* pData, size_t nSize) {
        return EVP_MAC_update(pMacContext, pData, nSize) == 1;
    }
    bool Code(Digest* pCode) {
        size_t nSize = 0;
        return EVP_MAC_final(pMacContext, pCode->data(), &nSize, pCode->size()) == 1;
    }
};

// Encryption key, authentication key and verifier, one after the other.
struct ZRFxCipher::Keys {
    uint8_t aBytes[4 * kDigestSize] = {};
    size_t nKeySize = 0;

    ~Keys() { OPENSSL_cleanse(aBytes, sizeof(aBytes)); }
    const uint8_t* Verifier() const { return aBytes + 2 * nKeySize; }
};

ZRFxCipher::ZRFxCipher() = default;

ZRFxCipher::~ZRFxCipher() {
    SetPassword({});
}

void ZRFxCipher::SetPassword(std::string_view sPassword) {
    std::vector<uint8_t> aPassword(sPassword.begin(), sPassword.end());
    if (!m_aPassword.empty()) OPENSSL_cleanse(m_aPassword.data(), m_aPassword.size());
    m_aPassword.swap(aPassword);
}

std::string_view ZRFxCipher::Password() const {
    return {reinterpret_cast<const char*>(m_aPassword.data()), m_aPassword.size()};
}

bool ZRFxCipher::Encrypt(uint8_t* pEntry, size_t nDataSize) {
    constexpr size_t kSaltSize = kPrefixSize - 2;
    Keys keys;
    if (!Prepare() || RAND_bytes(pEntry, static_cast<int>(kSaltSize)) != 1) return false;
    DeriveKeys(Strength::k256, pEntry, &keys);
    if (!Start(Strength::k256, keys)) return false;
    std::memcpy(pEntry + kSaltSize, keys.Verifier(), 2);
    uint8_t* pData = pEntry + kPrefixSize;
    uint64_t nBlock = 1;
    for (size_t nDone = 0; nDone < nDataSize; nDone += kBatch) {
        const size_t nPart = std::min(kBatch, nDataSize - nDone);
        if (!ApplyStream(pData + nDone, pData + nDone, nPart, &nBlock) ||
            !m_pEngine->Authenticate(pData + nDone, nPart)) {
            return false;
        }
    }
    Digest aCode;
    if (!m_pEngine->Code(&aCode)) return false;
    std::memcpy(pData + nDataSize, aCode.data(), kSuffixSize);
    return true;
}

ZRFxCipher::Result ZRFxCipher::Decrypt(Strength eStrength, const uint8_t* pEntry, size_t nEntrySize,
                                       uint8_t* pData) {
    const size_t nSaltSize = SaltSize(eStrength);
    const size_t nDataSize = nEntrySize - Overhead(eStrength);
    const uint8_t* pPacked = pEntry + nSaltSize + 2;
    // pData may lie over the entry, but not over the code that follows its data.
    const uint8_t* pCode = pPacked + nDataSize;
    Keys keys;
    if (!Prepare()) return Result::kFailed;
    DeriveKeys(eStrength, pEntry, &keys);
    if (CRYPTO_memcmp(keys.Verifier(), pEntry + nSaltSize, 2) != 0) return Result::kWrongPassword;
    if (!Start(eStrength, keys)) return Result::kFailed;
    uint64_t nBlock = 1;
    for (size_t nDone = 0; nDone < nDataSize; nDone += kBatch) {
        const size_t nPart = std::min(kBatch, nDataSize - nDone);
        if (!m_pEngine->Authenticate(pPacked + nDone, nPart) ||
            !ApplyStream(pPacked + nDone, pData + nDone, nPart, &nBlock)) {
            return Result::kFailed;
        }
    }
    Digest aCode;
    if (!m_pEngine->Code(&aCode)) return Result::kFailed;
    return CRYPTO_memcmp(aCode.data(), pCode, kSuffixSize) == 0 ? Result::kDone : Result::kDamaged;
}

bool ZRFxCipher::Prepare() {
    if (!m_pEngine) m_pEngine.reset(new (std::nothrow) Engine);
    return m_pEngine && m_pEngine->pCipher && m_pEngine->pMacContext;
}

void ZRFxCipher::DeriveKeys(Strength eStrength, const uint8_t* pSalt, Keys* pKeys) {
    const size_t nSaltSize = SaltSize(eStrength);
    pKeys->nKeySize = 2 * nSaltSize;
    const KeyedHash hash(m_aPassword.data(), m_aPassword.size());
    uint8_t aMessage[20] = {};
    std::memcpy(aMessage, pSalt, nSaltSize);
    const size_t nNeeded = 2 * pKeys->nKeySize + 2;
    for (size_t i = 0; i * kDigestSize < nNeeded; ++i) {
        aMessage[nSaltSize + 3] = static_cast<uint8_t>(i + 1);
        const Digest aPart = hash.Iterate(hash.Of(aMessage, nSaltSize + 4), kRounds - 1);
        std::memcpy(pKeys->aBytes + i * kDigestSize, aPart.data(), kDigestSize);
    }
}

bool ZRFxCipher::Start(Strength eStrength, const Keys& keys) {
    char sDigest[] = "SHA1";
    const OSSL_PARAM aParameters[] = {
        OSSL_PARAM_construct_utf8_string(OSSL_MAC_PARAM_DIGEST, sDigest, 0),
        OSSL_PARAM_construct_end()};
    return EVP_EncryptInit_ex(m_pEngine->pCipher, CipherOf(eStrength), nullptr, keys.aBytes,
                              nullptr) == 1 &&
           EVP_CIPHER_CTX_set_padding(m_pEngine->pCipher, 0) == 1 &&
           EVP_MAC_init(m_pEngine->pMacContext, keys.aBytes + keys.nKeySize, keys.nKeySize,
                        aParameters) == 1;
}

bool ZRFxCipher::ApplyStream(const uint8_t* pFrom, uint8_t* pTo, size_t nSize, uint64_t* pBlock) {
    const size_t nBlocks = (nSize + kAesBlock - 1) / kAesBlock;
    for (size_t i = 0; i < nBlocks; ++i) {
        StoreLittleEndian(m_pEngine->aCounters + i * kAesBlock, (*pBlock)++);
    }
    int nMade = 0;
    if (EVP_EncryptUpdate(m_pEngine->pCipher, m_pEngine->aStream, &nMade, m_pEngine->aCounters,
                          static_cast<int>(nBlocks * kAesBlock)) != 1) {
        return false;
    }
    Xor(pFrom, m_pEngine->aStream, pTo, nSize);
    return true;
}

ZRFxCause ZRFxCipher::CauseOf(Result eResult) {
    switch (eResult) {
        case Result::kDone:
            return {};
        case Result::kWrongPassword:
            return {"wrong password", nvf::Reason::WRONG_PASSWORD};
        case Result::kDamaged:
            return "damaged data, or wrong password";
        case Result::kFailed:
            break;
    }
    return {"cannot decrypt", nvf::Reason::SYSTEM_ERROR};
}

}  // namespace unstruct
