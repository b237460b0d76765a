#include <functional>

#include "ZROZRFx2DPlotDataBlock.h"
#include "ZROZRFxCrossSectionsBlock.h"
#include "ZROZRFxElementBlock.h"
#include "ZROZRFxElementType.h"
#include "ZROZRFxFileRecord.h"
#include "ZROZRFxGeometryBlock.h"
#include "ZROZRFxGeometryInfoBlock.h"
#include "ZROZRFxImageJpeg.h"
#include "ZROZRFxIndexedFaceSetBlock.h"
#include "ZROZRFxNodeBlock.h"
#include "ZROZRFxPrecomputedBlock.h"
#include "ZROZRFxResultBlock.h"
#include "ZROZRFxResultValuesBlock.h"
#include "ZROZRFxSetBlock.h"
#include "ZROZRFxXml.h"
#include "nvf/PropertyXmlSerializer.h"
#include "support/ArchiveTest.h"

namespace unstruct {
namespace {

// What a programming error of the layers above asks of this one: the assertion that names it, and
// a call that goes on as if nothing had been asked. Those that belong to one block's contract are
// in the tests of that block.
using ZRFxMisuseTest = test::ArchiveTest;

struct Misuse {
    const char* assertion;
    std::function<bool()> call;
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
    const auto values = blockWithoutDatabase<ZRFxResultValuesBlock>();
    ZRFxPrecomputedState state;
    const Misuse misuses[] = {
        {"iTo >= 0 && iTo < apParts.GetSize()", [&] { return state.RemoveParts(0, 5), false; }},
        {"object", [&] { return state.apTraces.Add(nullptr) != nullptr; }},
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
        {"pVariable", [&] { return plot->AddVariable(nullptr), plot->GetVariableCount() > 0; }},
        {"iTo >= 0 && iTo < m_apStates.GetSize()",
         [&] { return result->RemoveStates(0, 0), false; }},
        {"pSetItems", [&] { return set->AddItems(nullptr) != nullptr; }},
        {"iTo >= 0 && iTo < m_apSetBlockItems.GetSize()",
         [&] { return set->RemoveItems(0, -1), false; }},
        {"pfResult", [&] { return values->SetScalars(nullptr, 3); }},
        {"pVectorArray", [&] { return values->SetVectors(nullptr, 3); }},
        {"m_iNumDimensions == 3", [&] { return values->SetVectors(ZRVec3fArray()), false; }},
        {"m_iNumDimensions == 3", [&] { return values->AddVector(nuo::Vec3f(), 1); }},
    };
    for (const Misuse& misuse : misuses) {
        SCOPED_TRACE(misuse.assertion);
        ExpectAssertion(misuse.call(), misuse.assertion);
    }
}

TEST_F(ZRFxMisuseTest, UnknownTypesAndMissingPlacesAreTold) {
    ZRFxDatabase database(&m_access);
    const nvf::ref<ZRFxGeometryBlock> geometry = new ZRFxGeometryBlock(&database, 1);
    ExpectAssertion(geometry->GetLegacyGeometryInfo(nullptr), "pGeometryInfo");
    EXPECT_EQ(CrossSectionTypeName(99), "UNKNOWN");
    ExpectFailure("Unhandled cross section type");
}

TEST_F(ZRFxMisuseTest, OperationsWithoutAPlaceForTheirResultGiveFalse) {
    nvf::XmlDocument document;
    nvf::XmlElement root = document.createRootElement("PropertySetCollection", "");
    ZRFxMainDocument none(nullptr);
    ExpectAssertion("m_document.notNull()");
    const Misuse misuses[] = {
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
    for (const Misuse& misuse : misuses) {
        SCOPED_TRACE(misuse.assertion);
        ExpectAssertion(misuse.call(), misuse.assertion);
    }
}

}  // namespace
}  // namespace unstruct
