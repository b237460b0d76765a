// The cases: name, description, snapshot.

import { element, select, setOptions } from './dom.js';

/** The text of a description that is HTML; nothing in it runs. @param {string} html */
function textOf(html) {
    const page = new DOMParser().parseFromString(html, 'text/html');
    for (const hidden of page.querySelectorAll('script, style, template')) hidden.remove();
    for (const line of page.querySelectorAll('br, p, div, li, tr')) line.append('\n');
    return (page.body.textContent ?? '').trim();
}

export class CasePanel {
    /** @param {import('./types.js').Source} source @param {(shown: import('./types.js').Case | null) => void} onChosen */
    constructor(source, onChosen) {
        this.source = source;
        const list = select('case');
        setOptions(list, source.cases.map((own, i) => ({ value: String(i), text: own.name || `Case ${own.id}` })), '0');
        element('case-section', HTMLElement).hidden = source.cases.length === 0;
        list.onchange = () => onChosen(source.cases[Number(list.value)]);
    }

    /** @param {import('./types.js').Case | null} shown */
    async show(shown) {
        if (!shown) return;
        select('case').value = String(this.source.cases.indexOf(shown));
        element('description', HTMLElement).textContent = textOf(shown.description);
        const image = await this.source.image(shown.snapshot);
        const canvas = element('snapshot', HTMLCanvasElement);
        canvas.hidden = image === null;
        if (!image) return;
        [canvas.width, canvas.height] = [image.width, image.height];
        canvas.getContext('2d')?.putImageData(image, 0, 0);
    }
}
