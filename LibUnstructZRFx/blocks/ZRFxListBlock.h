#pragma once

#include <cstdint>

#include "access/ZRFxListDocument.h"
#include "blocks/ZRFxBlock.h"

namespace unstruct {

/// Base of the blocks that are a description and a list, without data files. Written again after it
/// has grown, such a block costs what is new.
class ZRFxListBlock : public ZRFxBlock, private ZRFxListContent {
public:
    using ZRFxBlock::WriteBlock;
    bool WriteBlock(ZRFxBlockStore* pDatabase) override;

protected:
    using ZRFxBlock::ZRFxBlock;

    /// Writes the attributes of the root and the elements in front of the items.
    virtual void DoWriteHead(nvf::XmlElement root) const = 0;
    bool DoWriteBlock(nvf::XmlElement root) final;
    bool OutlinesContents() const final { return true; }

    /// Notes that an item is no longer as it was written.
    void Touch(std::int64_t index) { m_document.Touch(index); }

private:
    nvf::XmlElement WriteHead(nvf::XmlDocument* pDoc) const final;

    ZRFxListDocument m_document;
};

}  // namespace unstruct
