#include "check/ElementVolume.h"

#include <array>

#include "types/ZRFxElementType.h"

namespace tools {
namespace {

using nuo::Vec3d;

// A face comes as its corners, then the mid-side node after each corner in turn.
std::vector<unsigned int> outlineOf(const std::vector<unsigned int>& face, bool isQuadratic) {
    if (!isQuadratic) return face;
    std::vector<unsigned int> outline;
    for (std::size_t i = 0; i < face.size() / 2; ++i) {
        outline.push_back(face[i]);
        outline.push_back(face[i + face.size() / 2]);
    }
    return outline;
}

}  // namespace

double sixfoldVolumeBelow(std::span<const Vec3d> outline) {
    Vec3d middle;
    Vec3d area;
    Vec3d before = outline.back();
    for (const Vec3d& node : outline) {
        middle = Vec3d(middle.x + node.x, middle.y + node.y, middle.z + node.z);
        area = Vec3d(area.x + before.y * node.z - before.z * node.y,
                     area.y + before.z * node.x - before.x * node.z,
                     area.z + before.x * node.y - before.y * node.x);
        before = node;
    }
    return (middle.x * area.x + middle.y * area.y + middle.z * area.z) /
           static_cast<double>(outline.size());
}

ElementVolume::ElementVolume(int elementType) {
    const bool isQuadratic = unstruct::ZRFEMNodesPerElement(elementType) >
                             unstruct::ZRFEMCornerNodesPerElement(elementType);
    for (int face = 0; face < unstruct::ZRFEMSurfacesPerElement(elementType); ++face) {
        m_outlines.push_back(
            outlineOf(unstruct::ZRFEMElementSurface(elementType, face), isQuadratic));
    }
}

double ElementVolume::of(std::span<const Vec3d> nodes) const {
    double sum = 0;
    std::array<Vec3d, 8> positions;
    for (const auto& outline : m_outlines) {
        for (std::size_t i = 0; i < outline.size(); ++i) {
            const Vec3d& node = nodes[outline[i]];
            // Relative to one node, so that a model far from the origin loses no digits.
            positions[i] = Vec3d(node.x - nodes[0].x, node.y - nodes[0].y, node.z - nodes[0].z);
        }
        sum += sixfoldVolumeBelow({positions.data(), outline.size()});
    }
    return sum / 6;
}

}  // namespace tools
