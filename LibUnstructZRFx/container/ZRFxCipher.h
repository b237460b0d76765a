#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

namespace unstruct {

/// The AES encryption of ZIP entries (AES in counter mode with a little-endian counter, keys by
/// PBKDF2-HMAC-SHA1 with 1000 rounds, HMAC-SHA1 authentication). An encrypted entry is its salt, a
/// password verifier of two bytes, the encrypted data and an authentication code of ten bytes.
/// Entries are written with 256-bit keys and a random salt of their own; all three key lengths are
/// read. Password and keys are wiped after use. Used by one thread at a time.
class ZRFxCipher {
public:
    /// As the container numbers them.
    enum class Strength : uint8_t { k128 = 1, k192 = 2, k256 = 3 };
    enum class Result { kDone, kWrongPassword, kDamaged, kFailed };

    /// What stands before and after the data of an entry written here.
    static constexpr size_t kPrefixSize = 18;
    static constexpr size_t kSuffixSize = 10;

    ZRFxCipher();
    ~ZRFxCipher();
    ZRFxCipher(const ZRFxCipher&) = delete;
    ZRFxCipher& operator=(const ZRFxCipher&) = delete;

    /// Keeps a copy; an empty password ends encryption.
    void SetPassword(std::string_view sPassword);
    bool HasPassword() const { return !m_aPassword.empty(); }
    std::string_view Password() const;

    /// Encrypts in place: pEntry is kPrefixSize bytes of room, nDataSize bytes of data and
    /// kSuffixSize bytes of room. False when the library underneath fails, its random source above
    /// all; the entry is then of no use.
    bool Encrypt(uint8_t* pEntry, size_t nDataSize);

    static size_t SaltSize(Strength eStrength) { return 4 + 4 * static_cast<size_t>(eStrength); }
    /// Bytes of an entry that are not data.
    static size_t Overhead(Strength eStrength) { return SaltSize(eStrength) + 2 + kSuffixSize; }

    /// Writes the nEntrySize - Overhead bytes of data to pData, which may be where they stand in
    /// pEntry. Unless the result is kDone the data is not authentic and must not be used; a wrong
    /// password is found out before anything is written, but for one in 65536.
    /// REQUIRES: nEntrySize >= Overhead(eStrength).
    Result Decrypt(Strength eStrength, const uint8_t* pEntry, size_t nEntrySize, uint8_t* pData);
    /// What went wrong; empty when nothing did.
    static const char* MessageOf(Result eResult);

private:
    struct Engine;  // The contexts of the library underneath.
    struct Keys;

    bool Prepare();
    void DeriveKeys(Strength eStrength, const uint8_t* pSalt, Keys* pKeys);
    bool Start(Strength eStrength, const Keys& keys);
    /// XORs with the key stream that continues at block *pBlock.
    bool ApplyStream(const uint8_t* pFrom, uint8_t* pTo, size_t nSize, uint64_t* pBlock);

    std::vector<uint8_t> m_aPassword;
    std::unique_ptr<Engine> m_pEngine;
};

}  // namespace unstruct
