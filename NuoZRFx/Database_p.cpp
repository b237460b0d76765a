#include "Database_p.h"

#include <algorithm>
#include <utility>

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
#include "blocks/ZROZRFxBlocks.h"
#include "database/ZRFxModelCheck.h"
#include "nvf/Assert.h"

namespace nuo::zrfx {

using namespace unstruct;

namespace {

std::string sentenceOf(const ZRFxFinding& finding) {
    std::string text =
        ZRFxBlockTypeName(finding.type).Bytes() + " block " + std::to_string(finding.id);
    if (!finding.place.empty()) text += ", " + finding.place;
    return text + ": " + finding.message + ".";
}

std::vector<std::string> sentencesOf(const std::vector<ZRFxFinding>& findings) {
    std::vector<std::string> sentences;
    for (const ZRFxFinding& finding : findings) {
        if (finding.isError) sentences.push_back(sentenceOf(finding));
    }
    return sentences;
}

constexpr std::size_t kMostWarnings = 10;

}  // namespace

bool DatabasePrivate::writeDelayed() {
    if (!m_zrfxDatabase) return false;
    if (!m_isReadFromFile && !m_isStateInfoBlockWritten) {
        return failBecause(nvf::Reason::INCOMPLETE,
                           "No state info block had been written to database (database id %1).",
                           m_id);
    }
    if (!m_isReadFromFile && !m_isGeometryBlockWritten) {
        return failBecause(nvf::Reason::INCOMPLETE,
                           "No geometry block had been written to database (database id %1).",
                           m_id);
    }
    return flush();
}

bool DatabasePrivate::flush() {
    if (!m_zrfxDatabase) return false;
    return !m_zrfxDatabase->IsTOCModified() || m_zrfxDatabase->WriteTOC() ||
           fail("Error writing database TOC. (database id %1).", m_id);
}

std::vector<std::string> DatabasePrivate::misfits() const {
    if (!m_zrfxDatabase) return {};
    return sentencesOf(ZRFxModelCheck(*m_zrfxDatabase).CheckAll());
}

// A mistake made for each block of a large model is reported for the first few.
void DatabasePrivate::warnOfMisfits() {
    if (!m_zrfxDatabase || !nvf::interfaceLogger()->isWarningEnabled()) return;
    if (std::exchange(m_isWarnedOfMisfits, true)) return;
    const auto sentences = sentencesOf(ZRFxModelCheck(*m_zrfxDatabase).CheckWritten());
    const std::size_t count = std::min(sentences.size(), kMostWarnings);
    for (std::size_t i = 0; i < count; ++i) {
        nvf::interfaceLogger()->warn("%1 (database id %2)", sentences[i], m_id);
    }
    if (count == sentences.size()) return;
    nvf::interfaceLogger()->warn("%1 more blocks do not fit. (database id %2)",
                                 sentences.size() - count, m_id);
}

ZRFxDatabase* DatabasePrivate::openDatabase(const char* operation) const {
    if (!m_zrfxDatabase) refuse(nvf::Reason::NOT_OPEN, "The file of the database is closed.");
    nvf::requireThat("m_zrfxDatabase", m_zrfxDatabase != nullptr,
                     "%1: the file of the database is closed", operation);
    return m_zrfxDatabase.get();
}

bool DatabasePrivate::refresh(const ZRFxArchiveChanges& changes) {
    return m_zrfxDatabase && m_zrfxDatabase->Refresh(changes);
}

// The public object of each class that has one.
class DatabasePrivate::Wrapping {
public:
    static Block* wrap(ZRFxNodeBlock& block) { return new NodeBlock(&block); }
    static Block* wrap(ZRFxElementBlock& block) { return new ElementBlock(&block); }
    static Block* wrap(ZRFxGeometryBlock& block) {
        return new GeometryBlock(&block, block.GetID());
    }
    static Block* wrap(ZRFxGeometryInfoBlock& block) {
        return new GeometryInfoBlock(&block, block.GetID());
    }
    static Block* wrap(ZRFxResultBlock& block) { return new ResultBlock(&block); }
    static Block* wrap(ZRFxResultValuesBlock& block) { return new ResultValuesBlock(&block); }
    static Block* wrap(ZRFxTransformationResultsBlock& block) {
        return new TransformationResultBlock(&block);
    }
    static Block* wrap(ZRFxTransformationResultValuesBlock& block) {
        return new TransformationResultValuesBlock(&block);
    }
    static Block* wrap(ZRFxStateInfoBlock& block) {
        return new StateInfoBlock(&block, block.GetID());
    }
    static Block* wrap(ZRFxSetBlock& block) { return new SetBlock(&block); }
};

PtrRef<Block> DatabasePrivate::wrap(ZRFxBlock* block) {
    return Visit(*block, []<typename BlockClass>(BlockClass& own) -> PtrRef<Block> {
        constexpr bool kIsPublic = kBlockTypes[BlockClass::kType].IsPublic();
        static_assert(
            requires { Wrapping::wrap(own); } == kIsPublic,
            "just the public types of the table are wrapped");
        if constexpr (kIsPublic) {
            return Wrapping::wrap(own);
        } else {
            return nullptr;
        }
    });
}

}  // namespace nuo::zrfx
