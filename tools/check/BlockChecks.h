#pragma once

#include "blocks/ZROZRFxBlocks.h"

namespace tools {

class CheckedDatabase;

// Faults of blocks of one class.
void checkNodes(const unstruct::ZRFxNodeBlock& nodes, CheckedDatabase& checked);
void checkElements(const unstruct::ZRFxElementBlock& elements, CheckedDatabase& checked);
void checkFaceSet(const unstruct::ZRFxIndexedFaceSetBlock& faces, CheckedDatabase& checked);
void checkGeometry(const unstruct::ZRFxGeometryBlock& geometry, CheckedDatabase& checked);
void checkGeometryInfo(const unstruct::ZRFxGeometryInfoBlock& info, CheckedDatabase& checked);
void checkSet(const unstruct::ZRFxSetBlock& set, CheckedDatabase& checked);
void checkResultValues(const unstruct::ZRFxResultValuesBlock& values, CheckedDatabase& checked);
void checkPositionResultValues(const unstruct::ZRFxPositionResultValuesBlock& values,
                               CheckedDatabase& checked);

// Faults that blocks of any class may have.
void checkNumbers(const unstruct::ZRFxBlock& block, CheckedDatabase& checked);

}  // namespace tools
