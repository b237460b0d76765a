// Sets of elements.
#include "Bindings.h"
#include "Buffers.h"
#include "Call.h"

namespace nuo::python {
namespace {

using zrfx::Database;
using zrfx::SetBlock;

py::tuple readSet(const DatabaseHandle& handle, int id) {
    const auto block = call(handle, [&](Database& d) { return d.setBlockById(id); });
    py::list groups;
    for (std::size_t g = 0; g < block->itemGroupCount(); ++g) {
        const auto* group = block->itemGroup(g);
        groups.append(py::make_tuple(group->blockId(), Array::of(block, group->items())));
    }
    return py::make_tuple(block->setId(), block->setName(), block->itemsSpecifiedAsIds(), groups);
}

void writeSet(const DatabaseHandle& handle, int id, int setId, const Str& name, bool byIds,
              const py::list& groups) {
    const PtrRef<SetBlock> block = new SetBlock(id, byIds);
    block->setSetId(setId);
    block->setSetName(name);
    for (const py::handle item : groups) {
        const auto group = item.cast<py::tuple>();
        block->addItems(Input<int>(group[1]).items(), group[0].cast<int>());
    }
    call(handle, [&](Database& d) { return d.writeBlock(block.p()); });
}

}  // namespace

void bindSets(DatabaseClass& database) {
    database.def("read_set", &readSet).def("write_set", &writeSet);
}

}  // namespace nuo::python
