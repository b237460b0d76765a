// Brings onto the screen what the settings say.

import { Arrows } from './arrows.js';
import { colorFunction, limitsOf, lookupTable } from './colors.js';
import { visibleFactor } from './exaggeration.js';
import { drawOverlay } from './overlay.js';
import { nearestCorner, nearestFace, nearestLine } from './pick.js';
import { quantities, quantityOf, quantityTitles, rangeOf } from './quantities.js';
import { SurfaceView } from './surfaceView.js';
import { boundsOf, dot, minus, sizeOf } from './vectors.js';
import { numberText } from './numbers.js';

/** @typedef {import('./types.js').Settings} Settings */
/** @typedef {import('./types.js').Vector} Vector */
/** @typedef {import('./pick.js').Shown} Shown */
/** @typedef {import('./pick.js').Hit} Hit */
/**
 * A node, and an element that it is a corner of.
 * @typedef {{ shown: Shown, cell: number, corner: number, node: number }} Picked
 */

/** @type {Vector} */
const highlightColor = [1, 0.2, 0.8];
/** @type {Vector} */
const arrowColor = [0.15, 0.15, 0.15];

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

export class Viewer {
    /** @type {Map<number, Promise<SurfaceView>>} */
    #views = new Map();
    /** @type {SurfaceView[]} */
    #used = [];
    /** @type {Promise<void> | null} */
    #updating = null;
    #isStale = false;
    /** The box around the undeformed model. @type {number[]} */
    #restBox = boundsOf(new Float32Array());
    /** What can be picked. @type {Shown[]} */
    shown = [];
    /** The box around what is shown. @type {number[]} */
    box = boundsOf(new Float32Array());
    /** @type {(error: unknown) => void} */
    onError = (error) => console.error(error);

    /**
     * @param {import('./types.js').Source} source
     * @param {import('./store.js').Store<Settings>} store
     * @param {import('./scene.js').Scene} scene
     * @param {HTMLCanvasElement} overlay
     */
    constructor(source, store, scene, overlay) {
        this.source = source;
        this.store = store;
        this.scene = scene;
        this.overlay = overlay;
        this.arrows = new Arrows(scene.renderer);
        scene.camera.onModified(() => requestAnimationFrame(() => this.drawLabels()));
        store.subscribe(() => this.update());
    }

    get settings() {
        return this.store.values;
    }

    get state() {
        return stateOf(this.source.model, this.settings);
    }

    /** The factor on displacements. */
    get exaggeration() {
        const result = this.source.model.results[this.settings.displacement];
        return this.settings.exaggeration ?? visibleFactor(result, this.state, sizeOf(this.#restBox));
    }

    /** Shows the settings as they are when it is done; resolved then. */
    update() {
        this.#isStale = true;
        this.scene.container.ariaBusy = 'true';
        this.#updating ??= this.#updateUntilDone();
        return this.#updating;
    }

    async #updateUntilDone() {
        try {
            while (this.#isStale) {
                this.#isStale = false;
                await this.#show();
            }
        } catch (error) {
            this.onError(error);
        } finally {
            this.#updating = null;
            this.scene.container.ariaBusy = 'false';
        }
    }

    /** @param {number} index */
    #view(index) {
        const known = this.#views.get(index);
        if (known) return known;
        const made = this.source.surface(index).then((surface) => new SurfaceView(surface, this.scene.renderer));
        this.#views.set(index, made);
        return made;
    }

    async #show() {
        const { settings } = this;
        const layout = this.source.model.layouts[this.state.layout];
        const lookup = this.#lookup();
        const views = await Promise.all(layout.flatMap((own) => own.surfaces).map((index) => this.#view(index)));
        this.#restBox = views.reduce((box, { surface }) => boundsOf(surface.positions, box), boundsOf(new Float32Array()));
        this.#setBackground();
        /** @type {SurfaceView[]} */
        const used = [];
        /** @type {Shown[]} */
        const shown = [];
        /** @type {import('./arrows.js').Field[]} */
        const fields = [];
        for (const { part, surfaces } of layout) {
            const look = settings.parts.get(part);
            if (!look) continue;
            for (const index of surfaces) {
                const view = await this.#view(index);
                used.push(view);
                view.move(await this.#positions(view, index, look));
                await this.#color(view, index, look, lookup);
                await this.#highlight(view, index);
                view.setLook(look, this.#edgeColor(), this.#background());
                view.showUndeformed(settings.undeformed && look.visible, [0.5, 0.5, 0.5]);
                view.clip(this.#planes());
                const { surface, topology, positions } = view;
                if (look.visible && look.style !== 'none') shown.push({ surface, topology, positions, index, part });
                if (look.visible && look.vectors) fields.push(...(await this.#field(view, index)));
            }
        }
        for (const view of this.#used) if (!used.includes(view)) view.hide();
        this.#used = used;
        this.shown = shown;
        this.box = shown.reduce((box, own) => boundsOf(own.positions, box), boundsOf(new Float32Array()));
        this.#showArrows(fields);
        this.scene.render();
        this.drawLabels();
    }

    #lookup() {
        const range = shownRange(this.source.model, this.settings);
        return range ? lookupTable(this.settings.scale, range.min, range.max) : null;
    }

    get #isDark() {
        return document.documentElement.classList.contains('dark');
    }

    /** @returns {Vector} */
    #background() {
        return this.settings.background?.[0] ?? (this.#isDark ? [0.08, 0.09, 0.11] : [1, 1, 1]);
    }

    /** @returns {Vector} */
    #edgeColor() {
        return this.#isDark && this.settings.result < 0 ? [0.8, 0.8, 0.8] : [0.1, 0.12, 0.15];
    }

    #setBackground() {
        const { background } = this.settings;
        const gl = this.scene.container;
        gl.style.background = '';
        this.scene.setBackground(this.#background());
        // A gradient lies behind a transparent picture.
        this.scene.renderer.setBackground([...this.#background(), background && background.length > 1 ? 0 : 1]);
        if (!background || background.length < 2) return;
        const [top, bottom] = background.map((color) => `rgb(${color.map((c) => Math.round(255 * c)).join(' ')})`);
        gl.style.background = `linear-gradient(${top}, ${bottom})`;
    }

    /** @param {SurfaceView} view @param {number} index @param {import('./types.js').PartLook} look */
    async #positions(view, index, look) {
        const { displacement, phase, swings } = this.settings;
        const rest = view.surface.positions;
        if (displacement < 0 || !look.displaced) return rest;
        const values = (await this.source.values(displacement, this.state.id, index))?.node;
        if (!values) return rest;
        const factor = this.exaggeration * (swings ? phase : 1);
        return rest.map((position, i) => position + (values[i] === values[i] ? factor * values[i] : 0));
    }

    /** @param {SurfaceView} view @param {number} index @param {import('./types.js').PartLook} look @param {any} lookup */
    async #color(view, index, look, lookup) {
        const result = this.source.model.results[this.settings.result];
        const isColored = lookup && look.fringes;
        const values = isColored ? await this.source.values(this.settings.result, this.state.id, index) : null;
        if (!values) {
            // Where others of the model have values, this part is undefined.
            const count = isColored ? view.surface.positions.length / 3 : 0;
            return view.color(count > 0 ? new Float32Array(count).fill(NaN) : null, false, lookup);
        }
        if (values.node && (this.settings.average || (!values.cell && !values.corner))) {
            return view.color(quantities(result, this.settings.quantity, values.node), false, lookup);
        }
        if (values.corner) return view.color(quantities(result, this.settings.quantity, values.corner), true, lookup);
        const ofCells = quantities(result, this.settings.quantity, values.cell ?? new Float32Array());
        const { begins, corners } = view.surface;
        const ofCorners = new Float32Array(corners.length);
        for (let cell = 0; cell + 1 < begins.length; ++cell) ofCorners.fill(ofCells[cell], begins[cell], begins[cell + 1]);
        view.color(ofCorners, true, lookup);
    }

    /** @param {SurfaceView} view @param {number} index */
    async #highlight(view, index) {
        const cells = await Promise.all(this.settings.sets.map((set) => this.source.setCells(set, index)));
        view.highlight(Uint32Array.from(cells.flatMap((own) => [...own])), highlightColor);
    }

    /** @param {SurfaceView} view @param {number} index */
    async #field(view, index) {
        const values = this.settings.vectors < 0 ? null : await this.source.values(this.settings.vectors, this.state.id, index);
        return values?.node ? [{ positions: view.positions, vectors: values.node }] : [];
    }

    /** @param {import('./arrows.js').Field[]} fields */
    #showArrows(fields) {
        const { vectors, arrowScale } = this.settings;
        const range = vectors < 0 ? null : rangeOf(this.source.model.results[vectors], 'magnitude', null);
        const factor = range && range.max > 0 ? (arrowScale * sizeOf(this.#restBox)) / range.max : 0;
        this.arrows.show(fields, factor, this.#isDark ? [0.9, 0.9, 0.9] : arrowColor);
    }

    #planes() {
        const { clip } = this.settings;
        if (!clip.on) return [];
        this.scene.clipPlane.setOrigin(...clip.point);
        this.scene.clipPlane.setNormal(...clip.normal);
        return [this.scene.clipPlane];
    }

    /** Whether the clipping plane leaves a point. @param {Vector} point */
    #isLeft(point) {
        const { clip } = this.settings;
        return !clip.on || dot(minus(point, clip.point), clip.normal) >= 0;
    }

    /** What lies under a place in the picture. @param {number} x @param {number} y @returns {Picked | null} */
    pick(x, y) {
        const place = { x, y };
        /** @param {Vector} point */
        const placeOf = (point) => this.scene.placeOf(point);
        /** @param {Vector} point */
        const isVisible = (point) => this.#isLeft(point);
        const hit =
            nearestFace(this.scene.rayThrough(x, y), this.shown, isVisible) ??
            nearestLine(place, this.shown, placeOf, isVisible);
        if (!hit) return null;
        const corner = nearestCorner(hit, place, placeOf);
        return { shown: hit.shown, cell: hit.cell, corner, node: hit.shown.surface.corners[corner] };
    }

    /**
     * What gives quantities of the picked item of a result in a state, and how exact they are; null
     * without values.
     * @param {Picked} picked @param {number} result @param {number} state  Its id.
     * @returns {Promise<{ of: (quantity: string) => number, step: number } | null>}
     */
    async valuesAt(picked, result, state) {
        const values = await this.source.values(result, state, picked.shown.index);
        if (!values) return null;
        const { mapping, components } = this.source.model.results[result];
        const [place, at] =
            mapping === 'Node' ? [values.node, picked.node] :
            mapping === 'ElementNode' ? [values.corner, picked.corner] : [values.cell, picked.cell];
        if (!place) return null;
        /** @param {string} quantity */
        const of = (quantity) => quantityOf(this.source.model.results[result], quantity)(place, at * components);
        return { of, step: values.step };
    }

    drawLabels() {
        const { source, settings } = this;
        const result = source.model.results[settings.result];
        const title = result ? settings.legendTitle || titleOf(result, settings.quantity) : '';
        drawOverlay(this.overlay, {
            title: [[source.file, source.model.name].filter(Boolean).join(' – '), this.#stateText(), source.date],
            legend: settings.legend && result ? this.#legend(title) : null,
            marks: settings.extremes && result ? this.#marks(result) : [],
        });
    }

    #stateText() {
        const { settings, state } = this;
        const value = state.value === null || !state.type ? '' : `, ${state.type} ${numberText(state.value)}`;
        const scale = settings.displacement >= 0 ? `, deformed × ${numberText(this.exaggeration)}` : '';
        return `${state.name || `State ${state.id}`}${value}${scale}`;
    }

    /** @param {string} title @returns {import('./overlay.js').Legend | null} */
    #legend(title) {
        const range = shownRange(this.source.model, this.settings);
        if (!range) return null;
        const { scale, format, digits, result, quantity } = this.settings;
        const all = rangeOf(this.source.model.results[result], quantity, this.state.id);
        return {
            title,
            ...range,
            limits: limitsOf(scale, range.min, range.max),
            colorOf: colorFunction(scale, range.min, range.max),
            format,
            digits,
            hasBeyond: all !== null && (all.min < range.min || all.max > range.max),
        };
    }

    /** @param {import('./types.js').Result} result */
    #marks(result) {
        const extremes = result.states[this.state.id]?.extremes[this.settings.quantity];
        if (!extremes) return [];
        const item = result.mapping === 'Node' ? 'node' : 'element';
        return /** @type {const} */ (['min', 'max']).map((name) => ({
            place: this.#placeOf(extremes[name], result.mapping === 'Node'),
            text: `${name} ${numberText(extremes[name].value, this.settings.format, this.settings.digits)} at ${item} ${extremes[name].id}`,
        }));
    }

    /** Where an extreme is in the picture, moved with its node when that is on the surface. @param {import('./types.js').Extreme} extreme @param {boolean} isAtNode */
    #placeOf({ id, part, position }, isAtNode) {
        for (const { surface, positions, part: own } of isAtNode ? this.shown : []) {
            const node = part === undefined || part === own ? surface.nodeIds.indexOf(id) : -1;
            if (node >= 0) return this.scene.placeOf([...positions.subarray(3 * node, 3 * node + 3)]);
        }
        return position ? this.scene.placeOf(position) : null;
    }

    /** The picture with all that lies over it. */
    picture() {
        const canvas = document.createElement('canvas');
        const own = this.scene.canvas();
        [canvas.width, canvas.height] = [own.width, own.height];
        const context = canvas.getContext('2d');
        if (!context) return canvas;
        const { background } = this.settings;
        const gradient = context.createLinearGradient(0, 0, 0, canvas.height);
        const colors = background ?? [this.#background()];
        colors.forEach((color, i) => {
            gradient.addColorStop(i, `rgb(${color.map((c) => Math.round(255 * c)).join(' ')})`);
        });
        context.fillStyle = gradient;
        context.fillRect(0, 0, canvas.width, canvas.height);
        context.drawImage(own, 0, 0);
        context.drawImage(this.overlay, 0, 0, canvas.width, canvas.height);
        return canvas;
    }
}
