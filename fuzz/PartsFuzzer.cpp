// A valid archive around hostile documents and data files, so that checksums hide nothing. The
// input names a sample (one byte) and replaces entries of it: number of the entry (one byte),
// length (two bytes, low first), contents; and so on to its end.
#include <algorithm>
#include <iterator>

#include "ReadEverything.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::vector<test::Entries> kSamples = fuzz::samples();
    if (size == 0) return 0;
    test::Entries entries = kSamples[data[0] % kSamples.size()];
    const std::uint8_t* const end = data + size;
    for (++data; end - data >= 3;) {
        const auto entry =
            std::next(entries.begin(), static_cast<std::ptrdiff_t>(data[0] % entries.size()));
        const std::size_t wanted = data[1] + 256u * data[2];
        data += 3;
        const std::size_t length = std::min(wanted, static_cast<std::size_t>(end - data));
        entry->second.assign(reinterpret_cast<const char*>(data), length);
        data += length;
    }
    const std::string container = fuzz::pack(entries);
    fuzz::readContainer(container.data(), container.size());
    fuzz::readFile(container.data(), container.size());
    return 0;
}
