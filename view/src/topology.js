// What is drawn of a surface's cells: triangles, lines, points and edges.

const point = 0;
const line = 1;
const quadraticFace = 3;
const featureAngleCosine = Math.cos((30 * Math.PI) / 180);

/**
 * @typedef {object} Topology
 * @property {Uint32Array} triangles  Three corners each, as indices into all corners of the surface.
 * @property {Uint32Array} triangleCells  The cell of each.
 * @property {Uint32Array} lines  Two corners each.
 * @property {Uint32Array} lineCells
 * @property {Uint32Array} points  One corner each.
 */

/** Calls `take` with the corners of each triangle of a face. @param {number} begin @param {number} count @param {boolean} isQuadratic @param {(a: number, b: number, c: number) => void} take */
function triangulate(begin, count, isQuadratic, take) {
    if (!isQuadratic) {
        for (let k = 1; k + 1 < count; ++k) take(begin, begin + k, begin + k + 1);
        return;
    }
    for (let k = 0; k < count; k += 2) {
        take(begin + ((k + count - 1) % count), begin + k, begin + k + 1);
    }
    for (let k = 3; k + 2 < count; k += 2) take(begin + 1, begin + k, begin + k + 2);
}

/** How many triangles, lines and points the cells give. @param {import('./types.js').Surface} surface */
function countsOf({ kinds, begins }) {
    const counts = { triangles: 0, lines: 0, points: 0 };
    for (let cell = 0; cell < kinds.length; ++cell) {
        const count = begins[cell + 1] - begins[cell];
        if (kinds[cell] === point) ++counts.points;
        else if (kinds[cell] === line) counts.lines += count - 1;
        else counts.triangles += count - 2;
    }
    return counts;
}

/** @param {import('./types.js').Surface} surface @returns {Topology} */
export function topologyOf(surface) {
    const { kinds, begins } = surface;
    const counts = countsOf(surface);
    const triangles = new Uint32Array(3 * counts.triangles);
    const triangleCells = new Uint32Array(counts.triangles);
    const lines = new Uint32Array(2 * counts.lines);
    const lineCells = new Uint32Array(counts.lines);
    const points = new Uint32Array(counts.points);
    let [t, l, p] = [0, 0, 0];
    for (let cell = 0; cell < kinds.length; ++cell) {
        const begin = begins[cell];
        const count = begins[cell + 1] - begin;
        if (kinds[cell] === point) {
            points[p++] = begin;
        } else if (kinds[cell] === line) {
            for (let k = 0; k + 1 < count; ++k) {
                lines[2 * l] = begin + k;
                lines[2 * l + 1] = begin + k + 1;
                lineCells[l++] = cell;
            }
        } else {
            triangulate(begin, count, kinds[cell] === quadraticFace, (a, b, c) => {
                triangles[3 * t] = a;
                triangles[3 * t + 1] = b;
                triangles[3 * t + 2] = c;
                triangleCells[t++] = cell;
            });
        }
    }
    return { triangles, triangleCells, lines, lineCells, points };
}

/** The unit normal of a face, by Newell's sum. @param {import('./types.js').Surface} surface @param {number} cell @returns {[number, number, number]} */
function normalOf(surface, cell) {
    const { positions, begins, corners } = surface;
    const begin = begins[cell];
    const count = begins[cell + 1] - begin;
    let [x, y, z] = [0, 0, 0];
    for (let k = 0; k < count; ++k) {
        const a = 3 * corners[begin + k];
        const b = 3 * corners[begin + ((k + 1) % count)];
        x += (positions[a + 1] - positions[b + 1]) * (positions[a + 2] + positions[b + 2]);
        y += (positions[a + 2] - positions[b + 2]) * (positions[a] + positions[b]);
        z += (positions[a] - positions[b]) * (positions[a + 1] + positions[b + 1]);
    }
    const length = Math.hypot(x, y, z) || 1;
    return [x / length, y / length, z / length];
}

/** Finds the first cell of an edge: a table of open addressing. */
class EdgeTable {
    /** @param {number} most */
    constructor(most) {
        this.size = 2 ** Math.ceil(Math.log2(2 * most + 2));
        this.low = new Uint32Array(this.size);
        this.high = new Uint32Array(this.size);
        this.cell = new Int32Array(this.size).fill(-1);
        this.isWanted = new Uint8Array(this.size);
    }

    /** The place of an edge, which is free when its cell is -1. @param {number} a @param {number} b */
    placeOf(a, b) {
        const [low, high] = a < b ? [a, b] : [b, a];
        let place = (Math.imul(low, 0x9e3779b1) ^ Math.imul(high, 0x85ebca6b)) >>> 0;
        for (place %= this.size; this.cell[place] >= 0; place = (place + 1) % this.size) {
            if (this.low[place] === low && this.high[place] === high) break;
        }
        this.low[place] = low;
        this.high[place] = high;
        return place;
    }

    /** The nodes of the edges that are wanted, two each. */
    pairs() {
        let count = 0;
        for (const isWanted of this.isWanted) count += isWanted;
        const pairs = new Uint32Array(2 * count);
        for (let place = 0, at = 0; place < this.size; ++place) {
            if (!this.isWanted[place]) continue;
            pairs[at++] = this.low[place];
            pairs[at++] = this.high[place];
        }
        return pairs;
    }
}

/**
 * Lines, and the sides of all faces once each, as pairs of nodes; of the sides perhaps only those that
 * outline the shape, where the surface ends or bends.
 * @param {import('./types.js').Surface} surface @param {boolean} isOutline
 */
export function edgesOf(surface, isOutline) {
    const { kinds, begins, corners } = surface;
    const table = new EdgeTable(corners.length);
    for (let cell = 0; cell < kinds.length; ++cell) {
        if (kinds[cell] === point) continue;
        const isLine = kinds[cell] === line;
        const begin = begins[cell];
        const count = begins[cell + 1] - begin;
        for (let k = 0; k < (isLine ? count - 1 : count); ++k) {
            const place = table.placeOf(corners[begin + k], corners[begin + ((k + 1) % count)]);
            const other = table.cell[place];
            if (other < 0) table.cell[place] = cell;
            table.isWanted[place] = !isOutline || isLine || other < 0 || bends(surface, cell, other) ? 1 : 0;
        }
    }
    return table.pairs();
}

/** @param {import('./types.js').Surface} surface @param {number} a @param {number} b */
function bends(surface, a, b) {
    const [n, m] = [normalOf(surface, a), normalOf(surface, b)];
    return n[0] * m[0] + n[1] * m[1] + n[2] * m[2] < featureAngleCosine;
}
