// An input deck of any bytes, with a mesh of a few items.
#include <filesystem>
#include <fstream>
#include <numeric>

#include "ReadEverything.h"
#include "import/deck/ImportDeck.h"

namespace {

using nuo::zrfx::ElementBlock;

std::vector<int> idsTo(int last) {
    std::vector<int> ids(static_cast<std::size_t>(last));
    std::iota(ids.begin(), ids.end(), 1);
    return ids;
}

tools::ImportElements elements() {
    tools::ImportElements elements;
    elements.groups.push_back(
        {1, ElementBlock::TETRAHEDRONS, {1, 2}, {1, 2, 3, 4, 2, 3, 4, 5}, {}});
    elements.groups.push_back({2, ElementBlock::HEXAHEDRONS, {3}, idsTo(8), {}});
    return elements;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::initialize();
    static const std::string input = fuzz::scratchPath("inp");
    std::ofstream(input, std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    tools::ImportNodes nodes;
    nodes.ids = idsTo(8);
    tools::ImportElements mesh = elements();
    tools::ImportDeck deck(input);
    deck.noteNodes(nodes);
    std::string error;
    fuzz::require(deck.addTo(mesh, {}, &error) == error.empty());
    for (const tools::ImportElementGroup& group : mesh.groups) {
        fuzz::require(group.nodes.size() ==
                      group.ids.size() * ElementBlock::nodesPerElement(group.type));
    }
    std::filesystem::remove(input);
    return 0;
}
