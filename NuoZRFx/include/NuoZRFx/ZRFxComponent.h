#pragma once

#include "NuoCore/Export.h"
#include "NuoCore/Str.h"

namespace nuo {
class Instance;
}

namespace nuo::zrfx {

/// Starts the component and gives its version. All operations are static; initialize the component
/// once, from one thread, before using anything else of it.
///
///     nuo::Instance instance;
///     if (!nuo::zrfx::ZRFxComponent::initialize(&instance)) return 1;
class NUO_API ZRFxComponent {
public:
    /// Takes the instance's settings for failed assertions and licence, and connects the
    /// component's logging to the core's. The instance is not kept. Later calls change nothing and
    /// return true. False after an assertion when `instance` is null, and with a message when there
    /// is no memory; it can then be called again.
    static bool initialize(Instance* instance);

    /// Until this is true, no File can be created or opened.
    static bool isInitialized();

    /// Major in bits 16 to 23, minor in bits 8 to 15, patch in bits 0 to 7.
    static unsigned int version();

    /// For example "3.11.0".
    static Str versionString();

    /// The licence number of the instance given at initialization; 0 before it or without one.
    static int licenseNumber();

    /// Whether the component was initialized without a licence number. Nothing else depends on it.
    static bool isEvaluationVersion();
};

}  // namespace nuo::zrfx
