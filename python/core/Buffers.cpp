#include "Buffers.h"

#include <cstring>

namespace nuo::python {
namespace {

std::vector<py::ssize_t> contiguousStrides(const std::vector<py::ssize_t>& shape,
                                           py::ssize_t itemSize) {
    std::vector<py::ssize_t> strides(shape.size(), itemSize);
    for (std::size_t i = shape.size(); i-- > 1;) strides[i - 1] = strides[i] * shape[i];
    return strides;
}

// All items of arrays have 4 bytes, but for bytes. Where int is long, both codes stand for it; a
// byte order may be given.
bool hasFormat(const Py_buffer& view, char format) {
    const char* own = view.format ? view.format : "B";
    if (*own != '\0' && std::strchr("@=<", *own)) ++own;
    const bool isCode = *own == format || (format == 'i' && *own == 'l');
    return isCode && own[1] == '\0' && view.itemsize == (format == 'B' ? 1 : 4);
}

std::string needed(char format) {
    return std::string("needs a C-contiguous array of format '") + format + "'";
}

}  // namespace

py::buffer_info Array::info() const {
    static const char nothing = 0;
    return {const_cast<void*>(m_data ? m_data : &nothing),
            m_itemSize,
            std::string(1, m_format),
            static_cast<py::ssize_t>(m_shape.size()),
            m_shape,
            contiguousStrides(m_shape, m_itemSize),
            true};
}

Memory::Memory(const py::object& object, char format, bool isWritten) {
    auto view = std::make_unique<Py_buffer>();
    const int flags = PyBUF_C_CONTIGUOUS | PyBUF_FORMAT | (isWritten ? PyBUF_WRITABLE : 0);
    if (PyObject_GetBuffer(object.ptr(), view.get(), flags) != 0) {
        py::raise_from(PyExc_TypeError, needed(format).c_str());
        throw py::error_already_set();
    }
    m_view.reset(view.release());
    if (m_view->ndim > 0 && hasFormat(*m_view, format)) return;
    const char* own = m_view->format ? m_view->format : "B";
    throw py::type_error(needed(format) + ", not of '" + own + "'");
}

void bindBuffers(py::module_& module) {
    py::class_<Array>(module, "Array", py::buffer_protocol()).def_buffer([](const Array& array) {
        return array.info();
    });
}

}  // namespace nuo::python
