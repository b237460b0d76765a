// The clipping plane.

import { button, input, select } from './dom.js';
import { numberText } from './numbers.js';
import { centreOf, cornersOf, dot, isBox, plus, times, unit } from './vectors.js';

/** @typedef {import('./types.js').Vector} Vector */

/** @type {Record<string, Vector>} */
const axes = { x: [1, 0, 0], y: [0, 1, 0], z: [0, 0, 1] };

export class ClipPanel {
    /** @type {Vector} */
    #direction = [1, 0, 0];
    #side = -1;

    /** @param {import('./viewer.js').Viewer} viewer */
    constructor(viewer) {
        this.viewer = viewer;
        input('clip').onchange = () => this.#apply();
        input('clip-place').oninput = () => this.#apply();
        select('clip-axis').onchange = () => this.#setAxis();
        input('clip-normal').onchange = () => this.#setNormal();
        button('clip-flip').onclick = () => {
            this.#side = -this.#side;
            this.#apply();
        };
    }

    #setAxis() {
        this.#direction = axes[select('clip-axis').value] ?? this.#direction;
        this.#apply();
    }

    #setNormal() {
        const numbers = input('clip-normal').value.split(/[\s,;]+/).filter(Boolean).map(Number);
        if (numbers.length === 3 && numbers.every(Number.isFinite) && Math.hypot(...numbers) > 0) {
            this.#direction = unit(numbers);
            select('clip-axis').value = 'custom';
        }
        this.#apply();
    }

    /** How far the box reaches along the direction. */
    #reach() {
        const { box } = this.viewer;
        if (!isBox(box)) return { low: 0, high: 1 };
        const places = cornersOf(box).map((corner) => dot(corner, this.#direction));
        return { low: Math.min(...places), high: Math.max(...places) };
    }

    #apply() {
        const { low, high } = this.#reach();
        const centre = isBox(this.viewer.box) ? centreOf(this.viewer.box) : /** @type {Vector} */ ([0, 0, 0]);
        const along = low + (high - low) * Number(input('clip-place').value) - dot(centre, this.#direction);
        const point = plus(centre, times(this.#direction, along));
        this.viewer.store.update({ clip: { on: input('clip').checked, point, normal: times(this.#direction, this.#side) } });
    }

    /** Shows the settings of a case. */
    reset() {
        const { on, point, normal } = this.viewer.settings.clip;
        input('clip').checked = on;
        if (!on) return;
        this.#direction = unit(normal);
        this.#side = 1;
        select('clip-axis').value = 'custom';
        const { low, high } = this.#reach();
        input('clip-place').value = String((dot(point, this.#direction) - low) / (high - low || 1));
        this.#showDirection();
    }

    #showDirection() {
        input('clip-normal').value = this.#direction.map((own) => numberText(own, 'g', 4)).join(' ');
    }
}
