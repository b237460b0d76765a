#include "blocks/ZRFxListBlock.h"

#include "blocks/ZRFxBlockStore.h"
#include "nvf/Assert.h"

namespace unstruct {

// A block that stands in another document, or under another name, is removed first; one that the
// database has stays as it is when its archive fails.
bool ZRFxListBlock::WriteBlock(ZRFxBlockStore* pDatabase) {
    NVF_ASSERT(pDatabase);
    if (!pDatabase) return false;
    // Keeps this block alive where it is itself the entry that the database replaces.
    const nvf::ref<ZRFxBlock> written = pDatabase->GetBlockByID(GetType(), GetID());
    const ZRString fileName = pDatabase->EntryName(GetFilebase() + ".xml");
    if (written.notNull() && written->GetFileName() != fileName)
        return ZRFxBlock::WriteBlock(pDatabase);
    Writing writing(this, pDatabase);
    if (!CheckContents()) return false;
    if (written.isNull()) writing.Start();
    SetFileName(fileName);
    return writing.End(pDatabase->StoreListBlock(*this, fileName, *this, &m_document)) ||
           Log().fail("File write error");
}

bool ZRFxListBlock::DoWriteBlock(nvf::XmlElement root) {
    DoWriteHead(root);
    for (std::int64_t i = 0; i < GetItemCount(); ++i) WriteItem(root, i);
    return true;
}

nvf::XmlElement ZRFxListBlock::WriteHead(nvf::XmlDocument* pDoc) const {
    const nvf::XmlElement root = CreateRootElement(pDoc);
    DoWriteHead(root);
    return root;
}

}  // namespace unstruct
