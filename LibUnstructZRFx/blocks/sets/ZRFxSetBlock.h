#pragma once

#include <cstdint>
#include <memory>

#include "ZRArray.h"
#include "ZRPtrArray.h"
#include "blocks/ZRFxBlock.h"

namespace unstruct {

/// The kinds of items that the framework knows sets of; only element sets can be stored.
inline constexpr int kItemTypeUndefined = 0;
inline constexpr int kItemTypeElement = 4;

/// The items of a set that lie in one block.
struct ZRFxSetBlockItems {
    int m_iBlockID = -1;
    int m_iBlockType = BLOCK_ELEMENTS;
    ZRIntArray m_aiItems;
};

/// A named set of elements, given by indices or by ids.
class ZRFxSetBlock : public ZRFxBlock {
public:
    static constexpr ZRFxBlockType kType = BLOCK_SET;

    ZRFxSetBlock(ZRFxBlockStore* pDatabase, int id);

    bool ReadMetaData() override;

    ZRFxSetBlockItems* AddItems(std::unique_ptr<ZRFxSetBlockItems> pSetItems);

    /// Removes a range of groups, both ends included.
    void RemoveItems(std::int64_t iFrom, std::int64_t iTo);

    std::int64_t GetItemsCount() const { return m_apSetBlockItems.GetSize(); }
    ZRFxSetBlockItems* GetItems(std::int64_t index) const { return m_apSetBlockItems[index]; }

    /// The number of items of all groups; of a block that is not loaded, as its document says.
    std::int64_t GetTotalNumItems() const;

    int GetSetID() const { return m_iSetID; }
    void SetSetID(int id) { m_iSetID = id; }
    const ZRString& GetName() const { return m_sName; }
    void SetName(const ZRString& name) { m_sName = name; }
    bool GetItemsSpecifiedAsIDs() const { return m_bItemsSpecifiedAsIDs; }
    void SetItemsSpecifiedAsIDs(bool asIDs) { m_bItemsSpecifiedAsIDs = asIDs; }
    int GetItemType() const { return m_iItemType; }
    void SetItemType(int type) { m_iItemType = type; }

    std::uint64_t GetDataSize() const override;

protected:
    bool DoReadBlock(const nvf::XmlElement& root) override;
    bool CheckContents() const override;
    bool DoWriteBlock(nvf::XmlElement root) override;
    void DoOutline(const nvf::XmlElement& root, ZRFxOutline* outline) const override;
    void DoUnloadData() override;

private:
    std::int64_t CountItems() const;
    bool DoReadMetaData(const nvf::XmlElement& root);
    bool ReadItems(const nvf::XmlElement& element);
    bool CheckItems(const ZRFxSetBlockItems& items) const;
    bool FailType() const;
    bool WriteItems(nvf::XmlElement root, const ZRFxSetBlockItems& items, std::int64_t number);

    int m_iSetID = -1;
    ZRString m_sName;
    bool m_bItemsSpecifiedAsIDs = false;
    int m_iStoredNumItems = 0;
    int m_iItemType = kItemTypeElement;
    ZRPtrArray<ZRFxSetBlockItems> m_apSetBlockItems;
};

}  // namespace unstruct
