#pragma once

#include <vector>

#include "NuoCore/Color3f.h"
#include "NuoCore/Export.h"
#include "NuoCore/PropertySetCollection.h"
#include "NuoCore/PtrRef.h"
#include "NuoCore/Vec3d.h"

namespace nuo::zrfx {

/// The viewer settings that most cases need: camera, shown results, parts and states. A plain
/// object that makes the property sets of the catalogue (docs/properties.md), of which it knows a
/// small part; further sets can be added to properties(). Each setting replaces the one that was
/// made before. Used by one thread at a time.
///
///     nuo::zrfx::ViewSettings settings;
///     settings.setPerspectiveCamera(eye, target, up, 30);
///     settings.showFringes(stressResultId);
///     settings.showDisplacements(displacementResultId, {partId});
///     view->setProperties(settings);
class NUO_API ViewSettings {
public:
    enum DrawStyle : int {
        SURFACE = 0,
        SURFACE_MESH = 1,
        SURFACE_OUTLINE_MESH = 2,
        LINE = 3,
        POINT = 4,
        OUTLINE = 5,
        HIDDEN_LINE_REMOVED = 6,
        NO_STYLE = 7
    };

    ViewSettings();

    /// Looks from `eye` at `target`, both in model coordinates, with `up` upwards on the screen.
    /// The vertical opening angle is in degrees.
    void setPerspectiveCamera(const Vec3d& eye, const Vec3d& target, const Vec3d& up,
                              double fieldOfViewDegrees);

    /// The same in parallel projection; `height` is what is visible, in units of the model.
    void setOrthoCamera(const Vec3d& eye, const Vec3d& target, const Vec3d& up, double height);

    /// Colours the model by the result with a result id.
    void showFringes(int resultId);

    /// The values at the ends of the colours of a result; without it the viewer takes them from the
    /// result.
    void setFringesRange(int resultId, double minimum, double maximum);

    /// Moves parts, named by their ids, of the first geometry by a displacement result.
    void showDisplacements(int resultId, const std::vector<int>& partIds);

    /// Shows vector results as arrows.
    void showVectors(const std::vector<int>& resultIds);

    /// How a part looks; `geometryIndex` counts from 0. The opacity is 0 (invisible) to 1 (opaque).
    void setPartVisible(int partId, bool isVisible, unsigned int geometryIndex = 0);
    void setPartDrawStyle(int partId, DrawStyle drawStyle, unsigned int geometryIndex = 0);
    void setPartColor(int partId, const Color3f& color, unsigned int geometryIndex = 0);
    void setPartOpacity(int partId, float opacity, unsigned int geometryIndex = 0);

    /// Shows states, one frame of the animation each, in this order.
    void showStates(const std::vector<int>& stateIds);

    /// Lets a mode shape, which is one state, swing in a number of frames.
    void showModeShape(int stateId, int frameCount = 24);

    /// The property sets of all settings so far. They stay the object's, which changes them with
    /// further settings. Null when there was no memory to construct the object; when a setting ran
    /// out of memory later, they cannot be stored.
    PropertySetCollection* properties() const { return m_properties.p(); }

private:
    template <typename Change>
    void change(Change apply);

    PtrRef<PropertySetCollection> m_properties;
};

}  // namespace nuo::zrfx
