#include "Messages.h"

#include <pybind11/pybind11.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "NuoCore/NuoCore.h"
#include "NuoZRFx/ZRFxComponent.h"

namespace nuo::python {
namespace {

namespace py = pybind11;

thread_local Messages* t_messages = nullptr;

int pythonLevel(LogLevel level) {
    switch (level) {
        case LL_ERROR:
            return 40;
        case LL_WARNING:
            return 30;
        case LL_INFO:
            return 20;
        default:
            return 10;
    }
}

void logInPython(int level, const Str& text) {
    try {
        py::module_::import("logging").attr("getLogger")("zrfx").attr("log")(level, "%s",
                                                                             text.toStdString());
    } catch (py::error_already_set& error) {
        error.discard_as_unraisable("zrfx: passing a message on");
    } catch (const std::exception&) {
        // No memory for the message.
    }
}

class PythonDestination : public LogDestination {
    void log(const LogMessage& message) override {
        if (t_messages) return t_messages->add(message);
        if (!Py_IsInitialized() || _Py_IsFinalizing()) return;
        const py::gil_scoped_acquire lock;
        logInPython(pythonLevel(message.level), message.text);
    }
};

}  // namespace

Messages::Messages() : m_outer(t_messages) {
    t_messages = this;
}

Messages::~Messages() {
    t_messages = m_outer;
}

void Messages::add(const LogMessage& message) noexcept {
    try {
        m_messages.push_back(message);
    } catch (const std::bad_alloc&) {
        // The operation's error tells of it.
    }
}

void Messages::keepException(std::exception_ptr exception) noexcept {
    if (t_messages) t_messages->m_exception = std::move(exception);
}

void Messages::passOn(bool hasFailed) const {
    for (const LogMessage& message : m_messages) {
        const bool isRaised = hasFailed && message.level == LL_ERROR;
        logInPython(pythonLevel(isRaised ? LL_DEBUG : message.level), message.text);
    }
    if (m_exception) std::rethrow_exception(m_exception);
}

const LogMessage* Messages::firstError() const {
    const auto isError = [](const LogMessage& message) { return message.level == LL_ERROR; };
    const auto first = std::find_if(m_messages.begin(), m_messages.end(), isError);
    return first == m_messages.end() ? nullptr : &*first;
}

void Messages::raise(const zrfx::Error& error) const {
    Str text = error.text();
    if (!error) text = hasError() ? firstError()->text : Str("The operation has failed");
    const auto code = error ? error.code() : zrfx::Error::INVALID_ARGUMENT;
    py::module_::import("zrfx.errors")
        .attr("raise_error")(zrfx::Error::codeName(code), text.toStdString());
    throw std::logic_error("zrfx.errors.raise_error has returned");
}

void initializeLibrary() {
    if (zrfx::ZRFxComponent::isInitialized()) return;
    logToPython();
    Instance instance;
    if (!zrfx::ZRFxComponent::initialize(&instance)) throw std::bad_alloc();
}

void logToPython() {
    CoreComponent::logManager()->setDestination(new PythonDestination);
}

}  // namespace nuo::python
