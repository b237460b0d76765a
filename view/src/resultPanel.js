// The settings of results, of the deformed shape and of arrows.

import { defaultArrows } from './defaults.js';
import { button, element, input, numberIn, select, setOptions } from './dom.js';
import { numberText } from './numbers.js';
import { mainQuantity, quantityTitles } from './quantities.js';
import { shownRange } from './selection.js';

/** @typedef {import('./types.js').Result} Result */

/** @param {Result[]} results @param {(result: Result) => boolean} isWanted */
function optionsOf(results, isWanted) {
    const named = results.map((result, i) => ({ value: String(i), text: result.name || `Result ${result.id}`, result }));
    return [{ value: '-1', text: 'nothing' }, ...named.filter(({ result }) => isWanted(result))];
}

export class ResultPanel {
    /** @param {import('./viewer.js').Viewer} viewer */
    constructor(viewer) {
        this.viewer = viewer;
        this.#listenToResult();
        this.#listenToShape();
        this.#listenToRange();
    }

    get #store() {
        return this.viewer.store;
    }

    #listenToResult() {
        select('result').onchange = () => {
            const result = Number(select('result').value);
            const own = this.viewer.source.model.results[result];
            const scale = { ...this.#store.values.scale, mode: /** @type {const} */ ('all'), levels: null, colors: null, points: null };
            this.#store.update({ result, quantity: own ? mainQuantity(own) : '', scale, legendTitle: '' });
        };
        select('quantity').onchange = () => this.#store.update({ quantity: select('quantity').value });
        input('average').onchange = () => this.#store.update({ average: input('average').checked });
        input('extremes').onchange = () => this.#store.update({ extremes: input('extremes').checked });
        const counts = [5, 8, 10, 12, 16, 20].map((count) => ({ value: String(count), text: `${count} bands` }));
        setOptions(select('bands'), [...counts, { value: 'smooth', text: 'smooth' }], '10');
        select('bands').onchange = () => {
            const { value } = select('bands');
            const smooth = value === 'smooth';
            const bands = smooth ? this.#store.values.scale.bands : Number(value);
            this.#store.update({ scale: { ...this.#store.values.scale, smooth, bands, levels: null, colors: null, points: null } });
        };
    }

    #listenToRange() {
        select('range').onchange = () => {
            const mode = /** @type {'all' | 'state' | 'fixed'} */ (select('range').value);
            this.#setRange(mode, shownRange(this.viewer.source.model, this.#store.values));
        };
        for (const id of ['min', 'max']) {
            input(id).onchange = () => {
                const range = shownRange(this.viewer.source.model, this.#store.values) ?? { min: 0, max: 1 };
                const min = numberIn(input('min'), range.min);
                const max = numberIn(input('max'), range.max);
                this.#setRange('fixed', { min: Math.min(min, max), max: Math.max(min, max) });
            };
        }
    }

    /** @param {'all' | 'state' | 'fixed'} mode @param {{ min: number, max: number } | null} range */
    #setRange(mode, range) {
        const beyond = mode === 'fixed' ? { above: /** @type {any} */ ([1, 0.7, 1]), below: /** @type {any} */ ([0.5, 0.5, 0.75]) } : { above: null, below: null };
        this.#store.update({ scale: { ...this.#store.values.scale, ...range, ...beyond, mode, levels: null, colors: null, points: null } });
    }

    #listenToShape() {
        select('displacement').onchange = () => {
            const displacement = Number(select('displacement').value);
            for (const look of this.#store.values.parts.values()) look.displaced = displacement >= 0;
            this.#store.update({ displacement });
        };
        input('exaggeration').onchange = () =>
            this.#store.update({ exaggeration: numberIn(input('exaggeration'), this.viewer.exaggeration) });
        button('true-scale').onclick = () => this.#store.update({ exaggeration: 1 });
        button('automatic-scale').onclick = () => this.#store.update({ exaggeration: null });
        input('undeformed').onchange = () => this.#store.update({ undeformed: input('undeformed').checked });
        // What a case says of arrows is in the units of its result.
        select('vectors').onchange = () => this.#store.update({ vectors: Number(select('vectors').value), arrows: defaultArrows() });
        input('arrow-scale').oninput = () => {
            const arrows = { ...this.#store.values.arrows, unitLength: null };
            this.#store.update({ arrowScale: Number(input('arrow-scale').value), arrows });
        };
    }

    /** Shows the settings as they are. */
    refresh() {
        const { model } = this.viewer.source;
        const settings = this.#store.values;
        const result = model.results[settings.result];
        const isVector = (/** @type {Result} */ own) => own.components === 3;
        setOptions(select('result'), optionsOf(model.results, () => true), String(settings.result));
        setOptions(select('displacement'), optionsOf(model.results, isVector), String(settings.displacement));
        setOptions(select('vectors'), optionsOf(model.results, isVector), String(settings.vectors));
        const quantities = result?.quantities ?? [];
        setOptions(select('quantity'), quantities.map((name) => ({ value: name, text: quantityTitles[name] ?? name })), settings.quantity);
        input('average').checked = settings.average || result?.mapping === 'Node';
        input('average').disabled = !result || result.mapping === 'Node';
        select('bands').value = settings.scale.smooth ? 'smooth' : String(settings.scale.bands);
        select('range').value = settings.scale.mode;
        const range = shownRange(model, settings);
        input('min').value = range ? numberText(range.min, 'g', 9) : '';
        input('max').value = range ? numberText(range.max, 'g', 9) : '';
        input('exaggeration').value = numberText(this.viewer.exaggeration);
        input('undeformed').checked = settings.undeformed;
        input('extremes').checked = settings.extremes;
        input('arrow-scale').value = String(settings.arrowScale);
        this.#describeExtremes(result);
    }

    /** @param {Result | undefined} result */
    #describeExtremes(result) {
        const own = result?.states[this.viewer.state.id]?.extremes[this.#store.values.quantity];
        const item = result?.mapping === 'Node' ? 'node' : 'element';
        element('extreme-text', HTMLElement).textContent = own
            ? `${numberText(own.min.value)} at ${item} ${own.min.id} to ${numberText(own.max.value)} at ${item} ${own.max.id}`
            : '';
    }
}
