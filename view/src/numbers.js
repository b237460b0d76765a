// Numbers as text.

/** As printf's %g does: so many significant digits, exponents for very large and very small ones. @param {number} value @param {number} digits */
function general(value, digits) {
    if (value === 0) return '0';
    const exponent = Math.floor(Math.log10(Math.abs(Number(value.toPrecision(digits)))));
    const isPlain = exponent >= -4 && exponent < digits;
    const text = isPlain ? value.toFixed(Math.max(0, digits - 1 - exponent)) : value.toExponential(digits - 1);
    return text.replace(/(\.\d*?)0+(?=e|$)/, '$1').replace(/\.(?=e|$)/, '');
}

/** @param {number} value @param {string} [format] "g", "e" or "f" @param {number} [digits] */
export function numberText(value, format = 'g', digits = 6) {
    if (!Number.isFinite(value)) return 'no value';
    if (format === 'e' || format === 'E') return value.toExponential(digits);
    if (format === 'f' || format === 'F') return value.toFixed(digits);
    return general(value, Math.max(1, digits));
}

/** A number with no more digits than are sure. @param {number} value @param {number} step  How exact it is; 0 for one that is. */
export function sureText(value, step) {
    if (!(step > 0) || !Number.isFinite(value)) return numberText(value);
    const unit = 10 ** Math.ceil(Math.log10(step));
    return numberText(Math.round(value / unit) * unit);
}
