#include "import/ImportFormats.h"

#include <strings.h>

#include <algorithm>
#include <filesystem>

#include "import/frd/FrdImporter.h"
#include "import/gmsh/GmshReader.h"

namespace tools {
namespace {

template <typename Reader>
std::unique_ptr<ImportReader> make() {
    return std::make_unique<Reader>();
}

constexpr ImportFormat kFormats[] = {
    {".frd", "the results of CalculiX", "text or binary; results at elements are left out", true,
     true, make<FrdImporter>},
    {".msh", "a mesh of gmsh with its views",
     "text of version 2 or 4.1; boundary elements in no physical group are left out", false, false,
     make<GmshReader>},
};

}  // namespace

std::span<const ImportFormat> importFormats() {
    return kFormats;
}

const ImportFormat& importFormatOf(const std::string& path) {
    const std::string extension = std::filesystem::path(path).extension().string();
    const auto found = std::ranges::find_if(kFormats, [&](const ImportFormat& format) {
        return strcasecmp(format.extension, extension.c_str()) == 0;
    });
    return found == std::end(kFormats) ? kFormats[0] : *found;
}

}  // namespace tools
