// What lies under a place in the picture.

import { plus, times } from './vectors.js';

/** @typedef {import('./types.js').Vector} Vector */
/** @typedef {import('./types.js').Surface} Surface */
/** @typedef {import('./topology.js').Topology} Topology */
/** @typedef {{ origin: Vector, direction: Vector }} Ray */
/**
 * A surface as it is shown.
 * @typedef {{ surface: Surface, topology: Topology, positions: Float32Array, index: number, part: number }} Shown
 */
/** @typedef {{ shown: Shown, cell: number, distance: number, point: Vector }} Hit */

/** @param {Float32Array} positions @param {number} node @returns {Vector} */
const pointOf = (positions, node) => [positions[3 * node], positions[3 * node + 1], positions[3 * node + 2]];

/**
 * Calls `take` with the distance and cell of each triangle that a ray meets (Möller and Trumbore). Makes
 * no objects, for there may be millions of triangles.
 * @param {Ray} ray @param {Shown} shown @param {(distance: number, cell: number) => void} take
 */
function forEachHit({ origin, direction }, shown, take) {
    const { triangles, triangleCells } = shown.topology;
    const { corners } = shown.surface;
    const at = shown.positions;
    const [ox, oy, oz] = origin;
    const [dx, dy, dz] = direction;
    for (let t = 0; t < triangleCells.length; ++t) {
        const a = 3 * corners[triangles[3 * t]];
        const b = 3 * corners[triangles[3 * t + 1]];
        const c = 3 * corners[triangles[3 * t + 2]];
        const [bx, by, bz] = [at[b] - at[a], at[b + 1] - at[a + 1], at[b + 2] - at[a + 2]];
        const [cx, cy, cz] = [at[c] - at[a], at[c + 1] - at[a + 1], at[c + 2] - at[a + 2]];
        const [px, py, pz] = [dy * cz - dz * cy, dz * cx - dx * cz, dx * cy - dy * cx];
        const determinant = bx * px + by * py + bz * pz;
        const [sx, sy, sz] = [ox - at[a], oy - at[a + 1], oz - at[a + 2]];
        const u = (sx * px + sy * py + sz * pz) / determinant;
        if (!(u >= 0 && u <= 1)) continue;
        const [qx, qy, qz] = [sy * bz - sz * by, sz * bx - sx * bz, sx * by - sy * bx];
        const v = (dx * qx + dy * qy + dz * qz) / determinant;
        if (v < 0 || u + v > 1) continue;
        const distance = (cx * qx + cy * qy + cz * qz) / determinant;
        if (distance > 0) take(distance, triangleCells[t]);
    }
}

/**
 * The nearest face that a ray meets.
 * @param {Ray} ray @param {Shown[]} all @param {(point: Vector) => boolean} isVisible @returns {Hit | null}
 */
export function nearestFace(ray, all, isVisible) {
    /** @type {Hit | null} */
    let nearest = null;
    for (const shown of all) {
        forEachHit(ray, shown, (distance, cell) => {
            const point = plus(ray.origin, times(ray.direction, distance));
            if (distance >= (nearest?.distance ?? Infinity) || !isVisible(point)) return;
            nearest = { shown, cell, distance, point };
        });
    }
    return nearest;
}

/**
 * The line or point nearest to a place in the picture, within some pixels.
 * @param {{ x: number, y: number }} place @param {Shown[]} all
 * @param {(point: Vector) => { x: number, y: number } | null} placeOf
 * @param {(point: Vector) => boolean} isVisible @returns {Hit | null}
 */
export function nearestLine(place, all, placeOf, isVisible) {
    const within = 8;
    /** @type {Hit | null} */
    let nearest = null;
    for (const shown of all) {
        const { kinds, begins, corners } = shown.surface;
        for (let cell = 0; cell < kinds.length; ++cell) {
            if (kinds[cell] > 1) continue;
            const points = [...corners.subarray(begins[cell], begins[cell + 1])].map((n) => pointOf(shown.positions, n));
            for (let k = 0; k < Math.max(1, points.length - 1); ++k) {
                const distance = pixelsFrom(place, placeOf(points[k]), placeOf(points[k + 1] ?? points[k]));
                if (distance > within || distance >= (nearest?.distance ?? Infinity) || !isVisible(points[k])) continue;
                nearest = { shown, cell, distance, point: points[k] };
            }
        }
    }
    return nearest;
}

/** @typedef {{ x: number, y: number }} Place */
/** How far a place is from a stretch. @param {Place} place @param {Place | null} a @param {Place | null} b */
function pixelsFrom(place, a, b) {
    if (!a || !b) return Infinity;
    const [dx, dy] = [b.x - a.x, b.y - a.y];
    const length = dx * dx + dy * dy;
    const along = length > 0 ? ((place.x - a.x) * dx + (place.y - a.y) * dy) / length : 0;
    const part = Math.max(0, Math.min(1, along));
    return Math.hypot(place.x - a.x - part * dx, place.y - a.y - part * dy);
}

/** The corner of a cell that is nearest to a place in the picture, as index of all corners. @param {Hit} hit @param {Place} place @param {(point: Vector) => Place | null} placeOf */
export function nearestCorner(hit, place, placeOf) {
    const { begins, corners } = hit.shown.surface;
    let best = begins[hit.cell];
    let least = Infinity;
    for (let k = begins[hit.cell]; k < begins[hit.cell + 1]; ++k) {
        const at = placeOf(pointOf(hit.shown.positions, corners[k]));
        const distance = at ? Math.hypot(at.x - place.x, at.y - place.y) : Infinity;
        if (distance < least) [least, best] = [distance, k];
    }
    return best;
}
