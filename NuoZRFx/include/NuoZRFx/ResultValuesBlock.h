#pragma once

#include <cstddef>
#include <vector>

#include "NuoCore/Export.h"
#include "NuoCore/PrivatePtr.h"
#include "NuoZRFx/Block.h"

namespace unstruct {
class ZRFxResultValuesBlock;
}

namespace nuo::zrfx {

/// The values of one result in one state on the items (nodes, elements, ...) of one block: one
/// value an item in the order of the items, or, when built with item ids, for the items named by
/// them. A value not below 2.99e38 means that the item has none.
class NUO_API ResultValuesBlock : public Block {
public:
    /// Floats of an item.
    enum ResultValueDimension : int { SCALAR1D = 1, VECTOR3D = 3, TENSOR6D = 6 };

    ResultValuesBlock(int blockId, ResultValueDimension dimension, bool mapToItemIds);
    ~ResultValuesBlock() override;

    /// Reports a missing target block, but lets the block be written.
    bool checkValidity() const override;
    unstruct::ZRFxBlock* internal_zrfxBlock() const override;

    ResultValueDimension dimension() const;

    /// Makes room for a number of items in all, 0 or more; false when there is not so much memory.
    bool allocateResultValues(int count);

    /// Appends one item; the id goes with a block built with item ids, else it must be negative.
    bool addResultValue1d(float value, int mapToItemId = -1);
    bool addResultValue3d(float x, float y, float z, int mapToItemId = -1);

    /// Replaces all values by copies: the floats of all items, item after item, and one id an item
    /// exactly when the block was built with item ids.
    bool setResultValues(const std::vector<float>& resultValues,
                         const std::vector<int>& mapToItemIds);

    /// The same without a copy: the block refers to itemCount * dimension() floats and, unless
    /// null, itemCount ids, which must stay unchanged until it is written and done with.
    bool setResultValueData(const float* resultValues, std::size_t itemCount,
                            const int* mapToItemIds);

    std::size_t itemCount() const;

    /// Copies of all values, item after item, and of the ids.
    std::vector<float> resultValues() const;
    bool hasMapToItemIds() const;
    std::vector<int> mapToItemIds() const;

    /// itemCount() * dimension() floats, valid while the block lives and is not changed.
    const float* resultValueData() const;

    /// itemCount() ids, valid alike; null when the block has none.
    const int* mapToItemIdData() const;

    /// The block whose items the values belong to: NODES or ELEMENTS. Only its id is stored.
    bool setMapToBlockId(int blockId, BlockType blockType);

    /// -1 until it is set.
    int mapToBlockId() const;

private:
    friend class DatabasePrivate;
    explicit ResultValuesBlock(unstruct::ZRFxResultValuesBlock* resultValuesBlock);
    bool checkIds(bool isGiven) const;

    PrivatePtr<class ResultValuesBlockPrivate> m_private;
};

}  // namespace nuo::zrfx
