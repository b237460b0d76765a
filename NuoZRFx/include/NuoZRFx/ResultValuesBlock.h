#pragma once

#include <cstddef>
#include <type_traits>
#include <vector>

#include "NuoCore/Export.h"
#include "NuoCore/PrivatePtr.h"
#include "NuoCore/Span.h"
#include "NuoZRFx/Block.h"

namespace unstruct {
class ZRFxResultValuesBlock;
}

namespace nuo::zrfx {

/// The values of one result in one state on the items (nodes, elements, ...) of one block: one
/// value per item in the order of the items or, if the block is built with item ids, for the items
/// that these name. A value not below 2.99e38 means that the item has none.
class NUO_API ResultValuesBlock : public Block {
public:
    /// The number of floats per item.
    enum ResultValueDimension : int { SCALAR1D = 1, VECTOR3D = 3, TENSOR6D = 6 };

    static constexpr BlockType kBlockType = RESULT_VALUES;

    /// With item ids, the values belong to the items that they name, by the ids of the target block
    /// or, if it has none, by index; without, there is one for each of its items, in their order.
    ResultValuesBlock(int blockId, ResultValueDimension dimension, bool mapToItemIds);
    ~ResultValuesBlock() override;

    /// Reports a missing target block, but lets the block be written.
    bool checkValidity() const override;
    unstruct::ZRFxBlock* internal_zrfxBlock() const override;

    ResultValueDimension dimension() const;

    /// Reserves room for a total number of items, 0 or more; false when there is not enough memory.
    bool allocateResultValues(int count);
    bool allocateResultValues(std::size_t count);
    template <typename Integer, typename = std::enable_if_t<std::is_integral_v<Integer>>>
    bool allocateResultValues(Integer count) {
        if constexpr (std::is_signed_v<Integer>) {
            if (count < 0) return allocateResultValues(-1);
        }
        return allocateResultValues(static_cast<std::size_t>(count));
    }

    /// Appends one item. With a block built with item ids the id is 0 or more, otherwise negative.
    bool addResultValue1d(float value, int mapToItemId = -1);
    bool addResultValue3d(float x, float y, float z, int mapToItemId = -1);
    bool addResultValue6d(float xx, float yy, float zz, float xy, float yz, float zx,
                          int mapToItemId = -1);

    /// Replaces all values by copies: the floats of all items, item after item, and one id per item
    /// if, and only if, the block was built with item ids.
    bool setResultValues(const std::vector<float>& resultValues,
                         const std::vector<int>& mapToItemIds);

    /// The same without copying: the block refers to itemCount * dimension() floats and, unless
    /// null, itemCount ids. They must stay unchanged until the block has been written, and for as
    /// long as it is used after that.
    bool setResultValueData(const float* resultValues, std::size_t itemCount,
                            const int* mapToItemIds);
    bool setResultValueData(Span<const float> resultValues, Span<const int> mapToItemIds = {});

    /// Replaces all values by ones in double precision, from a vector, an array or a
    /// Span<const double>. Files hold single precision, to which they are rounded; one beyond the
    /// largest float means that the item has none.
    template <typename Doubles, typename = std::enable_if_t<
                                    std::is_convertible_v<const Doubles&, Span<const double>>>>
    bool setResultValues(const Doubles& resultValues, Span<const int> mapToItemIds = {}) {
        return setRoundedValues(resultValues, mapToItemIds);
    }

    std::size_t itemCount() const;

    /// Copies of all values, item after item, and of the ids.
    std::vector<float> resultValues() const;
    std::vector<int> mapToItemIds() const;
    bool hasMapToItemIds() const;

    /// The floats of all items, item after item, and the ids, empty when the block has none; valid
    /// while the block lives and is not changed.
    Span<const float> values() const;
    Span<const int> itemIds() const;

    /// itemCount() * dimension() floats, valid while the block lives and is not changed.
    const float* resultValueData() const;

    /// itemCount() ids, valid alike; null when the block has none.
    const int* mapToItemIdData() const;

    /// How many significant decimal digits are written, 1 to 6; 0, at first, for what the result or
    /// the file says, and else all. Each value v becomes the nearest one whose mantissa is short
    /// enough for |change| <= 0.5 * 10^-digits * |v|. Undefined, infinite and denormal values, and
    /// those next to the largest, stay as they are. The block itself does not change.
    int significantDigits() const;
    void setSignificantDigits(int digits);

    /// The block whose items the values belong to: NODES or ELEMENTS. Only its id is stored.
    bool setMapToBlockId(int blockId, BlockType blockType);

    /// -1 until it is set.
    int mapToBlockId() const;

private:
    friend class DatabasePrivate;
    explicit ResultValuesBlock(unstruct::ZRFxResultValuesBlock* resultValuesBlock);
    bool checkIds(bool isGiven) const;
    bool checkDimension(const char* operation, ResultValueDimension expected) const;
    bool countItems(const char* operation, std::size_t valueCount, std::size_t idCount,
                    std::size_t* itemCount) const;
    bool setRoundedValues(Span<const double> resultValues, Span<const int> mapToItemIds);

    PrivatePtr<class ResultValuesBlockPrivate> m_private;
};

}  // namespace nuo::zrfx
