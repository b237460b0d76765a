// A whole container of any bytes.
#include "ReadEverything.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::readContainer(data, size);
    fuzz::readFile(data, size);
    return 0;
}
