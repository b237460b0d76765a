#include "import/ImportView.h"

#include <algorithm>
#include <functional>

namespace tools {
namespace {

using nuo::PropertySet;
using nuo::PropertySetCollection;
using nuo::PtrRef;
using nuo::Variant;
using nuo::zrfx::ResultBlock;
using nuo::zrfx::StateInfoBlock;

constexpr int kModeShapeFrames = 24;

using Series = ImportResults::Series;

const Series* findSeries(const ImportResults& results,
                         const std::function<bool(const Series&)>& isWanted) {
    const auto& all = results.series();
    const auto found = std::find_if(all.begin(), all.end(), isWanted);
    return found == all.end() ? nullptr : &*found;
}

const Series* displacement(const ImportResults& results) {
    return findSeries(results,
                      [](const Series& s) { return s.type() == ResultBlock::DISPLACEMENT; });
}

const Series* seriesOfRole(const ImportResults& results, ImportField::Role role) {
    return findSeries(results, [role](const Series& s) { return s.role == role; });
}

// Stresses, else temperatures, else what there is.
const Series* fringes(const ImportResults& results) {
    const Series* found = seriesOfRole(results, ImportField::STRESS);
    if (!found) found = seriesOfRole(results, ImportField::TEMPERATURE);
    if (!found) {
        found =
            findSeries(results, [](const Series& s) { return s.type() == ResultBlock::SCALAR; });
    }
    return found ? found : findSeries(results, [](const Series&) { return true; });
}

PtrRef<PropertySet> partSettings(const ImportMesh::Part& part) {
    PtrRef<PropertySet> set = new PropertySet("part_settings");
    set->setValue("context_geometry_index", 0u);
    set->setValue("context_part_id", part.id);
    if (part.isHidden) set->setValue("visible", false);
    set->setValue("draw_style", "surface_mesh");
    set->setValue("displacement_visible", true);
    return set;
}

PtrRef<PropertySet> resultSelection(const ImportResults& results) {
    PtrRef<PropertySet> set = new PropertySet("result_selection");
    if (const Series* shown = fringes(results)) set->setValue("fringes_result_id", shown->id());
    if (const Series* shown = displacement(results)) {
        set->setValue("displacement_result_id", shown->id());
    }
    return set;
}

bool isModeShape(const StateInfoBlock& states) {
    return states.stateReferenceValueType(0) == StateInfoBlock::FREQUENCY;
}

PtrRef<PropertySet> stateSelection(const StateInfoBlock& states) {
    PtrRef<PropertySet> set = new PropertySet("state_selection");
    const std::size_t count = isModeShape(states) ? 1 : states.stateCount();
    std::vector<Variant> ids;
    for (std::size_t i = 0; i < count; ++i) ids.emplace_back(states.stateId(i));
    set->setValue("state_ids", ids);
    if (!isModeShape(states)) return set;
    set->setValue("num_mode_shape_frames", kModeShapeFrames);
    set->setValue("mode_shape_animation_type", "full");
    set->setValue("mode_shape_interpolation_type", "sine");
    return set;
}

}  // namespace

PtrRef<PropertySetCollection> importViewSettings(const ImportMesh& mesh,
                                                 const ImportResults& results) {
    PtrRef<PropertySetCollection> settings = new PropertySetCollection;
    settings->addPropertySet(resultSelection(results).p());
    settings->addPropertySet(stateSelection(results.states()).p());
    for (const ImportMesh::Part& part : mesh.parts()) {
        settings->addPropertySet(partSettings(part).p());
    }
    return settings;
}

}  // namespace tools
