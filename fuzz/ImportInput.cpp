#include "ImportInput.h"

#include <filesystem>
#include <fstream>

#include "ReadEverything.h"
#include "import/ImportWriter.h"

namespace {

using tools::ImportReader;
using tools::ImportWriter;

// Reads to the end, or to what cannot be imported.
bool readAll(ImportReader& reader, ImportWriter& import) {
    for (;;) {
        switch (reader.next()) {
            case ImportReader::NODES:
                if (!import.addNodes(reader.data().nodes)) return false;
                break;
            case ImportReader::ELEMENTS:
                if (!import.addElements(reader.data().elements)) return false;
                break;
            case ImportReader::RESULT:
                if (!import.addValues(reader.data().values, reader.data().header)) return false;
                break;
            case ImportReader::DAMAGE:
                if (!import.hasMesh()) return true;
                break;
            default:
                return true;
        }
    }
}

}  // namespace

namespace fuzz {

void importInput(ImportReader& reader, const std::uint8_t* data, std::size_t size) {
    initialize();
    static const std::string input = scratchPath("import");
    static const std::string output = scratchPath("zrfx");
    std::ofstream(input, std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    require(reader.open(input));
    ImportWriter::Target target;
    target.file = output;
    target.name = "fuzz";
    {
        ImportWriter import(target);
        const bool isFinished =
            readAll(reader, import) && import.hasMesh() && import.finish(reader.data().header);
        require(!isFinished || isWhole(output));
    }
    std::filesystem::remove(input);
    std::filesystem::remove(output);
}

}  // namespace fuzz
