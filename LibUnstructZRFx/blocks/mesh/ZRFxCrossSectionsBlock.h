#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "ZRArray.h"
#include "ZRPtrArray.h"
#include "blocks/ZRFxBlock.h"

namespace unstruct {

enum ZRCrossSectionType : int {
    CROSS_SECTION_UNKNOWN = -999,
    CROSS_SECTION_I_OR_H = 0,
    CROSS_SECTION_PIPE = 1,
    CROSS_SECTION_BOX = 2,
    CROSS_SECTION_CYLINDER = 3,
    CROSS_SECTION_L = 4,
    CROSS_SECTION_CHANNEL = 5,
    CROSS_SECTION_BAR = 6,
    CROSS_SECTION_UNSYMMETRIC_I = 7,
    CROSS_SECTION_CONE = 8
};

/// "UNKNOWN", after an assertion for a code that is none. An unknown name reads as unknown.
ZRString CrossSectionTypeName(int type);
int CrossSectionTypeFromName(const ZRString& name);

/// The shape of a beam: a type and its named dimensions, such as "Height" of a box. A name is of
/// ASCII letters, digits, "_", "-" and ".", begins with a letter or "_", and is not "Type".
class ZRFxCrossSection {
public:
    explicit ZRFxCrossSection(int type = CROSS_SECTION_UNKNOWN) : m_iType(type) {}

    /// Whether these can be the names of the parameters of one cross section.
    static bool AreParameterNames(const ZRStringArray& names);

    /// Replaces the parameters. False after an assertion when there are not as many values as
    /// names, a name is not one, or is there twice.
    bool SetParameters(const ZRStringArray& names, const std::vector<float>& values);

    int GetType() const { return m_iType; }
    const ZRStringArray& GetParameterNames() const { return m_names; }
    const std::vector<float>& GetParameters() const { return m_values; }

private:
    int m_iType;
    ZRStringArray m_names;
    std::vector<float> m_values;
};

/// The cross sections that the beams of element blocks are expanded with.
class ZRFxCrossSectionsBlock : public ZRFxBlock {
public:
    static constexpr ZRFxBlockType kType = BLOCK_CROSS_SECTIONS;

    ZRFxCrossSectionsBlock(ZRFxBlockStore* pDatabase, int id);

    void AddCrossSection(const ZRFxCrossSection& crossSection);
    std::int64_t GetCrossSectionCount() const { return m_apCrossSections.GetSize(); }
    ZRFxCrossSection* GetCrossSection(std::int64_t index) const { return m_apCrossSections[index]; }

protected:
    bool DoReadBlock(const nvf::XmlElement& root) override;
    bool DoWriteBlock(nvf::XmlElement root) override;
    void DoOutline(const nvf::XmlElement& root, ZRFxOutline* outline) const override;
    bool OutlinesContents() const override { return true; }
    void DoUnloadData() override;

private:
    bool ReadCrossSection(const nvf::XmlElement& element);
    void WriteCrossSection(nvf::XmlElement root, const ZRFxCrossSection& crossSection);

    ZRPtrArray<ZRFxCrossSection> m_apCrossSections;
};

}  // namespace unstruct
