#include "NuoCore/Image.h"

#include <algorithm>

namespace nuo {

bool Image::getAsRgb(unsigned char* buffer, std::size_t bufferSize) const {
    if (!buffer || bufferSize < m_rgb.size()) return false;
    std::copy(m_rgb.begin(), m_rgb.end(), buffer);
    return true;
}

bool Image::setFromRgb(const unsigned char* rgb, unsigned int width, unsigned int height) {
    const std::size_t pixelCount = std::size_t{width} * height;
    if (pixelCount > m_rgb.max_size() / 3 || (!rgb && pixelCount > 0)) return false;
    m_rgb.assign(rgb, rgb + 3 * pixelCount);
    m_width = width;
    m_height = height;
    return true;
}

}  // namespace nuo
