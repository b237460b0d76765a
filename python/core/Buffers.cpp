#include "Buffers.h"

namespace nuo::python {
namespace {

std::vector<py::ssize_t> contiguousStrides(const std::vector<py::ssize_t>& shape,
                                           py::ssize_t itemSize) {
    std::vector<py::ssize_t> strides(shape.size(), itemSize);
    for (std::size_t i = shape.size(); i-- > 1;) strides[i - 1] = strides[i] * shape[i];
    return strides;
}

// Where int is long, both codes stand for it; a byte order may be given.
bool hasFormat(const py::buffer_info& info, char format, py::ssize_t itemSize) {
    const std::string codes = format == 'i' ? "il" : std::string(1, format);
    const bool isNative = info.format.size() == 1 || info.format.find_first_of("@=<") == 0;
    return isNative && info.itemsize == itemSize && info.format.size() <= 2 &&
           codes.find(info.format.back()) != std::string::npos;
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

template <typename T>
Input<T>::Input(const py::object& source) : m_isNone(source.is_none()) {
    if (m_isNone) return;
    m_info = py::reinterpret_borrow<py::buffer>(source).request();
    const auto size = static_cast<py::ssize_t>(sizeof(T));
    const bool isContiguous =
        m_info.size == 0 || m_info.strides == contiguousStrides(m_info.shape, size);
    if (m_info.ndim == 0 || !hasFormat(m_info, kFormat<T>, size) || !isContiguous) {
        throw py::type_error(std::string("needs a C-contiguous array of format '") + kFormat<T> +
                             "', not of '" + m_info.format + "'");
    }
    m_data = static_cast<const T*>(m_info.ptr);
    m_count = static_cast<std::size_t>(m_info.size);
    m_rows = static_cast<std::size_t>(m_info.shape[0]);
}

template class Input<float>;
template class Input<int>;
template class Input<unsigned char>;

void bindBuffers(py::module_& module) {
    py::class_<Array>(module, "Array", py::buffer_protocol()).def_buffer([](const Array& array) {
        return array.info();
    });
}

}  // namespace nuo::python
