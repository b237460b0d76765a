#pragma once

#include "ZRString.h"

namespace unstruct {

/// Where a block is found: a line of the table of contents, or a document in the folder.
struct ZRFxBlockLine {
    int type;
    int id;
    ZRString fileName;  ///< Entry name of the document, whole or relative to the folder.
};

}  // namespace unstruct
