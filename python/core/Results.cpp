// Results and their values.
#include "Bindings.h"
#include "Buffers.h"
#include "Call.h"
#include "Names.h"

namespace nuo::python {
namespace {

using zrfx::Block;
using zrfx::Database;
using zrfx::ResultBlock;
using zrfx::ResultValuesBlock;

py::list statesOf(const ResultBlock& block) {
    py::list states;
    for (std::size_t i = 0; i < block.stateCount(); ++i) {
        py::list ids;
        for (const int id : block.resultValuesBlocks(i)) ids.append(id);
        states.append(py::make_tuple(block.stateId(i), ids));
    }
    return states;
}

py::dict readResult(const DatabaseHandle& handle, int id) {
    const auto block = call(handle, [&](Database& d) { return d.read<ResultBlock>(id); });
    py::dict attributes;
    for (const Str& name : block->attributeNames()) {
        attributes[py::cast(name)] = block->attribute(name);
    }
    using py::literals::operator""_a;
    return py::dict("name"_a = block->name(), "result_id"_a = block->resultId(),
                    "kind"_a = nameOf(block->resultType(), &ResultBlock::resultTypeName),
                    "mapping"_a = nameOf(block->resultMapping(), &ResultBlock::resultMappingName),
                    "strain"_a = nameOf(block->strainType(), &ResultBlock::strainTypeName),
                    "scale"_a = block->defaultDisplacementScaleFactor(),
                    "relative"_a = block->relativeDisplacementResults(),
                    "digits"_a = block->significantDigits(), "attributes"_a = attributes,
                    "states"_a = statesOf(*block));
}

bool setStates(ResultBlock& block, const py::handle& states) {
    bool isFilled = true;
    for (const py::handle item : states) {
        const auto state = item.cast<py::tuple>();
        for (const py::handle id : state[1]) {
            isFilled &= block.addResultValuesBlock(id.cast<int>(), state[0].cast<int>());
        }
    }
    return isFilled;
}

void setDescription(ResultBlock& block, const py::dict& result) {
    block.setName(result["name"].cast<Str>());
    block.setResultId(result["result_id"].cast<int>());
    block.setStrainType(
        fromName(result["strain"].cast<std::string>(), &ResultBlock::strainTypeName));
    block.setDefaultDisplacementScaleFactor(result["scale"].cast<float>());
    block.setRelativeDisplacementResults(result["relative"].cast<bool>());
    for (const auto& [name, value] : result["attributes"].cast<py::dict>()) {
        block.addAttribute(name.cast<Str>(), value.cast<Str>());
    }
    const int digits = result["digits"].cast<int>();
    if (digits > 0) block.setSignificantDigits(digits);
}

void writeResult(const DatabaseHandle& handle, int id, const py::dict& result) {
    const auto type = fromName(result["kind"].cast<std::string>(), &ResultBlock::resultTypeName);
    const auto mapping =
        fromName(result["mapping"].cast<std::string>(), &ResultBlock::resultMappingName);
    const PtrRef<ResultBlock> block = new ResultBlock(id, type, mapping);
    setDescription(*block, result);
    const bool isFilled = setStates(*block, result["states"]);
    call(handle, [&](Database& d) { return isFilled && d.writeBlock(block.p()); });
}

py::tuple readValues(const DatabaseHandle& handle, int id) {
    const auto block = call(handle, [&](Database& d) { return d.read<ResultValuesBlock>(id); });
    const auto dimension = static_cast<py::ssize_t>(block->dimension());
    py::object ids = py::none();
    if (block->hasMapToItemIds()) ids = py::cast(Array::of(block, block->itemIds()));
    return py::make_tuple(block->mapToBlockId(),
                          Array::of(block, block->values(), dimension == 1 ? 0 : dimension), ids);
}

ResultValuesBlock::ResultValueDimension dimensionOf(int dimension) {
    if (dimension != 1 && dimension != 3 && dimension != 6) {
        throw py::value_error("an item has 1, 3 or 6 values");
    }
    return static_cast<ResultValuesBlock::ResultValueDimension>(dimension);
}

void writeValues(const DatabaseHandle& handle, int id, int dimension, const py::object& given,
                 const py::object& ids, int target, bool isOnNodes, int digits) {
    const Input<float> values(given);
    const Input<int> itemIds(ids);
    const auto kind = dimensionOf(dimension);
    call(handle, [&](Database& database) {
        const PtrRef<ResultValuesBlock> block = new ResultValuesBlock(id, kind, !itemIds.isNone());
        block->setSignificantDigits(digits);
        return block->setResultValueData(values.items(), itemIds.items()) &&
               block->setMapToBlockId(target, isOnNodes ? Block::NODES : Block::ELEMENTS) &&
               database.writeBlock(block.p());
    });
}

}  // namespace

void bindResults(DatabaseClass& database) {
    database.def("read_result", &readResult)
        .def("write_result", &writeResult)
        .def("read_values", &readValues)
        .def("write_values", &writeValues);
}

}  // namespace nuo::python
