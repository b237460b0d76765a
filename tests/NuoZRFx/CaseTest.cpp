#include "NuoZRFx/Case.h"

#include "support/InterfaceTest.h"
#include "support/Model.h"
#include "support/OutputOf.h"

namespace {

using namespace nuo::zrfx;
using namespace test;
using testing::ElementsAre;
using testing::SizeIs;

class CaseTest : public InterfaceTest {
protected:
    void SetUp() override { Create(); }

    void ExpectNotConstructed(File* file, const nuo::Str& name, int id, int databaseId,
                              const std::vector<std::string>& messages) {
        const PtrRef<Case> view = new Case(file, name, id, databaseId);
        ExpectRefused(view->id() >= 0, messages);
    }

    // Replaces a text in the names and documents of the closed file.
    void Replace(const std::string& from, const std::string& to) {
        EXPECT_EQ("", OutputOf("python3 " NUO_TEST_FOLDER "/support/replace_in_archive.py '" +
                               m_name.toStdString() + "' '" + from + "' '" + to + "'"));
    }
};

TEST_F(CaseTest, WhatCannotBeConstructedIsReportedAndNotPartOfTheFile) {
    File closed;
    const PtrRef<Case> used = new Case(&m_file, "Used", 2, 0);
    ExpectNotConstructed(nullptr, "a", 1, 0, {"Given file pointer was NULL. (case id 1)."});
    ExpectNotConstructed(&m_file, "", 1, 0, {"Given case name was empty. (case id 1)."});
    ExpectNotConstructed(&m_file, "a", -1, 0, {"Given case id was negative. (case id -1)."});
    ExpectNotConstructed(&m_file, "a", 1, -3,
                         {"Given database id was negative. (case id 1, database id -3)."});
    ExpectNotConstructed(&closed, "a", 1, 0,
                         {"Given file was in invalid state. (case id 1). File must be created or "
                          "opened for append before adding a case."});
    ExpectNotConstructed(
        &m_file, "a", 2, 0,
        {"Case with id 2 already registered.", "Could not register case instance. (case id 2)."});
    EXPECT_EQ(1u, m_file.fileCaseCount());
    EXPECT_TRUE(m_file.close());
}

TEST_F(CaseTest, SettingsOfEveryKindFitTheCatalogueAndReplaceEachOther) {
    ViewSettings settings;
    const nuo::Vec3d eye(1, 2, 3);
    const nuo::Vec3d up(0, 0, 1);
    settings.setOrthoCamera(eye, nuo::Vec3d(), up, 5);
    settings.setPerspectiveCamera(eye, nuo::Vec3d(), up, 30);
    settings.showFringes(1);
    settings.showFringes(2);
    for (const int resultId : {1, 2, 1}) settings.setFringesRange(resultId, -1, resultId);
    settings.showDisplacements(3, {10, 20});
    settings.showVectors({4, 5});
    for (int style = ViewSettings::SURFACE; style <= ViewSettings::NO_STYLE; ++style) {
        settings.setPartDrawStyle(style, static_cast<ViewSettings::DrawStyle>(style), 1);
    }
    settings.setPartVisible(10, false);
    settings.setPartColor(10, nuo::Color3f());
    settings.setPartOpacity(10, 0.5f);
    settings.showModeShape(7);
    settings.showStates({1, 2});
    const PtrRef<Case> view = new Case(&m_file, "View", 0, 0);
    EXPECT_FALSE(view->hasSnapshot());
    EXPECT_TRUE(view->setProperties(settings));
    nuo::Image image = MakeImage(2, 2);
    view->setSnapshot(&image);
    EXPECT_TRUE(view->hasSnapshot());
    Reopen();
    const Case& read = *m_file.fileCase(0);
    EXPECT_TRUE(read.hasSnapshot());
    // Camera, selection, two ranges, two parts, a part a style, states.
    ASSERT_EQ(1u + 1 + 2 + 2 + 8 + 1, read.properties()->count());
    EXPECT_EQ(2, read.properties()->propertySet(1)->value("fringes_result_id").toInt());
    EXPECT_EQ(1, read.properties()->propertySet(2)->value("range_max").toDouble());
}

TEST_F(CaseTest, ImagesAreStoredReplacedAndRefused) {
    const PtrRef<Case> view = new Case(&m_file, "View", 0, 0);
    nuo::Image small = MakeImage(2, 2);
    nuo::Image large = MakeImage(9, 4);
    EXPECT_TRUE(view->addImage("a", &small));
    EXPECT_TRUE(view->addImage("b.raw", &small));
    EXPECT_TRUE(view->addImage("a", &large));
    ExpectRefused(view->addImage("a/b", &small), {"Error writing the image to the ZRFx file."});
    Reopen();
    const Case& read = *m_file.fileCase(0);
    ASSERT_EQ(2u, read.imageCount());
    EXPECT_EQ(nuo::Str("b.raw"), read.imageName(0));
    EXPECT_EQ(2u, read.image(0)->width());
    EXPECT_EQ(nuo::Str("a"), read.imageName(1));
    EXPECT_EQ(9u, read.image(1)->width());
    ExpectRefused(m_file.fileCase(0)->addImage("c", nullptr),
                  {"Image object is invalid. Image pointer is NULL."});
    ExpectRefused(!read.imageName(2).isEmpty(), {"No image was found at index 2"});
    ExpectRefused(read.image(2) != nullptr, {"No image was found at index 2"});
}

TEST_F(CaseTest, PropertiesOutsideTheCatalogueAreReportedOneByOne) {
    const PtrRef<Case> view = new Case(&m_file, "View", 0, 0);
    PtrRef<nuo::PropertySet> set = new nuo::PropertySet("camera");
    set->setValue("eye", 1);
    set->setValue("no_such_key", 1);
    PtrRef<nuo::PropertySetCollection> properties = new nuo::PropertySetCollection;
    properties->addPropertySet(set.p());
    EXPECT_FALSE(view->setProperties(properties.p()));
    EXPECT_THAT(TakeTexts(), SizeIs(2));
    EXPECT_EQ(properties.p(), view->properties());
    EXPECT_TRUE(view->setProperties(nullptr));
    EXPECT_TRUE(m_file.close());
}

TEST_F(CaseTest, UnchangedCaseOfAnAppendedFileStaysAndChangedOnesAreRewritten) {
    PtrRef<Case> view = new Case(&m_file, "View", 0, 0);
    view->setDescription("text");
    view->setProperties(MakeCamera().p());
    ASSERT_TRUE(m_file.close());
    const auto change = [&](const auto& setter) {
        ASSERT_TRUE(m_file.openForAppend(m_name));
        setter(*m_file.fileCase(0));
        Reopen();
        ASSERT_EQ(1u, m_file.fileCaseCount());
    };
    change([](Case&) {});
    EXPECT_EQ(nuo::Str("text"), m_file.fileCase(0)->description());
    change([](Case& read) { read.setDerivedResultsDisabled(true); });
    EXPECT_TRUE(m_file.fileCase(0)->derivedResultsDisabled());
    EXPECT_EQ(nuo::Str("text"), m_file.fileCase(0)->description());
    EXPECT_EQ(1u, m_file.fileCase(0)->properties()->count());
    change([](Case& read) { read.setProperties(nullptr); });
    EXPECT_EQ(0u, m_file.fileCase(0)->properties()->count());
    EXPECT_TRUE(m_file.fileCase(0)->derivedResultsDisabled());
}

// A snapshot without pixels is no picture.
TEST_F(CaseTest, CaseThatCannotBeWrittenIsReportedAndCanBeMended) {
    const PtrRef<Case> view = new Case(&m_file, "View", 4, 0);
    nuo::Image empty;
    view->setSnapshot(&empty);
    ExpectRefused(m_file.close(), {"Error writing the snapshot image to the ZRFx file.",
                                   "Eror writing case.", "Could not write case (id 4) to file."});
    view->setSnapshot(nullptr);
    ASSERT_TRUE(m_file.close() && m_file.openForAppend(m_name));
    m_file.fileCase(0)->setSnapshot(&empty);
    ExpectRefused(m_file.flush(), {"Error writing the snapshot image to the ZRFx file.",
                                   "Error writing case.", "Could not write case (id 4) to file."});
    m_file.fileCase(0)->setSnapshot(nullptr);
    EXPECT_TRUE(m_file.close());
}

TEST_F(CaseTest, IdOfACaseThatCannotBeReadStaysItsOwn) {
    const PtrRef<Case> view = new Case(&m_file, "View", 3, 0);
    ASSERT_TRUE(m_file.close());
    Replace("<Case xmlns", "<Lost xmlns");
    ASSERT_TRUE(m_file.openForAppend(m_name));
    EXPECT_THAT(TakeTexts(), ElementsAre("Invalid Case.xml file."));
    EXPECT_EQ(0u, m_file.fileCaseCount());
    EXPECT_EQ(4, m_file.unusedFileCaseId());
    ExpectNotConstructed(
        &m_file, "a", 3, 0,
        {"Case with id 3 already registered.", "Could not register case instance. (case id 3)."});
    const PtrRef<Case> added = new Case(&m_file, "Added", m_file.unusedFileCaseId(), 0);
    ASSERT_TRUE(m_file.close());
    Replace("<Lost xmlns", "<Case xmlns");
    ASSERT_TRUE(m_file.open(m_name));
    ASSERT_EQ(2u, m_file.fileCaseCount());
    EXPECT_EQ(nuo::Str("View"), m_file.fileCase(0)->name());
    EXPECT_EQ(4, m_file.fileCase(1)->id());
}

// Nothing can be added to a file whose databases could not be read.
TEST_F(CaseTest, FileThatFailedToOpenTakesNoCases) {
    const PtrRef<Database> database = WriteDatabase(m_file, "a", 0);
    const PtrRef<Case> view = new Case(&m_file, "View", 0, 0);
    ASSERT_TRUE(m_file.close());
    Replace("</Database>", "</Lost>");
    ExpectRefused(m_file.openForAppend(m_name), {"Could not parse database in file.",
                                                 "Error reading database (index 0) from file."});
    EXPECT_EQ(0u, m_file.databaseCount());
    ExpectNotConstructed(&m_file, "a", 0, 0,
                         {"Given file was in invalid state. (case id 0). File must be created or "
                          "opened for append before adding a case."});
    EXPECT_FALSE(m_file.close());
}

// Other programs may choose any name for the folder of a case, and name its files within it or by
// whole entry names.
TEST_F(CaseTest, FolderOfACaseStaysWhateverItIsCalled) {
    for (const std::string folder : {"Front view", "Case5", "Views/4"}) {
        nuo::Image image = MakeImage(8, 8);
        Create();
        PtrRef<Case> view = new Case(&m_file, "View", 4, 0);
        view->setDescription("text");
        view->setSnapshot(&image);
        EXPECT_TRUE(view->addImage("steel", &image));
        EXPECT_TRUE(view->setProperties(MakeCamera().p()));
        ASSERT_TRUE(m_file.close());
        Replace("Case4", folder);
        Replace("Description>Description.html", "Description>" + folder + "\\Description.html");
        ASSERT_TRUE(m_file.openForAppend(m_name));
        ASSERT_EQ(1u, m_file.fileCaseCount()) << folder;
        m_file.fileCase(0)->setName("Renamed");
        const PtrRef<Case> added = new Case(&m_file, "Added", m_file.unusedFileCaseId(), 0);
        EXPECT_EQ(5, added->id());
        added->setDescription("other text");
        Reopen();
        ASSERT_EQ(2u, m_file.fileCaseCount());
        EXPECT_EQ(nuo::Str("Renamed"), m_file.fileCase(0)->name());
        EXPECT_EQ(nuo::Str("text"), m_file.fileCase(0)->description());
        EXPECT_NE(nullptr, m_file.fileCase(0)->snapshot());
        EXPECT_EQ(1u, m_file.fileCase(0)->imageCount());
        EXPECT_EQ(1u, m_file.fileCase(0)->properties()->count());
        EXPECT_EQ(nuo::Str("other text"), m_file.fileCase(1)->description());
        EXPECT_EQ(0u, m_file.fileCase(1)->imageCount());
        EXPECT_TRUE(m_file.close());
    }
}

TEST_F(CaseTest, PropertiesThatNestTooDeepAreRefused) {
    const auto setNested = [](Case& view, int depth) {
        nuo::Variant value = 1;
        while (depth-- > 0) value = std::vector<nuo::Variant>{value};
        const PtrRef<nuo::PropertySet> set = new nuo::PropertySet("overlay_color_legend");
        set->setValue("marker_position", value);
        const PtrRef<nuo::PropertySetCollection> properties = new nuo::PropertySetCollection;
        properties->addPropertySet(set.p());
        return view.setProperties(properties.p());
    };
    const PtrRef<Case> view = new Case(&m_file, "View", 0, 0);
    ExpectRefused(
        setNested(*view, 101),
        {"Property overlay_color_legend::marker_position nests arrays deeper than 100 levels."});
    ExpectRefused(m_file.close(), {"Eror writing case.", "Could not write case (id 0) to file."});
    EXPECT_TRUE(setNested(*view, 100));
    Reopen();
    ASSERT_EQ(1u, m_file.fileCaseCount());
    nuo::Variant value = m_file.fileCase(0)->properties()->propertySet(0)->value("marker_position");
    int depth = 0;
    for (; value.type() == nuo::Variant::ARRAY; ++depth) value = value.toArray().at(0);
    EXPECT_EQ(100, depth);
    EXPECT_EQ(1, value.toInt());
}

// A document that packs to a thousandth would be too large for a file of its length.
TEST_F(CaseTest, LongUniformTextsComeBack) {
    const nuo::Str text = nuo::Str(std::string(20 << 20, 'a'));
    const PtrRef<Case> view = new Case(&m_file, text, 0, 0);
    Reopen();
    ASSERT_EQ(1u, m_file.fileCaseCount());
    EXPECT_TRUE(text == m_file.fileCase(0)->name());
}

}  // namespace
