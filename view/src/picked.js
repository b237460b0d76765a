// What is picked in the picture, and its values.

import { nearestCorner, nearestFace, nearestLine } from './pick.js';
import { quantityOf } from './quantities.js';
import { dot, minus } from './vectors.js';

/** @typedef {import('./viewer.js').Viewer} Viewer */
/** @typedef {import('./types.js').Vector} Vector */
/**
 * A node, and an element that it is a corner of.
 * @typedef {{ shown: import('./pick.js').Shown, cell: number, corner: number, node: number }} Picked
 */

/** What lies under a place in the picture. @param {Viewer} viewer @param {number} x @param {number} y @returns {Picked | null} */
export function pickAt({ scene, shown, settings: { clip } }, x, y) {
    const place = { x, y };
    /** @param {Vector} point */
    const placeOf = (point) => scene.placeOf(point);
    /** Whether the clipping plane leaves it. @param {Vector} point */
    const isVisible = (point) => !clip.on || dot(minus(point, clip.point), clip.normal) >= 0;
    const hit =
        nearestFace(scene.rayThrough(x, y), shown, isVisible) ?? nearestLine(place, shown, placeOf, isVisible);
    if (!hit) return null;
    const corner = nearestCorner(hit, place, placeOf);
    return { shown: hit.shown, cell: hit.cell, corner, node: hit.shown.surface.corners[corner] };
}

/**
 * What gives quantities of the picked item of a result in a state, and how exact they are; null
 * without values.
 * @param {import('./types.js').Source} source @param {Picked} picked
 * @param {number} result @param {number} state  Its id.
 * @returns {Promise<{ of: (quantity: string) => number, step: number } | null>}
 */
export async function valuesAt(source, picked, result, state) {
    const values = await source.values(result, state, picked.shown.index);
    if (!values) return null;
    const { mapping, components } = source.model.results[result];
    const [place, at] =
        mapping === 'Node' ? [values.node, picked.node] :
        mapping === 'ElementNode' ? [values.corner, picked.corner] : [values.cell, picked.cell];
    if (!place) return null;
    /** @param {string} quantity */
    const of = (quantity) => quantityOf(source.model.results[result], quantity)(place, at * components);
    return { of, step: values.step };
}
