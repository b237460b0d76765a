#pragma once

#include <cstdint>

#include "ZRPtrArray.h"
#include "blocks/ZRFxBlock.h"

namespace unstruct {

/// The blocks of one trace of a group.
struct ZRFxParticleTrace {
    int positionsBlockID = -1;
    int timeStampsBlockID = -1;
    int mapScalarsBlockID = -1;
};

/// The ready-made particle traces of a group of a case.
class ZRFxPrecomputedParticleTraceGroupBlock : public ZRFxBlock {
public:
    static constexpr ZRFxBlockType kType = BLOCK_PRECOMPUTED_PARTICLE_TRACE_GROUP;

    ZRFxPrecomputedParticleTraceGroupBlock(ZRFxBlockStore* pDatabase, int id);

    void AddTrace(const ZRFxParticleTrace& trace);
    std::int64_t GetTraceCount() const { return m_apTraces.GetSize(); }
    ZRFxParticleTrace* GetTrace(std::int64_t index) const { return m_apTraces[index]; }

    int m_iCaseID = -1;
    int m_iGroupID = -1;
    int m_iVectorResultId = -1;
    int m_iMapScalarResultId = -1;

protected:
    bool DoReadBlock(const nvf::XmlElement& root) override;
    bool DoWriteBlock(nvf::XmlElement root) override;
    void DoOutline(const nvf::XmlElement& root, ZRFxOutline* outline) const override;
    bool OutlinesContents() const override { return true; }
    void DoUnloadData() override;

private:
    void WriteTrace(nvf::XmlElement root, const ZRFxParticleTrace& trace);

    ZRPtrArray<ZRFxParticleTrace> m_apTraces;
};

}  // namespace unstruct
