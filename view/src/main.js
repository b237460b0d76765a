// The page: its data, its picture and its controls, put together.

import { cameraOf, settingsOf } from './case.js';
import { CasePanel } from './casePanel.js';
import { ClipPanel } from './clipPanel.js';
import { button, element, make } from './dom.js';
import { embeddedSource } from './embedded.js';
import { download } from './history.js';
import { PartPanel } from './partPanel.js';
import { PickPanel } from './pickPanel.js';
import { ResultPanel } from './resultPanel.js';
import { hasWebGL, Scene } from './scene.js';
import { StatePanel } from './statePanel.js';
import { Store } from './store.js';
import { Viewer } from './viewer.js';

/** @param {string} text */
function say(text) {
    const message = element('message', HTMLElement);
    message.textContent = text;
    message.hidden = text === '';
}

/** @param {import('./types.js').Source} source */
function describe(source) {
    document.title = source.file;
    element('title', HTMLElement).textContent = source.file;
    element('subtitle', HTMLElement).textContent = [source.model.name, source.model.description].filter(Boolean).join(' – ');
    const { leftOut } = source.model;
    element('left-out-section', HTMLElement).hidden = leftOut.length === 0;
    element('left-out', HTMLElement).replaceChildren(...leftOut.map((text) => make('li', text)));
}

/** @param {boolean} isDark */
function setTheme(isDark) {
    document.documentElement.classList.toggle('dark', isDark);
}

/** @param {Viewer} viewer @param {PickPanel} picking @param {StatePanel} states */
function listenToKeys(viewer, picking, states) {
    /** @type {Record<string, () => void>} */
    const keys = {
        ' ': () => states.toggle(),
        ArrowLeft: () => states.step(-1),
        ArrowRight: () => states.step(1),
        Escape: () => picking.close(),
        f: () => viewer.scene.fit(viewer.box),
        p: () => button('projection').click(),
    };
    ['iso', 'x', 'y', 'z', '-x', '-y', '-z'].forEach((name, i) => {
        keys[String(i)] = () => viewer.scene.lookFrom(name, viewer.box);
    });
    window.addEventListener('keydown', (event) => {
        const isTyped = event.target instanceof HTMLElement && event.target.matches('input, select, button, summary');
        const action = keys[event.key];
        if (!action || isTyped || event.ctrlKey || event.metaKey || event.altKey) return;
        event.preventDefault();
        action();
    });
}

/** @param {Viewer} viewer */
function listenToToolbar(viewer) {
    const { scene } = viewer;
    const projection = button('projection');
    const nameProjection = () => {
        projection.textContent = scene.camera.getParallelProjection() ? 'Parallel' : 'Perspective';
    };
    scene.camera.onModified(nameProjection);
    projection.onclick = () => scene.setParallel(!scene.camera.getParallelProjection());
    button('fit').onclick = () => scene.fit(viewer.box);
    for (const own of document.querySelectorAll('[data-view]')) {
        own.addEventListener('click', () => scene.lookFrom(own.getAttribute('data-view') ?? '', viewer.box));
    }
    button('toggle-panel').onclick = () => document.body.classList.toggle('bare');
    button('theme').onclick = () => {
        setTheme(!document.documentElement.classList.contains('dark'));
        viewer.update();
    };
    button('png').onclick = () => viewer.picture().toBlob((blob) => blob && download(`${viewer.source.file}.png`, blob));
}

/** @param {import('./types.js').Source} source */
async function start(source) {
    describe(source);
    const first = source.cases.find((own) => own.id === source.firstCase) ?? null;
    const store = new Store(settingsOf(source.model, first));
    const scene = new Scene(element('view', HTMLElement));
    const viewer = new Viewer(source, store, scene, element('overlay', HTMLCanvasElement));
    viewer.onError = (error) => {
        console.error(error);
        say(`This part of the page is damaged: ${error instanceof Error ? error.message : error}`);
    };
    const results = new ResultPanel(viewer);
    const parts = new PartPanel(viewer);
    const clip = new ClipPanel(viewer);
    const states = new StatePanel(viewer);
    const picking = new PickPanel(viewer, scene.container);
    const cases = new CasePanel(source, (shown) => showCase(shown));
    store.subscribe((changed) => {
        if (changed.has('phase') && changed.size === 1) return;
        results.refresh();
        states.refresh();
        if (changed.has('state') || changed.has('result') || changed.has('quantity')) picking.refresh();
    });

    /** @param {import('./types.js').Case | null} shown */
    async function showCase(shown) {
        store.update(settingsOf(source.model, shown));
        await viewer.update();
        results.refresh();
        parts.refresh();
        clip.reset();
        const camera = cameraOf(shown);
        scene.lookFrom('iso', viewer.box);
        if (camera) scene.placeCamera(camera);
        scene.render();
        await cases.show(shown);
    }

    listenToToolbar(viewer);
    listenToKeys(viewer, picking, states);
    await showCase(first);
    document.body.dataset.ready = 'true';
}

// Where there is little room, the settings would cover the model.
document.body.classList.toggle('bare', matchMedia('(max-width: 700px)').matches);
// The picture alone.
document.body.classList.toggle('picture', location.hash === '#picture');
setTheme(matchMedia('(prefers-color-scheme: dark)').matches);
if (!hasWebGL()) {
    say('This browser does not show 3D graphics (WebGL 2), which this page needs.');
} else {
    start(embeddedSource()).catch((error) => {
        console.error(error);
        say(`This page is damaged: ${error instanceof Error ? error.message : error}`);
    });
}
