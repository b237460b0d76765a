#pragma once

#include <memory>
#include <span>
#include <string>

#include "import/ImportReader.h"

namespace tools {

/// A format that can be imported.
struct ImportFormat {
    const char* extension;
    const char* content;  ///< As in "Makes a ZRFx file of ...".
    const char* limits;   ///< What is read of it, and what is left out.
    bool canBeFollowed;   ///< While a program writes the file.
    bool canHaveDeck;     ///< Whether the deck of a solver says more of it.
    std::unique_ptr<ImportReader> (*makeReader)();
};

/// All formats. The first is the one of files with other extensions.
std::span<const ImportFormat> importFormats();

/// By the extension, in letters of any case.
const ImportFormat& importFormatOf(const std::string& path);

}  // namespace tools
