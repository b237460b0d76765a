#pragma once

#include <cstddef>
#include <vector>

#include "NuoCore/Export.h"

namespace nuo {

/// An RGB image: 3 bytes per pixel, top row first, rows not padded. A value that owns its pixels.
/// When there is no memory for a copy, the copy has no pixels, and that is logged.
class NUO_API Image {
public:
    Image() = default;
    Image(const Image& other);
    Image(Image&& other) noexcept;
    Image& operator=(const Image& other);
    Image& operator=(Image&& other) noexcept;
    ~Image() = default;

    unsigned int width() const { return m_width; }
    unsigned int height() const { return m_height; }

    /// Copies width * height * 3 bytes into `buffer`. Copies nothing and returns false when
    /// `bufferSize` is smaller than that.
    bool getAsRgb(unsigned char* buffer, std::size_t bufferSize) const;

    /// Replaces the image by a copy of width * height * 3 bytes. The image stays as it is, and the
    /// result is false, when `rgb` is null while the size is not zero or there is no memory.
    bool setFromRgb(const unsigned char* rgb, unsigned int width, unsigned int height);

private:
    void swap(Image& other) noexcept;

    unsigned int m_width = 0;
    unsigned int m_height = 0;
    std::vector<unsigned char> m_rgb;
};

}  // namespace nuo
