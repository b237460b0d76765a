// What is shown, and who wants to know when it changes.

/** @template {object} T */
export class Store {
    /** @type {((changed: Set<keyof T>) => void)[]} */
    #listeners = [];

    /** @param {T} values */
    constructor(values) {
        this.values = values;
    }

    /** @param {(changed: Set<keyof T>) => void} listener */
    subscribe(listener) {
        this.#listeners.push(listener);
    }

    /** @param {Partial<T>} changes */
    update(changes) {
        const keys = /** @type {(keyof T)[]} */ (Object.keys(changes));
        Object.assign(this.values, changes);
        const changed = new Set(keys);
        for (const listener of this.#listeners) listener(changed);
    }
}
