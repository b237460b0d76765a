// The tree of parts, and the sets.

import { colorOf, hexOf } from './colors.js';
import { button, element, make, setOptions } from './dom.js';

/** @typedef {import('./types.js').Part} Part */
/** @typedef {import('./types.js').DrawStyle} DrawStyle */

/** @type {Record<string, string>} */
const styles = {
    surface: 'Surface',
    surface_mesh: 'With mesh',
    surface_outline_mesh: 'With outline',
    line: 'Lines',
    hidden_line_removed: 'Hidden lines',
    outline: 'Outline',
    point: 'Points',
    none: 'Nothing',
};

// A browser is slow with very many controls, and names take room.
const mostRows = 500;
const mostDepth = 8;

export class PartPanel {
    /** @param {import('./viewer.js').Viewer} viewer */
    constructor(viewer) {
        this.viewer = viewer;
        button('show-all').onclick = () => this.#showAll(true);
        button('hide-all').onclick = () => this.#showAll(false);
    }

    /** @param {boolean} visible */
    #showAll(visible) {
        for (const look of this.viewer.settings.parts.values()) look.visible = visible;
        this.#changed();
    }

    #changed() {
        this.viewer.store.update({ parts: this.viewer.settings.parts });
    }

    /** Shows the settings as they are. */
    refresh() {
        const all = this.#inTree();
        const rows = all.slice(0, mostRows).map(({ part, depth }) => this.#partRow(part, depth));
        const rest = all.length > mostRows ? [make('p', `and ${all.length - mostRows} more parts`)] : [];
        element('parts', HTMLElement).replaceChildren(...rows, ...rest);
        const { sets } = this.viewer.source.model;
        element('sets-section', HTMLElement).hidden = sets.length === 0;
        element('sets', HTMLElement).replaceChildren(
            ...sets.slice(0, mostRows).map((set, i) => this.#setRow(set.name || `Set ${set.id}`, i)),
        );
    }

    /** All parts, each behind its parent; those whose parents go in circles come last. */
    #inTree() {
        const { parts } = this.viewer.source.model;
        const ids = new Set(parts.map((part) => part.id));
        /** @type {Map<number | null, Part[]>} */
        const below = new Map();
        for (const part of parts) {
            const parent = part.parent !== null && ids.has(part.parent) ? part.parent : null;
            const others = below.get(parent);
            if (others) others.push(part);
            else below.set(parent, [part]);
        }
        /** @type {Map<number, { part: Part, depth: number }>} */
        const placed = new Map();
        for (const start of [...(below.get(null) ?? []), ...parts]) {
            const waiting = [{ part: start, depth: 0 }];
            for (let next = waiting.pop(); next; next = waiting.pop()) {
                if (placed.has(next.part.id)) continue;
                placed.set(next.part.id, next);
                const { depth } = next;
                for (const part of [...(below.get(next.part.id) ?? [])].reverse()) waiting.push({ part, depth: depth + 1 });
            }
        }
        return [...placed.values()];
    }

    /** @param {Part} part @param {number} depth */
    #partRow(part, depth) {
        const look = this.viewer.settings.parts.get(part.id);
        if (!look) return make('div');
        const name = part.name || `Part ${part.id}`;
        const visible = make('input', '', { type: 'checkbox', checked: look.visible, ariaLabel: `Show ${name}` });
        visible.onchange = () => this.#set(() => (look.visible = visible.checked));
        const color = make('input', '', { type: 'color', value: hexOf(look.color), ariaLabel: `Colour of ${name}` });
        color.onchange = () => this.#set(() => (look.color = colorOf(color.value)));
        const style = make('select', '', { ariaLabel: `Style of ${name}` });
        setOptions(style, Object.entries(styles).map(([value, text]) => ({ value, text })), look.style);
        style.onchange = () => this.#set(() => (look.style = /** @type {DrawStyle} */ (style.value)));
        const opacity = make('input', '', { type: 'range', min: '0', max: '1', step: '0.05', value: String(look.opacity), ariaLabel: `Opacity of ${name}` });
        opacity.oninput = () => this.#set(() => (look.opacity = Number(opacity.value)));
        const looks = make('div', '', { className: 'looks' }, [style, opacity]);
        const row = make('div', '', { className: 'part' }, [visible, make('span', name, { title: name }), color, looks]);
        row.dataset.part = String(part.id);
        row.style.marginLeft = `${14 * Math.min(depth, mostDepth)}px`;
        return row;
    }

    /** @param {() => void} change */
    #set(change) {
        change();
        this.#changed();
    }

    /** @param {string} name @param {number} index */
    #setRow(name, index) {
        const box = make('input', '', { type: 'checkbox', checked: this.viewer.settings.sets.includes(index) });
        box.onchange = () => {
            const others = this.viewer.settings.sets.filter((set) => set !== index);
            this.viewer.store.update({ sets: box.checked ? [...others, index] : others });
        };
        return make('label', '', {}, [box, make('span', name)]);
    }
}
