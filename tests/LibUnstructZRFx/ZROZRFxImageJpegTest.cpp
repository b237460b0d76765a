#include "data/ZROZRFxImageJpeg.h"

#include <cstdlib>

#include "support/ArchiveTest.h"

namespace unstruct {
namespace {

using Pixels = std::vector<unsigned char>;

nuo::Image ImageOf(unsigned int width, unsigned int height, const Pixels& rgb) {
    nuo::Image image;
    EXPECT_TRUE(image.setFromRgb(rgb.data(), width, height));
    return image;
}

// Red rising to the right, green rising downwards.
nuo::Image Gradient(unsigned int width, unsigned int height) {
    Pixels rgb;
    for (unsigned int y = 0; y < height; ++y) {
        for (unsigned int x = 0; x < width; ++x) {
            rgb.push_back(static_cast<unsigned char>(255 * x / width));
            rgb.push_back(static_cast<unsigned char>(255 * y / height));
            rgb.push_back(64);
        }
    }
    return ImageOf(width, height, rgb);
}

Pixels PixelsOf(const nuo::Image& image) {
    Pixels rgb(std::size_t{3} * image.width() * image.height());
    EXPECT_TRUE(image.getAsRgb(rgb.data(), rgb.size()));
    return rgb;
}

int LargestDifference(const nuo::Image& a, const nuo::Image& b) {
    const Pixels of = PixelsOf(a);
    const Pixels with = PixelsOf(b);
    if (of.size() != with.size()) return 256;
    int largest = 0;
    for (std::size_t i = 0; i < of.size(); ++i)
        largest = std::max(largest, std::abs(of[i] - with[i]));
    return largest;
}

class ZRFxImageTest : public test::ArchiveTest {
protected:
    // Expects that the entry cannot be read and that the image keeps what it held.
    void ExpectUnreadable(const char* name, const std::vector<std::string>& messages) {
        nuo::Image image = Gradient(3, 2);
        EXPECT_FALSE(m_access.ReadImage(name, &image));
        EXPECT_EQ(PixelsOf(image), PixelsOf(Gradient(3, 2)));
        ExpectTexts(messages);
    }
};

TEST_F(ZRFxImageTest, RawImageIsItsSizeAndItsPixels) {
    ASSERT_TRUE(m_access.WriteImage("a.raw", ImageOf(2, 1, {1, 2, 3, 4, 5, 6})));
    EXPECT_EQ(Get("a.raw"), std::string("\2\0\0\0\1\0\0\0\1\2\3\4\5\6", 14));
    ASSERT_TRUE(m_access.WriteImage("b.raw", nuo::Image()));
    EXPECT_EQ(Get("b.raw"), std::string(8, '\0'));
    for (const char* name : {"a.raw", "b.raw"}) {
        nuo::Image image = Gradient(3, 2);
        ASSERT_TRUE(m_access.ReadImage(name, &image) && m_access.WriteImage("again.raw", image));
        EXPECT_EQ(Get("again.raw"), Get(name));
    }
}

TEST_F(ZRFxImageTest, JpegImageComesBackNearlyEqualAndIsBaseline) {
    ASSERT_TRUE(m_access.WriteImage("C\\Snapshot.jpeg", Gradient(5, 7)));
    ASSERT_TRUE(m_access.WriteImage("C\\Snapshot.jpeg", Gradient(301, 203)));
    nuo::Image image;
    ASSERT_TRUE(m_access.ReadImage("C\\Snapshot.jpeg", &image));
    EXPECT_LE(LargestDifference(image, Gradient(301, 203)), 16);
    const std::string bytes = Get("C\\Snapshot.jpeg");
    EXPECT_EQ(bytes.substr(0, 4), "\xFF\xD8\xFF\xE0");
    EXPECT_EQ(bytes.substr(6, 5), std::string("JFIF", 5));
    EXPECT_NE(bytes.find("\xFF\xC0"), std::string::npos);
}

TEST_F(ZRFxImageTest, ImagesThatAreNoneAreReported) {
    ExpectRefused(m_access.WriteImage("a.jpeg", nuo::Image()), {"Error encoding JPEG image"});
    ExpectRefused(m_access.WriteImage("a.jpeg", ImageOf(65501, 1, Pixels(3 * 65501))),
                  {"Error encoding JPEG image"});
    ExpectAssertion(m_access.ReadImage("a.jpeg", nullptr), "image");
    Put("a.jpeg", "");
    ExpectUnreadable("a.jpeg", {"Error reading JPEG image from archive"});
    ExpectUnreadable("none.raw", {"Unable to read raw data from 'none.raw', file not found.",
                                  "Error reading JPEG image from archive"});
    Reopen(ZRZipAccessMode::READ_ONLY);
    for (const char* name : {"b.raw", "b.jpeg"}) {
        ExpectRefused(m_access.WriteImage(name, Gradient(2, 2)),
                      {"The file is read only.", "Error writing snapshot image to ZRFx"});
    }
}

TEST_F(ZRFxImageTest, RawImageThatClaimsMoreThanThereIsIsRefused) {
    const std::string kClaims[] = {
        std::string("\2\0\0\0\1\0\0\0\1\2\3\4\5", 13),
        std::string("\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\1\2\3", 11),
        std::string("\0\0\0\x80\2\0\0\0", 8),  // 3 * 2^32 bytes, which 32 bits hold as none
        std::string("\1\0\0\0\1\0\0", 7),
        "ab",
    };
    for (const std::string& bytes : kClaims) {
        Put("a.raw", bytes);
        ExpectUnreadable("a.raw", {"Error decoding JPEG image 'a.raw'"});
    }
    Put("a.raw", "a");
    nuo::Image image;
    EXPECT_FALSE(m_access.ReadImage("a.raw", &image));
    EXPECT_EQ(TakeTexts().back(), "Error decoding JPEG image 'a.raw'");
}

TEST_F(ZRFxImageTest, DamagedJpegNeverCrashesNorTakesMuchMemory) {
    ASSERT_TRUE(m_access.WriteImage("a.jpeg", Gradient(40, 30)));
    const std::string whole = Get("a.jpeg");
    const std::size_t frame = whole.find("\xFF\xC0");
    std::string huge = whole;
    huge.replace(frame + 5, 4, "\xFF\xDC\xFF\xDC");  // 65500 by 65500 pixels
    const std::string kUnreadable[] = {"not a JPEG image", whole.substr(0, frame + 4), huge,
                                       whole.substr(0, 2), whole.substr(2)};
    for (const std::string& bytes : kUnreadable) {
        Put("a.jpeg", bytes);
        ExpectUnreadable("a.jpeg", {"Error decoding JPEG image 'a.jpeg'"});
    }
    for (std::size_t at = 0; at < whole.size(); ++at) {
        std::string flipped = whole;
        flipped[at] = static_cast<char>(flipped[at] ^ 0x55);
        nuo::Image image;
        const auto* bytes = reinterpret_cast<const unsigned char*>(flipped.data());
        if (!ZRFxImageJpeg::Decode(bytes, flipped.size(), &image)) {
            EXPECT_EQ(image.width(), 0u);
        }
        ZRFxImageJpeg::Decode(bytes, at, &image);
        EXPECT_LT(image.width() * image.height(), 10000000u);
    }
}

// One block of 8 by 8 gray pixels, whose average each of the scans gives anew.
std::string ProgressiveJpegOf(int scanCount) {
    std::string bytes("\xFF\xD8\xFF\xDB\0\x43\0", 7);
    bytes += std::string(64, '\1');
    bytes += std::string("\xFF\xC2\0\xB\x8\0\x8\0\x8\1\1\x11\0\xFF\xC4\0\x14\0\1", 19);
    bytes += std::string(16, '\0');
    for (int i = 0; i < scanCount; ++i) bytes += std::string("\xFF\xDA\0\x8\1\1\0\0\0\0\x7F", 11);
    return bytes + "\xFF\xD9";
}

TEST_F(ZRFxImageTest, JpegOfScansWithoutEndIsRefused) {
    Put("a.jpeg", ProgressiveJpegOf(ZRFxImageJpeg::kMostScans));
    nuo::Image image;
    ASSERT_TRUE(m_access.ReadImage("a.jpeg", &image));
    EXPECT_EQ(PixelsOf(image), Pixels(3 * 64, 128));
    Put("a.jpeg", ProgressiveJpegOf(ZRFxImageJpeg::kMostScans + 1));
    ExpectUnreadable("a.jpeg", {"Error decoding JPEG image 'a.jpeg'"});
}

}  // namespace
}  // namespace unstruct
