// The page of a model whose places, values and colours are known, operated as users operate it.

import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { mkdirSync } from 'node:fs';
import { after, before, test } from 'node:test';
import { assertShows, launch, Page, zrfx, ZRFX_MODEL_MAKER, ZRFX_WORK } from './browser.mjs';

const model = `${ZRFX_WORK}/model.zrfx`;
const html = `${ZRFX_WORK}/model.html`;
let browser;
let page;

before(async () => {
    mkdirSync(ZRFX_WORK, { recursive: true });
    execFileSync(ZRFX_MODEL_MAKER, [model]);
    zrfx('view', model, '-o', html);
    browser = await launch();
});
after(() => browser?.close());

/** A page as it was opened. */
async function fresh() {
    await page?.page.close();
    page = await Page.open(browser, html);
}

/** Where in the view a point of the model is: the case puts x = 3, y = 1 in the middle, 8 units high. */
async function at(x, y) {
    const { width, height } = await page.place(0, 0);
    return [0.5 + ((x - 3) * height) / width / 8, 0.5 - (y - 1) / 8];
}
const pick = async (x, y) => page.pick(...(await at(x, y)));
const colorAt = async (x, y) => page.color(...(await at(x, y)));

/** The first row that zrfx cat prints of an item, as numbers behind the ids. */
function printed(result, state, ...choice) {
    const lines = zrfx('cat', model, '--result', result, '--state', state, ...choice).trim().split('\n');
    return lines.filter((line) => !line.startsWith('#')).map((line) => line.split(' ').map(Number));
}

test('the page opens without a message and shows what the case says', async () => {
    await fresh();
    assert.deepEqual(page.messages, []);
    const labels = await page.labels();
    assert.match(labels, /Load: 0 to 400/);
    // The case names the second state first; frames end with the first.
    assert.match(labels, /First, Time 0\.5/);
    const options = await page.page.$$eval('#state-list option', (all) => all.map((own) => own.textContent));
    assert.deepEqual(options, ['<u>Second</u>', 'First']);
});

test('elements have the colours of their values', async () => {
    await fresh();
    // Four bands from 0 to 400, blue to red: 100 is in the second, 200 in the third.
    const [low, high, none] = [await colorAt(0.7, 1.2), await colorAt(3.3, 1.2), await colorAt(5.7, 1.2)];
    assert.deepEqual(none, [255, 0, 255], 'an element without a value has the colour of such');
    assert.ok(low[1] > 200 && low[2] > 100 && low[0] < 10, `${low} is not the second band`);
    assert.ok(high[1] > 200 && high[0] > 100 && high[2] < 10, `${high} is not the third band`);
    await page.enter('#state', 0);
    await page.waitForLabel('<u>Second</u>');
    assert.deepEqual((await colorAt(3.3, 1.2))[1], 0, '400 is in the last band, which is red');
});

test('what is picked is what zrfx cat prints', async () => {
    await fresh();
    const picked = await pick(2.3, 1.8);
    assert.equal(picked.title, 'Node 111, element 1002');
    assert.equal(picked.values.get('Part'), 'Solid');
    assert.equal(picked.values.get('Position'), '2, 2, 2');
    const [[, ...moved]] = printed('<i>Moved</i>', '1', '--node', '111');
    assertShows(picked.values.get('<i>Moved</i> x'), moved[0]);
    const [[, load]] = printed('Load', '1', '--element', '1002');
    assertShows(picked.values.get('Load'), load);
    const rows = printed('Stress', '1', '--element', '1002', '--node', '111');
    assert.equal(rows.length, 1);
    ['xx', 'yy', 'zz', 'xy', 'yz', 'zx'].forEach((name, i) => assertShows(picked.values.get(`Stress ${name}`), rows[0][2 + i]));
    for (const [name, title] of [['von_mises', 'von Mises'], ['principal_1', '1st principal'], ['principal_3', '3rd principal'], ['maximum_shear', 'maximum shear']]) {
        const [[, , value]] = printed('Stress', '1', '--element', '1002', '--node', '111', '--component', name);
        assertShows(picked.values.get(`Stress ${title}`), value);
    }
    assert.equal(await pick(3, -2.5), null, 'nothing is picked beside the model');
    assert.equal((await pick(5, 2.6)).title, 'Node 205, element 2002', 'a beam is picked near its line');
});

test('the history of an item is plotted over the states of the case', async () => {
    await fresh();
    await pick(2.3, 1.8);
    await page.page.waitForFunction(() => document.getElementById('history').getAttribute('aria-label').includes(':'));
    assert.equal(await page.page.$eval('#history', (canvas) => canvas.getAttribute('aria-label')), 'Load, element 1002: 400, 200');
});

test('extremes are those of zrfx stats', async () => {
    await fresh();
    await page.enter('#result', '1');
    await page.waitForLabel('Stress, von Mises');
    await page.enter('#extremes', true);
    for (const [index, state] of [[1, '1'], [0, '2']]) {
        await page.enter('#state', index);
        await page.enter('#range', 'state');
        const { statistics } = JSON.parse(zrfx('stats', model, '--result', 'Stress', '--state', state, '--json'));
        const own = statistics.find((entry) => entry.quantity === 'von_mises');
        await page.waitForLabel(`at element ${own.max.element}`);
        const shown = await page.page.$eval('#max', (field) => field.value);
        assert.ok(Math.abs(Number(shown) - own.max.value) < 1e-6 * own.max.value, `${shown} is shown for ${own.max.value}`);
        const low = await page.page.$eval('#min', (field) => field.value);
        assert.ok(Math.abs(Number(low) - own.min.value) < 1e-6 * own.min.value, `${low} is shown for ${own.min.value}`);
    }
});

test('values of elements and means at nodes differ where elements meet', async () => {
    await fresh();
    await page.enter('#result', '1');
    await page.enter('#quantity', 'xx');
    await page.enter('#bands', '20');
    await page.waitForLabel('Stress, xx');
    const sides = async () => [await colorAt(1.97, 1.2), await colorAt(2.03, 1.2)];
    const [left, right] = await sides();
    assert.notDeepEqual(left, right);
    await page.enter('#average', true);
    const [leftMean, rightMean] = await sides();
    const distance = Math.hypot(...leftMean.map((own, i) => own - rightMean[i]));
    assert.ok(distance < Math.hypot(...left.map((own, i) => own - right[i])) / 2, `${leftMean} beside ${rightMean}`);
});

test('parts are hidden, and drawn in their colour', async () => {
    await fresh();
    await page.enter('[data-part="10"] input[type=checkbox]', false);
    assert.equal(await pick(1, 1), null);
    assert.notEqual(await pick(5.7, 1.2), null);
    await page.page.click('#show-all');
    await page.enter('#result', '-1');
    assert.deepEqual(await colorAt(1, 1.2), [0, 0, 255]);
    await page.enter('[data-part="10"] select', 'outline');
    assert.deepEqual(await colorAt(1, 1.2), await colorAt(4.5, 1.2), 'an outline is empty');
    await page.enter('[data-part="20"] select', 'outline');
    const [x, y] = await at(5, 2.5);
    const beside = [];
    for (const pixels of [-2, -1, 0, 1, 2]) beside.push(String(await page.color(x + pixels / 730, y)));
    assert.ok(beside.includes('0,0,255'), `the outline of a beam is the beam, not ${beside.join(' ')}`);
});

test('the plane clips what is drawn and what is picked', async () => {
    await fresh();
    await page.enter('#clip-axis', 'z');
    await page.enter('#clip-place', 0.5);
    await page.enter('#clip', true);
    assert.equal((await pick(2.3, 1.8)).title, 'Node 105, element 1002', 'the face behind is picked');
    await page.enter('#clip-axis', 'x');
    assert.equal(await pick(5.7, 1.2), null);
    assert.notEqual(await pick(1, 1.2), null);
    assert.deepEqual(await colorAt(5.7, 1.2), await colorAt(4.5, -2));
});

test('the shape is deformed to scale', async () => {
    await fresh();
    assert.equal(await pick(4.1, 1.9), null);
    await page.enter('#displacement', '0');
    await page.enter('#exaggeration', '200');
    await page.waitForLabel('deformed × 200');
    // By 0.001 * 10 * 200 = 2 along x.
    assert.equal((await pick(4.1, 1.9)).title, 'Node 111, element 1002');
});

test('a fixed range says that values lie beyond it', async () => {
    await fresh();
    await page.enter('#max', '150');
    await page.waitForLabel('Load: 0 to 150');
    const before = await colorAt(0.7, 1.2);
    assert.notDeepEqual(before, await colorAt(3.3, 1.2));
});

test('sets are highlighted', async () => {
    await fresh();
    const [one, other] = [await colorAt(0.7, 1.2), await colorAt(3.3, 1.2)];
    await page.enter('#sets input', true);
    assert.deepEqual(await colorAt(0.7, 1.2), one);
    assert.notDeepEqual(await colorAt(3.3, 1.2), other);
});

test('arrows are drawn as the case says', async () => {
    await fresh();
    await page.enter('#case', '2');
    await page.waitForLabel('<u>Second</u>');
    const isGreen = ([red, green, blue]) => green > red + 60 && green > blue + 60;
    const drawn = await colorAt(4.6, 2.02);
    assert.ok(isGreen(drawn), `${drawn} is not the colour of the arrow from x = 4`);
    assert.ok(!isGreen(await colorAt(5.7, 2.08)), 'it ends at x = 5.5, as it is clamped');
    assert.ok(!isGreen(await colorAt(4.6, 0)), 'that from node 109 is shorter than the shortest');
    assert.ok(!isGreen(await colorAt(7.5, 2.02)), 'that from node 203 is longer than the longest');
    assert.ok(isGreen(await colorAt(5.25, 2.02)));
    await page.enter('#arrow-scale', '0.2');
    assert.ok(!isGreen(await colorAt(5.25, 2.02)), 'the slider shortens it');
});

test('the picture is saved with its legend', async () => {
    await fresh();
    const saved = await page.page.evaluate(async () => {
        const saving = new Promise((resolve) => {
            HTMLAnchorElement.prototype.click = function click() {
                resolve({ name: this.download, href: this.href });
            };
        });
        document.getElementById('png').click();
        const { name, href } = await saving;
        const image = new Image();
        image.src = href;
        await image.decode();
        const canvas = document.createElement('canvas');
        [canvas.width, canvas.height] = [image.width, image.height];
        const context = canvas.getContext('2d');
        context.drawImage(image, 0, 0);
        // In the legend, and in an element without a value.
        const own = (x, y) => [...context.getImageData(x, y, 1, 1).data.slice(0, 3)];
        return { name, legend: own(20, 80), width: image.width };
    });
    assert.equal(saved.name, 'model.zrfx.png');
    assert.equal(saved.width, 730);
    assert.deepEqual(saved.legend, [255, 0, 0]);
});

test('names that try to be markup are shown as they are', async () => {
    await fresh();
    await pick(5.7, 1.2);
    assert.equal(await page.text('[data-part="20"] span'), '<img src=x onerror="window.hacked=1"></script><b>Shell</b>');
    assert.match(await page.text('#subtitle'), /^<script>window\.hacked=3<\/script>/);
    assert.equal(await page.text('#description'), 'Seen along z');
    assert.equal(await page.page.evaluate(() => window.hacked), undefined);
    assert.equal(await page.page.$$eval('img, b, i, u, s, iframe', (all) => all.length), 0);
    await page.enter('#case', '1');
    await page.waitForLabel('Stress, von Mises');
    assert.deepEqual(page.messages, []);
});

test('keys step through the states and play', async () => {
    await fresh();
    await page.page.focus('#view');
    await page.page.keyboard.press('ArrowLeft');
    await page.waitForLabel('<u>Second</u>');
    await page.page.keyboard.press('Space');
    await page.waitForLabel('First');
    await page.page.keyboard.press('Space');
    assert.deepEqual(page.messages, []);
});

test('a browser without WebGL gets a sentence', async () => {
    const plain = await launch(['--disable-gpu', '--disable-webgl', '--disable-3d-apis']);
    try {
        const own = new Page(await plain.newPage());
        await own.page.goto(`file://${html}`);
        assert.match(await own.text('#message'), /WebGL/);
        assert.deepEqual(own.messages, []);
    } finally {
        await plain.close();
    }
});
