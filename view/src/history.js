// The values of one item over the states: as a plot, and as CSV.

import { numberText } from './numbers.js';

/** @typedef {{ title: string, states: import('./types.js').State[], values: number[] }} History */

/** @param {HTMLCanvasElement} canvas @param {History} history */
export function plotHistory(canvas, { title, states, values }) {
    const ratio = window.devicePixelRatio || 1;
    const { width, height } = canvas.getBoundingClientRect();
    canvas.width = width * ratio;
    canvas.height = height * ratio;
    const context = canvas.getContext('2d');
    if (!context) return;
    context.scale(ratio, ratio);
    context.font = '11px system-ui, sans-serif';
    context.strokeStyle = context.fillStyle = getComputedStyle(canvas).color;
    const times = states.map((state, i) => state.value ?? i);
    const known = values.filter(Number.isFinite);
    const [low, high] = [Math.min(...known), Math.max(...known)];
    const [first, last] = [Math.min(...times), Math.max(...times)];
    /** @param {number} time */
    const xOf = (time) => 8 + ((width - 16) * (time - first)) / (last - first || 1);
    /** @param {number} value */
    const yOf = (value) => height - 18 - ((height - 50) * (value - low)) / (high - low || 1);
    context.fillText(title, 8, 12);
    context.fillText(`${numberText(low)} to ${numberText(high)}`, 8, 26);
    context.fillText(numberText(first), 8, height - 4);
    context.textAlign = 'right';
    context.fillText(numberText(last), width - 8, height - 4);
    context.textAlign = 'left';
    context.beginPath();
    let isDrawing = false;
    values.forEach((value, i) => {
        const isThere = Number.isFinite(value);
        if (isThere && isDrawing) context.lineTo(xOf(times[i]), yOf(value));
        else if (isThere) context.moveTo(xOf(times[i]), yOf(value));
        isDrawing = isThere;
        if (isThere) context.fillRect(xOf(times[i]) - 1.5, yOf(value) - 1.5, 3, 3);
    });
    context.stroke();
    canvas.setAttribute('aria-label', `${title}: ${values.map((value) => numberText(value)).join(', ')}`);
}

/** A field of CSV; quoted where it has to be, and never a formula for a spreadsheet. @param {string} text */
function csvField(text) {
    const safe = /^[=+\-@]/.test(text) && Number.isNaN(Number(text)) ? `'${text}` : text;
    return /[",\n\r]/.test(safe) ? `"${safe.replaceAll('"', '""')}"` : safe;
}

/** @param {History} history */
export function historyCsv({ title, states, values }) {
    const rows = states.map((state, i) => [
        String(state.id),
        state.name,
        String(state.value ?? ''),
        Number.isFinite(values[i]) ? String(Math.fround(values[i])) : '',
    ]);
    return [['state', 'name', 'state_value', title], ...rows]
        .map((row) => `${row.map(csvField).join(',')}\n`)
        .join('');
}

/** Has the browser save a file. @param {string} name @param {Blob} blob */
export function download(name, blob) {
    const link = document.createElement('a');
    link.href = URL.createObjectURL(blob);
    link.download = name.replaceAll(/[^\w.-]+/g, '_');
    link.click();
    setTimeout(() => URL.revokeObjectURL(link.href), 10000);
}
