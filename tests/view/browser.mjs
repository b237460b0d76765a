// A page in a real browser, headless, drawn without a graphics card.

import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { createRequire } from 'node:module';
import { pathToFileURL } from 'node:url';

// Given by the build: the program, the browser, the folder of the page's sources, the maker of the
// test model, and a folder to work in.
export const { ZRFX_PROGRAM, ZRFX_BROWSER, ZRFX_VIEW, ZRFX_MODEL_MAKER, ZRFX_WORK } = process.env;

const puppeteer = createRequire(`${ZRFX_VIEW}/package.json`)('puppeteer-core');

export const zrfx = (...args) => execFileSync(ZRFX_PROGRAM, args, { encoding: 'utf8' });

/** Starts the browser. */
export function launch(graphics = ['--use-angle=swiftshader', '--enable-unsafe-swiftshader']) {
    return puppeteer.launch({
        executablePath: ZRFX_BROWSER,
        headless: ZRFX_BROWSER.endsWith('headless-shell') ? 'shell' : true,
        args: ['--no-sandbox', ...graphics],
    });
}

/** A page that was opened, and what its users do with it. */
export class Page {
    constructor(page) {
        this.page = page;
        this.messages = [];
        page.on('console', (message) => this.messages.push(message.text()));
        page.on('pageerror', (error) => this.messages.push(String(error)));
        page.on('request', (request) => {
            if (!/^(file|data|blob):/.test(request.url())) this.messages.push(`loads ${request.url()}`);
        });
    }

    static async open(browser, file) {
        const own = new Page(await browser.newPage());
        await own.page.setViewport({ width: 1000, height: 700 });
        await own.page.goto(pathToFileURL(file).href);
        await own.page.waitForSelector('body[data-ready]', { timeout: 30000 });
        return own;
    }

    text(selector) {
        return this.page.$eval(selector, (found) => found.textContent);
    }

    /** What lies over the picture, in words. */
    labels() {
        return this.page.$eval('#overlay', (canvas) => canvas.getAttribute('aria-label'));
    }

    /** Waits until the labels hold a text. */
    async waitForLabel(text) {
        const shows = (wanted) => document.getElementById('overlay').getAttribute('aria-label').includes(wanted);
        await this.page.waitForFunction(shows, { timeout: 10000 }, text).catch(async () => {
            assert.fail(`the labels are "${await this.labels()}", without "${text}"`);
        });
    }

    /** Waits until the picture shows what was asked for. */
    settled() {
        return this.page.waitForSelector('#view[aria-busy=false]');
    }

    /** Enters a value as a user does. */
    async enter(selector, value) {
        const change = (found, text) => {
            if (found.type === 'checkbox') found.checked = text;
            else found.value = text;
            found.dispatchEvent(new Event('input', { bubbles: true }));
            found.dispatchEvent(new Event('change', { bubbles: true }));
        };
        await this.page.$eval(selector, change, value);
        await this.settled();
    }

    /** The place of a part of the view, from 0 to 1, on the page. */
    async place(x, y) {
        const { left, top, width, height } = await this.page.$eval('#view', (view) => {
            const box = view.getBoundingClientRect();
            return { left: box.left, top: box.top, width: box.width, height: box.height };
        });
        return { x: left + x * width, y: top + y * height, width, height };
    }

    /** What is picked there: its title and its values by name; null for nothing. */
    async pick(x, y) {
        await this.page.$eval('#close-picked', (button) => button.click());
        await this.page.$eval('#picked-title', (title) => (title.textContent = ''));
        const at = await this.place(x, y);
        await this.page.mouse.click(at.x, at.y);
        return this.picked();
    }

    async picked() {
        const isShown = () => document.getElementById('picked').hidden || document.getElementById('picked-title').textContent !== '';
        await this.page.waitForFunction(isShown, { timeout: 10000 });
        const rows = await this.page.$$eval('#picked-values tr', (all) => all.map((row) => [...row.cells].map((cell) => cell.textContent)));
        const isHidden = await this.page.$eval('#picked', (section) => section.hidden);
        return isHidden ? null : { title: await this.text('#picked-title'), values: new Map(rows) };
    }

    /** The colour of the picture there, as [red, green, blue]. */
    async color(x, y) {
        const at = await this.place(x, y);
        const clip = { x: Math.round(at.x), y: Math.round(at.y), width: 1, height: 1 };
        const png = await this.page.screenshot({ clip, encoding: 'base64' });
        return this.page.evaluate(async (data) => {
            const image = new Image();
            image.src = `data:image/png;base64,${data}`;
            await image.decode();
            const canvas = document.createElement('canvas');
            const context = canvas.getContext('2d');
            context.drawImage(image, 0, 0);
            return [...context.getImageData(0, 0, 1, 1).data.slice(0, 3)];
        }, png);
    }
}

/** Whether a text is the number, as exactly as it has digits. */
export function assertShows(text, number) {
    const [, decimals = '', exponent = '0'] = /^-?\d+\.?(\d*)(?:e([+-]\d+))?$/.exec(text) ?? [];
    const unit = 10 ** (Number(exponent) - decimals.length);
    // Derived from components that are not exact themselves.
    assert.ok(Math.abs(Number(text) - number) <= 3 * unit, `${text} is shown for ${number}`);
}
