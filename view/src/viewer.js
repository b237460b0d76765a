// Brings onto the screen what the settings say.

import { Arrows } from './arrows.js';
import { backdropColors, drawBackdrop, isDark, showBackdrop } from './backdrop.js';
import { lookupTable } from './colors.js';
import { visibleFactor } from './exaggeration.js';
import { labelsOf } from './labels.js';
import { drawOverlay } from './overlay.js';
import { rangeOf } from './quantities.js';
import { shownRange, stateOf } from './selection.js';
import { coloredNumbers, displacedPositions, vectorsOf } from './surfaceData.js';
import { SurfaceView } from './surfaceView.js';
import { boundsOf, sizeOf } from './vectors.js';

/** @typedef {import('./types.js').Settings} Settings */
/** @typedef {import('./types.js').Vector} Vector */
/** @typedef {import('./pick.js').Shown} Shown */

/** @type {Vector} */
const highlightColor = [1, 0.2, 0.8];
/** @type {Vector} */
const undeformedColor = [0.5, 0.5, 0.5];

/** @param {Settings} settings @returns {Vector} */
function edgeColor({ result }) {
    return isDark() && result < 0 ? [0.8, 0.8, 0.8] : [0.1, 0.12, 0.15];
}

/** @returns {Vector} */
function arrowColor() {
    return isDark() ? [0.9, 0.9, 0.9] : [0.15, 0.15, 0.15];
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
        const { settings, source } = this;
        const layout = source.model.layouts[this.state.layout];
        const range = shownRange(source.model, settings);
        const lookup = range ? lookupTable(settings.scale, range.min, range.max) : null;
        const views = await Promise.all(layout.flatMap((own) => own.surfaces).map((index) => this.#view(index)));
        this.#restBox = views.reduce((box, { surface }) => boundsOf(surface.positions, box), boundsOf(new Float32Array()));
        showBackdrop(this.scene, settings);
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
                await this.#showSurface(view, index, look, lookup);
                const { surface, topology, positions } = view;
                if (look.visible && look.style !== 'none') shown.push({ surface, topology, positions, index, part });
                const vectors = look.visible && look.vectors ? await vectorsOf(source, settings, { surface, index }) : null;
                if (vectors) fields.push({ positions, vectors });
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

    /** @param {SurfaceView} view @param {number} index @param {import('./types.js').PartLook} look @param {any} lookup */
    async #showSurface(view, index, look, lookup) {
        const { settings, source } = this;
        const own = { surface: view.surface, index };
        const factor = this.exaggeration * (settings.swings ? settings.phase : 1);
        view.move(look.displaced ? await displacedPositions(source, settings, own, factor) : view.surface.positions);
        const colored = lookup && look.fringes ? await coloredNumbers(source, settings, own) : null;
        view.color(colored?.numbers ?? null, colored?.areAtCorners ?? false, lookup);
        const cells = await Promise.all(settings.sets.map((set) => source.setCells(set, index)));
        view.highlight(Uint32Array.from(cells.flatMap((ofSet) => [...ofSet])), highlightColor);
        view.setLook(look, edgeColor(settings), backdropColors(settings)[0]);
        view.showUndeformed(settings.undeformed && look.visible, undeformedColor);
        view.clip(this.#planes());
    }

    /** @param {import('./arrows.js').Field[]} fields */
    #showArrows(fields) {
        const { vectors, arrows, arrowScale } = this.settings;
        const range = vectors < 0 ? null : rangeOf(this.source.model.results[vectors], 'magnitude', null);
        const relative = range && range.max > 0 ? (arrowScale * sizeOf(this.#restBox)) / range.max : 0;
        this.arrows.show(fields, arrows, arrows.unitLength ?? relative, arrows.color ?? arrowColor());
    }

    #planes() {
        const { clip } = this.settings;
        if (!clip.on) return [];
        this.scene.clipPlane.setOrigin(...clip.point);
        this.scene.clipPlane.setNormal(...clip.normal);
        return [this.scene.clipPlane];
    }

    drawLabels() {
        drawOverlay(this.overlay, labelsOf(this));
    }

    /** The picture with all that lies over it. */
    picture() {
        const canvas = document.createElement('canvas');
        const own = this.scene.canvas();
        [canvas.width, canvas.height] = [own.width, own.height];
        const context = canvas.getContext('2d');
        if (!context) return canvas;
        drawBackdrop(context, this.settings);
        context.drawImage(own, 0, 0);
        context.drawImage(this.overlay, 0, 0, canvas.width, canvas.height);
        return canvas;
    }
}
