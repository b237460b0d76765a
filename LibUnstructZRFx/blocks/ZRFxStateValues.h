#pragma once

#include "ZRArray.h"
#include "ZRPtrArray.h"
#include "nvf/XmlElement.h"

namespace unstruct {

/// Which values blocks hold a result in one state.
struct ZRFxStateValues {
    explicit ZRFxStateValues(int stateID) : m_iStateID(stateID) {}

    const int m_iStateID;
    ZRIntArray m_aiValuesBlockIDs;
};

/// Writes a child "State" for the record, with its blocks as an integer list in "ResultValues".
void WriteStateValues(nvf::XmlElement root, const ZRFxStateValues& values);

/// Reads them back. False when a list holds anything but integers.
bool ReadStateValues(const nvf::XmlElement& root, ZRPtrArray<ZRFxStateValues>* states);

}  // namespace unstruct
