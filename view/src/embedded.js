// The data that the page itself holds.

import { stepOf, unpack, unscaled } from './packed.js';

const mostCachedNumbers = 3e7;

/** Keeps what was used last, up to so many numbers. */
class Cache {
    /** @type {Map<string, { size: number, value: Promise<any> }>} */
    #entries = new Map();
    #size = 0;

    /** @template T @param {string} key @param {number} size @param {() => Promise<T>} make @returns {Promise<T>} */
    get(key, size, make) {
        const known = this.#entries.get(key);
        const entry = known ?? { size, value: make() };
        this.#entries.delete(key);
        this.#entries.set(key, entry);
        if (!known) this.#size += size;
        for (const [old, { size: oldSize }] of this.#entries) {
            if (this.#size <= mostCachedNumbers || old === key) break;
            this.#entries.delete(old);
            this.#size -= oldSize;
        }
        return entry.value;
    }
}

/** @param {number} number @returns {string} */
function textOf(number) {
    return document.getElementById(`data${number}`)?.textContent ?? '';
}

/** @param {{ data: number, ranges: [number, number][] }} packed */
async function floats(packed) {
    return unscaled(await unpack(textOf(packed.data), Uint16Array), packed.ranges);
}

/** @param {Uint16Array} sizes */
function beginsOf(sizes) {
    const begins = new Uint32Array(sizes.length + 1);
    for (let i = 0; i < sizes.length; ++i) begins[i + 1] = begins[i] + sizes[i];
    return begins;
}

/** @param {any} packed @returns {Promise<import('./types.js').Surface>} */
async function readSurface(packed) {
    const [positions, nodeIds, sizes, kinds, corners, elementIds] = await Promise.all([
        floats(packed.positions),
        unpack(textOf(packed.nodeIds), Int32Array),
        unpack(textOf(packed.cellSizes), Uint16Array),
        unpack(textOf(packed.cellKinds), Uint8Array),
        unpack(textOf(packed.cellCorners), Uint32Array),
        unpack(textOf(packed.cellElements), Int32Array),
    ]);
    const step = stepOf(packed.positions.ranges);
    return { positions, step, nodeIds, kinds, begins: beginsOf(sizes), corners, elementIds };
}

/** @param {any} places @returns {Promise<import('./types.js').Values>} */
async function readValues(places) {
    const read = Object.entries(places).map(async ([place, packed]) => [place, await floats(packed)]);
    const steps = Object.values(places).map((packed) => stepOf(packed.ranges));
    return { ...Object.fromEntries(await Promise.all(read)), step: Math.max(...steps) };
}

/** @param {any} packed @returns {Promise<ImageData | null>} */
async function readImage(packed) {
    if (!packed) return null;
    const rgb = await unpack(textOf(packed.data), Uint8Array);
    const image = new ImageData(packed.width, packed.height);
    for (let i = 0, at = 0; i < rgb.length; i += 3, at += 4) {
        image.data.set([rgb[i], rgb[i + 1], rgb[i + 2], 255], at);
    }
    return image;
}

/** @returns {import('./types.js').Source} */
export function embeddedSource() {
    const page = JSON.parse(document.getElementById('model')?.textContent ?? '');
    const { model } = page;
    const cache = new Cache();
    /** @type {Map<number, Promise<import('./types.js').Surface>>} */
    const surfaces = new Map();
    return {
        file: page.file,
        date: page.date,
        cases: page.cases,
        firstCase: page.case,
        model,
        surface(index) {
            const surface = surfaces.get(index) ?? readSurface(model.surfaces[index]);
            surfaces.set(index, surface);
            return surface;
        },
        async values(result, state, surface) {
            const places = model.results[result].states[state]?.surfaces[surface];
            if (!places) return null;
            const { nodes, cells, corners } = model.surfaces[surface];
            const size = (nodes + cells + corners) * model.results[result].components;
            return cache.get(`${result} ${state} ${surface}`, size, () => readValues(places));
        },
        async setCells(set, surface) {
            const packed = model.sets[set].cells[surface];
            return packed ? unpack(textOf(packed.data), Uint32Array) : new Uint32Array();
        },
        image: readImage,
    };
}
