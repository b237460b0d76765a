#include "container/ZRFxCipher.h"

#include "support/ZipTestFiles.h"

namespace unstruct {
namespace {

using Result = ZRFxCipher::Result;
constexpr size_t kRoom = ZRFxCipher::kPrefixSize + ZRFxCipher::kSuffixSize;

class ZRFxCipherTest : public testing::Test {
protected:
    ZRFxCipherTest() { m_cipher.SetPassword("correct horse"); }

    std::string Encrypted(const std::string& sData) {
        std::string s = std::string(ZRFxCipher::kPrefixSize, '\0') + sData +
                        std::string(ZRFxCipher::kSuffixSize, '\0');
        EXPECT_TRUE(m_cipher.Encrypt(reinterpret_cast<uint8_t*>(s.data()), sData.size()));
        return s;
    }
    Result Decrypt(const std::string& sEntry, std::string* pData) {
        pData->assign(sEntry.size() - kRoom, '\0');
        return m_cipher.Decrypt(ZRFxCipher::Strength::k256,
                                reinterpret_cast<const uint8_t*>(sEntry.data()), sEntry.size(),
                                reinterpret_cast<uint8_t*>(pData->data()));
    }

    ZRFxCipher m_cipher;
};

TEST_F(ZRFxCipherTest, EveryLengthAroundTheBlocksRoundTrips) {
    for (size_t nSize : {0, 1, 15, 16, 17, 8191, 8192, 8193, 100000}) {
        const std::string sData = ziptest::SmoothField(25000).substr(0, nSize);
        const std::string sEntry = Encrypted(sData);
        std::string sBack;
        EXPECT_EQ(Decrypt(sEntry, &sBack), Result::kDone) << nSize;
        EXPECT_EQ(sBack, sData) << nSize;
    }
}

TEST_F(ZRFxCipherTest, EveryFlippedByteIsFound) {
    const std::string sEntry = Encrypted("a displacement field");
    std::string sBack;
    for (size_t i = 0; i < sEntry.size(); ++i) {
        const Result eResult = Decrypt(ziptest::WithFlippedByte(sEntry, i), &sBack);
        const bool bVerifier = i == 16 || i == 17;
        if (bVerifier) {
            EXPECT_EQ(eResult, Result::kWrongPassword) << i;
        } else {
            EXPECT_NE(eResult, Result::kDone) << i;
        }
    }
}

TEST_F(ZRFxCipherTest, EqualDataIsEncryptedDifferentlyEachTime) {
    const std::string sData(1000, 'x');
    const std::string sFirst = Encrypted(sData);
    const std::string sSecond = Encrypted(sData);
    EXPECT_NE(sFirst.substr(0, 16), sSecond.substr(0, 16));
    EXPECT_NE(sFirst.substr(18), sSecond.substr(18));
}

TEST_F(ZRFxCipherTest, OtherPasswordsAreRefused) {
    const std::string sEntry = Encrypted("secret");
    std::string sBack;
    const std::string asOthers[] = {"", "correct", "correct horsf",
                                    std::string("correct horse\0", 14) + "x",
                                    std::string(100, 'p')};
    for (const std::string& sOther : asOthers) {
        m_cipher.SetPassword(sOther);
        EXPECT_NE(Decrypt(sEntry, &sBack), Result::kDone) << sOther;
    }
}

}  // namespace
}  // namespace unstruct
