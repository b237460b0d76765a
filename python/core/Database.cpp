#include "Bindings.h"
#include "Call.h"
#include "Names.h"

namespace nuo::python {
namespace {

using zrfx::Block;
using zrfx::Database;
using zrfx::File;

DatabaseHandle addDatabase(const FileHandle& handle, const Str& name, int id,
                           const std::string& simulation, const std::string& solution,
                           const Str& description) {
    const auto simulationType = fromName(simulation, &Database::simulationTypeName);
    const auto solutionType = fromName(solution, &Database::solutionTypeName);
    return add<Database>(handle, [&](File& file) {
        return new Database(&file, name, id, simulationType, solutionType, description);
    });
}

Block::BlockType blockType(const std::string& name) {
    return fromName(name, &Block::blockTypeName);
}

}  // namespace

DatabaseClass bindDatabase(py::module_& module) {
    module.def("add_database", &addDatabase);
    DatabaseClass database(module, "Database");
    const auto text = [&](const char* name, Str (Database::*get)() const) {
        database.def_property_readonly(name, [get](const DatabaseHandle& handle) {
            return ask(handle, [&](Database& d) { return (d.*get)(); });
        });
    };
    text("name", &Database::name);
    text("description", &Database::description);
    database
        .def_property_readonly(
            "id",
            [](const DatabaseHandle& h) { return ask(h, [](Database& d) { return d.id(); }); })
        .def_property_readonly("simulation",
                               [](const DatabaseHandle& handle) {
                                   const auto type = [](Database& d) { return d.simulationType(); };
                                   return nameOf(ask(handle, type), &Database::simulationTypeName);
                               })
        .def_property_readonly("solution",
                               [](const DatabaseHandle& handle) {
                                   const auto type = [](Database& d) { return d.solutionType(); };
                                   return nameOf(ask(handle, type), &Database::solutionTypeName);
                               })
        .def("block_ids",
             [](const DatabaseHandle& handle, const std::string& type) {
                 const auto blocks = blockType(type);
                 py::list ids;
                 for (const int id : ask(handle, [&](Database& d) { return d.blockIds(blocks); })) {
                     ids.append(id);
                 }
                 return ids;
             })
        .def("check",
             [](const DatabaseHandle& handle) {
                 py::list findings;
                 for (const Str& finding : ask(handle, [](Database& d) { return d.check(); })) {
                     findings.append(py::cast(finding));
                 }
                 return findings;
             })
        .def("unused_block_id", [](const DatabaseHandle& handle, const std::string& type) {
            const auto blocks = blockType(type);
            return ask(handle, [&](Database& d) { return d.unusedBlockId(blocks); });
        });
    return database;
}

}  // namespace nuo::python
