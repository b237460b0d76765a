#include "NuoCore/LogManager.h"

#include "NuoCore/CoreComponent.h"
#include "nuo/Convert.h"
#include "nuo/Guard.h"
#include "nvf/LogManager.h"

namespace nuo {
namespace {

// Hands the framework's messages to the destination that the host has installed.
class HostLogDestination : public nvf::LogDestination {
public:
    explicit HostLogDestination(nuo::LogDestination* host) : m_host(host) {}

    void log(const nvf::String& loggerName, LogLevel level, const nvf::String& text,
             const nvf::CodeLocation& location) override {
        m_host->log({level, Convert::toStr(loggerName), Convert::toStr(text),
                     Convert::toStr(location.fileName), Convert::toStr(location.functionName),
                     Convert::toStr(location.prettyFunctionName), location.lineNumber});
    }

private:
    PtrRef<nuo::LogDestination> m_host;
};

}  // namespace

void LogManager::setDestination(LogDestination* destination) {
    const PtrRef<nuo::LogDestination> kept = destination;
    guarded([&] {
        nvf::LogManager::instance()->setDestination(
            kept ? nvf::ref<nvf::LogDestination>(new HostLogDestination(kept.p())) : nullptr);
    });
}

void LogManager::setLevel(const Str& loggerName, LogLevel level) {
    guarded([&] {
        nvf::LogManager::instance()->setLevelBelow(Convert::toNvfString(loggerName), level);
    });
}

LogLevel LogManager::level(const Str& loggerName) const {
    const auto manager = nvf::LogManager::instance();
    const LogLevel rootLevel = manager->rootLogger()->level();
    if (loggerName.isEmpty()) return rootLevel;
    return guarded(rootLevel,
                   [&] { return manager->logger(Convert::toNvfString(loggerName))->level(); });
}

nvf::LogManager* LogManager::internal_nvfLogManager() const {
    return nvf::LogManager::instance().p();
}

LogManager* CoreComponent::logManager() {
    static LogManager manager;
    return &manager;
}

}  // namespace nuo
