// Changed commit records get the checksums that let a reader look into them.
#include "support/CommitRecords.h"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t maxSize, unsigned seed) {
    size = LLVMFuzzerMutate(data, size, maxSize);
    if (seed % 8 == 0) return size;
    std::string bytes(data, data + size);
    ziptest::SealRecords(&bytes);
    std::copy(bytes.begin(), bytes.end(), data);
    return size;
}
