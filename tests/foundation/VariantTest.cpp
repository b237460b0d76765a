#include "nvf/Variant.h"

#include "NuoCore/Variant.h"
#include "nvf/PropertySetCollection.h"
#include "support/LogCapture.h"

namespace nvf {
namespace {

struct VariantTest : test::LogCapture {};

TEST_F(VariantTest, AskingForAnotherTypeIsReportedAndGivesNothing) {
    const Variant text(String("12345678"));  // its payload is longer than any number
    const auto expectNothing = [this](bool isNothing, const std::string& type) {
        EXPECT_TRUE(isNothing) << type;
        const auto texts = TakeTexts();
        if (!NUO_ASSERTIONS) return;
        ASSERT_EQ(texts.size(), 2u) << type;
        EXPECT_EQ(texts[0], "ASSERT:  (m_type == " + type + ")");
    };
    expectNothing(text.getInt() == 0, "INT");
    expectNothing(text.getUInt() == 0, "UINT");
    expectNothing(text.getDouble() == 0, "DOUBLE");
    expectNothing(text.getFloat() == 0, "FLOAT");
    expectNothing(!text.getBool(), "BOOL");
    expectNothing(text.getVec3d() == Vec3d(), "VEC3D");
    expectNothing(text.getColor3f() == Color3f(), "COLOR3F");
    EXPECT_TRUE(text.getArray().empty());
    ExpectAssertion("m_type == ARRAY");
    EXPECT_EQ(Variant(7).getString(), String());
    ExpectAssertion("m_type == STRING");
}

TEST_F(VariantTest, PublicVariantIsAValue) {
    nuo::Variant inner(std::vector<nuo::Variant>{1, 2.5, "three", nuo::Variant()});
    nuo::Variant copy = inner;
    nuo::Variant moved = std::move(inner);
    copy = nuo::Variant(true);
    ASSERT_EQ(moved.toArray().size(), 4u);
    EXPECT_EQ(moved.toArray()[2].toStr(), nuo::Str("three"));
    EXPECT_FALSE(moved.toArray()[3].isValid());
    moved = moved.toArray()[1];  // part of itself
    EXPECT_EQ(moved.toDouble(), 2.5);
    inner = moved;  // a moved-from value takes a new one
    EXPECT_EQ(inner.toDouble(), 2.5);
}

struct PropertySetCollectionTest : test::LogCapture {
    PropertySetCollectionTest() {
        for (const char* type : {"camera", "part_settings", "camera"}) {
            collection.addPropertySet(new PropertySet(type));
        }
    }
    PropertySetCollection collection;
};

TEST_F(PropertySetCollectionTest, SetsAreFoundByTypeAndIndex) {
    EXPECT_EQ(collection.propertySetOfType("camera", 0), collection.propertySet(0));
    EXPECT_EQ(collection.propertySetOfType("camera", 1), collection.propertySet(2));
    for (const auto& [type, index] : {std::pair("camera", 2u), {"Camera", 0u}, {"", 0u}}) {
        EXPECT_EQ(collection.propertySetOfType(type, index), nullptr);
        ExpectFailure("Specified index is of of range");
    }
    EXPECT_EQ(collection.propertySet(3), nullptr);
    ExpectAssertion("index < m_propertySets.size()");
    collection.addPropertySet(nullptr);
    ExpectAssertion("propertySet");
    EXPECT_EQ(collection.count(), 3u);
}

TEST_F(PropertySetCollectionTest, CopyHasSetsOfItsOwn) {
    collection.propertySet(0)->setValue("id", Variant(1));
    const PropertySetCollection copy(collection);
    collection.propertySet(0)->setValue("id", Variant(2));
    ASSERT_EQ(copy.count(), 3u);
    EXPECT_EQ(copy.propertySet(0)->valuesByKey().at("id").getInt(), 1);
}

}  // namespace
}  // namespace nvf
