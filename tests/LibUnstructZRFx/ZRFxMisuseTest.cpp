#include <functional>

#include "blocks/ZROZRFxBlocks.h"
#include "data/ZROZRFxImageJpeg.h"
#include "documents/ZRFxFileRecord.h"
#include "documents/ZRFxXml.h"
#include "nvf/PropertyXmlSerializer.h"
#include "support/ArchiveTest.h"
#include "types/ZRFxElementType.h"

namespace unstruct {
namespace {

// What a programming error of the layers above asks of this one: the assertion that names it, and
// a call that goes on as if nothing had been asked.
struct Misuse {
    const char* assertion;
    std::function<bool()> call;
};

class ZRFxMisuseTest : public test::ArchiveTest {
protected:
    void ExpectAll(const std::vector<Misuse>& misuses) {
        for (const Misuse& misuse : misuses) {
            SCOPED_TRACE(misuse.assertion);
            ExpectAssertion(misuse.call(), misuse.assertion);
        }
    }
};

template <typename Block>
nvf::ref<Block> blockWithoutDatabase() {
    return new Block(nullptr, 1);
}

TEST_F(ZRFxMisuseTest, BlocksTakeNothingOfIt) {
    const std::int32_t kInts[] = {1, 2};
    const auto elements = blockWithoutDatabase<ZRFxElementBlock>();
    const auto faces = blockWithoutDatabase<ZRFxIndexedFaceSetBlock>();
    const auto geometry = blockWithoutDatabase<ZRFxGeometryBlock>();
    const auto infos = blockWithoutDatabase<ZRFxGeometryInfoBlock>();
    const auto nodes = blockWithoutDatabase<ZRFxNodeBlock>();
    const auto plot = blockWithoutDatabase<ZRFx2DPlotDataBlock>();
    const auto result = blockWithoutDatabase<ZRFxResultBlock>();
    const auto set = blockWithoutDatabase<ZRFxSetBlock>();
    const auto states = blockWithoutDatabase<ZRFxStateInfoBlock>();
    const auto values = blockWithoutDatabase<ZRFxResultValuesBlock>();
    std::unique_ptr<ZRFxElementBlockGroup> none;
    ZRFxCrossSection section(77);
    ZRFxGeometryState parts(1, 2);
    ZRFxPrecomputedState state;
    const std::vector<Misuse> misuses = {
        {"iTo >= 0 && iTo < apParts.GetSize()", [&] { return state.RemoveParts(0, 5), false; }},
        {"object", [&] { return state.apTraces.Add(nullptr) != nullptr; }},
        {"names.size() == values.size()", [&] { return section.SetParameters({"a"}, {}); }},
        {"areNames", [&] { return section.SetParameters({"Type"}, {1}); }},
        {"pGroup", [&] { return elements->AddElementGroup(none); }},
        {"paiElementIDs", [&] { return elements->GetAllElementIDs(nullptr); }},
        {"(iEltGroupIdx >= 0) && (iEltGroupIdx < m_apElementGroups.GetSize())",
         [&] { return elements->GetElementGroup(-1) != nullptr; }},
        {"(iEltGroupIdx >= 0) && (iEltGroupIdx < m_apElementGroups.GetSize())",
         [&] { return elements->GetElementGroup(0) != nullptr; }},
        {"iTo >= 0 && iTo < m_apElementGroups.GetSize()",
         [&] { return elements->RemoveElementGroups(0, 3), false; }},
        {"iTo >= 0 && iTo < m_apUserProperties.GetSize()",
         [&] { return elements->RemoveUserProperties(0, -1), false; }},
        {"paiProperties", [&] { return elements->AddUserProperties(nullptr), false; }},
        {"iPropertiesIdx < m_apUserProperties.GetSize()",
         [&] { return elements->GetUserProperties(0) != nullptr; }},
        {"paiConnects", [&] { return faces->SetConnects(nullptr, 2); }},
        {"iNumConnects >= 0", [&] { return faces->SetConnects(kInts, -1); }},
        {"paiPolygonStart", [&] { return faces->SetPolygons(nullptr, 2); }},
        {"iNumPolys >= 0", [&] { return faces->SetPolygons(kInts, -1); }},
        {"m_pDatabase", [&] { return geometry->HasGeometryCountPerState(); }},
        {"m_pDatabase", [&] { return geometry->GetLegacyGeometryInfo(infos.p()); }},
        {"iGeometryIndex >= 0 && iGeometryIndex < GetGeometryCountPerState()",
         [&] { return infos->GetPartInfos(-1) != nullptr; }},
        {"!paiNodeIDs || paiNodeIDs->GetSize() == nodes.GetSize()",
         [&] {
             auto ids = std::make_unique<ZRIntArray>();
             return ids->Add(1) && nodes->SetNodes(ZRVec3fArray(), std::move(ids));
         }},
        {"pfNodes && (iNumNodes >= 0)", [&] { return nodes->SetNodes(nullptr, 3, nullptr); }},
        {"m_pDatabase", [&] { return nodes->GetNumNodes() > 0; }},
        {"iGlobalGeometryIndex >= 0 && iGlobalGeometryIndex < GetGeometryCountPerState()",
         [&] { return parts.AddPart(2, {}); }},
        {"iPartIndex >= 0 && iPartIndex < "
         "static_cast<ZRint>(m_geometryParts[iGlobalGeometryIndex].size())",
         [&] { return parts.GetPart(1, 0).blockID >= 0; }},
        {"pVariable", [&] { return plot->AddVariable(nullptr), plot->GetVariableCount() > 0; }},
        {"iTo >= 0 && iTo < m_apStates.GetSize()",
         [&] { return result->RemoveStates(0, 0), false; }},
        {"pSetItems", [&] { return set->AddItems(nullptr) != nullptr; }},
        {"iTo >= 0 && iTo < m_apSetBlockItems.GetSize()",
         [&] { return set->RemoveItems(0, -1), false; }},
        {"iTo >= 0 && iTo < m_apStateInfo.GetSize()",
         [&] { return states->RemoveStates(-5, -1), false; }},
        {"iID >= 0", [&] { return values->GetIndexOfID(-1) >= 0; }},
        {"pfResult", [&] { return values->SetScalars(nullptr, 3); }},
        {"pVectorArray", [&] { return values->SetVectors(nullptr, 3); }},
        {"m_iNumDimensions == 3", [&] { return values->SetVectors(ZRVec3fArray()), false; }},
        {"m_iNumDimensions == 3", [&] { return values->AddVector(nuo::Vec3f(), 1); }},
    };
    ExpectAll(misuses);
}

TEST_F(ZRFxMisuseTest, OperationsWithoutAPlaceForTheirResultGiveFalse) {
    nvf::XmlDocument document;
    nvf::XmlElement root = document.createRootElement("PropertySetCollection", "");
    ZRFxDatabaseInfo database;
    ZRFxCaseInfo aCase;
    ZRFxMainDocument none(nullptr);
    ExpectAssertion("m_document.notNull()");
    const std::vector<Misuse> misuses = {
        {"record", [&] { return GetFileRecord(root, "File", nullptr); }},
        {"values", [&] { return ReadIntList(root, nullptr); }},
        {"matrix", [&] { return ReadMatrix(root, nullptr); }},
        {"bytes", [&] { return ZRFxImageJpeg::Encode(nuo::Image(), nullptr); }},
        {"image", [&] { return ZRFxImageJpeg::Decode(nullptr, 0, nullptr); }},
        {"dateTime", [&] { return none.GetExportDateTime(nullptr); }},
        {"displayModelOnly", [&] { return none.GetDisplayModelOnly(nullptr); }},
        {"info", [&] { return none.GetDatabaseInfo(0, nullptr); }},
        {"info", [&] { return none.GetCaseInfo(0, nullptr); }},
        {"count", [&] { return m_access.GetNumDatabases(nullptr); }},
        {"count", [&] { return m_access.GetNumCases(nullptr); }},
        {"index >= 0", [&] { return m_access.GetDatabaseInfo(-1, &database); }},
        {"index >= 0", [&] { return m_access.GetCaseInfo(-1, &aCase); }},
        {"info", [&] { return m_access.GetCaseByID(0, nullptr); }},
        {"info", [&] { return m_access.GetArchiveInfo(nullptr); }},
        {"names", [&] { return m_access.FindFiles("", true, nullptr); }},
        {"data", [&] { return m_access.ReadDataFloat("ZRF.xml", nullptr); }},
        {"collection", [&] { return m_access.ReadProperties("ZRF.xml", nullptr); }},
        {"info", [&] { return m_access.GetDatabaseByID(0, nullptr); }},
        {"doc", [&] { return m_access.ReadAndValidateMainDocumentFile(nullptr); }},
        {"doc", [&] { return m_access.InternalReadXmlFile("ZRF.xml", LogMode::LOG, nullptr); }},
        {"text", [&] { return m_access.ReadDataString("ZRF.xml", nullptr); }},
        {"raw", [&] { return m_access.InternalReadDataRaw("ZRF.xml", LogMode::LOG, nullptr); }},
        {"parent",
         [&] { return nvf::PropertyXmlSerializer::toXml(nvf::PropertySet("a"), nullptr), false; }},
        {"propertySetCollection",
         [&] { return nvf::PropertyXmlSerializer::toPropertySetCollection(root, nullptr), false; }},
        {"type != ELEMENT_POLYHEDRON",
         [&] { return ZRFEMSurfacesPerElement(ELEMENT_POLYHEDRON) > 0; }},
        {"nIndex >= 0 && nIndex < m_nSize", [&] { return ZRIntArray()[0] != 0; }},
    };
    ExpectAll(misuses);
}

}  // namespace
}  // namespace unstruct
