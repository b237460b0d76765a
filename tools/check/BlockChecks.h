#pragma once

#include "blocks/ZROZRFxBlocks.h"

namespace tools {

class CheckedDatabase;

// What is wrong with blocks of one class.
void checkNodes(const unstruct::ZRFxNodeBlock& nodes, CheckedDatabase& checked);
void checkElements(const unstruct::ZRFxElementBlock& elements, CheckedDatabase& checked);
void checkFaceSet(const unstruct::ZRFxIndexedFaceSetBlock& faces, CheckedDatabase& checked);
void checkGeometry(const unstruct::ZRFxGeometryBlock& geometry, CheckedDatabase& checked);
void checkGeometryInfo(const unstruct::ZRFxGeometryInfoBlock& info, CheckedDatabase& checked);
void checkStateInfo(const unstruct::ZRFxStateInfoBlock& states, CheckedDatabase& checked);
void checkSet(const unstruct::ZRFxSetBlock& set, CheckedDatabase& checked);
void checkResult(const unstruct::ZRFxResultBlock& result, CheckedDatabase& checked);
void checkResultValues(const unstruct::ZRFxResultValuesBlock& values, CheckedDatabase& checked);
void checkTransformationResult(const unstruct::ZRFxTransformationResultsBlock& result,
                               CheckedDatabase& checked);
void checkPositionResultValues(const unstruct::ZRFxPositionResultValuesBlock& values,
                               CheckedDatabase& checked);
void checkPrecomputed(const unstruct::ZRFxPrecomputedBlock& precomputed, CheckedDatabase& checked);

// What may be wrong with blocks of any class.
void checkReferences(const unstruct::ZRFxBlock& block, CheckedDatabase& checked);
void checkNumbers(const unstruct::ZRFxBlock& block, CheckedDatabase& checked);

}  // namespace tools
