// What lies behind the model: one colour, or a gradient from the top down.

/** @typedef {import('./types.js').Settings} Settings */
/** @typedef {import('./types.js').Vector} Vector */

export function isDark() {
    return document.documentElement.classList.contains('dark');
}

/** Its colours, from the top down. @param {Settings} settings @returns {Vector[]} */
export function backdropColors({ background }) {
    return background ?? [isDark() ? [0.08, 0.09, 0.11] : [1, 1, 1]];
}

/** @param {Vector} color */
const css = (color) => `rgb(${color.map((c) => Math.round(255 * c)).join(' ')})`;

/** @param {import('./scene.js').Scene} scene @param {Settings} settings */
export function showBackdrop(scene, settings) {
    const colors = backdropColors(settings);
    const isGradient = colors.length > 1;
    // A gradient lies behind a transparent picture.
    scene.setBackground(colors[0], isGradient ? 0 : 1);
    scene.container.style.background = isGradient ? `linear-gradient(${colors.map(css).join(', ')})` : '';
}

/** Draws it on the whole of a canvas. @param {CanvasRenderingContext2D} context @param {Settings} settings */
export function drawBackdrop(context, settings) {
    const { width, height } = context.canvas;
    const gradient = context.createLinearGradient(0, 0, 0, height);
    const colors = backdropColors(settings);
    colors.forEach((color, i) => gradient.addColorStop(i / Math.max(1, colors.length - 1), css(color)));
    context.fillStyle = gradient;
    context.fillRect(0, 0, width, height);
}
