// Arithmetic of points and directions.

/** @typedef {import('./types.js').Vector} Vector */

/** @param {readonly number[]} a @param {readonly number[]} b @returns {Vector} */
export const minus = (a, b) => [a[0] - b[0], a[1] - b[1], a[2] - b[2]];
/** @param {readonly number[]} a @param {readonly number[]} b @returns {Vector} */
export const plus = (a, b) => [a[0] + b[0], a[1] + b[1], a[2] + b[2]];
/** @param {readonly number[]} a @param {number} factor @returns {Vector} */
export const times = (a, factor) => [a[0] * factor, a[1] * factor, a[2] * factor];
/** @param {readonly number[]} a @param {readonly number[]} b */
export const dot = (a, b) => a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
/** @param {readonly number[]} a @param {readonly number[]} b @returns {Vector} */
export const cross = (a, b) => [
    a[1] * b[2] - a[2] * b[1],
    a[2] * b[0] - a[0] * b[2],
    a[0] * b[1] - a[1] * b[0],
];
/** A direction of length 1; along z for one that has no length. @param {readonly number[]} a @returns {Vector} */
export function unit(a) {
    const length = Math.hypot(a[0], a[1], a[2]);
    return length > 0 ? times(a, 1 / length) : [0, 0, 1];
}

/** The box around points, as [xmin, xmax, ymin, ...], grown to hold another set of points. @param {Float32Array} positions @param {number[] | null} [bounds] */
export function boundsOf(positions, bounds = null) {
    const box = bounds ?? [Infinity, -Infinity, Infinity, -Infinity, Infinity, -Infinity];
    for (let i = 0; i < positions.length; ++i) {
        const axis = i % 3;
        const value = positions[i];
        if (value < box[2 * axis]) box[2 * axis] = value;
        if (value > box[2 * axis + 1]) box[2 * axis + 1] = value;
    }
    return box;
}

/** The length of the diagonal of a box; 1 for a box of nothing. @param {number[]} box */
export function sizeOf(box) {
    const size = Math.hypot(box[1] - box[0], box[3] - box[2], box[5] - box[4]);
    return Number.isFinite(size) && size > 0 ? size : 1;
}

/** @param {number[]} box @returns {Vector} */
export const centreOf = (box) => [(box[0] + box[1]) / 2, (box[2] + box[3]) / 2, (box[4] + box[5]) / 2];

/** @param {number[]} box @returns {Vector[]} */
export const cornersOf = (box) =>
    [0, 1, 2, 3, 4, 5, 6, 7].map((k) => [box[k & 1], box[2 + ((k >> 1) & 1)], box[4 + ((k >> 2) & 1)]]);

/** Whether a box is not that of nothing. @param {number[]} box */
export const isBox = (box) => box.every(Number.isFinite);
