// What was picked: its values, and their history.

import { button, element, make } from './dom.js';
import { download, historyCsv, plotHistory } from './history.js';
import { sureText } from './numbers.js';
import { pickAt, valuesAt } from './picked.js';
import { quantityTitles } from './quantities.js';
import { titleOf } from './selection.js';

const clickPixels = 4;

/** @typedef {import('./picked.js').Picked} Picked */

export class PickPanel {
    /** @type {Picked | null} */
    #picked = null;
    /** @type {import('./history.js').History | null} */
    #history = null;

    /** @param {import('./viewer.js').Viewer} viewer @param {HTMLElement} view */
    constructor(viewer, view) {
        this.viewer = viewer;
        /** @type {{ x: number, y: number } | null} */
        let pressed = null;
        view.addEventListener('pointerdown', (event) => (pressed = { x: event.clientX, y: event.clientY }), true);
        view.addEventListener('pointerup', (event) => {
            const isClick = pressed && Math.hypot(event.clientX - pressed.x, event.clientY - pressed.y) < clickPixels;
            pressed = null;
            const { left, top } = view.getBoundingClientRect();
            if (isClick && event.button === 0) this.#pick(event.clientX - left, event.clientY - top);
        }, true);
        button('close-picked').onclick = () => this.close();
        button('csv').onclick = () => this.#save();
    }

    /** @param {number} x @param {number} y */
    #pick(x, y) {
        this.#picked = pickAt(this.viewer, x, y);
        this.refresh();
    }

    close() {
        this.#picked = null;
        this.refresh();
    }

    get #ids() {
        const picked = /** @type {Picked} */ (this.#picked);
        const { nodeIds, elementIds } = picked.shown.surface;
        return { node: nodeIds[picked.node], element: elementIds[picked.cell] };
    }

    /** Shows what is picked, in the state that is shown. */
    async refresh() {
        const picked = this.#picked;
        element('picked', HTMLElement).hidden = !picked;
        if (!picked) return;
        const { node, element: elementId } = this.#ids;
        const part = this.viewer.source.model.parts.find((own) => own.id === picked.shown.part);
        const position = picked.shown.surface.positions.subarray(3 * picked.node, 3 * picked.node + 3);
        const rows = [
            ['Part', part?.name || `${picked.shown.part}`],
            ['Position', [...position].map((own) => sureText(own, picked.shown.surface.step)).join(', ')],
            ...(await this.#valueRows(picked)),
        ];
        if (picked !== this.#picked) return;
        element('picked-title', HTMLElement).textContent = `Node ${node}, element ${elementId}`;
        element('picked-values', HTMLElement).replaceChildren(
            ...rows.map(([name, text]) => make('tr', '', {}, [make('td', name), make('td', text)])),
        );
        await this.#showHistory(picked);
    }

    /** @param {Picked} picked */
    async #valueRows(picked) {
        const { results } = this.viewer.source.model;
        const rows = await Promise.all(results.map(async (result, i) => {
            const values = await valuesAt(this.viewer.source, picked, i, this.viewer.state.id);
            if (!values) return [];
            return result.quantities.map((quantity) => {
                const title = quantity === 'value' ? result.name : `${result.name} ${quantityTitles[quantity] ?? quantity}`;
                return [title, sureText(values.of(quantity), values.step)];
            });
        }));
        return rows.flat();
    }

    /** @param {Picked} picked */
    async #showHistory(picked) {
        const { settings, source } = this.viewer;
        const result = source.model.results[settings.result];
        const isShown = result !== undefined && source.model.states.length > 1;
        element('history', HTMLElement).hidden = button('csv').hidden = !isShown;
        if (!isShown) return;
        const states = settings.frames.map((frame) => source.model.states[frame]);
        const values = await Promise.all(states.map(async (state) => {
            const own = await valuesAt(source, picked, settings.result, state.id);
            return own ? own.of(settings.quantity) : NaN;
        }));
        if (picked !== this.#picked) return;
        const { node, element: elementId } = this.#ids;
        const item = result.mapping === 'Node' ? `node ${node}` : `element ${elementId}`;
        this.#history = { title: `${titleOf(result, settings.quantity)}, ${item}`, states, values };
        plotHistory(element('history', HTMLCanvasElement), this.#history);
    }

    #save() {
        if (!this.#history) return;
        download(`${this.#history.title}.csv`, new Blob([historyCsv(this.#history)], { type: 'text/csv' }));
    }
}
