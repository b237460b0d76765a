#pragma once

#include <pybind11/pybind11.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <thread>

#include "NuoCore/PtrRef.h"
#include "NuoCore/Str.h"

namespace nuo::python {

namespace py = pybind11;

/// Lets one thread at a time use a file with all that is reached from it. A thread that has it
/// already is inside the file's progress callback: it gets an exception instead of waiting for
/// itself.
class FileMutex {
public:
    void lock() {
        if (m_owner == std::this_thread::get_id()) {
            throw std::logic_error("a progress callback cannot use the file that calls it");
        }
        m_mutex.lock();
        m_owner = std::this_thread::get_id();
    }
    void unlock() {
        m_owner = std::thread::id();
        m_mutex.unlock();
    }

private:
    std::mutex m_mutex;
    std::atomic<std::thread::id> m_owner{};
};

/// An object of the library as Python holds it. The handles of one file share its mutex.
template <typename T>
struct Handle {
    PtrRef<T> object;
    std::shared_ptr<FileMutex> mutex = std::make_shared<FileMutex>();
};

}  // namespace nuo::python

namespace pybind11::detail {

/// str and nuo::Str. Text ends at a null character in the library, so a str with one is refused.
template <>
struct type_caster<nuo::Str> {
    PYBIND11_TYPE_CASTER(nuo::Str, const_name("str"));

    bool load(handle source, bool) {
        if (!isinstance<str>(source)) return false;
        const std::string utf8 = reinterpret_borrow<str>(source);
        if (utf8.find('\0') != std::string::npos) throw value_error("embedded null character");
        value = nuo::Str(utf8);
        return true;
    }
    static handle cast(const nuo::Str& text, return_value_policy, handle) {
        return str(text.toStdString()).release();
    }
};

}  // namespace pybind11::detail
