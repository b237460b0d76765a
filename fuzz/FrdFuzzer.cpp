// A CalculiX result file of any bytes.
#include "ImportInput.h"
#include "import/frd/FrdImporter.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tools::FrdImporter reader;
    fuzz::importInput(reader, data, size);
    return 0;
}
