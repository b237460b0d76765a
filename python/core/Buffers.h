#pragma once

#include <pybind11/pybind11.h>

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "NuoCore/PtrRef.h"
#include "NuoCore/Span.h"

namespace nuo::python {

namespace py = pybind11;

/// What a buffer holds: the code of an item, as the module struct of Python has it.
template <typename T>
constexpr char kFormat = 0;
template <>
inline constexpr char kFormat<float> = 'f';
template <>
inline constexpr char kFormat<int> = 'i';
template <>
inline constexpr char kFormat<unsigned char> = 'B';

/// A read-only array that Python sees through the buffer protocol. It keeps the owner of the memory
/// alive.
class Array {
public:
    /// `data` points into what `owner` keeps.
    template <typename T, typename Object>
    static Array of(PtrRef<Object> owner, Span<const T> data, py::ssize_t rowLength = 0) {
        return Array(std::make_shared<PtrRef<Object>>(std::move(owner)), data, rowLength);
    }

    template <typename T>
    static Array of(std::vector<T> items) {
        auto owner = std::make_shared<std::vector<T>>(std::move(items));
        const auto data = Span<const T>::of(owner->data(), owner->size());
        return Array(std::move(owner), data, 0);
    }

    void reshape(std::vector<py::ssize_t> shape) { m_shape = std::move(shape); }
    py::buffer_info info() const;

private:
    template <typename T>
    Array(std::shared_ptr<const void> owner, Span<const T> data, py::ssize_t rowLength)
        : m_owner(std::move(owner)),
          m_data(data.data()),
          m_format(kFormat<T>),
          m_itemSize(sizeof(T)),
          m_shape{static_cast<py::ssize_t>(data.size())} {
        if (rowLength > 0) m_shape = {m_shape[0] / rowLength, rowLength};
    }

    std::shared_ptr<const void> m_owner;
    const void* m_data;
    char m_format;
    py::ssize_t m_itemSize;
    std::vector<py::ssize_t> m_shape;
};

/// The memory of an object with the buffer protocol, held while this lives. Raises TypeError unless
/// its items are of the format asked for and lie one after the other: nothing is converted here.
class Memory {
public:
    Memory() = default;
    Memory(const py::object& object, char format, bool isWritten);

    std::size_t rows() const { return static_cast<std::size_t>(m_view->shape[0]); }
    std::size_t count() const { return static_cast<std::size_t>(m_view->len / m_view->itemsize); }
    void* data() const { return m_view->buf; }
    bool isNone() const { return !m_view; }

private:
    struct Release {
        void operator()(Py_buffer* view) const {
            PyBuffer_Release(view);
            delete view;
        }
    };
    std::unique_ptr<Py_buffer, Release> m_view;
};

/// An array that is read; none for None.
template <typename T>
class Input {
public:
    explicit Input(const py::object& source)
        : m_memory(source.is_none() ? Memory() : Memory(source, kFormat<T>, false)) {}

    Span<const T> items() const {
        return isNone()
                   ? Span<const T>()
                   : Span<const T>::of(static_cast<const T*>(m_memory.data()), m_memory.count());
    }
    std::size_t rows() const { return isNone() ? 0 : m_memory.rows(); }
    std::size_t rowLength() const { return rows() == 0 ? 0 : m_memory.count() / rows(); }
    bool isNone() const { return m_memory.isNone(); }

private:
    Memory m_memory;
};

/// An array that is filled.
template <typename T>
class Output {
public:
    explicit Output(const py::object& target) : m_memory(target, kFormat<T>, true) {}

    Span<T> items() const {
        return Span<T>::of(static_cast<T*>(m_memory.data()), m_memory.count());
    }

private:
    Memory m_memory;
};

void bindBuffers(py::module_& module);

}  // namespace nuo::python
