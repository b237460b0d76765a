#pragma once

#include <span>
#include <vector>

#include "NuoCore/Vec3d.h"

namespace tools {

/// Six times the volume between the origin and a face, given by its outline: the corners, and the
/// mid-side nodes between them, seen counter-clockwise from outside. Summed over the faces of an
/// element it is six times the signed volume of the element.
double sixfoldVolumeBelow(std::span<const nuo::Vec3d> outline);

/// The signed volume of elements of one type: positive when the nodes are in the format's order.
/// Curved faces are taken as fans of triangles around their middle.
class ElementVolume {
public:
    /// REQUIRES: the type is a volume element with a fixed number of nodes.
    explicit ElementVolume(int elementType);

    /// `nodes` are the positions of all nodes of one element.
    double of(std::span<const nuo::Vec3d> nodes) const;

private:
    std::vector<std::vector<unsigned int>> m_outlines;
};

}  // namespace tools
