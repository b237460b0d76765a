#include "blocks/ZRFxStateValues.h"

#include <memory>
#include <utility>

#include "documents/ZRFxXml.h"

namespace unstruct {

void WriteStateValues(nvf::XmlElement root, const ZRFxStateValues& values) {
    nvf::XmlElement state = root.addChildElement("State");
    state.setAttributeInt("ID", values.m_iStateID);
    nvf::XmlElement list = state.addChildElement("ResultValues");
    WriteIntList(list, values.m_aiValuesBlockIDs);
}

bool ReadStateValues(const nvf::XmlElement& root, ZRPtrArray<ZRFxStateValues>* states) {
    states->RemoveAll();
    for (nvf::XmlElement state = root.firstChildElement("State"); state.notNull();
         state = state.nextSiblingElement("State")) {
        auto pState = std::make_unique<ZRFxStateValues>(state.getAttributeInt("ID", -1));
        if (!ReadIntList(state.firstChildElement("ResultValues"), &pState->m_aiValuesBlockIDs)) {
            return false;
        }
        states->Add(std::move(pState));
    }
    return true;
}

}  // namespace unstruct
