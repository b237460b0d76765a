#pragma once

#include <cstddef>
#include <vector>

#include "NuoCore/Export.h"
#include "NuoCore/PrivatePtr.h"
#include "NuoCore/Str.h"
#include "NuoZRFx/Block.h"

namespace unstruct {
class ZRFxResultBlock;
}

namespace nuo::zrfx {

/// One result of a model: what it is, what its values belong to, and which result values blocks
/// hold them in each state. It needs a result id, by which viewer settings refer to it.
class NUO_API ResultBlock : public Block {
public:
    enum ResultType : int {
        UNDEFINED_TYPE = -1,
        SCALAR = 0,
        VECTOR = 1,
        DISPLACEMENT = 2,  ///< Of nodes.
        TENSOR = 3         ///< Components in the order xx, yy, zz, xy, yz, zx.
    };

    /// The items that the values belong to.
    enum ResultMapping : int {
        UNDEFINED_MAPPING = -1,
        NODE_MAPPING = 0,
        ELEMENT_MAPPING = 1,
        ELEMENT_NODE_MAPPING = 3,  ///< The nodes of each element, element after element.
        SURFACE_MAPPING = 4        ///< The surfaces of each element, element after element.
    };

    enum StrainType : int { NO_STRAIN = -1, ENGINEERING_STRAIN = 0, STANDARD_STRAIN = 1 };

    static constexpr BlockType kBlockType = RESULT;

    /// The name of an enumerator, such as "TENSOR"; empty for a value that is none.
    static const char* resultTypeName(ResultType type);
    static const char* resultMappingName(ResultMapping mapping);
    static const char* strainTypeName(StrainType strainType);

    ResultBlock(int blockId, ResultType resultType, ResultMapping resultMapping);
    ~ResultBlock() override;

    bool checkValidity() const override;
    unstruct::ZRFxBlock* internal_zrfxBlock() const override;

    ResultType resultType() const;
    ResultMapping resultMapping() const;

    /// What viewers call the result; empty until it is set.
    Str name() const;
    void setName(const Str& name);

    /// The number by which cases and other results name the result, 0 or more and its own among
    /// all results of the database; -1 until it is set.
    int resultId() const;
    void setResultId(int resultId);

    /// Of tensors that are strains: whether the shear components are the engineering ones, twice
    /// those of the tensor.
    StrainType strainType() const;
    void setStrainType(StrainType strainType);

    /// The factor by which a viewer enlarges displacements at first; 1 by default.
    float defaultDisplacementScaleFactor() const;
    void setDefaultDisplacementScaleFactor(float factor);

    /// Whether displacements are relative to the state before.
    bool relativeDisplacementResults() const;
    void setRelativeDisplacementResults(bool relative);

    /// How many significant decimal digits the values keep, as ResultValuesBlock::
    /// setSignificantDigits says; 0 for all, or for what the file says. Holds for values blocks
    /// that are written after this block lists them. Kept as the attribute "SignificantDigits".
    int significantDigits() const;
    void setSignificantDigits(int digits);

    /// Free attributes, such as a unit. Replaces the value of an attribute that is there already.
    void addAttribute(const Str& name, const Str& value);

    /// Empty when there is no such attribute.
    Str attribute(const Str& name) const;
    std::vector<Str> attributeNames() const;

    /// Appends a result values block to those of a state, which is added if it is new. A negative
    /// id is an assertion and adds nothing.
    bool addResultValuesBlock(int resultValuesBlockId, int stateId);

    /// Replaces the result values blocks of a state; the list must not be empty, and no
    /// id negative.
    bool setResultValuesBlocks(const std::vector<int>& resultValuesBlockIds, int stateId);

    /// The states that have values.
    std::size_t stateCount() const;

    /// -1 when there is no such state.
    int stateId(std::size_t index) const;
    int stateIndex(int stateId) const;

    /// The ids of the values blocks of a state; empty when there is no such state.
    std::vector<int> resultValuesBlocks(std::size_t stateIndex) const;

private:
    friend class DatabasePrivate;
    explicit ResultBlock(unstruct::ZRFxResultBlock* resultBlock);

    PrivatePtr<class ResultBlockPrivate> m_private;
};

}  // namespace nuo::zrfx
