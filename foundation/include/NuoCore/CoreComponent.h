#pragma once

#include "NuoCore/Export.h"

namespace nuo {

class LogManager;

/// Gives the services that exist once in a process.
class NUO_API CoreComponent {
public:
    /// The log manager of the process: never null, usable before anything is initialized.
    static LogManager* logManager();
};

}  // namespace nuo
