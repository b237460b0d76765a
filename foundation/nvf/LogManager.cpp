#include "nvf/LogManager.h"

#include <new>
#include <vector>

#include "nvf/Assert.h"
#include "nvf/LogDestinationConsole.h"

namespace nvf {
namespace {

std::mutex& instanceMutex() {
    static std::mutex mutex;
    return mutex;
}

// Never destroyed itself: static objects of the host may still log when they go.
ref<LogManager>& instanceSlot() {
    static union Slot {
        ref<LogManager> manager;
        Slot() : manager() {}
        ~Slot() {}
    } slot;
    return slot.manager;
}

// There is a manager as soon as the library is loaded, since memory may be missing later, and it
// goes with the library. One that is asked for after that stays to the end of the process.
struct ManagerOfLoadedLibrary {
    ManagerOfLoadedLibrary() { LogManager::instance(); }
    ~ManagerOfLoadedLibrary() {
        ref<LogManager> last;
        const std::lock_guard lock(instanceMutex());
        std::swap(last, instanceSlot());
    }
};
const ManagerOfLoadedLibrary s_managerOfLoadedLibrary;

// Every block asks for its logger, so the names are made once.
const String& interfaceName() {
    static const String name("nuo.comp.zrfx");
    return name;
}

const String& archiveName() {
    static const String name("nuo.nvf.unstruct.zrfx");
    return name;
}

// Where there is no memory to make a logger, the root logs in its place.
ref<Logger> loggerOrRoot(const String& (*name)()) {
    const ref<LogManager> manager = LogManager::instance();
    try {
        return manager->logger(name());
    } catch (const std::bad_alloc&) {
        return manager->rootLogger();
    }
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
    ref<LogManager>& slot = instanceSlot();
    if (slot.isNull()) slot = new LogManager;
    return slot;
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
    replaced.reserve(m_loggers.size() + 1);
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
    const ref<Logger> made = new Logger(name, parentLogger->level(), parentLogger->destination());
    return m_loggers.emplace(name, made).first->second;
}

ref<Logger> interfaceLogger() {
    return loggerOrRoot(interfaceName);
}

ref<Logger> archiveLogger() {
    return loggerOrRoot(archiveName);
}

}  // namespace nvf
