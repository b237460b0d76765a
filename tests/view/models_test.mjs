// The pages of three solved models.

import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { cpSync, mkdirSync, readFileSync } from 'node:fs';
import { after, before, test } from 'node:test';
import { assertShows, launch, Page, zrfx, ZRFX_VIEW, ZRFX_WORK } from './browser.mjs';

let browser;
before(async () => {
    browser = await launch();
});
after(() => browser?.close());

function hasSolver() {
    try {
        execFileSync('ccx', ['-v'], { stdio: 'ignore' });
        return true;
    } catch (error) {
        return error.code !== 'ENOENT';
    }
}

for (const [model, label] of [
    ['plate_with_hole', /STRESS, von Mises: /],
    ['tuning_fork', /Mode 1, Frequency 219/],
    ['heat_sink', /deformed × /],
]) {
    test(`${model} is shown as zrfx tells it`, { skip: hasSolver() ? false : 'there is no ccx' }, async () => {
        mkdirSync(ZRFX_WORK, { recursive: true });
        for (const end of ['inp', 'msh']) cpSync(`${ZRFX_VIEW}/../examples/models/${model}.${end}`, `${ZRFX_WORK}/${model}.${end}`);
        execFileSync('ccx', [model], { cwd: ZRFX_WORK, stdio: 'ignore' });
        const file = `${ZRFX_WORK}/${model}.zrfx`;
        zrfx('import', `${ZRFX_WORK}/${model}.frd`, file);
        zrfx('view', file, '-o', `${ZRFX_WORK}/${model}.html`);
        const page = await Page.open(browser, `${ZRFX_WORK}/${model}.html`);
        assert.match(await page.labels(), label);
        const picked = (await page.pick(0.5, 0.5)) ?? (await page.pick(0.4, 0.58));
        const node = /^Node (\d+)/.exec(picked.title)[1];
        const { databases } = JSON.parse(zrfx('info', file, '--json'));
        const state = await page.page.$eval('#state', (slider) => Number(slider.value));
        const { id } = databases[0].states[state];
        const row = zrfx('cat', file, '--result', 'STRESS', '--state', String(id), '--node', node).trim().split('\n').pop().split(' ');
        ['xx', 'yy', 'zz', 'xy', 'yz', 'zx'].forEach((name, i) => assertShows(picked.values.get(`STRESS ${name}`), Number(row[1 + i])));
        // As zrfx info does, the legend can cover all states.
        await page.enter('#range', 'all');
        const { derived } = databases[0].results.find((result) => result.name === 'STRESS');
        for (const [field, value] of [['#min', derived.von_mises.min], ['#max', derived.von_mises.max]]) {
            const shown = Number(await page.page.$eval(field, (own) => own.value));
            assert.ok(Math.abs(shown - value) <= 1e-6 * Math.abs(value), `${shown} is shown for ${value}`);
        }
        assert.deepEqual(page.messages, []);
        await page.page.close();
        zrfx('view', file, '--png', `${ZRFX_WORK}/${model}.png`, '--size', '640x480');
        const png = readFileSync(`${ZRFX_WORK}/${model}.png`);
        assert.deepEqual([png.readUInt32BE(16), png.readUInt32BE(20)], [640, 480]);
        assert.ok(png.length > 20000, 'the picture is not empty');
        zrfx('view', file, '--snapshot', '--size', '640x480');
        assert.equal(JSON.parse(zrfx('info', file, '--json')).cases[0].snapshot, true);
        zrfx('check', file);
        zrfx('view', file, '-o', `${ZRFX_WORK}/${model}.html`);
        const again = await Page.open(browser, `${ZRFX_WORK}/${model}.html`);
        assert.equal(await again.page.$eval('#snapshot', (canvas) => canvas.width), 640);
        await again.page.close();
    });
}
