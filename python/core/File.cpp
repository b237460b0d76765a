#include <pybind11/stl.h>

#include <optional>

#include "Bindings.h"
#include "Call.h"

namespace nuo::python {
namespace {

using zrfx::Case;
using zrfx::Database;
using zrfx::File;
using zrfx::FileSettings;

FileHandle newFile() {
    return {new File};
}

FileSettings settingsOf(const py::dict& options) {
    FileSettings settings;
    settings.binary = options["binary"].cast<bool>();
    settings.digitallySigned = options["signed"].cast<bool>();
    settings.compressionLevel = options["level"].cast<int>();
    settings.significantDigits = options["digits"].cast<int>();
    settings.threads = options["threads"].cast<int>();
    settings.vendorName = options["vendor"].cast<Str>();
    settings.applicationName = options["application"].cast<Str>();
    settings.password = options["password"].cast<Str>();
    return settings;
}

py::dict readSettings(const FileHandle& handle) {
    const FileSettings settings = ask(handle, [](File& file) {
        const FileSettings* found = file.settings();
        return found ? *found : FileSettings();
    });
    using py::literals::operator""_a;
    return py::dict("binary"_a = settings.binary, "signed"_a = settings.digitallySigned,
                    "level"_a = settings.compressionLevel, "digits"_a = settings.significantDigits,
                    "vendor"_a = settings.vendorName, "application"_a = settings.applicationName);
}

void create(const FileHandle& handle, const Str& path, const py::dict& options) {
    const FileSettings settings = settingsOf(options);
    call(handle, [&](File& file) { return file.create(path, settings); });
}

void open(const FileHandle& handle, const Str& path, const Str& password) {
    call(handle, [&](File& file) {
        return password.isEmpty() ? file.open(path) : file.open(path, password);
    });
}

void openForAppend(const FileHandle& handle, const Str& path, const Str& password) {
    call(handle, [&](File& file) {
        return password.isEmpty() ? file.openForAppend(path) : file.openForAppend(path, password);
    });
}

bool refresh(const FileHandle& handle) {
    bool isChanged = false;
    call(handle, [&](File& file) { return file.refresh(&isChanged); });
    return isChanged;
}

// Owned by the library, which may let it go without the interpreter's lock, or after the
// interpreter.
std::shared_ptr<py::function> shared(py::function callback) {
    return {new py::function(std::move(callback)), [](py::function* owned) {
                if (!Py_IsInitialized() || _Py_IsFinalizing()) return;
                const py::gil_scoped_acquire lock;
                delete owned;
            }};
}

// An exception stops the operation and is raised by it.
bool goesOn(const py::function& callback, double fraction) {
    const py::gil_scoped_acquire lock;
    try {
        return !callback(fraction).is(py::bool_(false));
    } catch (py::error_already_set&) {
        Messages::keepException(std::current_exception());
        return false;
    }
}

void setProgress(const FileHandle& handle, const std::optional<py::function>& callback) {
    zrfx::ProgressCallback progress;
    if (callback) {
        progress = [owned = shared(*callback)](double done) { return goesOn(*owned, done); };
    }
    ask(handle, [&](File& file) { return file.setProgressCallback(std::move(progress)), true; });
}

template <typename T, typename Get>
py::list handlesOf(const FileHandle& handle, Get get) {
    py::list handles;
    for (PtrRef<T>& object : ask(handle, get)) {
        handles.append(Handle<T>{std::move(object), handle.mutex});
    }
    return handles;
}

py::list databases(const FileHandle& handle) {
    return handlesOf<Database>(handle, [](File& file) {
        std::vector<PtrRef<Database>> found;
        for (Database& database : file.databases()) found.emplace_back(&database);
        return found;
    });
}

py::list cases(const FileHandle& handle) {
    return handlesOf<Case>(handle, [](File& file) {
        std::vector<PtrRef<Case>> found;
        for (Case& fileCase : file.fileCases()) found.emplace_back(&fileCase);
        return found;
    });
}

std::vector<std::pair<Str, std::size_t>> textNames(File& file) {
    std::vector<std::pair<Str, std::size_t>> names;
    for (std::size_t i = 0; i < file.userTextFileCount(); ++i) {
        names.emplace_back(file.userTextFileName(i), i);
    }
    return names;
}

py::dict texts(const FileHandle& handle) {
    py::dict indices;
    for (const auto& [name, index] : ask(handle, textNames)) indices[py::cast(name)] = index;
    return indices;
}

// False where the file cannot be read either; its message tells the two apart.
bool isEncrypted(const Str& path) {
    const Messages messages;
    const bool isEncrypted = [&] {
        const py::gil_scoped_release released;
        return File::isEncrypted(path);
    }();
    messages.passOn(messages.hasError());
    if (messages.hasError()) messages.raise(zrfx::Error());
    return isEncrypted;
}

}  // namespace

void bindFile(py::module_& module) {
    py::class_<FileHandle>(module, "File")
        .def(py::init(&newFile))
        .def("create", &create)
        .def("open", &open)
        .def("open_for_append", &openForAppend)
        .def("flush",
             [](const FileHandle& handle) { call(handle, [](File& f) { return f.flush(); }); })
        .def("close",
             [](const FileHandle& handle) { call(handle, [](File& f) { return f.close(); }); })
        .def("close_as",
             [](const FileHandle& handle, const Str& path) {
                 call(handle, [&](File& file) { return file.closeAs(path); });
             })
        .def("abandon",
             [](const FileHandle& handle) {
                 ask(handle, [](File& file) { return file.abandon(), true; });
             })
        .def("refresh", &refresh)
        .def("set_progress", &setProgress)
        .def("set_threads",
             [](const FileHandle& handle, int threads) {
                 ask(handle, [&](File& file) { return file.setThreads(threads), true; });
             })
        .def("settings", &readSettings)
        .def("databases", &databases)
        .def("cases", &cases)
        .def("unused_database_id",
             [](const FileHandle& h) {
                 return ask(h, [](File& f) { return f.unusedDatabaseId(); });
             })
        .def("unused_case_id",
             [](const FileHandle& h) {
                 return ask(h, [](File& f) { return f.unusedFileCaseId(); });
             })
        .def("texts", &texts)
        .def("text",
             [](const FileHandle& handle, std::size_t index) {
                 return ask(handle, [&](File& file) { return file.userTextFileContent(index); });
             })
        .def("add_text", [](const FileHandle& handle, const Str& name, const Str& content) {
            call(handle, [&](File& file) { return file.addUserTextFile(name, content); });
        });
    module.def("is_encrypted", &isEncrypted);
    module.def("is_zrfx", [](const Str& path) {
        const py::gil_scoped_release released;
        return File::isZRFxFile(path);
    });
}

}  // namespace nuo::python
