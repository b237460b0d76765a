#include "NuoCore/Instance.h"

#include "nuo/Version.h"

namespace nuo {

Instance::Instance(const InitializationOptions& options) : m_options(options) {}

unsigned int Instance::version() const {
    return packedVersion();
}

}  // namespace nuo
