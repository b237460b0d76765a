#pragma once

#include <cstddef>
#include <span>
#include <string>

#include "NuoZRFx/ElementBlock.h"

namespace tools {

/// The nodes of an element of a type such as "C3D20R"; 0 when it is not known.
std::size_t deckNodesPerElement(const std::string& type);

/// Whether faces are those of the element in the results. Flat elements, beams and others, which
/// the solver makes volumes of, count other sides.
bool isDeckVolume(const std::string& type);

/// The corners of a face of a volume, of which faces are counted from 1, by their places in the
/// element, from 0; empty when there is no such face.
std::span<const int> deckFaceCorners(nuo::zrfx::ElementBlock::ElementType type, int face);

}  // namespace tools
