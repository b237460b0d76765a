#include "NuoZRFx/ResultBlock.h"

#include <map>
#include <utility>

#include "Change_p.h"
#include "Convert_p.h"
#include "StateValues_p.h"
#include "ZRMakeRoom.h"
#include "blocks/results/ZRFxResultBlock.h"

namespace nuo::zrfx {
namespace {

using unstruct::ZRFxResultBlock;

bool isValidMapping(ResultBlock::ResultMapping mapping) {
    return mapping == ResultBlock::NODE_MAPPING || mapping == ResultBlock::ELEMENT_MAPPING ||
           mapping == ResultBlock::ELEMENT_NODE_MAPPING || mapping == ResultBlock::SURFACE_MAPPING;
}

void checkArguments(ResultBlock::ResultType type, ResultBlock::ResultMapping mapping) {
    if (!ZRConvert::isResultType(type))
        fail("Invalid result type %1 supplied.", static_cast<int>(type));
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
        m_attributeIndices.clear();
        for (std::size_t i = 0; i < attributes.size(); ++i) {
            m_attributeIndices.try_emplace(attributes[i].first, i);
        }
    }

    nvf::ref<ZRFxResultBlock> m_resultBlock;
    std::map<unstruct::ZRString, std::size_t> m_attributeIndices;  // By name, the first of several.
};

ResultBlock::ResultBlock(int blockId, ResultType resultType, ResultMapping resultMapping)
    : Block(blockId, RESULT) {
    guarded([&] {
        auto made = std::make_unique<ResultBlockPrivate>();
        checkArguments(resultType, resultMapping);
        made->m_resultBlock = new ZRFxResultBlock(nullptr, blockId);
        made->description().resultType = ZRConvert::isResultType(resultType)
                                             ? ZRConvert::fromResultType(resultType)
                                             : unstruct::RESULT_NONE;
        made->description().resultMapping = isValidMapping(resultMapping)
                                                ? ZRConvert::fromResultMapping(resultMapping)
                                                : unstruct::MAPPING_UNKNOWN;
        m_private.take(std::move(made));
    });
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
    return guarded([&] { return m_private->m_resultBlock.p(); });
}

ResultBlock::ResultType ResultBlock::resultType() const {
    return guarded(UNDEFINED_TYPE,
                   [&] { return ZRConvert::toResultType(m_private->description().resultType); });
}

ResultBlock::ResultMapping ResultBlock::resultMapping() const {
    return guarded(UNDEFINED_MAPPING, [&] {
        return ZRConvert::toResultMapping(m_private->description().resultMapping);
    });
}

Str ResultBlock::name() const {
    return guarded([&] { return ZRConvert::toStr(m_private->description().name); });
}

void ResultBlock::setName(const Str& name) {
    change(*this, [&] { m_private->description().name = ZRConvert::toZRString(name); });
}

int ResultBlock::resultId() const {
    return guarded(-1, [&] { return m_private->description().resultID; });
}

void ResultBlock::setResultId(int resultId) {
    change(*this, [&] { m_private->description().resultID = resultId; });
}

int ResultBlock::significantDigits() const {
    return guarded([&] { return m_private->description().GetSignificantDigits(); });
}

void ResultBlock::setSignificantDigits(int digits) {
    if (!nvf::requireThat("digits", digits >= 0, "setSignificantDigits: %1 digits are none",
                          digits)) {
        return;
    }
    change(*this, [&] {
        m_private->description().SetSignificantDigits(digits);
        m_private->indexAttributes();
    });
}

ResultBlock::StrainType ResultBlock::strainType() const {
    return guarded(NO_STRAIN,
                   [&] { return ZRConvert::toStrainType(m_private->description().strainType); });
}

void ResultBlock::setStrainType(StrainType strainType) {
    change(*this,
           [&] { m_private->description().strainType = ZRConvert::fromStrainType(strainType); });
}

float ResultBlock::defaultDisplacementScaleFactor() const {
    return guarded([&] { return m_private->description().defaultScaleFactor; });
}

void ResultBlock::setDefaultDisplacementScaleFactor(float factor) {
    change(*this, [&] { m_private->description().defaultScaleFactor = factor; });
}

bool ResultBlock::relativeDisplacementResults() const {
    return guarded([&] { return m_private->description().relativeDisplacements; });
}

void ResultBlock::setRelativeDisplacementResults(bool relative) {
    change(*this, [&] { m_private->description().relativeDisplacements = relative; });
}

void ResultBlock::addAttribute(const Str& name, const Str& value) {
    change(*this, [&] {
        auto& attributes = m_private->description().attributes;
        auto& indices = m_private->m_attributeIndices;
        unstruct::ZRString key = ZRConvert::toZRString(name);
        unstruct::ZRString text = ZRConvert::toZRString(value);
        if (const auto found = indices.find(key); found != indices.end()) {
            attributes[found->second].second = std::move(text);
            return;
        }
        unstruct::MakeRoom(&attributes);
        indices.emplace(key, attributes.size());
        attributes.emplace_back(std::move(key), std::move(text));
    });
}

Str ResultBlock::attribute(const Str& name) const {
    return guarded([&]() -> Str {
        const auto found = m_private->m_attributeIndices.find(ZRConvert::toZRString(name));
        if (found == m_private->m_attributeIndices.end()) return Str();
        return ZRConvert::toStr(m_private->description().attributes[found->second].second);
    });
}

std::vector<Str> ResultBlock::attributeNames() const {
    return guarded([&] {
        std::vector<Str> names;
        for (const auto& [name, value] : m_private->description().attributes) {
            names.push_back(ZRConvert::toStr(name));
        }
        return names;
    });
}

bool ResultBlock::addResultValuesBlock(int resultValuesBlockId, int stateId) {
    return guarded([&] {
        return addValuesBlock("addResultValuesBlock", *m_private->m_resultBlock,
                              resultValuesBlockId, stateId);
    });
}

bool ResultBlock::setResultValuesBlocks(const std::vector<int>& resultValuesBlockIds, int stateId) {
    return guarded([&] {
        return setValuesBlocks("setResultValuesBlocks", *m_private->m_resultBlock,
                               resultValuesBlockIds, stateId);
    });
}

std::size_t ResultBlock::stateCount() const {
    return guarded(
        [&] { return static_cast<std::size_t>(m_private->m_resultBlock->GetStateCount()); });
}

int ResultBlock::stateId(std::size_t index) const {
    return guarded(-1, [&] { return stateIdAt(*m_private->m_resultBlock, index); });
}

int ResultBlock::stateIndex(int stateId) const {
    return guarded(-1, [&] { return stateIndexOf(*m_private->m_resultBlock, stateId); });
}

std::vector<int> ResultBlock::resultValuesBlocks(std::size_t stateIndex) const {
    return guarded([&] {
        return valuesBlocksAt("resultValuesBlocks", *m_private->m_resultBlock, stateIndex);
    });
}

}  // namespace nuo::zrfx
