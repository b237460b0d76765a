// What blocks hold without their data, and parts of their arrays.
#include "Bindings.h"
#include "Buffers.h"
#include "Call.h"
#include "Names.h"

namespace nuo::python {
namespace {

using zrfx::Block;
using zrfx::BlockSummary;
using zrfx::Database;
using zrfx::ElementBlock;

py::tuple readSummary(const DatabaseHandle& handle, const std::string& type, int id) {
    const auto blockType = fromName(type, &Block::blockTypeName);
    BlockSummary summary;
    call(handle, [&](Database& d) { return d.readSummary(blockType, id, &summary); });
    return py::make_tuple(summary.itemCount, summary.elementNodeCount, summary.surfaceCount,
                          summary.dimension, summary.hasIds, summary.targetBlockId,
                          summary.refersNodesByIds);
}

// The name of the type, its number of nodes, 0 where it varies, and the number of elements.
py::list readGroupSizes(const DatabaseHandle& handle, int id) {
    std::vector<zrfx::ElementGroupSize> sizes;
    call(handle, [&](Database& d) {
        sizes = d.elementGroupSizes(id);
        return !d.lastError();
    });
    py::list groups;
    for (const zrfx::ElementGroupSize& size : sizes) {
        const bool isFixed =
            size.type != ElementBlock::POLYHEDRONS && size.type != ElementBlock::UNKNOWN;
        groups.append(py::make_tuple(nameOf(size.type, &ElementBlock::elementTypeName),
                                     isFixed ? ElementBlock::nodesPerElement(size.type) : 0,
                                     size.elementCount));
    }
    return groups;
}

// Reads as many items as the array takes.
template <typename T, bool (Database::*read)(int, std::size_t, Span<T>)>
void readPart(const DatabaseHandle& handle, int id, std::size_t first, const py::object& target) {
    const Output<T> array(target);
    call(handle, [&](Database& d) { return (d.*read)(id, first, array.items()); });
}

template <bool (Database::*read)(int, std::size_t, std::size_t, Span<int>)>
void readGroupPart(const DatabaseHandle& handle, int id, std::size_t group, std::size_t first,
                   const py::object& target) {
    const Output<int> array(target);
    call(handle, [&](Database& d) { return (d.*read)(id, group, first, array.items()); });
}

}  // namespace

void bindParts(DatabaseClass& database) {
    database.def("summary", &readSummary)
        .def("group_sizes", &readGroupSizes)
        .def("read_coordinates", &readPart<float, &Database::readCoordinates>)
        .def("read_node_ids", &readPart<int, &Database::readNodeIds>)
        .def("read_element_nodes", &readGroupPart<&Database::readElementNodes>)
        .def("read_element_ids", &readGroupPart<&Database::readElementIds>)
        .def("read_result_values", &readPart<float, &Database::readResultValues>)
        .def("read_item_ids", &readPart<int, &Database::readMapToItemIds>);
}

}  // namespace nuo::python
