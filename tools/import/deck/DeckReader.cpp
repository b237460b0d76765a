#include "import/deck/DeckReader.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <functional>

#include "import/ImportNumbers.h"
#include "import/deck/DeckElementType.h"

namespace tools {
namespace {

std::string inCapitals(std::string text) {
    for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return text;
}

// Sets are in order when they are asked for, and not after each of their lines.
void normalize(std::vector<int>& ids) {
    if (std::ranges::adjacent_find(ids, std::greater_equal<>()) == ids.end()) return;
    std::ranges::sort(ids);
    const auto repeated = std::ranges::unique(ids);
    ids.erase(repeated.begin(), repeated.end());
}

std::size_t givenCount(const DeckLine& line) {
    return static_cast<std::size_t>(std::ranges::count_if(
        line.fields, [](const std::string& field) { return !field.empty(); }));
}

constexpr const char* kOutputs[] = {"NODEFILE",      "ELFILE",      "NODEOUTPUT",
                                    "ELEMENTOUTPUT", "CONTACTFILE", "CONTACTOUTPUT"};

}  // namespace

bool DeckReader::fail(const std::string& reason) {
    m_error = m_file.place() + ": " + reason;
    return false;
}

bool DeckReader::read(const std::string& path, std::string* error) {
    if (!m_file.open(path)) {
        *error = std::strerror(errno);
        return false;
    }
    DeckLine line;
    bool isGood = true;
    bool isDeck = false;
    while (isGood && m_file.next(&line)) {
        isDeck |= line.isKeyword;
        if (line.isKeyword) {
            begin(line);
            isGood = m_error.empty();
        } else if (m_take) {
            isGood = (this->*m_take)(line);
        }
    }
    for (auto* sets : {&m_model.nodeSets, &m_model.elementSets}) {
        for (DeckSet& set : *sets) normalize(set.ids);
    }
    *error = isGood ? m_file.error() : m_error;
    if (error->empty() && !isDeck) *error = "this is no input deck: it has no keyword";
    return error->empty();
}

void DeckReader::begin(const DeckLine& line) {
    m_target = {};
    m_take = nullptr;
    const std::string& keyword = line.keyword;
    const Take items =
        line.parameters.contains("GENERATE") ? &DeckReader::takeRange : &DeckReader::takeItems;
    if (keyword == "NSET") beginSet(nodeTarget(), line.parameter("NSET"), items);
    if (keyword == "ELSET") beginSet(elementTarget(), line.parameter("ELSET"), items);
    if (keyword == "NODE") beginSet(nodeTarget(), line.parameter("NSET"), &DeckReader::takeFirst);
    if (keyword == "ELEMENT") beginElements(line);
    if (keyword == "SURFACE") beginSurface(line);
    if (keyword.ends_with("SECTION") || keyword.ends_with("SECTIONS")) beginSection(line);
    m_model.hasStep |= keyword == "STEP";
    m_model.asksForResults |= std::ranges::find(kOutputs, keyword) != std::end(kOutputs);
}

void DeckReader::beginSet(const Target& target, const std::string& name, Take take) {
    if (name.empty()) return;
    const auto [place, isNew] = target.places->try_emplace(inCapitals(name), target.sets->size());
    if (isNew) target.sets->push_back({name, {}, false});
    m_target = target;
    m_setIndex = place->second;
    m_take = take;
}

void DeckReader::beginElements(const DeckLine& line) {
    const std::string type = inCapitals(line.parameter("TYPE"));
    m_nodesPerElement = deckNodesPerElement(type);
    m_isVolume = isDeckVolume(type);
    m_goesOn = false;
    m_take = &DeckReader::takeElement;
    beginSet(elementTarget(), line.parameter("ELSET"), m_take);
}

void DeckReader::beginSection(const DeckLine& line) {
    const std::string name = line.parameter("ELSET");
    const std::string material = line.parameter("MATERIAL");
    const DeckSet* elements = findSet(elementTarget(), name);
    if (!elements || !count(elements->ids.size())) return;
    m_model.sections.push_back(
        {name + (material.empty() ? "" : " (" + material + ")"), elements->ids});
}

// A surface of nodes is a set of nodes, of which another one may have the name.
void DeckReader::beginSurface(const DeckLine& line) {
    const std::string name = line.parameter("NAME");
    if (name.empty()) return;
    if (inCapitals(line.parameter("TYPE")) == "NODE") {
        beginSet(nodeTarget(), name, &DeckReader::takeItems);
        return;
    }
    m_model.surfaces.push_back({name, {}, false});
    m_take = &DeckReader::takeFace;
}

const DeckSet* DeckReader::findSet(const Target& target, const std::string& name) {
    const auto found = target.places->find(inCapitals(name));
    if (found == target.places->end()) return nullptr;
    DeckSet& set = (*target.sets)[found->second];
    normalize(set.ids);
    return &set;
}

// Sets of sets could grow without end.
bool DeckReader::count(std::size_t added) {
    constexpr std::size_t kMostForEach = 64;
    constexpr std::size_t kAnyway = 1 << 20;
    m_itemCount += added;
    return m_itemCount <= kAnyway + kMostForEach * (m_nodes.size() + m_elements.size()) ||
           fail("the sets have too many items");
}

bool DeckReader::addId(int id) {
    if (m_target.index->indexOf(id) < 0) {
        set().lacksItems = true;
        return true;
    }
    set().ids.push_back(id);
    return count(1);
}

bool DeckReader::addSet(const std::string& name) {
    const DeckSet* other = findSet(m_target, name);
    if (!other) {
        set().lacksItems = true;
        return true;
    }
    const std::vector<int> ids = other->ids;  // it may be the set itself
    set().ids.insert(set().ids.end(), ids.begin(), ids.end());
    set().lacksItems |= other->lacksItems;
    return count(ids.size());
}

bool DeckReader::takeItems(const DeckLine& line) {
    for (const std::string& field : line.fields) {
        int id = 0;
        if (field.empty()) continue;
        if (!(readInteger(field, &id) ? addId(id) : addSet(field))) return false;
    }
    return true;
}

bool DeckReader::takeRange(const DeckLine& line) {
    int range[3] = {0, 0, 1};  // first, last, step
    for (std::size_t i = 0; i < std::min<std::size_t>(line.fields.size(), 3); ++i) {
        const bool isNumber = line.fields[i].empty() || readInteger(line.fields[i], &range[i]);
        if (!isNumber) return fail("'" + line.fields[i] + "' is no number");
    }
    if (range[2] <= 0) return fail("the step of a range is not positive");
    return addRange(range[0], range[1], range[2]);
}

// Of the numbers and of the items of the mesh, whichever are fewer: a range may have no end.
bool DeckReader::addRange(std::int64_t first, std::int64_t last, std::int64_t step) {
    const std::int64_t number = first > last ? 0 : (last - first) / step + 1;
    const std::size_t before = set().ids.size();
    if (number <= static_cast<std::int64_t>(m_target.ids.size())) {
        for (std::int64_t id = first; id <= last; id += step) {
            if (!addId(static_cast<int>(id))) return false;
        }
        return true;
    }
    for (const int id : m_target.ids) {
        if (id < first || id > last || (id - first) % step != 0) continue;
        set().ids.push_back(id);
    }
    set().lacksItems = true;
    return count(set().ids.size() - before);
}

bool DeckReader::takeFirst(const DeckLine& line) {
    int id = 0;
    return !readInteger(line.fields.front(), &id) || addId(id);
}

// An element goes on in the next lines until it has its nodes; where it is not known how many these
// are, as long as a line ends with a comma.
bool DeckReader::takeElement(const DeckLine& line) {
    const std::size_t given = givenCount(line);
    const bool isNew = !m_goesOn;
    const std::size_t needed = isNew ? m_nodesPerElement + 1 : m_missingFields;
    m_goesOn = m_nodesPerElement > 0 ? given < needed : line.endsWithComma;
    m_missingFields = needed > given ? needed - given : 0;
    int id = 0;
    if (!isNew || !readInteger(line.fields.front(), &id)) return true;
    const bool isInMesh = m_elementIndex.indexOf(id) >= 0;
    if (!m_isVolume && isInMesh) m_otherElements.insert(id);
    return !m_target.sets || addId(id);
}

void DeckReader::addFace(int element, int face) {
    DeckSurface& surface = m_model.surfaces.back();
    const bool isOfVolume = !m_otherElements.contains(element);
    surface.lacksFaces |= !isOfVolume;
    if (isOfVolume) surface.faces.emplace_back(element, face);
}

bool DeckReader::takeFace(const DeckLine& line) {
    DeckSurface& surface = m_model.surfaces.back();
    const std::string label = line.fields.size() > 1 ? inCapitals(line.fields[1]) : "";
    const int face = label.size() == 2 && label[0] == 'S' ? label[1] - '0' : 0;
    if (face < 1 || face > 6) {  // the sides of a shell, for instance
        surface.lacksFaces = true;
        return true;
    }
    int id = 0;
    if (readInteger(line.fields.front(), &id)) {
        addFace(id, face);
        return count(1);
    }
    const DeckSet* elements = findSet(elementTarget(), line.fields.front());
    surface.lacksFaces |= !elements || elements->lacksItems;
    if (!elements) return true;
    for (const int element : elements->ids) addFace(element, face);
    return count(elements->ids.size());
}

}  // namespace tools
