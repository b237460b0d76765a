// The tables of the viewer property catalogue: one a group, a line a key, as
//     {name, type, description, default value, legal values, marked}.
// Descriptions of groups are part of the vocabulary that viewers know, and stay as they are
// spelled.
#include <algorithm>
#include <array>
#include <iterator>
#include <numeric>

#include "catalogue/ZROZRFxPropDef.h"

namespace unstruct {
namespace {

using enum nuo::Variant::Type;

constexpr bool kMarked = true;
constexpr std::string_view kAnyValue = "";

constexpr std::string_view kColorSchemes =
    "normal, normal_inverted, black_to_white, white_to_black, green_to_brown, white_to_brown, "
    "metal_casting, thermal_1, thermal_2, thermal_3";
constexpr std::string_view kSurfaceDrawStyles =
    "surface, surface_mesh, surface_outline_mesh, line, outline";
constexpr std::string_view kMarkerModes = "auto, always, never";
constexpr std::string_view kScaleModes = "absolute, relative";

constexpr PropDef kBackground[] = {
    {"single_background_color", COLOR3F, "Fills the whole view with one color."},
    {"top_background_color", COLOR3F, "Upper end of a vertical color gradient behind the model."},
    {"bottom_background_color", COLOR3F,
     "Lower end of a vertical color gradient behind the model."},
};

constexpr PropDef kCamera[] = {
    {"eye", VEC3D, "Position of the camera in model coordinates."},
    {"vrp", VEC3D,
     "View reference point: the point in model coordinates that the camera looks at."},
    {"vup", VEC3D, "View up vector: the direction that points upwards on the screen."},
    {"projection_type", STRING,
     "Whether distant parts look smaller (perspective) or keep their size (ortho).", "perspective",
     "perspective, ortho"},
    {"field_of_view_y_degrees", DOUBLE,
     "Vertical opening angle of a perspective camera, in degrees."},
    {"ortho_height", DOUBLE,
     "Height of the visible region of an ortho camera, in model length units."},
};

constexpr PropDef kColorMapperContinuous[] = {
    {"context_result_id", INT, "Id of the scalar result whose values are mapped to colors."},
    {"range_min", DOUBLE, "Result value at the lower end of the gradient."},
    {"range_max", DOUBLE, "Result value at the upper end of the gradient."},
    {"color_scheme", STRING, "Built-in gradient, used when colors_at_values is not given.",
     "normal", kColorSchemes},
    {"logarithmic_scale", BOOL,
     "Distributes the gradient over the logarithm of the values; the range must be positive.",
     "false"},
    {"colors_at_values", ARRAY,
     "Custom gradient: result values, each followed by its color, interpolated in between."},
    {"above_range_color", COLOR3F,
     "Color of values above range_max; without it they take the uppermost color."},
    {"below_range_color", COLOR3F,
     "Color of values below range_min; without it they take the lowermost color."},
    {"undefined_color", COLOR3F, "Color where the result has no value."},
    {"undefined_opacity", FLOAT,
     "Opacity where the result has no value, from 0 (invisible) to 1 (opaque).", "1.0"},
};

constexpr PropDef kColorMapperFilledContours[] = {
    {"context_result_id", INT, "Id of the scalar result whose values are mapped to colors."},
    {"color_scheme", STRING, "Built-in colors of the levels, used when level_colors is not given.",
     "normal", kColorSchemes},
    {"logarithmic_scale", BOOL, "Spaces the levels in the legend by the logarithm of their values.",
     "false"},
    {"level_values", ARRAY,
     "Ascending limits of the levels: minimum, transitions and maximum, one more than the levels."},
    {"level_colors", ARRAY, "One color for each level, from the lowest level up."},
    {"above_range_color", COLOR3F,
     "Color of values above the last limit; without it they take the uppermost color."},
    {"below_range_color", COLOR3F,
     "Color of values below the first limit; without it they take the lowermost color."},
    {"undefined_color", COLOR3F, "Color where the result has no value."},
    {"undefined_opacity", FLOAT,
     "Opacity where the result has no value, from 0 (invisible) to 1 (opaque).", "1.0"},
};

constexpr PropDef kColorMapperFilledContoursUniform[] = {
    {"context_result_id", INT, "Id of the scalar result whose values are mapped to colors."},
    {"range_min", DOUBLE, "Result value at the lower limit of the first level."},
    {"range_max", DOUBLE, "Result value at the upper limit of the last level."},
    {"color_scheme", STRING, "Built-in colors of the levels, used when level_colors is not given.",
     "normal", kColorSchemes},
    {"num_colors", INT, "Number of levels that the range is divided into.", "10"},
    {"logarithmic_scale", BOOL,
     "Makes the levels equally wide in the logarithm of the values; the range must be positive.",
     "false"},
    {"level_colors", ARRAY, "One color for each level, from the lowest level up."},
    {"above_range_color", COLOR3F,
     "Color of values above range_max; without it they take the uppermost color."},
    {"below_range_color", COLOR3F,
     "Color of values below range_min; without it they take the lowermost color."},
    {"undefined_color", COLOR3F, "Color where the result has no value."},
    {"undefined_opacity", FLOAT,
     "Opacity where the result has no value, from 0 (invisible) to 1 (opaque).", "1.0"},
};

constexpr PropDef kCuttingPlane[] = {
    {"visible", BOOL, "Shows the cutting plane with all that is mapped on it."},
    {"point", VEC3D, "Any point on the plane, in model coordinates."},
    {"normal", VEC3D, "Direction perpendicular to the plane; its length does not matter."},
    {"map_scalar_result_id", INT, "Id of the scalar result shown as fringes on the plane."},
    {"map_vector_result_id", INT, "Id of the vector result shown as arrows on the plane."},
    {"vector_grid_spacing_mode", STRING,
     "Whether vector_grid_spacing is a model length (absolute) or a part of the model size "
     "(relative).",
     "", kScaleModes},
    {"vector_grid_spacing", DOUBLE, "Distance between the arrows that are laid out on a grid."},
    {"surface_visible", BOOL, "Fills the section; without it only lines and vectors are drawn.",
     "true"},
    {"surface_color", COLOR3F, "Color of the section where no scalar result is mapped."},
    {"clip_model", BOOL, "Hides the model on the side that the normal points to.", "false"},
    {"compute_from_visible_parts", BOOL, "Cuts only the parts that are visible.", "false"},
    {"draw_style", STRING, "How the section is drawn: filled, with element edges, or lines only.",
     "", kSurfaceDrawStyles},
    {"opacity", FLOAT, "Opacity of the section, from 0 (invisible) to 1 (opaque).", "1.0"},
    {"specular_intensity", FLOAT,
     "Strength of the highlights on the section, from 0 (dull) to 1 (shiny).", "0.5"},
    {"use_source_part_color", BOOL,
     "Draws each piece of the section in the color of the part that it cuts.", "false"},
    {"grid_lines_visible", BOOL, "Draws the grid that the vectors are placed on.", "false"},
    {"project_vectors_on_plane", BOOL,
     "Shows only the component of each vector that lies in the plane.", "false"},
    {"crinkle_cut_surface", BOOL,
     "Shows the whole elements that the plane meets instead of a flat section.", "false"},
    {"id", INT, "Number that identifies the cutting plane within the case."},
    {"description", STRING, "Name of the cutting plane for display to the user."},
    {"show_vectors", BOOL, "Shows the vector result at the points where the plane cuts elements.",
     "false"},
    {"show_grid_vectors", BOOL, "Shows the vector result interpolated at the points of the grid.",
     "true"},
};

constexpr PropDef kIsosurface[] = {
    {"visible", BOOL, "Shows the isosurface with all that is mapped on it."},
    {"iso_value", DOUBLE, "Value that the iso scalar result has everywhere on the surface."},
    {"iso_scalar_result_id", INT, "Id of the scalar result that the surface is computed from."},
    {"map_scalar_result_id", INT, "Id of the scalar result shown as fringes on the surface."},
    {"map_vector_result_id", INT, "Id of the vector result shown as arrows on the surface."},
    {"surface_visible", BOOL, "Fills the surface; without it only lines and vectors are drawn.",
     "true"},
    {"surface_color", COLOR3F, "Color of the surface where no scalar result is mapped."},
    {"compute_from_visible_parts", BOOL, "Uses only the elements of parts that are visible.",
     "false"},
    {"id", INT, "Number that identifies the isosurface within the case."},
    {"description", STRING, "Name of the isosurface for display to the user."},
    {"draw_style", STRING, "How the surface is drawn: filled, with element edges, or lines only.",
     "", kSurfaceDrawStyles},
    {"opacity", FLOAT, "Opacity of the surface, from 0 (invisible) to 1 (opaque).", "1.0"},
    {"specular_intensity", FLOAT,
     "Strength of the highlights on the surface, from 0 (dull) to 1 (shiny).", "0.5"},
};

constexpr PropDef kIsovolume[] = {
    {"visible", BOOL, "Shows the isovolume with all that is mapped on it."},
    {"min_iso_value", DOUBLE, "Least value of the iso scalar result inside the volume."},
    {"max_iso_value", DOUBLE, "Greatest value of the iso scalar result inside the volume."},
    {"iso_scalar_result_id", INT, "Id of the scalar result that the volume is computed from."},
    {"map_scalar_result_id", INT, "Id of the scalar result shown as fringes on the volume."},
    {"map_vector_result_id", INT, "Id of the vector result shown as arrows on the volume."},
    {"volume_visible", BOOL,
     "Fills the faces of the volume; without it only lines and vectors are drawn.", "true"},
    {"volume_color", COLOR3F, "Color of the volume where no scalar result is mapped."},
    {"compute_from_visible_parts", BOOL, "Uses only the elements of parts that are visible.",
     "false"},
    {"id", INT, "Number that identifies the isovolume within the case."},
    {"description", STRING, "Name of the isovolume for display to the user."},
    {"draw_style", STRING, "How the faces are drawn: filled, with element edges, or lines only.",
     "", kSurfaceDrawStyles},
    {"opacity", FLOAT, "Opacity of the volume's faces, from 0 (invisible) to 1 (opaque).", "1.0"},
    {"specular_intensity", FLOAT,
     "Strength of the highlights on the faces, from 0 (dull) to 1 (shiny).", "0.5"},
    {"texture_image_name", STRING, "Name of the case's texture image that covers the faces."},
    {"texture_environment_mapping", BOOL,
     "Lays the texture on as a reflection of the surroundings.", "false"},
};

// A mirror plane is the set of points with a*x + b*y + c*z + d = 0 in model coordinates.
constexpr PropDef kMirrorSettings[] = {
    {"num_mirror_passes", INT,
     "Number of mirror planes applied one after the other; each doubles the model, 0 is none."},
    {"plane_first_a", DOUBLE, "Coefficient of x in the equation of the first mirror plane."},
    {"plane_first_b", DOUBLE, "Coefficient of y in the equation of the first mirror plane."},
    {"plane_first_c", DOUBLE, "Coefficient of z in the equation of the first mirror plane."},
    {"plane_first_d", DOUBLE, "Constant term in the equation of the first mirror plane."},
    {"plane_second_a", DOUBLE, "Coefficient of x in the equation of the second mirror plane."},
    {"plane_second_b", DOUBLE, "Coefficient of y in the equation of the second mirror plane."},
    {"plane_second_c", DOUBLE, "Coefficient of z in the equation of the second mirror plane."},
    {"plane_second_d", DOUBLE, "Constant term in the equation of the second mirror plane."},
    {"plane_master_a", DOUBLE, "Coefficient of x in the equation of the master mirror plane."},
    {"plane_master_b", DOUBLE, "Coefficient of y in the equation of the master mirror plane."},
    {"plane_master_c", DOUBLE, "Coefficient of z in the equation of the master mirror plane."},
    {"plane_master_d", DOUBLE, "Constant term in the equation of the master mirror plane."},
    {"reflective", BOOL, "Reflects the copies as in a mirror; without it they are rotated."},
};

constexpr PropDef kOverlayColorLegend[] = {
    {"context_result_id", INT, "Id of the scalar result whose legend is described."},
    {"text_color", COLOR3F, "Color of the legend's title and numbers."},
    {"line_color", COLOR3F, "Color of the frame and the tick marks."},
    {"visibility_mode", STRING,
     "Shows the legend while its result is shown (auto), at all times, or not at all.", "auto",
     kMarkerModes},
    {"visible", BOOL, "Shows the legend; visibility_mode gives a finer choice."},
    {"marker_position", ARRAY, "For each marker, whether it stands above or below the color bar.",
     "", "above, below"},
    {"marker_colors", ARRAY, "For each marker, the color of its box."},
    {"marker_descriptions", ARRAY, "For each marker, the text beside its box."},
    {"custom_legend_title", STRING, "Title shown instead of the name of the result."},
    {"numeric_format", STRING,
     "Number format as in C: the shorter form (g), exponent (e) or decimals (f); capitals for E.",
     "", "g, G, e, E, f, F"},
    {"numeric_precision", INT,
     "Number of significant digits, or of decimals in the formats e and f."},
    {"user_scaling_first_degree", DOUBLE,
     "Factor on the values before they are shown as numbers, for a change of unit."},
    {"user_scaling_constant", DOUBLE,
     "Constant added to the scaled values, as from Kelvin to degrees Celsius."},
    {"force_uniform_level_spacing", BOOL,
     "Makes all levels equally high in the legend, however wide their value ranges are.", "true"},
    {"above_below_range_marker_mode", STRING,
     "Shows markers for colors outside the range when such colors are set (auto), always or never.",
     "auto", kMarkerModes},
    {"marker_box_height", FLOAT, "Height of a marker's box, in pixels."},
    {"marker_vertical_margin", FLOAT, "Vertical gap between markers, in pixels."},
    {"force_tickmarks_over_legend", BOOL, "Draws the tick marks across the color bar."},
    {"tickmarks_position", STRING,
     "Side of the color bar that carries the tick marks; follow_layout chooses the one that faces "
     "the view.",
     "follow_layout", "follow_layout, left, right, top, bottom"},
    {"direction", STRING, "Direction in which the color bar runs.", "horizontal",
     "horizontal, vertical"},
    {"tickmarks_skip_overlapping", BOOL, "Leaves out tick marks whose numbers would overlap."},
    {"tickmarks_minimum_distance", UINT, "Least distance between two tick marks, in pixels."},
    {"line_width", UINT, "Width of the frame and the tick marks, in pixels."},
    {"bar_width", UINT, "Width of the color bar across its direction, in pixels."},
    {"max_num_tick_marks", INT, "Greatest number of tick marks along the color bar.", "", kAnyValue,
     kMarked},
};

constexpr PropDef kOverlayImage[] = {
    {"image_name", STRING, "Name of the case's image to show."},
    {"image_scale_width", DOUBLE, "Factor on the width of the image in pixels.", "1.0"},
    {"image_scale_height", DOUBLE, "Factor on the height of the image in pixels.", "1.0"},
    {"layout_corner", STRING, "Corner of the view that the image is placed in.", "",
     "top_left, bottom_left, top_right, bottom_right"},
    {"layout_direction", STRING,
     "Direction in which items sharing a corner are lined up from that corner.", "",
     "horizontal, vertical"},
    {"blending_mode", STRING,
     "How the image covers the view: opaque, with global_alpha, or with its own alpha channel.", "",
     "no_blending, global_alpha, texture_alpha"},
    {"global_alpha", FLOAT,
     "Opacity of the image in blending mode global_alpha, from 0 (invisible) to 1 (opaque)."},
};

constexpr PropDef kOverlayPlot[] = {
    {"context_overlay_plot_id", INT, "Id of the plot, which its curves refer to."},
    {"plot_title", STRING, "Title above the plot."},
    {"width", UINT, "Width of the plot, in pixels."},
    {"height", UINT, "Height of the plot, in pixels."},
    {"draw_background", BOOL, "Draw background"},
    {"background_color", COLOR3F, "Color behind the plot, when the background is drawn."},
    {"background_opacity", FLOAT, "Opacity of the background, from 0 (invisible) to 1 (opaque)."},
    {"draw_border", BOOL, "Draws a frame around the plot."},
    {"border_color", COLOR3F, "Color of the frame."},
    {"border_width", FLOAT, "Width of the frame, in pixels."},
    {"x_axis_title", STRING, "Text along the horizontal axis, such as quantity and unit."},
    {"y_axis_title", STRING, "Text along the vertical axis, such as quantity and unit."},
    {"x_axis_range_min", DOUBLE,
     "Value at the left end of the horizontal axis; taken from the data when not given."},
    {"x_axis_range_max", DOUBLE,
     "Value at the right end of the horizontal axis; taken from the data when not given."},
    {"y_axis_range_min", DOUBLE,
     "Value at the lower end of the vertical axis; taken from the data when not given."},
    {"y_axis_range_max", DOUBLE,
     "Value at the upper end of the vertical axis; taken from the data when not given."},
    {"draw_legend", BOOL, "Lists the titles of the curves with their colors."},
    {"text_color", COLOR3F, "Color of titles, numbers and legend."},
    {"axis_color", COLOR3F, "Color of the axes and their tick marks."},
    {"draw_grid_lines", BOOL, "Draws lines across the plot at the tick marks."},
    {"axis_grid_lines_color", COLOR3F, "Color of the grid lines."},
    {"draw_marker_line", BOOL, "Draws a vertical line at marker_line_value."},
    {"marker_line_value", DOUBLE,
     "Place of the marker line on the horizontal axis, for example the current time."},
    {"marker_line_color", COLOR3F, "Color of the marker line."},
    {"logarithmic_scale_x", BOOL, "Divides the horizontal axis logarithmically."},
    {"logarithmic_scale_y", BOOL, "Divides the vertical axis logarithmically."},
};

constexpr PropDef kOverlayPlotCurve[] = {
    {"context_overlay_plot_id", INT, "Id of the plot that the curve is drawn in."},
    {"plot_title", STRING, "Name of the curve in the plot's legend."},
    {"color", COLOR3F, "Color of the curve."},
    {"plot_data_index", UINT, "Index of the plot data item that holds the values, from 0."},
    {"plot_data_variable_index_x", UINT,
     "Index of the variable of the plot data on the horizontal axis, from 0."},
    {"plot_data_variable_index_y", UINT,
     "Index of the variable of the plot data on the vertical axis, from 0."},
};

constexpr PropDef kPartSettings[] = {
    {"context_geometry_index", UINT, "Index of the geometry that holds the part, from 0."},
    {"context_part_id", INT, "Id of the part within its geometry."},
    {"visible", BOOL, "Shows the part with all results on it.", "true"},
    {"draw_style", STRING,
     "How the elements are drawn: filled, with mesh or outline, as lines or points, or not at all.",
     "surface",
     "surface, surface_mesh, surface_outline_mesh, line, point, outline, hidden_line_removed, "
     "none"},
    {"color", COLOR3F, "Color of the part where no scalar result is shown."},
    {"opacity", FLOAT, "Opacity of the part, from 0 (invisible) to 1 (opaque).", "1.0"},
    {"specular_intensity", FLOAT,
     "Strength of the highlights on the part, from 0 (dull) to 1 (shiny).", "0.5"},
    {"lighting", BOOL, "Shades the part by the direction of the light.", "true"},
    {"smooth_shading", BOOL, "Hides the edges between elements by averaging their normals.",
     "false"},
    {"line_width", UINT, "Width of lines and element edges, in pixels.", "1"},
    {"point_size", UINT, "Size of points, in pixels.", "1"},
    {"fringes_visible", BOOL, "Colors the part by the selected fringes result.", "true"},
    {"contour_lines_visible", BOOL, "Draws lines of equal value of the contour lines result.",
     "true"},
    {"vectors_visible", BOOL, "Draws the selected vector results on the part.", "true"},
    {"displacement_visible", BOOL, "Moves the part by the selected displacement result.", "false"},
    {"eye_lift_factor", FLOAT,
     "Eye lift factor. Will move the part slightly towards (if positive) or away (if negative) "
     "from the eye/camera.",
     "0.0f"},
    {"texture_image_name", STRING, "Name of the case's texture image that covers the part."},
    {"texture_environment_mapping", BOOL,
     "Lays the texture on as a reflection of the surroundings.", "false"},
    {"texture_repeat_factor", FLOAT, "How often the texture is repeated across the part.", "4.0"},
    {"texture_auto_image_scale", BOOL,
     "Scales the texture to the proportions of its image instead of those of the part.", "true"},
    {"texture_modulate", BOOL, "Multiplies the texture by the color of the part.", "false"},
    {"texture_filter_nearest", BOOL,
     "Shows the pixels of the texture sharply instead of interpolating between them.", "false"},
    {"element_set_filtering_enabled", BOOL, "Hides the elements that are in no visible set.",
     "true"},
    {"contour_lines_type", INT, "Kind of line that contour lines are drawn with.", "0", kAnyValue,
     kMarked},
    {"contour_lines_color_by_scalar", BOOL,
     "Colors contour lines by their value instead of in the single color.", "false", kAnyValue,
     kMarked},
    {"contour_lines_line_width", INT, "Width of contour lines, in pixels.", "1", kAnyValue,
     kMarked},
    {"contour_lines_single_color", COLOR3F,
     "Color of contour lines that are not colored by their value.", "", kAnyValue, kMarked},
};

constexpr PropDef kParticleTraceGroup[] = {
    {"visible", BOOL, "Shows all traces of the group."},
    {"vector_result_id", INT, "Id of the vector result, such as a velocity, that is followed."},
    {"map_scalar_result_id", INT, "Id of the scalar result that colors the traces."},
    {"seed_points", ARRAY, "Starting points of the traces in model coordinates, each a Vec3d."},
    {"visualization_style", STRING, "Shape that the traces are drawn in.", "",
     "cylinders, spheres, ribbons, comets, lines"},
    {"single_color", COLOR3F, "Color of the traces when they are not colored by a result."},
    {"radius_scale_mode", STRING,
     "Whether radius_scale_factor is a model length (absolute) or a part of the model size "
     "(relative).",
     "", kScaleModes},
    {"radius_scale_factor", DOUBLE, "Radius of cylinders, spheres and comets."},
    {"point_sampling_num_pulses", DOUBLE,
     "Number of particles released along a trace in the styles spheres and comets."},
    {"cometh_length", DOUBLE, "Length of a comet's tail, in the time of the trace."},
    {"ribbon_relative_width", DOUBLE, "Width of ribbons as a multiple of the radius."},
    {"ribbon_relative_thickness", DOUBLE, "Thickness of ribbons as a multiple of the radius."},
    {"arrow_length", DOUBLE,
     "Length of the arrows that show the direction along a trace, as a multiple of the radius."},
    {"id", INT, "Number that identifies the group within the case."},
    {"show_fringes", BOOL, "Colors the traces by the mapped scalar result."},
    {"description", STRING, "Name of the group for display to the user."},
    {"trace_forward", BOOL, "Follows the vectors downstream from the seed points.", "true"},
    {"trace_backward", BOOL, "Follows the vectors upstream from the seed points.", "true"},
    {"ignore_clipping", BOOL, "Shows the traces also where clipping planes hide the model.",
     "false"},
};

constexpr PropDef kResultSelection[] = {
    {"fringes_result_id", INT, "Id of the scalar result that colors the model."},
    {"contour_lines_result_id", INT, "Id of the scalar result shown as lines of equal value."},
    {"vector_result_ids", ARRAY, "Ids of the vector results shown as arrows."},
    {"displacement_result_id", INT, "Id of the displacement result that deforms the model."},
    {"transformation_result", BOOL, "Moves the parts by the rigid-body transformation result."},
    {"visibility_result", BOOL, "Hides the elements that the visibility result marks as hidden."},
    {"per_part_fringes_result_ids", ARRAY,
     "Ids of scalar results for single parts, which take the place of fringes_result_id there."},
};

constexpr PropDef kScalarSettings[] = {
    {"context_result_id", INT, "Id of the scalar result that the settings are for."},
    {"filter_min", DOUBLE, "Elements with values below this one are hidden."},
    {"filter_max", DOUBLE, "Elements with values above this one are hidden."},
    {"node_average", BOOL, "Averages element node values at the nodes that elements share.",
     "false"},
    {"auto_range_mode", STRING,
     "Fits the color range to the values at hand: of all items, of the visible ones, or not.", "",
     "off, all_items, visible_items"},
    {"num_contour_levels", UINT, "Number of contour lines over the range of values."},
    {"contour_lines_width", UINT, "Width of contour lines, in pixels.", "1"},
    {"contour_lines_mode", STRING,
     "Draws contour lines in one color or each in the color of its value.", "",
     "single, color_by_scalar"},
    {"contour_lines_single_color", COLOR3F, "Color of contour lines in mode single."},
};

constexpr PropDef kSetSelection[] = {
    {"visible_set_ids", ARRAY, "Ids of the sets whose items are shown."},
    {"show_complement", BOOL, "Shows what is in none of the selected sets instead."},
};

constexpr PropDef kStateSelection[] = {
    {"state_ids", ARRAY, "Ids of the states in the order of the animation frames."},
    {"num_mode_shape_frames", INT,
     "Number of frames that a mode shape is animated with; 0 animates the states as they are.",
     "0"},
    {"mode_shape_animation_type", STRING,
     "Part of the oscillation that is shown: rest to peak, peak to peak, or the whole cycle.", "",
     "quarter, half, full"},
    {"mode_shape_interpolation_type", STRING,
     "How the displacement varies over the frames: evenly (linear) or as a vibration (sine).", "",
     "linear, sine"},
    {"mode_shape_interpolate_scalars", BOOL,
     "Scales scalar results over the frames together with the displacement."},
};

constexpr PropDef kVectorSettings[] = {
    {"context_result_id", INT, "Id of the vector result that the settings are for."},
    {"scale_mode", STRING,
     "Whether scale_factor is model length per result unit (absolute) or relates the longest arrow "
     "to the model size (relative).",
     "", kScaleModes},
    {"scale_factor", DOUBLE, "Factor on the length of the arrows, as scale_mode says."},
    {"color_mode", STRING, "Draws all arrows in one color or each in its color of the fringes.", "",
     "single, color_by_fringes"},
    {"single_color", COLOR3F, "Color of the arrows in color mode single."},
    {"clamp_min_length", DOUBLE, "Shorter vectors are drawn with this length, in result units."},
    {"clamp_max_length", DOUBLE, "Longer vectors are drawn with this length, in result units."},
    {"filter_min_length", DOUBLE, "Shorter vectors are not drawn, in result units."},
    {"filter_max_length", DOUBLE, "Longer vectors are not drawn, in result units."},
    {"arrow_shaft_relative_radius", DOUBLE, "Radius of the shaft as a part of the arrow's length."},
    {"arrow_head_relative_radius", DOUBLE, "Radius of the head as a part of the arrow's length."},
    {"arrow_head_relative_length", DOUBLE, "Length of the head as a part of the arrow's length."},
    {"local_coordinates", BOOL,
     "Takes the components in the moving system of the part, so that arrows turn with it.", "true"},
    {"show_on_referenced_nodes_only", BOOL,
     "Leaves out the arrows at nodes that no element refers to.", "true"},
    {"simple_vector_line_width", INT, "Width of the lines in draw mode simple, in pixels."},
    {"draw_mode", STRING, "Draws solid arrows (normal) or lines, which are faster (simple).", "",
     "normal, simple"},
    {"draw_skipby", UINT, "Number of vectors left out after each one that is drawn."},
    {"draw_max_count", UINT, "Greatest number of vectors drawn at a time."},
    {"vector_type", STRING,
     "One arrow along the vector, or a pair that points outwards or inwards for a tensor's axis.",
     "", "arrow, symmetric_arrow, reverse_symmetric_arrow"},
};

constexpr PropDef kViewClippingPlane[] = {
    {"point", VEC3D, "Any point on the clipping plane, in model coordinates."},
    {"normal", VEC3D, "Direction perpendicular to the plane, towards the side that stays visible."},
};

constexpr PropDef kViewer[] = {
    {"animation_fps", DOUBLE, "Speed of the animation, in frames per second."},
    {"animation_first_frame_delay", INT, "Extra time that the first frame stays, in milliseconds."},
    {"animation_last_frame_delay", INT, "Extra time that the last frame stays, in milliseconds."},
    {"num_particle_trace_steps", INT,
     "Number of frames in which particles travel along their traces."},
    {"start_animation", BOOL, "Starts the animation as soon as the file is open."},
    {"halo_color", COLOR3F, "Color of the outline around highlighted items."},
    {"cutting_plane_anim_num_frames", INT,
     "Number of frames in which an animated cutting plane moves through the model."},
    {"cutting_plane_index_to_animate", INT,
     "Index of the cutting plane to animate among those of the case, from 0."},
    {"cutting_plane_anim_per_frame_distance", DOUBLE,
     "Way of the animated cutting plane along its normal from frame to frame, in model length "
     "units."},
    {"view_title", STRING, "Title of the view for display to the user."},
};

// The indices of a table in ascending order of the names.
template <const auto& kTable>
constexpr auto kOrderByName = [] {
    std::array<std::uint8_t, std::size(kTable)> order{};
    std::iota(order.begin(), order.end(), std::uint8_t{0});
    std::ranges::sort(order, {}, [](std::uint8_t index) { return kTable[index].name; });
    return order;
}();

// The count is stated beside the table, so that a row lost or doubled does not compile.
template <const auto& kTable, std::size_t kCount>
constexpr PropClassDef propClass(std::string_view className, std::string_view description) {
    static_assert(std::size(kTable) == kCount);
    return PropClassDef(className, description, kTable, kOrderByName<kTable>);
}

constexpr PropClassDef kPropClasses[] = {
    propClass<kBackground, 3>(
        "background",
        "Specification of the background color(s). Specify either single_background_color or both "
        "top_background_color and bottom_background_color."),
    propClass<kCamera, 6>(
        "camera",
        "Spesification of the default camera configuration to use when the file is opened. Only "
        "one camera group is supported in one property set."),
    propClass<kColorMapperContinuous, 10>(
        "color_mapper_continuous",
        "This group defines a color mapper with continuous color scheme (gradient). You specify "
        "which result the mapper should be used on with the context_result_id property. The mapper "
        "is set up with a range_min, range_max range. The gradient could be described either by a "
        "specified color mapper or with a custom gradient specified with the colors_at_values "
        "property. "),
    propClass<kColorMapperFilledContours, 9>(
        "color_mapper_filled_contours",
        "This group defines a color mapper with filled contours but with custom level spacing "
        "(e.g. non-uniform). You specify which result the mapper should be used on with the "
        "context_result_id property. The levels are configured with the level_values array "
        "specifying the minimum, maximum and level transition values and the level_colors "
        "specifying the color of each level. You can also use the color_scheme property to specify "
        "one of the built-in color mappings."),
    propClass<kColorMapperFilledContoursUniform, 11>(
        "color_mapper_filled_contours_uniform",
        "This group defines a color mapper with filled contours with uniform (equal sized) levels. "
        "You specify which result the mapper should be used on with the context_result_id "
        "property. Number of levels is specified with the num_colors property, and the levels are "
        "evenly distributed between the range_min and range_max values. You can also use the "
        "color_scheme property to specify one of the built-in color mappings."),
    propClass<kCuttingPlane, 22>(
        "cutting_plane",
        "This group defines a cutting plane. You have to specify the point and normal properties. "
        "The map_scalar_result_id and map_vector_result_id properties specifies which results to "
        "show on the cutting plane. The property set can have many cutting plane groups."),
    propClass<kIsosurface, 13>(
        "isosurface",
        "This group defines an isosurface. You have to specify the iso_scalar_result_id and the "
        "iso_value properties. The map_scalar_result_id and map_vector_result_id properties "
        "specifies which results to show on the isosurface. The property set can have many "
        "isosurface groups."),
    propClass<kIsovolume, 16>(
        "isovolume",
        "This group defines an isovolume. You have to specify the iso_scalar_result_id, "
        "min_iso_value and the max_iso_value properties. The map_scalar_result_id and "
        "map_vector_result_id properties specifies which results to show on the isovolume. The "
        "property set can have many isovolume groups."),
    propClass<kMirrorSettings, 14>(
        "mirror_settings",
        "This groups specifies the mirror settings to use. Only one mirror group is supported."),
    propClass<kOverlayColorLegend, 25>(
        "overlay_color_legend",
        "Specification of the appearance of a color legend. The groups applies to color legend for "
        "the result specified in the context_result_id property."),
    propClass<kOverlayImage, 7>(
        "overlay_image",
        "Specification of an overlay image (2D image shown somwhere fixed in the 3D view, e.g. a "
        "company logo). A property set can have many such groups."),
    propClass<kOverlayPlot, 26>(
        "overlay_plot",
        "Specification of an overlay plot (2D plot shown somwhere fixed in the 3D view). A "
        "property set can have many such groups."),
    propClass<kOverlayPlotCurve, 6>(
        "overlay_plot_curve",
        "Specification of an overlay plot curve (2D plot shown somwhere fixed in the 3D view). A "
        "property set can have many such groups."),
    propClass<kPartSettings, 27>(
        "part_settings",
        "Visual settings for the part identified by the context_geometry_index and context_part_id "
        "properties."),
    propClass<kParticleTraceGroup, 19>(
        "particle_trace_group",
        "This group defines a group of particle traces sharing the same settings. You have to "
        "specify at least one seed_points and the vector field to compute from in the "
        "vector_result_id property. The property set can have many particle trace groups."),
    propClass<kResultSelection, 7>(
        "result_selection",
        "Specify which results (scalars, vectors, displacments, etc) to show on the model. Only "
        "one result_selection group is supported in one property set."),
    propClass<kScalarSettings, 9>(
        "scalar_settings",
        "Settings for the scalar result with the result id specified in the context_result_id "
        "property.\u00A0This group is used to apply scalar filtering and control if the scalar "
        "should "
        "be node averaged or not."),
    propClass<kSetSelection, 2>(
        "set_selection",
        "Specify which sets are visible. Only one set group is supported in one property set."),
    propClass<kStateSelection, 5>(
        "state_selection",
        "Use this group to specify the animation setup of the file. For state/transient "
        "animations, specify an array of state ids. The order of the array will define the "
        "animation frames. For mode shape animation, specify the number of frames with the "
        "num_mode_shape_frames property."),
    propClass<kVectorSettings, 19>(
        "vector_settings",
        "Settings for the vector result with the result id specified in the context_result_id "
        "property."),
    propClass<kViewClippingPlane, 2>(
        "view_clipping_plane",
        "Spesification of clipping planes. Only one view clipping plane is supported in one "
        "property set."),
    propClass<kViewer, 10>(
        "viewer", "This group contains default settings for the viewer loading the ZRFx file."),
};
static_assert(std::size(kPropClasses) == 22);
static_assert(std::ranges::is_sorted(kPropClasses, {}, &PropClassDef::className));

}  // namespace

std::span<const PropClassDef> PropClassDef::all() {
    return kPropClasses;
}

}  // namespace unstruct
