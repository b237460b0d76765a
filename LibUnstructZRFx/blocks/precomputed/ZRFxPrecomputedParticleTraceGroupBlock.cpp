#include "blocks/precomputed/ZRFxPrecomputedParticleTraceGroupBlock.h"

#include <memory>

#include "blocks/ZRFxOutline.h"

namespace unstruct {

ZRFxPrecomputedParticleTraceGroupBlock::ZRFxPrecomputedParticleTraceGroupBlock(
    ZRFxBlockStore* pDatabase, int id)
    : ZRFxBlock(pDatabase, id, kType) {}

void ZRFxPrecomputedParticleTraceGroupBlock::AddTrace(const ZRFxParticleTrace& trace) {
    m_apTraces.Add(std::make_unique<ZRFxParticleTrace>(trace));
    SetRead(true);
}

bool ZRFxPrecomputedParticleTraceGroupBlock::DoReadBlock(const nvf::XmlElement& root) {
    DoUnloadData();
    m_iCaseID = root.getAttributeInt("CaseID", -1);
    m_iGroupID = root.getAttributeInt("GroupID", -1);
    m_iVectorResultId = root.getAttributeInt("VectorResultId", -1);
    m_iMapScalarResultId = root.getAttributeInt("MapScalarResultId", -1);
    for (nvf::XmlElement trace = root.firstChildElement("Trace"); trace.notNull();
         trace = trace.nextSiblingElement("Trace")) {
        AddTrace({trace.getAttributeInt("PositionsBlockID", -1),
                  trace.getAttributeInt("TimeStampsBlockID", -1),
                  trace.getAttributeInt("MapScalarsBlockID", -1)});
    }
    return true;
}

bool ZRFxPrecomputedParticleTraceGroupBlock::DoWriteBlock(nvf::XmlElement root) {
    root.setAttributeInt("CaseID", m_iCaseID);
    root.setAttributeInt("GroupID", m_iGroupID);
    root.setAttributeInt("VectorResultId", m_iVectorResultId);
    root.setAttributeInt("MapScalarResultId", m_iMapScalarResultId);
    for (const auto& trace : m_apTraces) {
        NVF_ASSERT(trace);
        WriteTrace(root, *trace);
    }
    return true;
}

void ZRFxPrecomputedParticleTraceGroupBlock::DoOutline(const nvf::XmlElement&,
                                                       ZRFxOutline* outline) const {
    outline->AddOptionalCase(m_iCaseID);
    outline->AddOptionalResult(m_iVectorResultId, "vector result");
    outline->AddOptionalResult(m_iMapScalarResultId, "scalar result");
    for (std::int64_t i = 0; i < m_apTraces.GetSize(); ++i) {
        const ZRFxParticleTrace& trace = *m_apTraces[i];
        const std::string place = NumberedPlace("trace", i);
        outline->AddBlock(BLOCK_NODES, trace.positionsBlockID, place + ", positions");
        outline->AddOptionalBlock(BLOCK_RESULT_VALUES, trace.timeStampsBlockID, place + ", times");
        outline->AddOptionalBlock(BLOCK_RESULT_VALUES, trace.mapScalarsBlockID,
                                  place + ", scalars");
    }
}

void ZRFxPrecomputedParticleTraceGroupBlock::DoUnloadData() {
    m_apTraces.RemoveAll();
}

void ZRFxPrecomputedParticleTraceGroupBlock::WriteTrace(nvf::XmlElement root,
                                                        const ZRFxParticleTrace& trace) {
    nvf::XmlElement element = root.addChildElement("Trace");
    element.setAttributeInt("PositionsBlockID", trace.positionsBlockID);
    element.setAttributeInt("TimeStampsBlockID", trace.timeStampsBlockID);
    element.setAttributeInt("MapScalarsBlockID", trace.mapScalarsBlockID);
}

}  // namespace unstruct
