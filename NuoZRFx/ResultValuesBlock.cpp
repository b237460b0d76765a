#include "NuoZRFx/ResultValuesBlock.h"

#include <algorithm>
#include <limits>
#include <type_traits>
#include <utility>

#include "ArrayLimit_p.h"
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

// Empty when there is no memory.
template <typename Item>
unstruct::ZRArray<Item> copyOf(const Item* items, std::int64_t count) {
    unstruct::ZRArray<Item> copy;
    if (!copy.Assign(items, count)) copy.RemoveAll();
    return copy;
}

// The doubles as floats, or as items made of them; empty when there is no memory.
template <typename Item>
unstruct::ZRArray<Item> rounded(Span<const double> values) {
    unstruct::ZRArray<Item> items;
    const std::size_t floatsPerItem = sizeof(Item) / sizeof(float);
    if (!items.SetSize(static_cast<std::int64_t>(values.size() / floatsPerItem))) return {};
    std::transform(values.begin(), values.end(), reinterpret_cast<float*>(items.WritableData()),
                   [](double value) { return static_cast<float>(value); });
    return items;
}

}  // namespace

class ResultValuesBlockPrivate {
public:
    // Takes values and ids over, or neither when there is no memory.
    template <typename Item>
    bool take(unstruct::ZRArray<Item> values, Span<const int> ids) {
        std::unique_ptr<ZRIntArray> copy;
        if (!ids.empty()) copy = std::make_unique<ZRIntArray>();
        if (values.IsEmpty() ||
            (copy && !copy->Assign(ids.data(), static_cast<std::int64_t>(ids.size())))) {
            return false;
        }
        if constexpr (std::is_same_v<Item, Vec3f>) {
            m_resultValuesBlock->SetVectors(std::move(values));
        } else {
            m_resultValuesBlock->SetScalars(std::move(values));
        }
        m_resultValuesBlock->SetIDs(std::move(copy));
        return true;
    }

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
        return nvf::require(count >= 0, "allocateResultValues: %1 items asked for", count) &&
               allocateResultValues(static_cast<std::size_t>(count));
    });
}

bool ResultValuesBlock::allocateResultValues(std::size_t count) {
    return guarded([&] {
        return isValidDimension(dimension()) &&
               count <= std::numeric_limits<std::int64_t>::max() / sizeof(float[TENSOR6D]) &&
               m_private->m_resultValuesBlock->Reserve(static_cast<std::int64_t>(count));
    });
}

bool ResultValuesBlock::addResultValue1d(float value, int mapToItemId) {
    return guarded([&] {
        return checkDimension("addResultValue1d", SCALAR1D) && checkIds(mapToItemId >= 0) &&
               m_private->m_resultValuesBlock->AddScalar(value, mapToItemId);
    });
}

bool ResultValuesBlock::addResultValue3d(float x, float y, float z, int mapToItemId) {
    return guarded([&] {
        return checkDimension("addResultValue3d", VECTOR3D) && checkIds(mapToItemId >= 0) &&
               m_private->m_resultValuesBlock->AddVector(Vec3f(x, y, z), mapToItemId);
    });
}

bool ResultValuesBlock::addResultValue6d(float xx, float yy, float zz, float xy, float yz, float zx,
                                         int mapToItemId) {
    return guarded([&] {
        const float tensor[] = {xx, yy, zz, xy, yz, zx};
        return checkDimension("addResultValue6d", TENSOR6D) && checkIds(mapToItemId >= 0) &&
               m_private->m_resultValuesBlock->AddTensor(tensor, mapToItemId);
    });
}

bool ResultValuesBlock::setResultValues(const std::vector<float>& resultValues,
                                        const std::vector<int>& mapToItemIds) {
    return guarded([&] {
        std::size_t itemCount = 0;
        if (!countItems("setResultValues", resultValues.size(), mapToItemIds.size(), &itemCount)) {
            return false;
        }
        const auto count = static_cast<std::int64_t>(itemCount);
        const auto* vectors = reinterpret_cast<const Vec3f*>(resultValues.data());
        return dimension() == VECTOR3D
                   ? m_private->take(copyOf(vectors, count), mapToItemIds)
                   : m_private->take(copyOf(resultValues.data(), count * dimension()),
                                     mapToItemIds);
    });
}

bool ResultValuesBlock::setRoundedValues(Span<const double> resultValues,
                                         Span<const int> mapToItemIds) {
    return guarded([&] {
        std::size_t itemCount = 0;
        if (!countItems("setResultValues", resultValues.size(), mapToItemIds.size(), &itemCount)) {
            return false;
        }
        return dimension() == VECTOR3D
                   ? m_private->take(rounded<Vec3f>(resultValues), mapToItemIds)
                   : m_private->take(rounded<float>(resultValues), mapToItemIds);
    });
}

bool ResultValuesBlock::setResultValueData(const float* resultValues, std::size_t itemCount,
                                           const int* mapToItemIds) {
    return guarded([&] {
        if (!nvf::require(resultValues && itemCount > 0,
                          "setResultValueData: no values are given") ||
            !isValidDimension(dimension()) || !checkIds(mapToItemIds != nullptr) ||
            !fitsDataFile("setResultValueData", itemCount,
                          static_cast<std::size_t>(dimension()) * sizeof(float))) {
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

bool ResultValuesBlock::setResultValueData(Span<const float> resultValues,
                                           Span<const int> mapToItemIds) {
    return guarded([&] {
        std::size_t itemCount = 0;
        return countItems("setResultValueData", resultValues.size(), mapToItemIds.size(),
                          &itemCount) &&
               setResultValueData(resultValues.data(), itemCount,
                                  mapToItemIds.empty() ? nullptr : mapToItemIds.data());
    });
}

int ResultValuesBlock::significantDigits() const {
    return guarded([&] { return m_private->m_resultValuesBlock->GetSignificantDigits(); });
}

void ResultValuesBlock::setSignificantDigits(int digits) {
    if (!nvf::requireThat("digits", digits >= 0, "setSignificantDigits: %1 digits are none",
                          digits)) {
        return;
    }
    guarded([&] { m_private->m_resultValuesBlock->SetSignificantDigits(digits); });
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

Span<const float> ResultValuesBlock::values() const {
    const std::size_t count = itemCount() * static_cast<std::size_t>(dimension());
    return count > 0 ? Span<const float>::of(resultValueData(), count) : Span<const float>();
}

Span<const int> ResultValuesBlock::itemIds() const {
    const int* ids = mapToItemIdData();
    return Span<const int>::of(ids, ids ? itemCount() : 0);
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
        if (!nvf::require(blockType == ELEMENTS || blockType == NODES,
                          "setMapToBlockId: values belong to NODES or ELEMENTS, not to %1",
                          blockTypeName(blockType)) ||
            !nvf::require(blockId >= 0, "setMapToBlockId: block id %1 is negative", blockId)) {
            return false;
        }
        m_private->m_resultValuesBlock->SetMapToBlockID(blockId);
        return true;
    });
}

int ResultValuesBlock::mapToBlockId() const {
    return guarded(-1, [&] { return m_private->m_resultValuesBlock->GetMapToBlockID(); });
}

bool ResultValuesBlock::checkDimension(const char* operation, ResultValueDimension expected) const {
    return nvf::require(dimension() == expected, "%1: the block has %2 values per item, not %3",
                        operation, static_cast<int>(dimension()), static_cast<int>(expected));
}

bool ResultValuesBlock::countItems(const char* operation, std::size_t valueCount,
                                   std::size_t idCount, std::size_t* itemCount) const {
    if (!nvf::require(valueCount > 0, "%1: no values are given", operation) ||
        !isValidDimension(dimension()) || !checkIds(idCount > 0) ||
        !fitsDataFile(operation, valueCount, sizeof(float))) {
        return false;
    }
    const auto floatsPerItem = static_cast<std::size_t>(dimension());
    *itemCount = valueCount / floatsPerItem;
    return nvf::require(valueCount % floatsPerItem == 0,
                        "%1: %2 values given, which are not %3 per item", operation, valueCount,
                        floatsPerItem) &&
           nvf::require(idCount == 0 || idCount == *itemCount, "%1: %2 item ids given for %3 items",
                        operation, idCount, *itemCount);
}

bool ResultValuesBlock::checkIds(bool isGiven) const {
    if (isGiven == m_private->m_hasMapToItemIds) return true;
    if (isGiven) {
        return fail("ResultValuesBlock configured to not use mapToItemIds, but IDs are provided");
    }
    return fail("ResultValuesBlock configured to use mapToItemIds, but no IDs provided");
}

}  // namespace nuo::zrfx
