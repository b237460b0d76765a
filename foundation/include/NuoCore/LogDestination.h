#pragma once

#include "NuoCore/Export.h"
#include "NuoCore/LogMessage.h"
#include "NuoCore/RefCountedObject.h"

namespace nuo {

/// Receives the library's messages; derive from it to show or store them, and install it with
/// LogManager::setDestination. Messages may come from every thread that uses the library, several
/// at once.
///
///     class ToStatusBar : public nuo::LogDestination {
///         void log(const nuo::LogMessage& message) override { show(message.text); }
///     };
///     nuo::CoreComponent::logManager()->setDestination(new ToStatusBar);
class NUO_API LogDestination : public RefCountedObject {
public:
    /// Takes one message, which is gone after the call. Must not throw.
    virtual void log(const LogMessage& message) = 0;
};

}  // namespace nuo
