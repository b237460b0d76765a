#pragma once

#include <cstddef>

#include "NuoCore/Image.h"
#include "ZRArray.h"

namespace unstruct {

/// Encodes and decodes JPEG images, in memory only. Any thread may call it.
class ZRFxImageJpeg {
public:
    /// Of 100, where the quantization no longer shows in a view of a model.
    static constexpr int kQuality = 90;

    /// An image may decode to at most this many times the size of its file; the densest stream that
    /// an encoder makes stays below. What claims to be larger is refused before it is decoded.
    static constexpr std::size_t kMostExpansion = 2048;

    /// A progressive stream of more scans than this is refused: each one costs a whole pass.
    static constexpr int kMostScans = 64;

    /// Encodes as a baseline stream of three components. False when the image is empty, or wider or
    /// higher than 65500 pixels.
    static bool Encode(const nuo::Image& image, ZRUbyteArray* bytes);

    /// Decodes a stream of one or three components as RGB. The image stays as it is, and the result
    /// is false, when the stream is damaged beyond decoding or claims too much.
    static bool Decode(const unsigned char* bytes, std::size_t numBytes, nuo::Image* image);
};

}  // namespace unstruct
