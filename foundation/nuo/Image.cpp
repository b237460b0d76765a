#include "NuoCore/Image.h"

#include <algorithm>
#include <utility>

#include "nuo/Guard.h"

namespace nuo {

Image::Image(const Image& other) {
    setFromRgb(other.m_rgb.data(), other.m_width, other.m_height);
}

Image::Image(Image&& other) noexcept {
    swap(other);
}

Image& Image::operator=(const Image& other) {
    Image(other).swap(*this);
    return *this;
}

Image& Image::operator=(Image&& other) noexcept {
    Image(std::move(other)).swap(*this);
    return *this;
}

bool Image::getAsRgb(unsigned char* buffer, std::size_t bufferSize) const {
    if (!buffer || bufferSize < m_rgb.size()) return false;
    std::copy(m_rgb.begin(), m_rgb.end(), buffer);
    return true;
}

bool Image::setFromRgb(const unsigned char* rgb, unsigned int width, unsigned int height) {
    const std::size_t pixelCount = std::size_t{width} * height;
    if (pixelCount > m_rgb.max_size() / 3 || (!rgb && pixelCount > 0)) return false;
    return guarded(false, [&] {
        m_rgb = std::vector<unsigned char>(rgb, rgb + 3 * pixelCount);
        m_width = width;
        m_height = height;
        return true;
    });
}

void Image::swap(Image& other) noexcept {
    m_rgb.swap(other.m_rgb);
    std::swap(m_width, other.m_width);
    std::swap(m_height, other.m_height);
}

}  // namespace nuo
