// A gmsh file of any bytes.
#include "ImportInput.h"
#include "import/gmsh/GmshReader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tools::GmshReader reader;
    fuzz::importInput(reader, data, size);
    return 0;
}
