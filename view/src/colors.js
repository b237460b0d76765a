// How values become colours.

import vtkDataArray from '@kitware/vtk.js/Common/Core/DataArray';
import vtkLookupTable from '@kitware/vtk.js/Common/Core/LookupTable';

/** @typedef {import('./types.js').Vector} Vector */
/** @typedef {import('./types.js').ColorScale} ColorScale */

const tableSize = 1024;
/** @type {Vector} */
export const undefinedGrey = [0.6, 0.6, 0.6];

/** Colours at even distances, from the lowest value up. @type {Record<string, string[]>} */
const schemes = {
    normal: ['0000ff', '0080ff', '00ffff', '00ff80', '00ff00', '80ff00', 'ffff00', 'ff8000', 'ff0000'],
    black_to_white: ['000000', 'ffffff'],
    white_to_black: ['ffffff', '000000'],
    green_to_brown: ['1a7a2a', 'c8c86e', '7a4a1e'],
    white_to_brown: ['ffffff', 'd8b483', '6b3e12'],
    metal_casting: ['202040', '7a1f1f', 'e06010', 'ffd060', 'ffffff'],
    thermal_1: ['000000', '800000', 'ff4000', 'ffc000', 'ffffff'],
    thermal_2: ['000050', '7000a0', 'e03060', 'ffa030', 'ffff90'],
    thermal_3: ['001060', '0080c0', 'f0f0f0', 'f08040', '900010'],
};

/** @param {string} hex @returns {Vector} */
export function colorOf(hex) {
    const number = parseInt(hex.replace('#', ''), 16);
    return [(number >> 16) / 255, ((number >> 8) & 255) / 255, (number & 255) / 255];
}

/** @param {readonly number[]} color */
export function hexOf(color) {
    return `#${color.map((c) => Math.round(c * 255).toString(16).padStart(2, '0')).join('')}`;
}

/** @param {string} name @returns {Vector[]} */
function schemeColors(name) {
    if (name === 'normal_inverted') return schemeColors('normal').reverse();
    return (schemes[name] ?? schemes.normal).map(colorOf);
}

/**
 * The colour at a place among colours that stand at rising places.
 * @param {Vector[]} colors @param {readonly number[]} places @param {number} at @returns {Vector}
 */
function between(colors, places, at) {
    const next = places.findIndex((place) => place >= at);
    if (next < 0) return colors[colors.length - 1];
    if (next === 0) return colors[0];
    const part = (at - places[next - 1]) / (places[next] - places[next - 1] || 1);
    const [low, high] = [colors[next - 1], colors[next]];
    return /** @type {Vector} */ (low.map((c, i) => c + (high[i] - c) * part));
}

/** @param {number} count */
const evenPlaces = (count) => Array.from({ length: count }, (_, i) => (count > 1 ? i / (count - 1) : 0));

/** The limits of the bands of a range; null where colours are smooth. @param {ColorScale} scale @param {number} min @param {number} max */
export function limitsOf(scale, min, max) {
    if (scale.levels) return scale.levels;
    if (scale.smooth) return null;
    const isLogarithmic = scale.logarithmic && min > 0;
    return Array.from({ length: scale.bands + 1 }, (_, i) => {
        const part = i / scale.bands;
        return isLogarithmic ? min * (max / min) ** part : min + (max - min) * part;
    });
}

/**
 * A function from values within a range to colours.
 * @param {ColorScale} scale @param {number} min @param {number} max @returns {(value: number) => Vector}
 */
export function colorFunction(scale, min, max) {
    const limits = limitsOf(scale, min, max);
    const scheme = schemeColors(scale.scheme);
    const own = scale.colors;
    if (limits) {
        const count = limits.length - 1;
        return (value) => {
            const above = limits.findIndex((limit, i) => i > 0 && value < limit);
            const band = above < 0 ? count - 1 : above - 1;
            if (own) return own[Math.min(band, own.length - 1)];
            return between(scheme, evenPlaces(scheme.length), count > 1 ? band / (count - 1) : 0);
        };
    }
    if (own && scale.points) return (value) => between(own, /** @type {number[]} */ (scale.points), value);
    const places = evenPlaces(scheme.length);
    const isLogarithmic = scale.logarithmic && min > 0;
    return (value) => {
        const part = isLogarithmic ? Math.log(value / min) / Math.log(max / min) : (value - min) / (max - min);
        return between(scheme, places, Number.isFinite(part) ? part : 0);
    };
}

/** @param {ColorScale} scale @param {number} min @param {number} max */
export function lookupTable(scale, min, max) {
    const top = max > min ? max : min + (Math.abs(min) || 1) * 1e-6;
    const of = colorFunction(scale, min, top);
    const table = new Uint8Array(4 * tableSize);
    for (let i = 0; i < tableSize; ++i) {
        const value = min + ((top - min) * i) / (tableSize - 1);
        table.set([...of(value).map((c) => Math.round(c * 255)), 255], 4 * i);
    }
    const lookup = vtkLookupTable.newInstance({ numberOfColors: tableSize });
    lookup.setRange(min, top);
    lookup.setNanColor([...(scale.undefinedColor ?? undefinedGrey), 1]);
    // Only a range that does not hold all values has some beyond it.
    const beyond = { above: scale.above, below: scale.below };
    if (beyond.above) {
        lookup.setAboveRangeColor([...beyond.above, 1]);
        lookup.setUseAboveRangeColor(true);
    }
    if (beyond.below) {
        lookup.setBelowRangeColor([...beyond.below, 1]);
        lookup.setUseBelowRangeColor(true);
    }
    // The table takes over the colours of what is beyond it, so it comes last.
    lookup.setTable(vtkDataArray.newInstance({ numberOfComponents: 4, values: table }));
    return lookup;
}
