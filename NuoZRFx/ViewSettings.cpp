#include "NuoZRFx/ViewSettings.h"

#include <algorithm>
#include <initializer_list>
#include <vector>

#include "Log_p.h"

namespace nuo::zrfx {
namespace {

const char* drawStyleText(ViewSettings::DrawStyle drawStyle) {
    switch (drawStyle) {
        case ViewSettings::SURFACE:
            return "surface";
        case ViewSettings::SURFACE_MESH:
            return "surface_mesh";
        case ViewSettings::SURFACE_OUTLINE_MESH:
            return "surface_outline_mesh";
        case ViewSettings::LINE:
            return "line";
        case ViewSettings::POINT:
            return "point";
        case ViewSettings::OUTLINE:
            return "outline";
        case ViewSettings::HIDDEN_LINE_REMOVED:
            return "hidden_line_removed";
        case ViewSettings::NO_STYLE:
            return "none";
    }
    return "";
}

std::vector<Variant> variants(const std::vector<int>& ids) {
    return std::vector<Variant>(ids.begin(), ids.end());
}

bool isEqual(const Variant& a, const Variant& b) {
    if (a.type() != b.type()) return false;
    return a.type() == Variant::INT ? a.toInt() == b.toInt() : a.toUInt() == b.toUInt();
}

// What a set is for: the value of one of its keys.
struct Context {
    const char* key;
    Variant value;
};

using Contexts = std::initializer_list<Context>;

bool isFor(const PropertySet& set, const char* classType, const Contexts& contexts) {
    return set.classType() == Str(classType) &&
           std::all_of(contexts.begin(), contexts.end(), [&](const Context& context) {
               return isEqual(set.value(context.key), context.value);
           });
}

// The set of a class for a context, made when there is none.
PtrRef<PropertySet> setOf(PropertySetCollection& all, const char* classType,
                          const Contexts& contexts = {}) {
    for (std::size_t i = 0; i < all.count(); ++i) {
        if (isFor(*all.propertySet(i), classType, contexts)) return all.propertySet(i);
    }
    PtrRef<PropertySet> made = new PropertySet(classType);
    for (const Context& context : contexts) made->setValue(context.key, context.value);
    all.addPropertySet(made.p());
    return made;
}

PtrRef<PropertySet> partSet(PropertySetCollection& all, int partId, unsigned int geometryIndex) {
    return setOf(all, "part_settings",
                 {{"context_geometry_index", geometryIndex}, {"context_part_id", partId}});
}

PtrRef<PropertySet> cameraSet(PropertySetCollection& all, const Vec3d& eye, const Vec3d& target,
                              const Vec3d& up) {
    PtrRef<PropertySet> camera = setOf(all, "camera");
    camera->setValue("eye", eye);
    camera->setValue("vrp", target);
    camera->setValue("vup", up);
    return camera;
}

PtrRef<PropertySet> stateSet(PropertySetCollection& all, const std::vector<int>& stateIds,
                             int modeShapeFrames) {
    PtrRef<PropertySet> states = setOf(all, "state_selection");
    states->setValue("state_ids", variants(stateIds));
    states->setValue("num_mode_shape_frames", modeShapeFrames);
    return states;
}

}  // namespace

ViewSettings::ViewSettings() {
    guarded([&] { m_properties = new PropertySetCollection; });
}

void ViewSettings::setPerspectiveCamera(const Vec3d& eye, const Vec3d& target, const Vec3d& up,
                                        double fieldOfViewDegrees) {
    change([&](PropertySetCollection& all) {
        const PtrRef<PropertySet> camera = cameraSet(all, eye, target, up);
        camera->setValue("projection_type", "perspective");
        camera->setValue("field_of_view_y_degrees", fieldOfViewDegrees);
    });
}

void ViewSettings::setOrthoCamera(const Vec3d& eye, const Vec3d& target, const Vec3d& up,
                                  double height) {
    change([&](PropertySetCollection& all) {
        const PtrRef<PropertySet> camera = cameraSet(all, eye, target, up);
        camera->setValue("projection_type", "ortho");
        camera->setValue("ortho_height", height);
    });
}

void ViewSettings::showFringes(int resultId) {
    change([&](PropertySetCollection& all) {
        setOf(all, "result_selection")->setValue("fringes_result_id", resultId);
    });
}

void ViewSettings::setFringesRange(int resultId, double minimum, double maximum) {
    change([&](PropertySetCollection& all) {
        const PtrRef<PropertySet> colors =
            setOf(all, "color_mapper_continuous", {{"context_result_id", resultId}});
        colors->setValue("range_min", minimum);
        colors->setValue("range_max", maximum);
    });
}

void ViewSettings::showDisplacements(int resultId, const std::vector<int>& partIds) {
    change([&](PropertySetCollection& all) {
        setOf(all, "result_selection")->setValue("displacement_result_id", resultId);
        for (const int partId : partIds) {
            partSet(all, partId, 0)->setValue("displacement_visible", true);
        }
    });
}

void ViewSettings::showVectors(const std::vector<int>& resultIds) {
    change([&](PropertySetCollection& all) {
        setOf(all, "result_selection")->setValue("vector_result_ids", variants(resultIds));
    });
}

void ViewSettings::setPartVisible(int partId, bool isVisible, unsigned int geometryIndex) {
    change([&](PropertySetCollection& all) {
        partSet(all, partId, geometryIndex)->setValue("visible", isVisible);
    });
}

void ViewSettings::setPartDrawStyle(int partId, DrawStyle drawStyle, unsigned int geometryIndex) {
    change([&](PropertySetCollection& all) {
        partSet(all, partId, geometryIndex)->setValue("draw_style", drawStyleText(drawStyle));
    });
}

void ViewSettings::setPartColor(int partId, const Color3f& color, unsigned int geometryIndex) {
    change([&](PropertySetCollection& all) {
        partSet(all, partId, geometryIndex)->setValue("color", color);
    });
}

void ViewSettings::setPartOpacity(int partId, float opacity, unsigned int geometryIndex) {
    change([&](PropertySetCollection& all) {
        partSet(all, partId, geometryIndex)->setValue("opacity", opacity);
    });
}

void ViewSettings::showStates(const std::vector<int>& stateIds) {
    change([&](PropertySetCollection& all) { stateSet(all, stateIds, 0); });
}

void ViewSettings::showModeShape(int stateId, int frameCount) {
    change([&](PropertySetCollection& all) {
        const PtrRef<PropertySet> states = stateSet(all, {stateId}, frameCount);
        states->setValue("mode_shape_animation_type", "full");
        states->setValue("mode_shape_interpolation_type", "sine");
    });
}

template <typename Change>
void ViewSettings::change(Change apply) {
    if (!m_properties) return;
    const auto applyAndTell = [&] {
        apply(*m_properties);
        return true;
    };
    if (!guarded(false, applyAndTell)) m_properties->internal_setIncomplete();
}

}  // namespace nuo::zrfx
