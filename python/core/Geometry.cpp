// Parts and their names, and states.
#include "Bindings.h"
#include "Call.h"
#include "Names.h"

namespace nuo::python {
namespace {

using zrfx::Database;
using zrfx::GeometryBlock;
using zrfx::GeometryInfoBlock;
using zrfx::StateInfoBlock;

constexpr int kListId = 1;

std::vector<int> intsOf(const py::handle& items) {
    std::vector<int> ints;
    for (const py::handle item : items) ints.push_back(item.cast<int>());
    return ints;
}

py::list partsOf(const GeometryBlock& block, std::size_t geometry, std::size_t state) {
    const auto elements = block.elementBlockIds(geometry, state);
    const auto ids = block.partIds(geometry, state);
    py::list parts;
    for (std::size_t i = 0; i < ids.size(); ++i) {
        parts.append(py::make_tuple(elements[i], ids[i]));
    }
    return parts;
}

py::list readGeometry(const DatabaseHandle& handle) {
    const auto block = call(handle, [](Database& d) { return d.read<GeometryBlock>(kListId); });
    py::list states;
    for (std::size_t s = 0; s < block->stateCount(); ++s) {
        py::list geometries;
        for (std::size_t g = 0; g < block->geometryCountPerState(); ++g) {
            geometries.append(partsOf(*block, g, s));
        }
        states.append(py::make_tuple(block->stateId(s), geometries));
    }
    return states;
}

struct PartList {
    int stateId;  // Negative for the record of all states.
    std::size_t geometry;
    std::vector<int> elementBlocks;
    std::vector<int> ids;

    bool addTo(GeometryBlock& block) const {
        if (stateId < 0) return block.setElementBlocks(geometry, elementBlocks, ids);
        return block.setElementBlocksForState(geometry, elementBlocks, stateId, ids);
    }
};

std::vector<PartList> partListsOf(const py::list& states) {
    std::vector<PartList> lists;
    for (const py::handle record : states) {
        const auto state = record.cast<py::tuple>();
        std::size_t geometry = 0;
        for (const py::handle parts : state[1]) {
            PartList list{state[0].is_none() ? -1 : state[0].cast<int>(), geometry++, {}, {}};
            for (const py::handle part : parts) {
                const auto pair = part.cast<py::tuple>();
                list.elementBlocks.push_back(pair[0].cast<int>());
                list.ids.push_back(pair[1].cast<int>());
            }
            lists.push_back(std::move(list));
        }
    }
    return lists;
}

void writeGeometry(const DatabaseHandle& handle, std::size_t geometryCount,
                   const py::list& states) {
    const auto lists = partListsOf(states);
    call(handle, [&](Database& database) {
        const PtrRef<GeometryBlock> block = new GeometryBlock(geometryCount);
        for (const PartList& list : lists) {
            if (!list.addTo(*block)) return false;
        }
        return database.writeBlock(block.p());
    });
}

py::list readPartNames(const DatabaseHandle& handle) {
    const auto block = call(handle, [](Database& d) { return d.read<GeometryInfoBlock>(kListId); });
    py::list geometries;
    for (std::size_t g = 0; g < block->geometryCountPerState(); ++g) {
        py::list parts;
        for (std::size_t i = 0; i < block->partCount(g); ++i) {
            parts.append(py::make_tuple(block->partId(g, i), block->partName(g, i)));
        }
        geometries.append(parts);
    }
    return geometries;
}

void writePartNames(const DatabaseHandle& handle, const py::list& geometries) {
    const PtrRef<GeometryInfoBlock> block = new GeometryInfoBlock(geometries.size());
    std::size_t geometry = 0;
    bool isFilled = true;
    for (const py::handle parts : geometries) {
        for (const py::handle part : parts) {
            const auto pair = part.cast<py::tuple>();
            isFilled &= block->addPartInfo(geometry, pair[0].cast<int>(), pair[1].cast<Str>());
        }
        ++geometry;
    }
    call(handle, [&](Database& d) { return isFilled && d.writeBlock(block.p()); });
}

py::tuple readStates(const DatabaseHandle& handle) {
    const auto block = call(handle, [](Database& d) { return d.read<StateInfoBlock>(kListId); });
    py::list states;
    for (std::size_t i = 0; i < block->stateCount(); ++i) {
        const auto type = block->stateReferenceValueType(i);
        states.append(py::make_tuple(block->stateId(i), block->stateName(i),
                                     block->stateReferenceValue(i),
                                     nameOf(type, &StateInfoBlock::referenceValueTypeName)));
    }
    py::list groups;
    for (std::size_t i = 0; i < block->groupCount(); ++i) {
        py::list ids;
        for (const int id : block->groupStateIds(i)) ids.append(id);
        groups.append(py::make_tuple(block->groupId(i), block->groupName(i), ids));
    }
    return py::make_tuple(states, groups);
}

void writeStates(const DatabaseHandle& handle, const py::list& states, const py::list& groups) {
    const PtrRef<StateInfoBlock> block = new StateInfoBlock;
    bool isFilled = true;
    for (const py::handle item : states) {
        const auto state = item.cast<py::tuple>();
        const auto type =
            fromName(state[3].cast<std::string>(), &StateInfoBlock::referenceValueTypeName);
        isFilled &= block->addStateInfo(state[0].cast<int>(), state[1].cast<Str>(),
                                        state[2].cast<float>(), type);
    }
    for (const py::handle item : groups) {
        const auto group = item.cast<py::tuple>();
        isFilled &=
            block->addGroupInfo(group[0].cast<int>(), group[1].cast<Str>(), intsOf(group[2]));
    }
    call(handle, [&](Database& d) { return isFilled && d.writeBlock(block.p()); });
}

}  // namespace

void bindGeometry(DatabaseClass& database) {
    database.def("read_geometry", &readGeometry)
        .def("write_geometry", &writeGeometry)
        .def("read_part_names", &readPartNames)
        .def("write_part_names", &writePartNames)
        .def("read_states", &readStates)
        .def("write_states", &writeStates);
}

}  // namespace nuo::python
