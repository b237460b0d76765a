#include "nvf/PropertyXmlSerializer.h"

#include <cfloat>
#include <climits>
#include <cmath>
#include <limits>

#include "NuoCore/PropertySet.h"
#include "nuo/PropertyConvert.h"
#include "nvf/XmlDocument.h"
#include "support/HardTexts.h"
#include "support/LogCapture.h"

namespace nvf {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();

Variant Text(const char* text) {
    return Variant(String(text));
}

Variant NestedArrays(int depth) {
    Variant array(std::vector<Variant>{});
    for (int i = 1; i < depth; ++i) array = Variant(std::vector<Variant>{array});
    return array;
}

struct PropertyXmlSerializerTest : test::LogCapture {
    static std::string Write(const PropertySetCollection& collection) {
        XmlDocument document;
        XmlElement root = document.createRootElement("ZRFxProperties", "http://example.com/ns");
        PropertyXmlSerializer::toXml(collection, &root);
        return document.toUtf8();
    }

    static ref<PropertySetCollection> Read(const std::string& xml) {
        XmlDocument document;
        EXPECT_TRUE(document.parse(xml)) << xml;
        ref<PropertySetCollection> collection = new PropertySetCollection;
        PropertyXmlSerializer::toPropertySetCollection(
            document.getRootElement().firstChildElement("PropertySetCollection"), collection.p());
        return collection;
    }

    static ref<PropertySetCollection> Reopen(const PropertySetCollection& collection) {
        return Read(Write(collection));
    }

    // The value that an element stands for.
    static Variant ReadValue(const std::string& xml) {
        XmlDocument document;
        EXPECT_TRUE(document.parse(xml)) << xml;
        return PropertyXmlSerializer::variantFromXml(document.getRootElement());
    }

    static Variant Reread(const Variant& value) {
        XmlDocument document;
        XmlElement root = document.createRootElement("r", "");
        PropertyXmlSerializer::variantToXml(value, &root);
        XmlDocument reopened;
        EXPECT_TRUE(reopened.parse(document.toUtf8()));
        return PropertyXmlSerializer::variantFromXml(reopened.getRootElement().firstChildElement());
    }
};

TEST_F(PropertyXmlSerializerTest, DocumentHasTheElementsOfTheFormat) {
    PropertySetCollection collection;
    ref<PropertySet> all = new PropertySet("all");
    all->setValue("array", Variant(std::vector<Variant>{Variant(1), Variant(),
                                                        Variant(std::vector<Variant>{Text("x")})}));
    all->setValue("bool", Variant(true));
    all->setValue("color", Variant(Color3f(0, 0.1f, 1)));
    all->setValue("double", Variant(1e-20));
    all->setValue("float", Variant(0.1f));
    all->setValue("int", Variant(-1));
    all->setValue("invalid", Variant());
    all->setValue("text", Text(" <&> "));
    all->setValue("uint", Variant(UINT_MAX));
    all->setValue("vec", Variant(Vec3d(0.1, -1.0 / 3, 1e30)));
    collection.addPropertySet(all.p());
    collection.addPropertySet(new PropertySet("empty"));
    EXPECT_EQ(Write(collection), R"(<?xml version="1.0" encoding="UTF-8"?>
<ZRFxProperties xmlns="http://example.com/ns">
 <PropertySetCollection>
  <PropertySet classType="all">
   <Array key="array">
    <Int>1</Int>
    <Array>
     <String>x</String>
    </Array>
   </Array>
   <Bool key="bool">true</Bool>
   <Color3f key="color">0 0.1 1</Color3f>
   <Double key="double">1e-20</Double>
   <Float key="float">0.1</Float>
   <Int key="int">-1</Int>
   <String key="text"> &lt;&amp;&gt; </String>
   <UInt key="uint">4294967295</UInt>
   <Vec3d key="vec">0.1 -0.333333333333333 1e+30</Vec3d>
  </PropertySet>
  <PropertySet classType="empty" />
 </PropertySetCollection>
</ZRFxProperties>
)");
}

TEST_F(PropertyXmlSerializerTest, EveryTypeAndHardTextSurvivesAsValueKeyAndClassType) {
    std::vector<Variant> values = {Variant(true), Variant(false), Variant(0u), Variant(UINT_MAX)};
    for (const int value : {INT_MIN, INT_MAX}) values.push_back(Variant(value));
    for (const double value : {0.1, -0.0, DBL_MAX, -DBL_MAX, 1e-20, kInf, -kInf}) {
        values.push_back(Variant(value));
    }
    for (const float value : {0.5f, -0.0f}) values.push_back(Variant(value));
    values.push_back(Variant(Vec3d(1, -2.5, DBL_MAX)));
    values.push_back(Variant(Color3f(0, 0.25f, 1)));
    values.push_back(Variant(std::vector<Variant>{}));
    PropertySetCollection collection;
    const auto addTexts = [&](const auto& texts) {
        for (const char* text : texts) {
            values.push_back(Text(text));
            ref<PropertySet> set = new PropertySet(text);
            if (*text) set->setValue(text, Text(text));  // a key must not be empty
            collection.addPropertySet(set.p());
        }
    };
    addTexts(test::kHardXmlTexts);
    values.push_back(Variant(values));
    values.push_back(Variant(std::vector<Variant>{Variant(values), Text(" "), Variant(1u)}));
    ref<PropertySet> numbered = new PropertySet("numbered");
    for (const Variant& value : values) {
        numbered->setValue(String::number(numbered->valuesByKey().size()), value);
    }
    collection.addPropertySet(numbered.p());

    const ref<PropertySetCollection> reopened = Reopen(collection);
    ASSERT_EQ(reopened->count(), collection.count());
    for (std::size_t i = 0; i < collection.count(); ++i) {
        EXPECT_EQ(reopened->propertySet(i)->classType(), collection.propertySet(i)->classType());
        EXPECT_TRUE(reopened->propertySet(i)->valuesByKey() ==
                    collection.propertySet(i)->valuesByKey())
            << collection.propertySet(i)->classType().toUtf8();
    }
}

TEST_F(PropertyXmlSerializerTest, PublicSetSurvivesTheWayThroughXml) {
    nuo::PropertySetCollection collection;
    nuo::PtrRef<nuo::PropertySet> set = new nuo::PropertySet(" \U0001F600");
    set->setValue("array", std::vector<nuo::Variant>{1, 2u, 0.5, 0.5f, true, " x\r\n",
                                                     nuo::Vec3d(1, 2, 3), nuo::Color3f(0, 1, 0)});
    set->setValue("invalid", nuo::Variant());
    collection.addPropertySet(set.p());
    const auto reopened = Reopen(*nuo::PropertyConvert::toNvfPropertySetCollection(collection));
    const auto result = nuo::PropertyConvert::toPropertySet(*reopened->propertySet(0));
    EXPECT_EQ(result->classType(), set->classType());
    EXPECT_EQ(result->allKeys(), std::vector<nuo::Str>{"array"});
    EXPECT_EQ(result->value("array").internal_nvfVariant(),
              set->value("array").internal_nvfVariant());
}

TEST_F(PropertyXmlSerializerTest, NumbersKeepTheDigitsOfTheFormat) {
    for (const double value : {1.0 / 3, 1e300 / 7, 5e-324, 123456789.0123456789}) {
        EXPECT_NEAR(Reread(Variant(value)).getDouble() / value, 1, 5e-15) << value;
    }
    for (const float value : {1.0f / 3, FLT_MAX, -FLT_MIN, 16777217.0f}) {
        EXPECT_NEAR(Reread(Variant(value)).getFloat() / value, 1, 5e-6) << value;
    }
    EXPECT_TRUE(std::isnan(Reread(Variant(double{NAN})).getDouble()));
    EXPECT_TRUE(std::isnan(Reread(Variant(float{NAN})).getFloat()));
}

TEST_F(PropertyXmlSerializerTest, ValuesAreReadByTypeNameAndText) {
    const Variant kInvalid;
    const auto expectValue = [](const char* xml, const Variant& value) {
        EXPECT_TRUE(ReadValue(xml) == value) << xml;
    };
    expectValue("<INT>7</INT>", Variant(7));
    expectValue("<Int>2147483648</Int>", kInvalid);
    expectValue("<uInt>7</uInt>", Variant(7u));
    expectValue("<UInt>-1</UInt>", kInvalid);
    expectValue("<Double>1e5</Double>", Variant(1e5));
    expectValue("<Float>x</Float>", kInvalid);
    expectValue("<Bool>TRUE</Bool>", Variant(true));
    expectValue("<Bool>1</Bool>", Variant(false));
    expectValue("<vec3d>1 2 3</vec3d>", Variant(Vec3d(1, 2, 3)));
    expectValue("<Vec3d>1 2</Vec3d>", kInvalid);
    expectValue("<Vec3d>1 2 3 </Vec3d>", kInvalid);
    expectValue("<Vec3d>1 x 3</Vec3d>", kInvalid);
    expectValue("<Color3F>0 0.5 1</Color3F>", Variant(Color3f(0, 0.5f, 1)));
    expectValue("<String/>", Text(""));
    expectValue("<string> a </string>", Text(" a "));
    expectValue("<ARRAY><Int>1</Int><Int>x</Int><Other>2</Other><array> </array></ARRAY>",
                Variant(std::vector<Variant>{Variant(1), Variant(std::vector<Variant>{})}));
    expectValue("<Other>1</Other>", kInvalid);
}

TEST_F(PropertyXmlSerializerTest, UnusableValuesAreDroppedAndTheRestIsRead) {
    const auto collection = Read(
        "<r><PropertySetCollection><!-- --><Other/><propertyset classType='no'/>"
        "<PropertySet><Vec3d key='v'>1 2</Vec3d><Int>1</Int><Int key=''>2</Int>"
        "<What key='w'/><Int key='i'>3</Int><Int key='i'>4</Int></PropertySet>"
        "<PropertySet classType='b'/></PropertySetCollection></r>");
    ASSERT_EQ(collection->count(), 2u);
    EXPECT_TRUE(collection->propertySet(0)->classType().isEmpty());
    EXPECT_TRUE(collection->propertySet(0)->valuesByKey() ==
                (std::map<String, Variant>{{"i", Variant(4)}}));
    EXPECT_TRUE(collection->propertySetOfType("b", 0)->valuesByKey().empty());
}

TEST_F(PropertyXmlSerializerTest, ArraysAreReadDownToTheDeepestLevel) {
    constexpr int kDeepest = PropertyXmlSerializer::kDeepestArray;
    const auto nested = [](int depth) {
        std::string xml;
        for (int i = 0; i < depth; ++i) xml.insert(0, "<Array>").append("</Array>");
        return xml;
    };
    EXPECT_TRUE(Reread(NestedArrays(kDeepest)) == NestedArrays(kDeepest));
    EXPECT_TRUE(ReadValue(nested(kDeepest + 1)) == NestedArrays(kDeepest));
    EXPECT_TRUE(ReadValue(nested(1000)) == NestedArrays(kDeepest));
}

TEST_F(PropertyXmlSerializerTest, MisuseIsReported) {
    XmlDocument document;
    PropertySetCollection collection;
    PropertyXmlSerializer::toXml(collection, nullptr);
    ExpectAssertion("parent");
    ExpectAssertion(PropertyXmlSerializer::variantToXml(Variant(1), nullptr).notNull(), "parent");
    PropertyXmlSerializer::toPropertySetCollection(XmlElement(), &collection);
    ExpectAssertion("xmlPropertySetCollectionElement.name() == \"PropertySetCollection\"");
}

}  // namespace
}  // namespace nvf
