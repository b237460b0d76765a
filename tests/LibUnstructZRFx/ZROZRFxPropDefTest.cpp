#include "catalogue/ZROZRFxPropDef.h"

#include <set>

#include "support/LogCapture.h"

namespace unstruct {
namespace {

using nvf::PropertySet;
using nvf::String;
using nvf::Variant;
using testing::ElementsAre;
using testing::IsEmpty;

struct PropDefTest : test::LogCapture {
    PropertySet& AddSet(std::string_view classType) {
        collection.addPropertySet(new PropertySet(String::fromUtf8(classType)));
        return *collection.propertySet(collection.count() - 1);
    }

    std::vector<std::string> Validate() {
        std::vector<String> errors;
        const bool isValid = validateProperties(collection, errors);
        EXPECT_EQ(isValid, errors.empty());
        std::vector<std::string> texts;
        for (const String& error : errors) texts.push_back(error.toUtf8());
        return texts;
    }

    nvf::PropertySetCollection collection;
};

Variant Text(std::string_view text) {
    return Variant(String::fromUtf8(text));
}

// A value of the type, legal where the definition restricts it.
Variant ValueFor(const PropDef& def) {
    const Variant text = Text(def.legalValues.substr(def.legalValues.rfind(' ') + 1));
    const std::vector<Variant> ofType = {Variant(),
                                         Variant(1),
                                         Variant(1u),
                                         Variant(1.0),
                                         Variant(1.0f),
                                         Variant(true),
                                         Variant(nvf::Vec3d()),
                                         Variant(nvf::Color3f()),
                                         text,
                                         Variant(std::vector<Variant>{text})};
    return ofType[def.type];
}

TEST_F(PropDefTest, SetsWithAllKeysOfAllGroupsPass) {
    for (const PropClassDef& group : PropClassDef::all()) {
        PropertySet& set = AddSet(group.className());
        for (const PropDef& def : group.propDefs()) {
            set.setValue(String::fromUtf8(def.name), ValueFor(def));
        }
        EXPECT_EQ(set.valuesByKey().size(), group.propDefs().size()) << "a key is defined twice";
        AddSet(group.className());  // without any key
    }
    EXPECT_THAT(Validate(), IsEmpty());
}

TEST_F(PropDefTest, DefaultsAreThemselvesLegalAndDescriptionsDiffer) {
    for (const PropClassDef& group : PropClassDef::all()) {
        std::set<std::string_view> descriptions;
        for (const PropDef& def : group.propDefs()) {
            EXPECT_TRUE(descriptions.insert(def.description).second) << def.name;
            if (def.defaultValue.empty() || def.type != Variant::STRING) continue;
            AddSet(group.className()).setValue(String::fromUtf8(def.name), Text(def.defaultValue));
        }
    }
    EXPECT_EQ(collection.count(), 9u);
    EXPECT_THAT(Validate(), IsEmpty());
}

TEST_F(PropDefTest, EveryProblemIsReportedInOrder) {
    AddSet("Camera").setValue("eye", Variant(1));
    PropertySet& camera = AddSet("camera");
    camera.setValue("Eye", Variant(nvf::Vec3d()));
    camera.setValue("eye", Variant(nvf::Color3f()));
    camera.setValue("projection_type", Text(" ortho"));
    AddSet("%1 %2");
    AddSet("overlay_plot").setValue("width", Variant());
    EXPECT_THAT(
        Validate(),
        ElementsAre(
            "Property group 'Camera' does not exist.", "Property camera::Eye does not exist.",
            "Property camera::eye has illegal data type. Type is 'Color3f' but should be 'Vec3d'.",
            "Property camera::projection_type has illegal value. Value is ' ortho', but legal "
            "values are 'perspective, ortho'.",
            "Property group '%1 %2' does not exist.",
            "Property overlay_plot::width has illegal data type. Type is 'Invalid' but should be "
            "'Uint'."));
}

TEST_F(PropDefTest, OnlyTheItemsOfTheLegalValuesAreLegal) {
    for (const char* value : {"", "ort", "Ortho", "ortho ", ",", "perspective, ortho"}) {
        const std::size_t errorsBefore = Validate().size();
        AddSet("camera").setValue("projection_type", Text(value));
        EXPECT_EQ(Validate().size(), errorsBefore + 1) << value;
    }
}

TEST_F(PropDefTest, CatalogueKeepsWhatViewersRelyOn) {
    const PropClassDef* legend = PropClassDef::find("overlay_color_legend");
    ASSERT_TRUE(legend);
    EXPECT_EQ(legend->findPropDef("marker_position")->legalValues, "above, below");
    std::vector<std::string> marked;
    for (const PropClassDef& group : PropClassDef::all()) {
        for (const PropDef& def : group.propDefs()) {
            if (def.marked)
                marked.push_back(std::string(group.className()) + "::" + std::string(def.name));
        }
    }
    EXPECT_THAT(marked, ElementsAre("overlay_color_legend::max_num_tick_marks",
                                    "part_settings::contour_lines_type",
                                    "part_settings::contour_lines_color_by_scalar",
                                    "part_settings::contour_lines_line_width",
                                    "part_settings::contour_lines_single_color"));
    EXPECT_EQ(PropClassDef::find("part_settings")->findPropDef("eye_lift_factor")->defaultValue,
              "0.0f");
}

}  // namespace
}  // namespace unstruct
