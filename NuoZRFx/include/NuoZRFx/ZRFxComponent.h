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

    /// How many threads one operation of the process may take to pack and unpack large arrays, the
    /// caller's own among them: 0, which is the default, for as many as the processors that the
    /// process may run on; 1 for the caller's alone. FileSettings::threads and File::setThreads
    /// lower it for one file. Holds for operations that begin later; may be called at any time,
    /// from any thread, also before initialization.
    ///
    /// A program that runs a process on each core, as one under MPI does, sets 1, unless each
    /// process is bound to cores of its own: then 0 gives it those. The threads are started when
    /// they are first needed, and end when the process exits or the library is unloaded. After a
    /// fork, a child starts its own.
    static void setThreads(int threads);

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
