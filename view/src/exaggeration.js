// How much a displacement has to be exaggerated to be seen.

import { rangeOf } from './quantities.js';

const leastPart = 0.03;
const wantedPart = 0.06;
const mostPartOfModes = 0.2;

/**
 * A factor that shows a displacement well: true to scale when that can be seen, else 1, 2 or 5 times a
 * power of ten.
 * @param {import('./types.js').Result | undefined} result @param {import('./types.js').State} state
 * @param {number} size  Of the model.
 */
export function visibleFactor(result, state, size) {
    const isMode = state.type === 'Frequency';
    const range = result ? rangeOf(result, 'magnitude', isMode ? state.id : null) : null;
    if (!range || !(range.max > 0)) return 1;
    const part = range.max / size;
    if (part > leastPart && !(isMode && part > mostPartOfModes)) return 1;
    const exact = wantedPart / part;
    const power = 10 ** Math.floor(Math.log10(exact));
    const digit = exact / power;
    return power * (digit < 2 ? 1 : digit < 5 ? 2 : 5);
}
