#include "data/ZRFxRawImage.h"

#include <cstdint>

#include "ZRByteOrder.h"
#include "nvf/Assert.h"

namespace unstruct {
namespace {

constexpr std::size_t kHeader = 8;

}  // namespace

bool ZRFxRawImage::Encode(const nuo::Image& image, ZRUbyteArray* bytes) {
    const std::size_t numPixelBytes = std::size_t{3} * image.width() * image.height();
    if (!bytes->SetSize(static_cast<std::int64_t>(kHeader + numPixelBytes))) return false;
    unsigned char* data = bytes->WritableData();
    StoreLittleEndian<std::uint32_t>(data, image.width());
    StoreLittleEndian<std::uint32_t>(data + 4, image.height());
    return numPixelBytes == 0 || image.getAsRgb(data + kHeader, numPixelBytes);
}

bool ZRFxRawImage::Decode(const unsigned char* bytes, std::size_t numBytes, nuo::Image* image) {
    NVF_ASSERT(numBytes >= 2);
    if (numBytes < kHeader) return false;
    const std::uint32_t width = LoadLittleEndian<std::uint32_t>(bytes);
    const std::uint32_t height = LoadLittleEndian<std::uint32_t>(bytes + 4);
    const std::uint64_t numPixels = std::uint64_t{width} * height;
    if (numPixels > (numBytes - kHeader) / 3) return false;
    return image->setFromRgb(bytes + kHeader, width, height);
}

}  // namespace unstruct
