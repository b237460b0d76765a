#pragma once

#include <cstddef>

#include "LastError_p.h"
#include "container/ZRFxZipRawData.h"

namespace nuo::zrfx {

/// Whether an array fits a data file, which holds less than 4 GiB; reports it where not.
inline bool fitsDataFile(const char* operation, std::size_t count, std::size_t itemSize) {
    return count <= unstruct::ZRFxZipRawData::kMaxLength / itemSize ||
           failBecause(nvf::Reason::TOO_LARGE,
                       "%1: %2 items of %3 bytes are more than a file can hold in one array, which "
                       "is less than 4 GiB",
                       operation, count, itemSize);
}

}  // namespace nuo::zrfx
