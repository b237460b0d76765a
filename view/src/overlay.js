// What lies over the picture: title block, colour legend, marks. Drawn on a canvas, so that the saved
// picture has it, too.

import { numberText } from './numbers.js';

const margin = 12;
const lineHeight = 16;
const barWidth = 18;
const legendTop = 72;  // below the buttons
const smoothSteps = 8;

/**
 * @typedef {object} Legend
 * @property {string} title
 * @property {number} min
 * @property {number} max
 * @property {number[] | null} limits  Of bands; null where colours are smooth.
 * @property {(value: number) => readonly number[]} colorOf
 * @property {string} format
 * @property {number} digits
 * @property {boolean} hasBeyond  Values lie outside of the range.
 */
/** @typedef {{ place: { x: number, y: number } | null, text: string }} Mark */
/**
 * @typedef {object} Labels
 * @property {string[]} title  Lines.
 * @property {Legend | null} legend
 * @property {Mark[]} marks
 */

/** @param {readonly number[]} color */
const css = (color) => `rgb(${color.map((c) => Math.round(c * 255)).join(' ')})`;

/** The values that the legend has a number beside, from the lowest up. @param {Legend} legend @param {number} most */
function ticksOf(legend, most) {
    const even = Array.from({ length: smoothSteps + 1 }, (_, i) => legend.min + ((legend.max - legend.min) * i) / smoothSteps);
    const all = legend.limits ?? even;
    const step = Math.ceil((all.length - 1) / Math.max(1, most)) || 1;
    return all.map((value, index) => ({ value, index })).filter(({ index }) => index % step === 0 || index === all.length - 1);
}

/** The bar with its colours, from the lowest value up. @param {CanvasRenderingContext2D} context @param {Legend} legend @param {number} barHeight */
function drawBar(context, legend, barHeight) {
    const count = legend.limits ? legend.limits.length - 1 : barHeight;
    for (let i = 0; i < count; ++i) {
        const value = legend.limits
            ? (legend.limits[i] + legend.limits[i + 1]) / 2
            : legend.min + ((legend.max - legend.min) * (i + 0.5)) / count;
        context.fillStyle = css(legend.colorOf(value));
        const bottom = legendTop + barHeight * (1 - i / count);
        context.fillRect(margin, bottom - barHeight / count, barWidth, barHeight / count + 0.5);
    }
}

/** @param {CanvasRenderingContext2D} context @param {Legend} legend @param {number} height */
function drawLegend(context, legend, height) {
    const barHeight = Math.min(300, height - legendTop - 90);
    if (barHeight < 40) return;
    drawBar(context, legend, barHeight);
    context.strokeStyle = context.fillStyle = getComputedStyle(document.body).color;
    context.strokeRect(margin + 0.5, legendTop + 0.5, barWidth, barHeight);
    const steps = legend.limits ? legend.limits.length - 1 : smoothSteps;
    for (const { value, index } of ticksOf(legend, Math.floor(barHeight / lineHeight))) {
        const y = legendTop + barHeight * (1 - index / steps);
        context.fillRect(margin + barWidth, y, 4, 1);
        context.fillText(numberText(value, legend.format, legend.digits), margin + barWidth + 8, y + 4);
    }
    context.fillText(legend.title, margin, legendTop - 12);
    if (legend.hasBeyond) context.fillText('values lie beyond the range', margin, legendTop + barHeight + 20);
}

/** @param {CanvasRenderingContext2D} context @param {Mark} mark */
function drawMark(context, { place, text }) {
    if (!place) return;
    const width = context.measureText(text).width;
    context.fillStyle = css([1, 1, 1]);
    context.globalAlpha = 0.85;
    context.fillRect(place.x + 10, place.y - 24, width + 8, 18);
    context.globalAlpha = 1;
    context.strokeStyle = context.fillStyle = css([0.1, 0.1, 0.1]);
    context.beginPath();
    context.arc(place.x, place.y, 3, 0, 2 * Math.PI);
    context.moveTo(place.x, place.y);
    context.lineTo(place.x + 10, place.y - 15);
    context.stroke();
    context.fillText(text, place.x + 14, place.y - 11);
}

/** @param {HTMLCanvasElement} canvas @param {Labels} labels */
export function drawOverlay(canvas, labels) {
    const ratio = window.devicePixelRatio || 1;
    const { width, height } = canvas.getBoundingClientRect();
    canvas.width = Math.floor(width * ratio);
    canvas.height = Math.floor(height * ratio);
    const context = canvas.getContext('2d');
    if (!context) return;
    context.scale(ratio, ratio);
    context.font = '12px system-ui, sans-serif';
    context.fillStyle = getComputedStyle(document.body).color;
    labels.title.forEach((line, i) => {
        context.fillText(line, margin, height - margin - (labels.title.length - 1 - i) * lineHeight);
    });
    if (labels.legend) drawLegend(context, labels.legend, height);
    for (const mark of labels.marks) drawMark(context, mark);
    canvas.setAttribute('aria-label', describe(labels));
}

/** All of it in words. @param {Labels} labels */
function describe({ title, legend, marks }) {
    /** @param {number} value */
    const text = (value) => numberText(value, legend?.format, legend?.digits);
    const range = legend ? [`${legend.title}: ${text(legend.min)} to ${text(legend.max)}`] : [];
    return [...title, ...range, ...marks.map((mark) => mark.text)].join('. ');
}
