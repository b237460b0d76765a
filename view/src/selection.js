// What of a model the settings select.

import { quantityTitles, rangeOf } from './quantities.js';

/** @typedef {import('./types.js').Settings} Settings */

/** @param {import('./types.js').Model} model @param {Settings} settings */
export function stateOf(model, settings) {
    return model.states[settings.state];
}

/** The range that the colours cover; null without a result that has values. @param {import('./types.js').Model} model @param {Settings} settings */
export function shownRange(model, settings) {
    const result = model.results[settings.result];
    if (!result) return null;
    const { scale } = settings;
    if (scale.mode === 'fixed') return { min: scale.min, max: scale.max };
    return rangeOf(result, settings.quantity, scale.mode === 'state' ? stateOf(model, settings).id : null);
}

/** The name of a result with the quantity that is shown of it. @param {import('./types.js').Result} result @param {string} quantity */
export function titleOf(result, quantity) {
    return quantity === 'value' ? result.name : `${result.name}, ${quantityTitles[quantity] ?? quantity}`;
}
