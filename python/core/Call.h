#pragma once

#include <utility>

#include "Handle.h"
#include "Messages.h"
#include "NuoZRFx/File.h"

namespace nuo::python {

/// Runs an operation on the object of a handle, alone in its file and without the interpreter's
/// lock, and gives its result. Never hold the interpreter's lock while waiting for a file's.
template <typename T, typename Operation>
auto ask(const Handle<T>& handle, Operation operation) {
    const Messages messages;
    auto result = [&] {
        const py::gil_scoped_release released;
        const std::lock_guard lock(*handle.mutex);
        return operation(*handle.object);
    }();
    messages.passOn(false);
    return result;
}

/// The same for an operation whose result says whether it succeeded: raises the object's error.
template <typename T, typename Operation>
auto call(const Handle<T>& handle, Operation operation) {
    const Messages messages;
    auto [result, error] = [&] {
        const py::gil_scoped_release released;
        const std::lock_guard lock(*handle.mutex);
        auto made = operation(*handle.object);
        zrfx::Error cause = made ? zrfx::Error() : handle.object->lastError();
        return std::pair(std::move(made), std::move(cause));
    }();
    messages.passOn(!result);
    if (!result) messages.raise(error);
    return std::move(result);
}

/// Adds an object to a file by its constructor, which `make` calls. One that could not be added has
/// a negative id and says why.
template <typename T, typename Make>
Handle<T> add(const Handle<zrfx::File>& file, Make make) {
    const Messages messages;
    const PtrRef<T> object = [&] {
        const py::gil_scoped_release released;
        const std::lock_guard lock(*file.mutex);
        return PtrRef<T>(make(*file.object));
    }();
    const bool hasFailed = object->id() < 0;
    messages.passOn(hasFailed);
    if (hasFailed) messages.raise(object->lastError());
    return {object, file.mutex};
}

}  // namespace nuo::python
