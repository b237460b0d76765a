// Nodes and elements.
#include "Bindings.h"
#include "Buffers.h"
#include "Call.h"
#include "Names.h"

namespace nuo::python {
namespace {

using zrfx::Database;
using zrfx::ElementBlock;
using zrfx::NodeBlock;

template <typename Block>
py::object idsOf(const PtrRef<Block>& block, Span<const int> ids, bool hasIds) {
    return hasIds ? py::cast(Array::of(block, ids)) : py::none();
}

py::tuple readNodes(const DatabaseHandle& handle, int id) {
    const auto nodes = call(handle, [&](Database& d) { return d.read<NodeBlock>(id); });
    return py::make_tuple(Array::of(nodes, nodes->coordinates(), 3),
                          idsOf(nodes, nodes->ids(), nodes->hasNodeIds()));
}

void writeNodes(const DatabaseHandle& handle, int id, const py::object& xyz,
                const py::object& ids) {
    const Input<float> coordinates(xyz);
    const Input<int> nodeIds(ids);
    call(handle, [&](Database& database) {
        const PtrRef<NodeBlock> block = new NodeBlock(id, !nodeIds.isNone());
        const bool isEmpty = coordinates.items().empty();
        return (isEmpty || block->setNodeData(coordinates.items(), nodeIds.items())) &&
               database.writeBlock(block.p());
    });
}

using GroupArray = bool (ElementBlock::*)(std::size_t, std::vector<int>*) const;

Array copyOf(const ElementBlock& block, std::size_t group, GroupArray array) {
    std::vector<int> items;
    if (!(block.*array)(group, &items)) throw std::bad_alloc();
    return Array::of(std::move(items));
}

py::object polyhedronsOf(const ElementBlock& block, std::size_t group) {
    if (block.elementGroupType(group) != ElementBlock::POLYHEDRONS) return py::none();
    return py::make_tuple(copyOf(block, group, &ElementBlock::polyhedronsElementNodeCounts),
                          copyOf(block, group, &ElementBlock::polyhedronsFaceCounts),
                          copyOf(block, group, &ElementBlock::polyhedronsFaceNodeCounts),
                          copyOf(block, group, &ElementBlock::polyhedronsLocalNodes));
}

py::tuple groupOf(const PtrRef<ElementBlock>& block, std::size_t group) {
    const auto type = block->elementGroupType(group);
    const bool isPolyhedrons = type == ElementBlock::POLYHEDRONS;
    // Types that are not public have as many nodes as the file says.
    const std::size_t count = isPolyhedrons ? 0 : block->elementGroupElementCount(group);
    const auto perElement = count == 0 ? ElementBlock::nodesPerElement(type)
                                       : block->elementGroupElementNodeCount(group) / count;
    Array nodes = Array::of(block, block->elementGroupNodes(group),
                            isPolyhedrons ? 0 : static_cast<py::ssize_t>(perElement));
    return py::make_tuple(nameOf(type, &ElementBlock::elementTypeName), nodes,
                          idsOf(block, block->elementGroupIds(group), block->hasElementIds()),
                          copyOf(*block, group, &ElementBlock::elementIndices),
                          polyhedronsOf(*block, group));
}

py::tuple readElements(const DatabaseHandle& handle, int id) {
    const auto block = call(handle, [&](Database& d) { return d.read<ElementBlock>(id); });
    py::list groups;
    for (std::size_t g = 0; g < block->elementGroupCount(); ++g) groups.append(groupOf(block, g));
    return py::make_tuple(block->nodeBlockId(), block->referNodesByIds(), groups);
}

// The elements of one type that a caller gives: an array of nodes, or lists of faces.
struct Group {
    ElementBlock::ElementType type;
    Input<int> nodes;
    Input<int> ids;
    std::vector<std::vector<std::vector<int>>> polyhedrons;

    explicit Group(const py::tuple& group)
        : type(fromName(group[0].cast<std::string>(), &ElementBlock::elementTypeName)),
          nodes(isFaces() ? py::none() : py::object(group[1])),
          ids(group[2]) {
        if (isFaces()) takeFaces(group[1]);
    }
    bool isFaces() const { return type == ElementBlock::POLYHEDRONS; }

    bool addTo(ElementBlock& block) const {
        if (!isFaces()) {
            return block.addElementData(type, nodes.items().data(), nodes.rows(),
                                        ids.items().data());
        }
        for (std::size_t i = 0; i < polyhedrons.size(); ++i) {
            if (!block.addPolyhedron(polyhedrons[i], ids.isNone() ? -1 : ids.items()[i])) {
                return false;
            }
        }
        return true;
    }

    // What the block would read beyond the caller's memory is refused here.
    void check() const {
        const std::size_t elements = isFaces() ? polyhedrons.size() : nodes.rows();
        if (!ids.isNone() && ids.rows() != elements) {
            throw py::value_error("there must be one id per element");
        }
        if (!isFaces() && elements > 0 &&
            nodes.rowLength() != ElementBlock::nodesPerElement(type)) {
            throw py::value_error("elements of type " +
                                  nameOf(type, &ElementBlock::elementTypeName) + " have " +
                                  std::to_string(ElementBlock::nodesPerElement(type)) +
                                  " nodes, not " + std::to_string(nodes.rowLength()));
        }
    }

private:
    void takeFaces(const py::handle& elements) {
        for (const py::handle element : elements) {
            auto& faces = polyhedrons.emplace_back();
            for (const py::handle face : element) {
                auto& corners = faces.emplace_back();
                for (const py::handle node : face) corners.push_back(node.cast<int>());
            }
        }
    }
};

void writeElements(const DatabaseHandle& handle, int id, int nodeBlockId, bool byIds,
                   const py::list& given) {
    std::vector<Group> groups;
    groups.reserve(given.size());
    bool hasIds = false;
    for (const py::handle group : given) {
        groups.emplace_back(group.cast<py::tuple>());
        groups.back().check();
        hasIds = hasIds || !groups.back().ids.isNone();
    }
    call(handle, [&](Database& database) {
        const PtrRef<ElementBlock> block = new ElementBlock(id, hasIds, byIds);
        block->setNodeBlockId(nodeBlockId);
        for (const Group& group : groups) {
            if (!group.addTo(*block)) return false;
        }
        return database.writeBlock(block.p());
    });
}

// Nodes, 0 where they vary, and surfaces of an element of each type.
py::dict elementTypes() {
    py::dict types;
    for (int i = ElementBlock::POINTS; i < ElementBlock::UNKNOWN; ++i) {
        const auto type = static_cast<ElementBlock::ElementType>(i);
        const bool isFixed = type != ElementBlock::POLYHEDRONS;
        types[py::str(nameOf(type, &ElementBlock::elementTypeName))] =
            py::make_tuple(isFixed ? ElementBlock::nodesPerElement(type) : 0,
                           isFixed ? ElementBlock::surfacesPerElement(type) : 0);
    }
    return types;
}

}  // namespace

void bindMesh(py::module_& module, DatabaseClass& database) {
    module.def("element_types", &elementTypes);
    database.def("read_nodes", &readNodes)
        .def("write_nodes", &writeNodes)
        .def("read_elements", &readElements)
        .def("write_elements", &writeElements);
}

}  // namespace nuo::python
