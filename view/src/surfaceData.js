// Positions and colours of one surface, from the values that the settings select.

import { quantities } from './quantities.js';
import { stateOf } from './selection.js';

/** @typedef {import('./types.js').Settings} Settings */
/** @typedef {import('./types.js').Source} Source */
/** @typedef {import('./types.js').Surface} Surface */
/** A surface, and its place among those of the source. @typedef {{ surface: Surface, index: number }} Indexed */

/** @param {Source} source @param {Settings} settings @param {number} result @param {number} index */
async function valuesOf(source, settings, result, index) {
    return result < 0 ? null : source.values(result, stateOf(source.model, settings).id, index);
}

/**
 * Where the nodes are, displaced `factor` times.
 * @param {Source} source @param {Settings} settings @param {Indexed} own @param {number} factor
 */
export async function displacedPositions(source, settings, { surface, index }, factor) {
    const values = (await valuesOf(source, settings, settings.displacement, index))?.node;
    if (!values) return surface.positions;
    return surface.positions.map((position, i) => position + (values[i] === values[i] ? factor * values[i] : 0));
}

/** The vectors that arrows show, at the nodes. @param {Source} source @param {Settings} settings @param {Indexed} own */
export async function vectorsOf(source, settings, { index }) {
    return (await valuesOf(source, settings, settings.vectors, index))?.node ?? null;
}

/** @param {Surface} surface @param {Float32Array} ofCells */
function atCorners({ begins, corners }, ofCells) {
    const ofCorners = new Float32Array(corners.length);
    for (let cell = 0; cell + 1 < begins.length; ++cell) ofCorners.fill(ofCells[cell], begins[cell], begins[cell + 1]);
    return ofCorners;
}

/**
 * The numbers that colours stand for, at nodes or at corners.
 * @param {Source} source @param {Settings} settings @param {Indexed} own
 * @returns {Promise<{ numbers: Float32Array, areAtCorners: boolean }>}
 */
export async function coloredNumbers(source, settings, { surface, index }) {
    const values = await valuesOf(source, settings, settings.result, index);
    // Where others of the model have values, this part is undefined.
    if (!values) return { numbers: new Float32Array(surface.positions.length / 3).fill(NaN), areAtCorners: false };
    const result = source.model.results[settings.result];
    /** @param {Float32Array} own */
    const quantity = (own) => quantities(result, settings.quantity, own);
    if (values.node && (settings.average || (!values.cell && !values.corner))) {
        return { numbers: quantity(values.node), areAtCorners: false };
    }
    const numbers = values.corner ? quantity(values.corner) : atCorners(surface, quantity(values.cell ?? new Float32Array()));
    return { numbers, areAtCorners: true };
}
