// Elements of the page. Names and texts of files go through textContent alone.

/** @template {HTMLElement} T @param {string} id @param {{ new (): T }} Type @returns {T} */
export function element(id, Type) {
    const found = document.getElementById(id);
    if (!(found instanceof Type)) throw new Error(`The page has no ${id}`);
    return found;
}

/** @param {string} id */
export const input = (id) => element(id, HTMLInputElement);
/** @param {string} id */
export const select = (id) => element(id, HTMLSelectElement);
/** @param {string} id */
export const button = (id) => element(id, HTMLButtonElement);

/**
 * A new element with a text and children.
 * @template {keyof HTMLElementTagNameMap} K
 * @param {K} tag @param {string} [text] @param {Partial<HTMLElementTagNameMap[K]>} [properties] @param {Node[]} [children]
 * @returns {HTMLElementTagNameMap[K]}
 */
export function make(tag, text = '', properties = {}, children = []) {
    const made = document.createElement(tag);
    made.textContent = text;
    Object.assign(made, properties);
    made.append(...children);
    return made;
}

/** Replaces what can be selected. @param {HTMLSelectElement} list @param {{ value: string, text: string }[]} options @param {string} chosen */
export function setOptions(list, options, chosen) {
    list.replaceChildren(...options.map(({ value, text }) => make('option', text, { value })));
    list.value = chosen;
}

/** The number in a field; the one before when it is none. @param {HTMLInputElement} field @param {number} before */
export function numberIn(field, before) {
    const number = Number(field.value.replace(',', '.'));
    return field.value.trim() !== '' && Number.isFinite(number) ? number : before;
}
