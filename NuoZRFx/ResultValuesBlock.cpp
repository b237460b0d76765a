#include "NuoZRFx/ResultValuesBlock.h"

#include <utility>

#include "Log_p.h"
#include "blocks/results/ZRFxResultValuesBlock.h"
#include "nvf/Assert.h"

namespace nuo::zrfx {
namespace {

using unstruct::ZRFloatArray;
using unstruct::ZRFxResultValuesBlock;
using unstruct::ZRIntArray;
using unstruct::ZRVec3fArray;

static_assert(ResultValuesBlock::SCALAR1D == unstruct::kScalarKind.Dimension());
static_assert(ResultValuesBlock::VECTOR3D == unstruct::kVectorKind.Dimension());
static_assert(ResultValuesBlock::TENSOR6D == unstruct::kTensorKind.Dimension());

bool isValidDimension(int dimension) {
    return unstruct::ZRFxValueKindOf(dimension) != nullptr;
}

}  // namespace

class ResultValuesBlockPrivate {
public:
    nvf::ref<ZRFxResultValuesBlock> m_resultValuesBlock;
    bool m_hasMapToItemIds = false;
};

ResultValuesBlock::ResultValuesBlock(int blockId, ResultValueDimension dimension, bool mapToItemIds)
    : Block(blockId, RESULT_VALUES) {
    guarded([&] {
        auto made = std::make_unique<ResultValuesBlockPrivate>();
        if (!isValidDimension(dimension)) fail("Invalid dimension supplied.");
        made->m_resultValuesBlock = new ZRFxResultValuesBlock(nullptr, blockId);
        made->m_resultValuesBlock->SetNumDimensions(dimension);
        if (mapToItemIds) made->m_resultValuesBlock->SetIDs(std::make_unique<ZRIntArray>());
        made->m_hasMapToItemIds = mapToItemIds;
        m_private.take(std::move(made));
    });
}

ResultValuesBlock::ResultValuesBlock(ZRFxResultValuesBlock* resultValuesBlock)
    : Block(resultValuesBlock->GetID(), RESULT_VALUES),
      m_private(std::make_unique<ResultValuesBlockPrivate>()) {
    m_private->m_resultValuesBlock = resultValuesBlock;
    m_private->m_hasMapToItemIds = resultValuesBlock->GetIDs() != nullptr;
}

ResultValuesBlock::~ResultValuesBlock() = default;

bool ResultValuesBlock::checkValidity() const {
    if (mapToBlockId() < 0) {
        fail("Target block id for mapping not set on result values block (block id %1)", blockId());
    }
    return true;
}

unstruct::ZRFxBlock* ResultValuesBlock::internal_zrfxBlock() const {
    return guarded([&] { return m_private->m_resultValuesBlock.p(); });
}

ResultValuesBlock::ResultValueDimension ResultValuesBlock::dimension() const {
    return guarded(SCALAR1D, [&] {
        return static_cast<ResultValueDimension>(
            m_private->m_resultValuesBlock->GetNumDimensions());
    });
}

bool ResultValuesBlock::allocateResultValues(int count) {
    return guarded([&] {
        NVF_ASSERT(count >= 0);
        return count >= 0 && isValidDimension(dimension()) &&
               m_private->m_resultValuesBlock->Reserve(count);
    });
}

bool ResultValuesBlock::addResultValue1d(float value, int mapToItemId) {
    return guarded([&] {
        NVF_ASSERT(dimension() == SCALAR1D);
        return dimension() == SCALAR1D && checkIds(mapToItemId >= 0) &&
               m_private->m_resultValuesBlock->AddScalar(value, mapToItemId);
    });
}

bool ResultValuesBlock::addResultValue3d(float x, float y, float z, int mapToItemId) {
    return guarded([&] {
        NVF_ASSERT(dimension() == VECTOR3D);
        return dimension() == VECTOR3D && checkIds(mapToItemId >= 0) &&
               m_private->m_resultValuesBlock->AddVector(Vec3f(x, y, z), mapToItemId);
    });
}

bool ResultValuesBlock::setResultValues(const std::vector<float>& resultValues,
                                        const std::vector<int>& mapToItemIds) {
    return guarded([&] {
        NVF_ASSERT(!resultValues.empty());
        const auto floatsPerItem = static_cast<std::size_t>(dimension());
        if (resultValues.empty() || !isValidDimension(dimension()) ||
            !checkIds(!mapToItemIds.empty())) {
            return false;
        }
        const bool isWhole = resultValues.size() % floatsPerItem == 0;
        const std::size_t itemCount = resultValues.size() / floatsPerItem;
        NVF_ASSERT(isWhole && (mapToItemIds.empty() || mapToItemIds.size() == itemCount));
        if (!isWhole || (!mapToItemIds.empty() && mapToItemIds.size() != itemCount)) return false;
        std::unique_ptr<ZRIntArray> ids;
        if (!mapToItemIds.empty()) {
            ids = std::make_unique<ZRIntArray>();
            if (!ids->Assign(mapToItemIds.data(), static_cast<std::int64_t>(itemCount)))
                return false;
        }
        const auto count = static_cast<std::int64_t>(resultValues.size());
        ZRFxResultValuesBlock& block = *m_private->m_resultValuesBlock;
        const bool isSet =
            dimension() == VECTOR3D
                ? block.SetVectors(reinterpret_cast<const Vec3f*>(resultValues.data()),
                                   count / VECTOR3D)
                : block.SetScalars(resultValues.data(), count);
        if (isSet) block.SetIDs(std::move(ids));
        return isSet;
    });
}

bool ResultValuesBlock::setResultValueData(const float* resultValues, std::size_t itemCount,
                                           const int* mapToItemIds) {
    return guarded([&] {
        NVF_ASSERT(resultValues && itemCount > 0);
        if (!resultValues || itemCount == 0 || !isValidDimension(dimension()) ||
            !checkIds(mapToItemIds != nullptr)) {
            return false;
        }
        const auto count = static_cast<std::int64_t>(itemCount);
        std::unique_ptr<ZRIntArray> ids;
        if (mapToItemIds) {
            ids = std::make_unique<ZRIntArray>();
            ids->Refer(mapToItemIds, count);
        }
        ZRFxResultValuesBlock& block = *m_private->m_resultValuesBlock;
        if (dimension() == VECTOR3D) {
            ZRVec3fArray vectors;
            vectors.Refer(reinterpret_cast<const Vec3f*>(resultValues), count);
            block.SetVectors(std::move(vectors));
        } else {
            ZRFloatArray scalars;
            scalars.Refer(resultValues, count * dimension());
            block.SetScalars(std::move(scalars));
        }
        block.SetIDs(std::move(ids));
        return true;
    });
}

std::size_t ResultValuesBlock::itemCount() const {
    return guarded(
        [&] { return static_cast<std::size_t>(m_private->m_resultValuesBlock->GetNumItems()); });
}

std::vector<float> ResultValuesBlock::resultValues() const {
    return guarded([&]() -> std::vector<float> {
        const float* values = resultValueData();
        if (!values) return {};
        return std::vector<float>(values,
                                  values + itemCount() * static_cast<std::size_t>(dimension()));
    });
}

bool ResultValuesBlock::hasMapToItemIds() const {
    return guarded([&] { return m_private->m_hasMapToItemIds; });
}

std::vector<int> ResultValuesBlock::mapToItemIds() const {
    return guarded([&]() -> std::vector<int> {
        const ZRIntArray* ids = m_private->m_resultValuesBlock->GetIDs();
        if (ids) return std::vector<int>(ids->begin(), ids->end());
        fail("Requested item ids of a result value block, but no IDs were available.");
        return {};
    });
}

const float* ResultValuesBlock::resultValueData() const {
    return guarded([&]() -> const float* {
        const ZRFxResultValuesBlock& block = *m_private->m_resultValuesBlock;
        if (!isValidDimension(dimension())) {
            fail("Result values block with invalid dimension setting");
            return nullptr;
        }
        if (dimension() == VECTOR3D) {
            if (block.GetVectors().IsEmpty()) {
                fail("Dimension mismatch, requested vectors, but could not find any");
            }
            return reinterpret_cast<const float*>(block.GetVectors().Data());
        }
        if (block.GetScalars().IsEmpty()) {
            fail("Dimension mismatch, requested scalars, but could not find any");
        }
        return block.GetScalars().Data();
    });
}

const int* ResultValuesBlock::mapToItemIdData() const {
    return guarded([&] {
        const ZRIntArray* ids = m_private->m_resultValuesBlock->GetIDs();
        return ids ? ids->Data() : nullptr;
    });
}

bool ResultValuesBlock::setMapToBlockId(int blockId, BlockType blockType) {
    return guarded([&] {
        NVF_ASSERT(blockType == ELEMENTS || blockType == NODES);
        NVF_ASSERT(blockId >= 0);
        if ((blockType != ELEMENTS && blockType != NODES) || blockId < 0) return false;
        m_private->m_resultValuesBlock->SetMapToBlockID(blockId);
        return true;
    });
}

int ResultValuesBlock::mapToBlockId() const {
    return guarded(-1, [&] { return m_private->m_resultValuesBlock->GetMapToBlockID(); });
}

bool ResultValuesBlock::checkIds(bool isGiven) const {
    if (isGiven == m_private->m_hasMapToItemIds) return true;
    if (isGiven) {
        return fail("ResultValuesBlock configured to not use mapToItemIds, but IDs are provided");
    }
    return fail("ResultValuesBlock configured to use mapToItemIds, but no IDs provided");
}

}  // namespace nuo::zrfx
