#pragma once

#include "NuoCore/Export.h"
#include "NuoCore/InitializationOptions.h"

namespace nuo {

/// The core library as the host runs it: make one, and hand it to ZRFxComponent::initialize. The
/// component reads it there and does not keep it.
class NUO_API Instance {
public:
    explicit Instance(const InitializationOptions& options = InitializationOptions());

    /// Version of the core library, major in bits 16 to 23, minor in bits 8 to 15, patch in bits 0
    /// to 7.
    unsigned int version() const;

    const InitializationOptions& initializationOptions() const { return m_options; }

    /// The licence number that the host runs under; 0, the default, means evaluation.
    int licenseNumber() const { return m_licenseNumber; }
    void setLicenseNumber(int number) { m_licenseNumber = number; }

private:
    InitializationOptions m_options;
    int m_licenseNumber = 0;
};

}  // namespace nuo
