#include "container/ZRFxCause.h"

#include <cerrno>
#include <system_error>

namespace unstruct {
namespace {

nvf::Reason ReasonOf(int nError) {
    switch (nError) {
        case ENOENT:
        case ENOTDIR:
            return nvf::Reason::NOT_FOUND;
        case EISDIR:
        case ENXIO:
        case ENODEV:
            return nvf::Reason::NO_REGULAR_FILE;
        case EACCES:
        case EPERM:
        case EROFS:
            return nvf::Reason::NO_PERMISSION;
        case ENOSPC:
        case EDQUOT:
        case EFBIG:
            return nvf::Reason::DISK_FULL;
        case ENOMEM:
            return nvf::Reason::OUT_OF_MEMORY;
        default:
            return nvf::Reason::SYSTEM_ERROR;
    }
}

}  // namespace

ZRFxCause ZRFxCause::System(const std::string& sWhat) {
    const int nError = errno;
    return {sWhat + ": " + std::generic_category().message(nError), ReasonOf(nError)};
}

}  // namespace unstruct
