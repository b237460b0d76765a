#include "nvf/LogManager.h"

#include <vector>

#include "nvf/Assert.h"
#include "nvf/LogDestinationConsole.h"

namespace nvf {
namespace {

std::mutex& instanceMutex() {
    static std::mutex mutex;
    return mutex;
}

// Kept to the end of the process: static objects of the host may still log when they go.
ref<LogManager>& instanceSlot() {
    static auto* slot = new ref<LogManager>(new LogManager);
    return *slot;
}

bool isBelow(const String& name, const String& ancestor) {
    return ancestor.isEmpty() || name == ancestor ||
           name.text().starts_with(ancestor.text() + L".");
}

}  // namespace

LogManager::LogManager()
    : m_rootLogger(new Logger("", nuo::LL_WARNING, new LogDestinationConsole)) {}

ref<LogManager> LogManager::instance() {
    const std::lock_guard lock(instanceMutex());
    return instanceSlot();
}

void LogManager::setInstance(ref<LogManager> manager) {
    const std::lock_guard lock(instanceMutex());
    if (manager) std::swap(instanceSlot(), manager);
}

ref<Logger> LogManager::logger(const String& name) {
    const std::lock_guard lock(m_mutex);
    return findOrCreate(name);
}

void LogManager::setLevelBelow(const String& name, LogLevel level) {
    const ref<Logger> top = name.isEmpty() ? m_rootLogger : logger(name);
    top->setLevel(level);
    const std::lock_guard lock(m_mutex);
    for (auto& [loggerName, existing] : m_loggers) {
        if (isBelow(loggerName, name)) existing->setLevel(level);
    }
}

void LogManager::setDestination(ref<LogDestination> destination) {
    if (destination.isNull()) destination = new LogDestinationConsole;
    // Let go after the lock: the destructor of a destination may itself log.
    std::vector<ref<LogDestination>> replaced;
    const std::lock_guard lock(m_mutex);
    replaced.push_back(m_rootLogger->setDestination(destination));
    for (auto& [name, existing] : m_loggers) {
        replaced.push_back(existing->setDestination(destination));
    }
}

ref<Logger> LogManager::findOrCreate(const String& name) {
    if (const auto found = m_loggers.find(name); found != m_loggers.end()) return found->second;
    const std::size_t lastDot = name.text().rfind(L'.');
    const ref<Logger> parentLogger = lastDot == std::wstring::npos
                                         ? m_rootLogger
                                         : findOrCreate(String(name.text().substr(0, lastDot)));
    NVF_ASSERT(parentLogger.notNull());
    return m_loggers[name] = new Logger(name, parentLogger->level(), parentLogger->destination());
}

// Every block asks for its logger, so the names are made once.
ref<Logger> interfaceLogger() {
    static const String name("nuo.comp.zrfx");
    return LogManager::instance()->logger(name);
}

ref<Logger> archiveLogger() {
    static const String name("nuo.nvf.unstruct.zrfx");
    return LogManager::instance()->logger(name);
}

}  // namespace nvf
