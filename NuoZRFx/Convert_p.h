#pragma once

#include "NuoCore/Str.h"
#include "NuoZRFx/Block.h"
#include "NuoZRFx/Database.h"
#include "NuoZRFx/ElementBlock.h"
#include "NuoZRFx/ResultBlock.h"
#include "NuoZRFx/SetBlock.h"
#include "NuoZRFx/StateInfoBlock.h"
#include "ZRString.h"
#include "types/ZRFxModelTypes.h"

namespace nuo::zrfx {

/// Turns the values of the public interface into those that the format classes use, and back. A
/// value that has no counterpart is logged and gives the fallback named with each. Texts throw
/// std::bad_alloc when there is no memory, or was none when a lost text was made.
class ZRConvert {
public:
    static unstruct::ZRString toZRString(const Str& text);
    /// Whether a name lies in no folder, so that what it is given to is listed again.
    static bool isFileName(const Str& name);

    static Str toStr(const unstruct::ZRString& text);

    static int fromBlockType(Block::BlockType type);  ///< the invalid block type
    static Block::BlockType toBlockType(int zrType);  ///< INVALID_BLOCK, without a message
    static int fromElementType(ElementBlock::ElementType type);  ///< unknown
    static ElementBlock::ElementType toElementType(int zrType);  ///< UNKNOWN
    /// Whether a result can be of this type, which UNDEFINED_TYPE is not.
    static bool isResultType(ResultBlock::ResultType type);
    static int fromResultType(ResultBlock::ResultType type);                ///< scalar
    static ResultBlock::ResultType toResultType(int zrType);                ///< SCALAR
    static int fromResultMapping(ResultBlock::ResultMapping type);          ///< unknown
    static ResultBlock::ResultMapping toResultMapping(int zrType);          ///< NODE_MAPPING
    static int fromStrainType(ResultBlock::StrainType type);                ///< none
    static ResultBlock::StrainType toStrainType(int zrType);                ///< NO_STRAIN
    static int fromReferenceType(StateInfoBlock::ReferenceValueType type);  ///< other
    static StateInfoBlock::ReferenceValueType toReferenceType(int zrType);  ///< OTHER
    static int fromItemType(SetBlock::ItemType type);                       ///< undefined
    static SetBlock::ItemType toItemType(int zrType);                       ///< UNDEFINED_ITEMS
    static unstruct::ZRFEMSimulationType fromSimulationType(Database::SimulationType type);
    static Database::SimulationType toSimulationType(unstruct::ZRFEMSimulationType zrType);
    static unstruct::ZRFEMSolutionType fromSolutionType(Database::SolutionType type);
    static Database::SolutionType toSolutionType(unstruct::ZRFEMSolutionType zrType);
};

}  // namespace nuo::zrfx
