// The states: slider, list, playing, and the swinging of mode shapes.

import { button, element, input, select, setOptions } from './dom.js';
import { numberText } from './numbers.js';

const swingSeconds = 2;

export class StatePanel {
    #isPlaying = false;
    #since = 0;
    /** The frames that are in the list. @type {number[] | null} */
    #listed = null;

    /** @param {import('./viewer.js').Viewer} viewer */
    constructor(viewer) {
        this.viewer = viewer;
        input('state').oninput = () => this.#go(Number(input('state').value));
        select('state-list').onchange = () => this.#go(Number(select('state-list').value));
        button('play').onclick = () => this.toggle();
        input('swings').onchange = () => this.viewer.store.update({ swings: input('swings').checked, phase: 1 });
    }

    get #frames() {
        return this.viewer.settings.frames;
    }

    get #frame() {
        return Math.max(0, this.#frames.indexOf(this.viewer.settings.state));
    }

    /** @param {number} frame */
    #go(frame) {
        const count = this.#frames.length;
        return this.viewer.store.update({ state: this.#frames[((frame % count) + count) % count] });
    }

    /** @param {number} frames */
    step(frames) {
        this.#go(this.#frame + frames);
    }

    toggle() {
        this.#isPlaying = !this.#isPlaying;
        this.#since = performance.now();
        button('play').textContent = this.#isPlaying ? '■' : '▶';
        if (this.#isPlaying) this.#play();
        else this.viewer.store.update({ phase: 1 });
    }

    async #play() {
        while (this.#isPlaying) {
            const { settings } = this.viewer;
            const isFirst = !settings.swings && this.#frame === 0;
            const pause = settings.swings ? 16 : 1000 / settings.framesPerSecond + (isFirst ? settings.firstDelay : 0);
            await new Promise((resolve) => setTimeout(resolve, pause));
            if (!this.#isPlaying) return;
            const seconds = (performance.now() - this.#since) / 1000;
            if (settings.swings) this.viewer.store.update({ phase: Math.sin((2 * Math.PI * seconds) / swingSeconds) });
            else this.step(1);
            await this.viewer.update();
        }
    }

    /** Shows the settings as they are. */
    refresh() {
        const { model } = this.viewer.source;
        const { settings, state } = this.viewer;
        input('state').max = String(this.#frames.length - 1);
        input('state').value = String(this.#frame);
        if (this.#listed !== this.#frames) {
            this.#listed = this.#frames;
            const nameOf = (/** @type {number} */ index) => model.states[index].name || `State ${model.states[index].id}`;
            setOptions(select('state-list'), this.#frames.map((index, i) => ({ value: String(i), text: nameOf(index) })), '0');
        }
        select('state-list').value = String(this.#frame);
        const value = state.value === null || !state.type ? '' : `${state.type} ${numberText(state.value)}`;
        element('state-text', HTMLOutputElement).textContent = value;
        input('swings').checked = settings.swings;
    }
}
