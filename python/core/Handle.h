#pragma once

#include <pybind11/pybind11.h>

#include <memory>
#include <mutex>

#include "NuoCore/PtrRef.h"
#include "NuoCore/Str.h"

namespace nuo::python {

namespace py = pybind11;

/// An object of the library as Python holds it. One thread at a time may use a file with all that
/// is reached from it, so the handles of one file share its mutex.
template <typename T>
struct Handle {
    PtrRef<T> object;
    std::shared_ptr<std::mutex> mutex = std::make_shared<std::mutex>();
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
