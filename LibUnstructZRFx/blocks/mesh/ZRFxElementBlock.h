#pragma once

#include <cstdint>
#include <memory>

#include "ZRArray.h"
#include "ZRPtrArray.h"
#include "blocks/ZRFxBlock.h"
#include "blocks/mesh/ZRFxElementBlockGroup.h"

namespace unstruct {

/// The elements of a part of a model, in groups of one type each, with their connectivity into one
/// node block, and any number of integer properties, each with one value an element.
class ZRFxElementBlock : public ZRFxBlock {
public:
    static constexpr ZRFxBlockType kType = BLOCK_ELEMENTS;

    ZRFxElementBlock(ZRFxBlockStore* pDatabase, int id);

    /// Takes the group over. False, with a message and the group left to the caller, when it has
    /// ids and the groups before it have none, or the reverse.
    bool AddElementGroup(std::unique_ptr<ZRFxElementBlockGroup>& pGroup);

    /// Takes the array over.
    void AddUserProperties(std::unique_ptr<ZRIntArray> paiProperties);

    /// Removes what lies in a range of indices, both included.
    void RemoveElementGroups(std::int64_t iFrom, std::int64_t iTo);
    void RemoveUserProperties(std::int64_t iFrom, std::int64_t iTo);

    /// Numbers the elements of all groups in one sequence from 0.
    bool RenumberElementIndices();

    /// The group of an index; null after an assertion when there is none.
    ZRFxElementBlockGroup* GetElementGroup(std::int64_t iEltGroupIdx) const;
    std::int64_t GetNumElementGroups() const;
    std::int64_t GetNumElements() const;

    /// Replaces the array by the ids of all groups, in their order.
    bool GetAllElementIDs(ZRIntArray* paiElementIDs) const;

    const ZRIntArray* GetUserProperties(std::int64_t iPropertiesIdx) const;
    std::int64_t GetNumUserProperties() const;

    int GetNodeBlockID() const { return m_iNodeBlockID; }
    void SetNodeBlockID(int id) { m_iNodeBlockID = id; }
    bool GetMapToNodeIDs() const { return m_bMapToNodeIDs; }
    void SetMapToNodeIDs(bool mapToNodeIDs) { m_bMapToNodeIDs = mapToNodeIDs; }
    bool GetWithIDs() const { return m_bWithIDs; }

    /// Sets it for a block without groups; the first group that is added decides anew.
    void SetWithIDs(bool withIDs) { m_bWithIDs = withIDs; }

    /// The cross sections block that beams are expanded with; -1 when there is none.
    int GetCrossSectionsID() const { return m_iCrossSectionsID; }
    void SetCrossSectionsID(int id) { m_iCrossSectionsID = id; }
    int GetNumEccPerElement() const { return m_iNumEccPerElement; }
    void SetNumEccPerElement(int count) { m_iNumEccPerElement = count; }

    std::uint64_t GetDataSize() const override;

protected:
    bool DoReadBlock(const nvf::XmlElement& root) override;
    bool CheckContents() const override;
    bool DoWriteBlock(nvf::XmlElement root) override;
    void DoOutline(const nvf::XmlElement& root, ZRFxOutline* outline) const override;
    bool FindArray(const nvf::XmlElement& root, ZRFxArrayKind kind, int group,
                   ZRFxArrayFile* file) const override;
    void DoUnloadData() override;

private:
    void ReadAttributes(const nvf::XmlElement& root);
    bool ReadGroup(const nvf::XmlElement& element, ZRFxElementBlockGroup* group);
    bool ReadConnectivity(const nvf::XmlElement& element, const ZRString& name,
                          ZRFxElementBlockGroup* group);
    bool ReadElementIndices(const nvf::XmlElement& element, ZRFxElementBlockGroup* group);
    bool ReadExpansion(const nvf::XmlElement& element, ZRFxElementBlockGroup* group);
    bool ReadPolyhedrons(const nvf::XmlElement& element, ZRFxElementBlockGroup* group);
    bool ReadProperties(const nvf::XmlElement& element);

    // Checks that reading and writing share: reading names files as documents record them, writing
    // as it will write them.
    bool CheckGroup(const ZRFxElementBlockGroup& group, const ZRString& base) const;
    bool CheckIDs(const ZRFxElementBlockGroup& group, const ZRString& file) const;
    bool CheckElementCount(const ZRFxElementBlockGroup& group, std::int64_t numNodes,
                           const ZRString& file) const;
    bool CheckConnectivity(const ZRFxElementBlockGroup& group, const ZRString& file) const;
    bool CheckElementIndices(const ZRFxElementBlockGroup& group, const ZRString& file) const;
    bool CheckExpansion(const ZRFxElementBlockGroup& group, const ZRString& mappingFile) const;
    bool IsExpanded(const ZRFxElementBlockGroup& group) const;
    bool CheckExtras(const ZRFxElementBlockGroup& group) const;
    bool CheckPolyhedrons(const ZRFxElementBlockGroup& group) const;
    bool CheckLocalNodes(const ZRFxElementBlockGroup& group) const;
    bool CheckProperties(const ZRIntArray& properties, const ZRString& file) const;
    bool FailMixedIDs() const;

    void WriteAttributes(nvf::XmlElement root);
    bool WriteGroup(nvf::XmlElement root, const ZRFxElementBlockGroup& group, std::int64_t number);
    bool WriteConnectivity(const ZRFxElementBlockGroup& group, const ZRString& name);
    bool WriteExpansion(nvf::XmlElement element, const ZRFxElementBlockGroup& group,
                        const ZRString& base);
    bool WritePolyhedrons(nvf::XmlElement element, const ZRFxElementBlockGroup& group,
                          const ZRString& base);
    bool WriteProperties(nvf::XmlElement root, const ZRIntArray& properties, std::int64_t number);

    int m_iNodeBlockID = -1;
    int m_iCrossSectionsID = -1;
    int m_iNumEccPerElement = 0;
    bool m_bWithIDs = false;
    bool m_bMapToNodeIDs = false;
    ZRPtrArray<ZRFxElementBlockGroup> m_apElementGroups;
    ZRPtrArray<ZRIntArray> m_apUserProperties;
};

}  // namespace unstruct
