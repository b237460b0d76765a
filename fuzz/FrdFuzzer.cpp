// A CalculiX result file of any bytes, imported as `zrfx import` does. What comes of it must open.
#include <filesystem>
#include <fstream>

#include "ReadEverything.h"
#include "frd/FrdImport.h"
#include "frd/FrdReader.h"

namespace {

using tools::FrdImport;
using tools::FrdReader;

// Reads to the end, or to what cannot be imported.
bool readAll(FrdReader& reader, FrdImport& import) {
    for (;;) {
        switch (reader.next()) {
            case FrdReader::NODES:
                if (!import.addNodes(reader.nodes())) return false;
                break;
            case FrdReader::ELEMENTS:
                if (!import.addElements(reader.elements())) return false;
                break;
            case FrdReader::RESULT:
                if (!import.addResult(reader.result(), reader.header())) return false;
                break;
            case FrdReader::DAMAGE:
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
    FrdReader reader;
    fuzz::require(reader.open(input));
    FrdImport::Target target;
    target.file = output;
    target.name = "fuzz";
    {
        FrdImport import(target);
        const bool isFinished =
            readAll(reader, import) && import.hasMesh() && import.finish(reader.header());
        fuzz::require(!isFinished || fuzz::isWhole(output));
    }
    std::filesystem::remove(input);
    std::filesystem::remove(output);
    return 0;
}
