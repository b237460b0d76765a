// Numbers as the page holds them: differences, their lowest bytes first, deflated, as base64.

const undefinedNumber = 65535;
const highestNumber = 65534;

/** @param {string} text @returns {Uint8Array<ArrayBuffer>} */
function bytesOf(text) {
    const quick = /** @type {any} */ (Uint8Array).fromBase64;
    if (quick) return quick.call(Uint8Array, text);
    const binary = atob(text);
    const bytes = new Uint8Array(binary.length);
    for (let i = 0; i < binary.length; ++i) bytes[i] = binary.charCodeAt(i);
    return bytes;
}

/** @param {string} text @returns {Promise<Uint8Array>} */
async function inflated(text) {
    const stream = new Blob([bytesOf(text)]).stream();
    const inflating = stream.pipeThrough(new DecompressionStream('deflate-raw'));
    return new Uint8Array(await new Response(inflating).arrayBuffer());
}

/**
 * @template {Uint8Array | Uint16Array | Uint32Array | Int32Array} T
 * @param {string} text
 * @param {{ new (length: number): T, BYTES_PER_ELEMENT: number }} Type
 * @returns {Promise<T>}
 */
export async function unpack(text, Type) {
    const planes = await inflated(text);
    const width = Type.BYTES_PER_ELEMENT;
    const count = planes.length / width;
    const numbers = new Type(count);
    let before = 0;
    for (let i = 0; i < count; ++i) {
        let difference = 0;
        for (let b = width - 1; b >= 0; --b) difference = (difference << 8) | planes[b * count + i];
        before = (before + difference) | 0;
        numbers[i] = before;
    }
    return numbers;
}

/**
 * Floats of items whose components were scaled to whole numbers one by one.
 * @param {Uint16Array} numbers  All of the first component, then of the next.
 * @param {[number, number][]} ranges  Of each component.
 */
export function unscaled(numbers, ranges) {
    const components = ranges.length;
    const count = numbers.length / components;
    const values = new Float32Array(numbers.length);
    ranges.forEach(([min, max], c) => {
        const step = (max - min) / highestNumber;
        for (let i = 0; i < count; ++i) {
            const number = numbers[c * count + i];
            const value = number === highestNumber ? max : min + number * step;
            values[i * components + c] = number === undefinedNumber ? NaN : value;
        }
    });
    return values;
}

/** How far a float may be from the one that was scaled. @param {[number, number][]} ranges */
export function stepOf(ranges) {
    return Math.max(...ranges.map(([min, max]) => (max - min) / highestNumber));
}
