#pragma once

#include "nvf/SourceLocation.h"
#include "nvf/String.h"

namespace nvf {

/// The place in the source that a message comes from: a value.
struct CodeLocation {
    String fileName;
    String functionName;        ///< Qualified name without result, arguments and template values.
    String prettyFunctionName;  ///< Whole signature.
    int lineNumber = -1;        ///< -1 when unknown.

    CodeLocation() = default;
    CodeLocation(const SourceLocation& where);
    CodeLocation(const String& file, const String& function, const String& prettyFunction,
                 int line);
};

}  // namespace nvf
