#include "nuo/Version.h"

namespace nuo {

unsigned int packedVersion() {
    return (NUO_VERSION_MAJOR << 16) | (NUO_VERSION_MINOR << 8) | NUO_VERSION_PATCH;
}

nvf::String versionText() {
    return nvf::String("%1.%2.%3")
        .arg(NUO_VERSION_MAJOR)
        .arg(NUO_VERSION_MINOR)
        .arg(NUO_VERSION_PATCH);
}

}  // namespace nuo
