// What is shown of a model before a case, or somebody, says more.

import { colorOf, undefinedGrey } from './colors.js';
import { mainQuantity } from './quantities.js';

/** @typedef {import('./types.js').Settings} Settings */
/** @typedef {import('./types.js').Model} Model */

const mostArrows = 20000;

/** Told apart by everybody, those who see few colours included. */
const partColors = ['8dafc8', 'd8b365', '7fbf7b', 'af8dc3', 'e9a3c9', 'c7a17a', '9aa0a6', '5ab4ac'].map(colorOf);

/** @param {number} place @returns {import('./types.js').PartLook} */
export function defaultLook(place) {
    return {
        visible: true,
        color: partColors[place % partColors.length],
        opacity: 1,
        style: 'surface',
        fringes: true,
        displaced: false,
        vectors: true,
        lighting: true,
        specular: 0.5,
        lineWidth: 1,
        pointSize: 3,
    };
}

/** @returns {import('./types.js').ArrowStyle} */
export function defaultArrows() {
    return { unitLength: null, color: null, drawn: [0, Infinity], clamped: [0, Infinity], skipped: 0, most: mostArrows };
}

/** @returns {import('./types.js').ColorScale} */
export function defaultScale() {
    return {
        scheme: 'normal',
        smooth: false,
        bands: 10,
        mode: 'all',
        min: 0,
        max: 1,
        levels: null,
        colors: null,
        points: null,
        above: null,
        below: null,
        undefinedColor: undefinedGrey,
        logarithmic: false,
    };
}

/** What is shown without a case: a stress if there is one, deformed. @param {Model} model @returns {Settings} */
export function defaultSettings(model) {
    const { results } = model;
    const tensor = results.findIndex((result) => result.type === 'Tensor');
    const result = tensor >= 0 ? tensor : results.findIndex((own) => own.components > 0);
    const displacement = results.findIndex((own) => own.type === 'Displacement');
    // Every mode shape has a scale of its own.
    const areModes = model.states.length > 0 && model.states.every((state) => state.type === 'Frequency');
    const parts = new Map(model.parts.map((part, i) => [part.id, { ...defaultLook(i), style: /** @type {const} */ ('surface_mesh'), displaced: displacement >= 0 }]));
    return {
        state: areModes ? 0 : model.states.length - 1,
        frames: model.states.map((_, i) => i),
        result,
        quantity: result >= 0 ? mainQuantity(results[result]) : '',
        average: true,
        scale: { ...defaultScale(), mode: areModes ? 'state' : 'all' },
        displacement,
        exaggeration: null,
        phase: 1,
        swings: areModes,
        undeformed: false,
        vectors: -1,
        arrowScale: 0.08,
        arrows: defaultArrows(),
        parts,
        sets: [],
        clip: { on: false, point: [0, 0, 0], normal: [-1, 0, 0] },
        extremes: false,
        legend: true,
        legendTitle: '',
        format: 'g',
        digits: 5,
        background: null,
        framesPerSecond: 8,
        firstDelay: 0,
    };
}
