#include "NuoZRFx/ResultBlock.h"

#include <map>

#include "Convert_p.h"
#include "StateValues_p.h"
#include "ZROZRFxResultBlock.h"

namespace nuo::zrfx {
namespace {

using unstruct::ZRFxResultBlock;

bool isValidType(ResultBlock::ResultType type) {
    return type >= ResultBlock::SCALAR && type <= ResultBlock::TENSOR;
}

bool isValidMapping(ResultBlock::ResultMapping mapping) {
    return mapping == ResultBlock::NODE_MAPPING || mapping == ResultBlock::ELEMENT_MAPPING ||
           mapping == ResultBlock::ELEMENT_NODE_MAPPING || mapping == ResultBlock::SURFACE_MAPPING;
}

void checkArguments(ResultBlock::ResultType type, ResultBlock::ResultMapping mapping) {
    if (!isValidType(type)) fail("Invalid result type %1 supplied.", static_cast<int>(type));
    if (!isValidMapping(mapping)) {
        fail("Invalid result mapping type %1 supplied.", static_cast<int>(mapping));
    }
    if (type == ResultBlock::DISPLACEMENT && mapping != ResultBlock::NODE_MAPPING) {
        fail("Invalid result mapping type for displacements supplied (NODE_MAPPING required).");
    }
}

}  // namespace

class ResultBlockPrivate {
public:
    unstruct::ZRFxResultDescription& description() const { return m_resultBlock->GetDescription(); }

    void indexAttributes() {
        const auto& attributes = description().attributes;
        for (std::size_t i = 0; i < attributes.size(); ++i) {
            m_attributeIndices.try_emplace(attributes[i].first, i);
        }
    }

    nvf::ref<ZRFxResultBlock> m_resultBlock;
    std::map<unstruct::ZRString, std::size_t> m_attributeIndices;  // By name, the first of several.
};

ResultBlock::ResultBlock(int blockId, ResultType resultType, ResultMapping resultMapping)
    : Block(blockId, RESULT), m_private(std::make_unique<ResultBlockPrivate>()) {
    checkArguments(resultType, resultMapping);
    m_private->m_resultBlock = new ZRFxResultBlock(nullptr, blockId);
    m_private->description().resultType =
        isValidType(resultType) ? ZRConvert::fromResultType(resultType) : unstruct::RESULT_NONE;
    m_private->description().resultMapping = isValidMapping(resultMapping)
                                                 ? ZRConvert::fromResultMapping(resultMapping)
                                                 : unstruct::MAPPING_UNKNOWN;
}

ResultBlock::ResultBlock(ZRFxResultBlock* resultBlock)
    : Block(resultBlock->GetID(), RESULT), m_private(std::make_unique<ResultBlockPrivate>()) {
    m_private->m_resultBlock = resultBlock;
    m_private->indexAttributes();
}

ResultBlock::~ResultBlock() = default;

bool ResultBlock::checkValidity() const {
    if (resultId() == -1) {
        return fail("No result id defined for result block (block id %1).", blockId());
    }
    return Block::checkValidity();
}

unstruct::ZRFxBlock* ResultBlock::internal_zrfxBlock() const {
    return m_private->m_resultBlock.p();
}

ResultBlock::ResultType ResultBlock::resultType() const {
    return ZRConvert::toResultType(m_private->description().resultType);
}

ResultBlock::ResultMapping ResultBlock::resultMapping() const {
    return ZRConvert::toResultMapping(m_private->description().resultMapping);
}

Str ResultBlock::name() const {
    return ZRConvert::toStr(m_private->description().name);
}

void ResultBlock::setName(const Str& name) {
    m_private->description().name = ZRConvert::toZRString(name);
}

int ResultBlock::resultId() const {
    return m_private->description().resultID;
}

void ResultBlock::setResultId(int resultId) {
    m_private->description().resultID = resultId;
}

ResultBlock::StrainType ResultBlock::strainType() const {
    return ZRConvert::toStrainType(m_private->description().strainType);
}

void ResultBlock::setStrainType(StrainType strainType) {
    m_private->description().strainType = ZRConvert::fromStrainType(strainType);
}

float ResultBlock::defaultDisplacementScaleFactor() const {
    return m_private->description().defaultScaleFactor;
}

void ResultBlock::setDefaultDisplacementScaleFactor(float factor) {
    m_private->description().defaultScaleFactor = factor;
}

bool ResultBlock::relativeDisplacementResults() const {
    return m_private->description().relativeDisplacements;
}

void ResultBlock::setRelativeDisplacementResults(bool relative) {
    m_private->description().relativeDisplacements = relative;
}

void ResultBlock::addAttribute(const Str& name, const Str& value) {
    auto& attributes = m_private->description().attributes;
    const unstruct::ZRString key = ZRConvert::toZRString(name);
    const auto [index, isNew] = m_private->m_attributeIndices.try_emplace(key, attributes.size());
    if (isNew) attributes.emplace_back(key, unstruct::ZRString());
    attributes[index->second].second = ZRConvert::toZRString(value);
}

Str ResultBlock::attribute(const Str& name) const {
    const auto found = m_private->m_attributeIndices.find(ZRConvert::toZRString(name));
    if (found == m_private->m_attributeIndices.end()) return Str();
    return ZRConvert::toStr(m_private->description().attributes[found->second].second);
}

std::vector<Str> ResultBlock::attributeNames() const {
    std::vector<Str> names;
    for (const auto& [name, value] : m_private->description().attributes) {
        names.push_back(ZRConvert::toStr(name));
    }
    return names;
}

bool ResultBlock::addResultValuesBlock(int resultValuesBlockId, int stateId) {
    return addValuesBlock(*m_private->m_resultBlock, resultValuesBlockId, stateId);
}

bool ResultBlock::setResultValuesBlocks(const std::vector<int>& resultValuesBlockIds, int stateId) {
    return setValuesBlocks(*m_private->m_resultBlock, resultValuesBlockIds, stateId);
}

std::size_t ResultBlock::stateCount() const {
    return static_cast<std::size_t>(m_private->m_resultBlock->GetStateCount());
}

int ResultBlock::stateId(std::size_t index) const {
    return stateIdAt(*m_private->m_resultBlock, index);
}

int ResultBlock::stateIndex(int stateId) const {
    return stateIndexOf(*m_private->m_resultBlock, stateId);
}

std::vector<int> ResultBlock::resultValuesBlocks(std::size_t stateIndex) const {
    return valuesBlocksAt(*m_private->m_resultBlock, stateIndex);
}

}  // namespace nuo::zrfx
