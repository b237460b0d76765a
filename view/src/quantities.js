// What follows from the components of an item: the same as in zrfx stats and zrfx cat.

/** @typedef {(values: Float32Array, at: number, halved: number) => number} Formula */

/** @type {Formula} */
const magnitude = (v, at) => Math.hypot(v[at], v[at + 1], v[at + 2]);

/** @type {Formula} */
function vonMises(t, at, halved) {
    const [xx, yy, zz] = [t[at], t[at + 1], t[at + 2]];
    const [xy, yz, zx] = [t[at + 3] * halved, t[at + 4] * halved, t[at + 5] * halved];
    const normal = (xx - yy) ** 2 + (yy - zz) ** 2 + (zz - xx) ** 2;
    return Math.sqrt(normal / 2 + 3 * (xy * xy + yz * yz + zx * zx));
}

/**
 * The eigenvalues of a symmetric tensor, the largest first.
 * @param {Float32Array} t @param {number} at @param {number} halved @returns {number[]}
 */
function principalValues(t, at, halved) {
    const [xx, yy, zz] = [t[at], t[at + 1], t[at + 2]];
    const [xy, yz, zx] = [t[at + 3] * halved, t[at + 4] * halved, t[at + 5] * halved];
    const mean = (xx + yy + zz) / 3;
    const [a, b, c] = [xx - mean, yy - mean, zz - mean];
    const p = Math.sqrt((a * a + b * b + c * c + 2 * (xy * xy + yz * yz + zx * zx)) / 6);
    if (p === 0) return [mean, mean, mean];
    const determinant =
        a * (b * c - yz * yz) - xy * (xy * c - yz * zx) + zx * (xy * yz - b * zx);
    const r = Math.max(-1, Math.min(1, determinant / (2 * p ** 3)));
    const angle = Math.acos(r) / 3;
    const first = mean + 2 * p * Math.cos(angle);
    const third = mean + 2 * p * Math.cos(angle + (2 * Math.PI) / 3);
    return [first, 3 * mean - first - third, third];
}

/** @type {Record<string, Formula>} */
const formulas = {
    magnitude,
    von_mises: vonMises,
    principal_1: (t, at, halved) => principalValues(t, at, halved)[0],
    principal_2: (t, at, halved) => principalValues(t, at, halved)[1],
    principal_3: (t, at, halved) => principalValues(t, at, halved)[2],
    maximum_shear: (t, at, halved) => {
        const values = principalValues(t, at, halved);
        return (values[0] - values[2]) / 2;
    },
};

/**
 * A function that gives the quantity of the item whose components begin at an index.
 * @param {import('./types.js').Result} result @param {string} quantity
 * @returns {(values: Float32Array, at: number) => number}
 */
export function quantityOf(result, quantity) {
    const formula = formulas[quantity];
    const component = Math.max(0, result.quantities.indexOf(quantity));
    if (!formula) return (values, at) => values[at + component];
    const halved = result.engineeringShear ? 0.5 : 1;
    return (values, at) => formula(values, at, halved);
}

/**
 * The quantity of all items.
 * @param {import('./types.js').Result} result @param {string} quantity @param {Float32Array} values
 */
export function quantities(result, quantity, values) {
    const of = quantityOf(result, quantity);
    const numbers = new Float32Array(values.length / result.components);
    for (let i = 0; i < numbers.length; ++i) numbers[i] = of(values, i * result.components);
    return numbers;
}

/** The quantity that says most: von Mises of a tensor, the magnitude of a vector. @param {import('./types.js').Result} result */
export function mainQuantity(result) {
    const main = ['von_mises', 'magnitude'].find((name) => result.quantities.includes(name));
    return main ?? result.quantities[0];
}

/**
 * The lowest and highest value of a quantity in one state, or in all.
 * @param {import('./types.js').Result} result @param {string} quantity @param {number | null} state
 * @returns {{ min: number, max: number } | null}
 */
export function rangeOf(result, quantity, state) {
    const states = state === null ? Object.values(result.states) : [result.states[state]];
    const all = states.flatMap((own) => own?.extremes[quantity] ?? []);
    if (all.length === 0) return null;
    return {
        min: all.reduce((min, own) => Math.min(min, own.min.value), Infinity),
        max: all.reduce((max, own) => Math.max(max, own.max.value), -Infinity),
    };
}

export const quantityTitles = /** @type {Record<string, string>} */ ({
    value: 'value',
    von_mises: 'von Mises',
    principal_1: '1st principal',
    principal_2: '2nd principal',
    principal_3: '3rd principal',
    maximum_shear: 'maximum shear',
});
