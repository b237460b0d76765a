// A CalculiX result file of any bytes, imported as `zrfx import` does. What comes of it must open.
#include <filesystem>
#include <fstream>

#include "ReadEverything.h"
#include "import/ImportWriter.h"
#include "import/frd/FrdImporter.h"

namespace {

using tools::FrdImporter;
using tools::ImportWriter;

// Reads to the end, or to what cannot be imported.
bool readAll(FrdImporter& reader, ImportWriter& import) {
    for (;;) {
        switch (reader.next()) {
            case FrdImporter::NODES:
                if (!import.addNodes(reader.data().nodes)) return false;
                break;
            case FrdImporter::ELEMENTS:
                if (!import.addElements(reader.data().elements)) return false;
                break;
            case FrdImporter::RESULT:
                if (!import.addValues(reader.data().values, reader.data().header)) return false;
                break;
            case FrdImporter::DAMAGE:
                if (!import.hasMesh()) return true;
                break;
            default:
                return true;
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::initialize();
    static const std::string input = fuzz::scratchPath("frd");
    static const std::string output = fuzz::scratchPath("zrfx");
    std::ofstream(input, std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    FrdImporter reader;
    fuzz::require(reader.open(input));
    ImportWriter::Target target;
    target.file = output;
    target.name = "fuzz";
    {
        ImportWriter import(target);
        const bool isFinished =
            readAll(reader, import) && import.hasMesh() && import.finish(reader.data().header);
        fuzz::require(!isFinished || fuzz::isWhole(output));
    }
    std::filesystem::remove(input);
    std::filesystem::remove(output);
    return 0;
}
