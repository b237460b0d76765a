// Rigid-body motions.
#include "Bindings.h"
#include "Call.h"

namespace nuo::python {
namespace {

using zrfx::Block;
using zrfx::Database;
using zrfx::TransformationResultBlock;
using zrfx::TransformationResultValuesBlock;

py::tuple readTransformation(const DatabaseHandle& handle, int id) {
    const auto block =
        call(handle, [&](Database& d) { return d.read<TransformationResultBlock>(id); });
    py::list states;
    for (std::size_t i = 0; i < block->stateCount(); ++i) {
        py::list ids;
        for (const int values : block->transformationResultValuesBlocks(i)) ids.append(values);
        states.append(py::make_tuple(block->stateId(i), ids));
    }
    return py::make_tuple(block->name(), block->resultId(), states);
}

void writeTransformation(const DatabaseHandle& handle, int id, const Str& name, int resultId,
                         const py::list& states) {
    const PtrRef<TransformationResultBlock> block = new TransformationResultBlock(id);
    block->setName(name);
    block->setResultId(resultId);
    bool isFilled = true;
    for (const py::handle item : states) {
        const auto state = item.cast<py::tuple>();
        for (const py::handle values : state[1]) {
            isFilled &=
                block->addTransformationResultValuesBlock(values.cast<int>(), state[0].cast<int>());
        }
    }
    call(handle, [&](Database& d) { return isFilled && d.writeBlock(block.p()); });
}

py::tuple readMatrix(const DatabaseHandle& handle, int id) {
    const auto block =
        call(handle, [&](Database& d) { return d.read<TransformationResultValuesBlock>(id); });
    const Mat4d matrix = block->matrix();
    py::list rows;
    for (int row = 0; row < 4; ++row) {
        rows.append(py::make_tuple(matrix.rowCol(row, 0), matrix.rowCol(row, 1),
                                   matrix.rowCol(row, 2), matrix.rowCol(row, 3)));
    }
    return py::make_tuple(block->mapToBlockId(nullptr), rows);
}

void writeMatrix(const DatabaseHandle& handle, int id, int elementBlockId, const py::list& rows) {
    Mat4d matrix;
    for (int row = 0; row < 4; ++row) {
        for (int col = 0; col < 4; ++col) {
            matrix.setRowCol(row, col, py::object(rows[row])[py::int_(col)].cast<double>());
        }
    }
    call(handle, [&](Database& database) {
        const PtrRef<TransformationResultValuesBlock> block =
            new TransformationResultValuesBlock(id);
        block->setMatrix(matrix);
        return block->setMapToBlockId(elementBlockId, Block::ELEMENTS) &&
               database.writeBlock(block.p());
    });
}

}  // namespace

void bindTransformations(DatabaseClass& database) {
    database.def("read_transformation", &readTransformation)
        .def("write_transformation", &writeTransformation)
        .def("read_matrix", &readMatrix)
        .def("write_matrix", &writeMatrix);
}

}  // namespace nuo::python
