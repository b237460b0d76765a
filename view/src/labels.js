// What the labels over the picture say: title block, legend, marks of the extremes.

import { colorFunction, limitsOf } from './colors.js';
import { numberText } from './numbers.js';
import { rangeOf } from './quantities.js';
import { shownRange, titleOf } from './selection.js';

/** @typedef {import('./viewer.js').Viewer} Viewer */
/** @typedef {import('./types.js').Result} Result */

/** @param {Viewer} viewer @returns {import('./overlay.js').Labels} */
export function labelsOf(viewer) {
    const { source, settings } = viewer;
    const result = source.model.results[settings.result];
    return {
        title: [[source.file, source.model.name].filter(Boolean).join(' – '), stateText(viewer), source.date],
        legend: settings.legend && result ? legendOf(viewer, result) : null,
        marks: settings.extremes && result ? marksOf(viewer, result) : [],
    };
}

/** @param {Viewer} viewer */
function stateText({ settings, state, exaggeration }) {
    const value = state.value === null || !state.type ? '' : `, ${state.type} ${numberText(state.value)}`;
    const scale = settings.displacement >= 0 ? `, deformed × ${numberText(exaggeration)}` : '';
    return `${state.name || `State ${state.id}`}${value}${scale}`;
}

/** @param {Viewer} viewer @param {Result} result @returns {import('./overlay.js').Legend | null} */
function legendOf({ source, settings, state }, result) {
    const range = shownRange(source.model, settings);
    if (!range) return null;
    const { scale, format, digits, quantity } = settings;
    const all = rangeOf(result, quantity, state.id);
    return {
        title: settings.legendTitle || titleOf(result, quantity),
        ...range,
        limits: limitsOf(scale, range.min, range.max),
        colorOf: colorFunction(scale, range.min, range.max),
        format,
        digits,
        hasBeyond: all !== null && (all.min < range.min || all.max > range.max),
    };
}

/** @param {Viewer} viewer @param {Result} result @returns {import('./overlay.js').Mark[]} */
function marksOf(viewer, result) {
    const { settings, state } = viewer;
    const extremes = result.states[state.id]?.extremes[settings.quantity];
    if (!extremes) return [];
    const isAtNode = result.mapping === 'Node';
    return /** @type {const} */ (['min', 'max']).map((name) => {
        const { value, id } = extremes[name];
        const number = numberText(value, settings.format, settings.digits);
        return {
            place: placeOf(viewer, extremes[name], isAtNode),
            text: `${name} ${number} at ${isAtNode ? 'node' : 'element'} ${id}`,
        };
    });
}

/** Where an extreme is in the picture, moved with its node when that is on the surface. @param {Viewer} viewer @param {import('./types.js').Extreme} extreme @param {boolean} isAtNode */
function placeOf({ shown, scene }, { id, part, position }, isAtNode) {
    for (const { surface, positions, part: own } of isAtNode ? shown : []) {
        const node = part === undefined || part === own ? surface.nodeIds.indexOf(id) : -1;
        if (node >= 0) return scene.placeOf([...positions.subarray(3 * node, 3 * node + 3)]);
    }
    return position ? scene.placeOf(position) : null;
}
