#include "container/ZRFxZipLibrary.h"

#include <string.h>
#include <zip.h>

#include <algorithm>
#include <cerrno>

#include "container/ZRFxZipMemFile.h"

namespace unstruct {
namespace {

// A read-only source of the ZIP library over a storage.
struct Source {
    ZRFxZipStorage* pStorage;
    uint64_t nSize;
    uint64_t nPosition = 0;
    zip_error_t error{};
};

zip_int64_t Stat(const Source& source, void* pData) {
    zip_stat_t* pStat = static_cast<zip_stat_t*>(pData);
    zip_stat_init(pStat);
    pStat->size = source.nSize;
    pStat->valid = ZIP_STAT_SIZE;
    return sizeof(*pStat);
}

zip_int64_t Read(Source* pSource, void* pData, zip_uint64_t nLength) {
    const uint64_t nLeft = pSource->nSize - pSource->nPosition;
    const size_t nPart = static_cast<size_t>(std::min<uint64_t>(nLength, nLeft));
    if (!pSource->pStorage->Read(pSource->nPosition, pData, nPart)) {
        zip_error_set(&pSource->error, ZIP_ER_READ, EIO);
        return -1;
    }
    pSource->nPosition += nPart;
    return static_cast<zip_int64_t>(nPart);
}

zip_int64_t Seek(Source* pSource, void* pData, zip_uint64_t nLength) {
    const zip_int64_t nOffset = zip_source_seek_compute_offset(pSource->nPosition, pSource->nSize,
                                                               pData, nLength, &pSource->error);
    if (nOffset < 0) return -1;
    pSource->nPosition = static_cast<uint64_t>(nOffset);
    return 0;
}

zip_int64_t Handle(void* pUser, void* pData, zip_uint64_t nLength, zip_source_cmd_t eCommand) {
    Source* pSource = static_cast<Source*>(pUser);
    switch (eCommand) {
        case ZIP_SOURCE_OPEN:
            pSource->nPosition = 0;
            return 0;
        case ZIP_SOURCE_CLOSE:
            return 0;
        case ZIP_SOURCE_STAT:
            return Stat(*pSource, pData);
        case ZIP_SOURCE_READ:
            return Read(pSource, pData, nLength);
        case ZIP_SOURCE_SEEK:
            return Seek(pSource, pData, nLength);
        case ZIP_SOURCE_TELL:
            return static_cast<zip_int64_t>(pSource->nPosition);
        case ZIP_SOURCE_ERROR:
            return zip_error_to_data(&pSource->error, pData, nLength);
        case ZIP_SOURCE_FREE:
            delete pSource;
            return 0;
        case ZIP_SOURCE_SUPPORTS:
            return zip_source_make_command_bitmap(ZIP_SOURCE_OPEN, ZIP_SOURCE_CLOSE,
                                                  ZIP_SOURCE_STAT, ZIP_SOURCE_READ, ZIP_SOURCE_SEEK,
                                                  ZIP_SOURCE_TELL, ZIP_SOURCE_ERROR,
                                                  ZIP_SOURCE_FREE, ZIP_SOURCE_SUPPORTS, -1);
        default:
            zip_error_set(&pSource->error, ZIP_ER_OPNOTSUPP, 0);
            return -1;
    }
}

}  // namespace

bool ZRFxZipLibrary::Open(ZRFxZipStorage* pStorage, uint64_t nSize) {
    Close();
    zip_error_t error;
    zip_error_init(&error);
    Source* pUser = new Source{pStorage, nSize};
    zip_source_t* pSource = zip_source_function_create(Handle, pUser, &error);
    if (!pSource) delete pUser;
    if (pSource) m_pZip = zip_open_from_source(pSource, ZIP_RDONLY, &error);
    if (pSource && !m_pZip) zip_source_free(pSource);
    if (!m_pZip) m_cause = zip_error_strerror(&error);
    zip_error_fini(&error);
    return m_pZip != nullptr;
}

void ZRFxZipLibrary::Close() {
    if (m_pZip) zip_discard(m_pZip);
    m_pZip = nullptr;
}

bool ZRFxZipLibrary::Read(uint64_t nIndex, uint64_t nSize, bool bHasCrc, std::string_view sPassword,
                          ZRFxZipRawData* pRaw) {
    std::string sTerminated(sPassword);
    zip_file_t* pFile = zip_fopen_index_encrypted(
        m_pZip, nIndex, 0, sTerminated.empty() ? nullptr : sTerminated.c_str());
    explicit_bzero(sTerminated.data(), sTerminated.size());
    if (!pFile) {
        m_cause = zip_strerror(m_pZip);
        return false;
    }
    ZRFxZipMemFile data;
    uint8_t aPart[1 << 16];
    zip_int64_t nRead = 0;
    while ((nRead = zip_fread(pFile, aPart, sizeof(aPart))) > 0) {
        if (data.Length() + static_cast<uint64_t>(nRead) > nSize) break;
        if (!data.Append(aPart, static_cast<size_t>(nRead))) break;
    }
    // The sum is compared when all has been read.
    if (nRead < 0 && !bHasCrc && zip_error_code_zip(zip_file_get_error(pFile)) == ZIP_ER_CRC) {
        nRead = 0;
    }
    const bool bWhole = nRead == 0 && data.Length() == nSize;
    if (!bWhole)
        m_cause = nRead < 0 ? zip_file_strerror(pFile) : "the size is not the declared one";
    zip_fclose(pFile);
    return bWhole && data.Detach(pRaw);
}

}  // namespace unstruct
