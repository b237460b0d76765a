#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "container/ZRFxCause.h"
#include "container/ZRFxZipRawData.h"
#include "container/ZRFxZipStorage.h"

struct zip;

namespace unstruct {

/// Entries of other programs, packed by methods other than deflate or encrypted in the old way,
/// read through the ZIP library. Used by one thread at a time.
class ZRFxZipLibrary {
public:
    ZRFxZipLibrary() = default;
    ~ZRFxZipLibrary() { Close(); }
    ZRFxZipLibrary(const ZRFxZipLibrary&) = delete;
    ZRFxZipLibrary& operator=(const ZRFxZipLibrary&) = delete;

    /// Opens the archive that the first nSize bytes of the storage are. REQUIRES: they stay as they
    /// are, and the storage outlives the open library.
    bool Open(ZRFxZipStorage* pStorage, uint64_t nSize);
    void Close();
    bool IsOpen() const { return m_pZip != nullptr; }

    /// Reads the entry at nIndex of the directory, whose size is declared as nSize. The buffer
    /// grows with what is unpacked, so that a false size does not cost more than the data is worth.
    /// The password may be empty. The CRC is not checked when bHasCrc is false.
    bool Read(uint64_t nIndex, uint64_t nSize, bool bHasCrc, std::string_view sPassword,
              ZRFxZipRawData* pRaw);

    const ZRFxCause& Error() const { return m_cause; }

private:
    zip* m_pZip = nullptr;
    ZRFxCause m_cause;
};

}  // namespace unstruct
