// What a case says of how its model is shown.

import { defaultLook, defaultSettings } from './defaults.js';
import { mainQuantity } from './quantities.js';
import { times } from './vectors.js';

/** @typedef {import('./types.js').Settings} Settings */
/** @typedef {import('./types.js').Model} Model */
/** @typedef {Record<string, any>} Values */
/** @typedef {(settings: Settings, values: Values, model: Model) => void} Group */

/** @param {Model} model @param {number | undefined} id */
const resultOfId = (model, id) => model.results.findIndex((result) => result.id === id);

/** The items of a list that may be missing. @param {any} list @returns {any[]} */
const listOf = (list) => (Array.isArray(list) ? list : []);

/** @param {Settings} settings @param {Values} values @param {Model} model */
const isOfFringes = (settings, values, model) =>
    settings.result >= 0 && resultOfId(model, values.context_result_id) === settings.result;

/** What the three groups of colour mappers share. @param {Settings} settings @param {Values} values */
function takeColors(settings, values) {
    const { scale } = settings;
    scale.scheme = values.color_scheme ?? scale.scheme;
    scale.logarithmic = values.logarithmic_scale ?? false;
    scale.above = values.above_range_color ?? null;
    scale.below = values.below_range_color ?? null;
    scale.undefinedColor = values.undefined_color ?? scale.undefinedColor;
    if (values.range_min === undefined || values.range_max === undefined) return;
    Object.assign(scale, { mode: 'fixed', min: values.range_min, max: values.range_max });
}

/** @type {Record<string, Group>} */
const groups = {
    result_selection(settings, values, model) {
        settings.result = resultOfId(model, values.fringes_result_id);
        if (settings.result >= 0) settings.quantity = mainQuantity(model.results[settings.result]);
        settings.displacement = resultOfId(model, values.displacement_result_id);
        settings.vectors = resultOfId(model, listOf(values.vector_result_ids)[0]);
    },
    state_selection(settings, values, model) {
        const places = listOf(values.state_ids).map((id) => model.states.findIndex((state) => state.id === id));
        const known = places.filter((place) => place >= 0);
        if (known.length > 0) settings.frames = known;
        settings.state = settings.frames[settings.frames.length - 1];
        settings.swings = (values.num_mode_shape_frames ?? 0) > 0;
        if (settings.swings) settings.state = settings.frames[0];
    },
    part_settings(settings, values) {
        const look = settings.parts.get(values.context_part_id);
        if (!look) return;
        look.visible = values.visible ?? look.visible;
        look.style = values.draw_style ?? look.style;
        look.color = values.color ?? look.color;
        look.opacity = values.opacity ?? look.opacity;
        look.specular = values.specular_intensity ?? look.specular;
        look.lighting = values.lighting ?? look.lighting;
        look.lineWidth = values.line_width ?? look.lineWidth;
        look.pointSize = values.point_size ?? look.pointSize;
        look.fringes = values.fringes_visible ?? look.fringes;
        look.vectors = values.vectors_visible ?? look.vectors;
        look.displaced = values.displacement_visible ?? look.displaced;
    },
    background(settings, values) {
        const one = values.single_background_color;
        const [top, bottom] = [values.top_background_color, values.bottom_background_color];
        if (one) settings.background = [one];
        else if (top && bottom) settings.background = [top, bottom];
    },
    color_mapper_continuous(settings, values, model) {
        if (!isOfFringes(settings, values, model)) return;
        takeColors(settings, values);
        settings.scale.smooth = true;
        const stops = listOf(values.colors_at_values);
        if (stops.length < 4) return;
        settings.scale.points = stops.filter((_, i) => i % 2 === 0);
        settings.scale.colors = stops.filter((_, i) => i % 2 === 1);
    },
    color_mapper_filled_contours(settings, values, model) {
        if (!isOfFringes(settings, values, model)) return;
        takeColors(settings, values);
        const levels = listOf(values.level_values);
        if (levels.length < 2) return;
        Object.assign(settings.scale, { mode: 'fixed', levels, min: levels[0], max: levels[levels.length - 1] });
        settings.scale.bands = levels.length - 1;
        settings.scale.colors = listOf(values.level_colors).length > 0 ? values.level_colors : null;
    },
    color_mapper_filled_contours_uniform(settings, values, model) {
        if (!isOfFringes(settings, values, model)) return;
        takeColors(settings, values);
        settings.scale.bands = Math.max(1, Math.min(256, values.num_colors ?? 10));
        settings.scale.colors = listOf(values.level_colors).length > 0 ? values.level_colors : null;
    },
    scalar_settings(settings, values, model) {
        if (!isOfFringes(settings, values, model)) return;
        settings.average = values.node_average ?? false;
        if (values.auto_range_mode && values.auto_range_mode !== 'off') settings.scale.mode = 'state';
    },
    overlay_color_legend(settings, values, model) {
        if (!isOfFringes(settings, values, model)) return;
        settings.legend = values.visibility_mode !== 'never' && values.visible !== false;
        settings.legendTitle = values.custom_legend_title ?? '';
        settings.format = values.numeric_format ?? settings.format;
        settings.digits = Math.max(0, Math.min(20, values.numeric_precision ?? settings.digits));
    },
    vector_settings(settings, values, model) {
        if (resultOfId(model, values.context_result_id) !== settings.vectors) return;
        const { arrows } = settings;
        if (values.scale_mode === 'relative') settings.arrowScale = values.scale_factor ?? settings.arrowScale;
        if (values.scale_mode === 'absolute') arrows.unitLength = values.scale_factor ?? null;
        if (values.color_mode !== 'color_by_fringes') arrows.color = values.single_color ?? null;
        arrows.drawn = [values.filter_min_length ?? 0, values.filter_max_length ?? Infinity];
        arrows.clamped = [values.clamp_min_length ?? 0, values.clamp_max_length ?? Infinity];
        arrows.skipped = values.draw_skipby ?? 0;
        arrows.most = Math.max(1, Math.min(arrows.most, values.draw_max_count ?? arrows.most));
    },
    set_selection(settings, values, model) {
        const ids = listOf(values.visible_set_ids);
        settings.sets = model.sets.flatMap((set, i) => (ids.includes(set.id) ? [i] : []));
    },
    view_clipping_plane(settings, values) {
        if (values.point && values.normal) settings.clip = { on: true, point: values.point, normal: values.normal };
    },
    cutting_plane(settings, values) {
        // Of the section only the clipping; its normal points to what is hidden.
        if (!values.visible || !values.clip_model || !values.point || !values.normal) return;
        settings.clip = { on: true, point: values.point, normal: times(values.normal, -1) };
    },
    viewer(settings, values) {
        settings.framesPerSecond = Math.max(0.1, Math.min(60, values.animation_fps ?? settings.framesPerSecond));
        settings.firstDelay = Math.max(0, values.animation_first_frame_delay ?? 0);
    },
};

/** The settings that a case has; those of a model without one for null. @param {Model} model @param {import('./types.js').Case | null} shown */
export function settingsOf(model, shown) {
    const settings = defaultSettings(model);
    if (!shown) return settings;
    settings.average = false;
    settings.parts = new Map(model.parts.map((part, i) => [part.id, defaultLook(i)]));
    // Others refer to the result that is selected here.
    const isFirst = (/** @type {{ classType: string }} */ set) => (set.classType === 'result_selection' ? 0 : 1);
    const sets = [...shown.properties].sort((a, b) => isFirst(a) - isFirst(b));
    for (const { classType, values } of sets) groups[classType]?.(settings, values, model);
    return settings;
}

/** Where a case puts the camera; null when it does not say. @param {import('./types.js').Case | null} shown @returns {import('./types.js').CameraPlace | null} */
export function cameraOf(shown) {
    const values = shown?.properties.find((set) => set.classType === 'camera')?.values;
    if (!values?.eye || !values.vrp || !values.vup) return null;
    return {
        eye: values.eye,
        focus: values.vrp,
        up: values.vup,
        ortho: values.projection_type === 'ortho',
        angle: values.field_of_view_y_degrees ?? 30,
        height: values.ortho_height ?? 1,
    };
}
