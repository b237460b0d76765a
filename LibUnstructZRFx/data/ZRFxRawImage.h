#pragma once

#include <cstddef>

#include "NuoCore/Image.h"
#include "ZRArray.h"

namespace unstruct {

/// Encodes and decodes raw images: width and height in 32 bits each, then three bytes per pixel.
/// Any thread may call it.
class ZRFxRawImage {
public:
    /// False when there is no memory for it.
    static bool Encode(const nuo::Image& image, ZRUbyteArray* bytes);

    /// False when there are fewer bytes than pixels, or there is no memory.
    static bool Decode(const unsigned char* bytes, std::size_t numBytes, nuo::Image* image);
};

}  // namespace unstruct
