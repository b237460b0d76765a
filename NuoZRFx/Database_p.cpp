#include "Database_p.h"

#include "Convert_p.h"
#include "Log_p.h"
#include "NuoZRFx/ElementBlock.h"
#include "NuoZRFx/GeometryBlock.h"
#include "NuoZRFx/GeometryInfoBlock.h"
#include "NuoZRFx/NodeBlock.h"
#include "NuoZRFx/ResultBlock.h"
#include "NuoZRFx/ResultValuesBlock.h"
#include "NuoZRFx/SetBlock.h"
#include "NuoZRFx/StateInfoBlock.h"
#include "NuoZRFx/TransformationResultBlock.h"
#include "NuoZRFx/TransformationResultValuesBlock.h"
#include "blocks/mesh/ZRFxElementBlock.h"
#include "blocks/mesh/ZRFxGeometryBlock.h"
#include "blocks/mesh/ZRFxGeometryInfoBlock.h"
#include "blocks/mesh/ZRFxNodeBlock.h"
#include "blocks/results/ZRFxResultBlock.h"
#include "blocks/results/ZRFxResultValuesBlock.h"
#include "blocks/results/ZRFxStateInfoBlock.h"
#include "blocks/results/ZRFxTransformationResultValuesBlock.h"
#include "blocks/results/ZRFxTransformationResultsBlock.h"
#include "blocks/sets/ZRFxSetBlock.h"
#include "nvf/Assert.h"

namespace nuo::zrfx {

using namespace unstruct;

bool DatabasePrivate::writeDelayed() {
    if (!m_zrfxDatabase) return false;
    if (!m_isReadFromFile && !m_isStateInfoBlockWritten) {
        return fail("No state info block had been written to database (database id %1).", m_id);
    }
    if (!m_isReadFromFile && !m_isGeometryBlockWritten) {
        return fail("No geometry block had been written to database (database id %1).", m_id);
    }
    return flush();
}

bool DatabasePrivate::flush() {
    if (!m_zrfxDatabase) return false;
    return !m_zrfxDatabase->IsTOCModified() || m_zrfxDatabase->WriteTOC() ||
           fail("Error writing database TOC. (database id %1).", m_id);
}

ZRFxDatabase* DatabasePrivate::openDatabase() const {
    NVF_ASSERT(m_zrfxDatabase);
    return m_zrfxDatabase.get();
}

bool DatabasePrivate::refresh(const ZRFxArchiveChanges& changes) {
    return m_zrfxDatabase && m_zrfxDatabase->Refresh(changes);
}

PtrRef<Block> DatabasePrivate::wrap(ZRFxBlock* block) {
    const int id = block->GetID();
    switch (block->GetType()) {
        case BLOCK_NODES:
            return new NodeBlock(static_cast<ZRFxNodeBlock*>(block));
        case BLOCK_ELEMENTS:
            return new ElementBlock(static_cast<ZRFxElementBlock*>(block));
        case BLOCK_GEOMETRY:
            return new GeometryBlock(static_cast<ZRFxGeometryBlock*>(block), id);
        case BLOCK_GEOMETRY_INFO:
            return new GeometryInfoBlock(static_cast<ZRFxGeometryInfoBlock*>(block), id);
        case BLOCK_RESULTS:
            return new ResultBlock(static_cast<ZRFxResultBlock*>(block));
        case BLOCK_RESULT_VALUES:
            return new ResultValuesBlock(static_cast<ZRFxResultValuesBlock*>(block));
        case BLOCK_TRANSFORMATION_RESULTS:
            return new TransformationResultBlock(
                static_cast<ZRFxTransformationResultsBlock*>(block));
        case BLOCK_TRANSFORMATION_RESULT_VALUES:
            return new TransformationResultValuesBlock(
                static_cast<ZRFxTransformationResultValuesBlock*>(block));
        case BLOCK_STATE_INFO:
            return new StateInfoBlock(static_cast<ZRFxStateInfoBlock*>(block), id);
        case BLOCK_SET:
            return new SetBlock(static_cast<ZRFxSetBlock*>(block));
        default:
            return nullptr;
    }
}

}  // namespace nuo::zrfx
