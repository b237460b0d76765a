// node build.mjs OUT.cpp: bundles the page and writes it as C++ text, in two pieces that the data
// come between.
import { createHash } from 'node:crypto';
import { readdirSync, readFileSync, writeFileSync } from 'node:fs';
import { dirname, join } from 'node:path';
import { fileURLToPath } from 'node:url';
import { build } from 'esbuild';

const folder = join(dirname(fileURLToPath(import.meta.url)), 'src');
const longestLiteral = 8000;

/** The licences of the packages that a bundle has parts of, as they ask for. @param {string[]} inputs */
function licences(inputs) {
    const packages = inputs.map((input) => /node_modules\/((?:@[^/]+\/)?[^/]+)\//.exec(input)?.[1]);
    const texts = [...new Set(packages)].sort().flatMap((name) => {
        if (!name) return [];
        const own = join(folder, '../node_modules', name);
        const file = readdirSync(own).find((entry) => /^licen[cs]e/i.test(entry));
        const { version, license } = JSON.parse(readFileSync(join(own, 'package.json'), 'utf8'));
        return `${name} ${version}, ${license}\n${file ? readFileSync(join(own, file), 'utf8') : ''}`;
    });
    return `/*\n${texts.join('\n').replaceAll('*/', '* /')}*/\n`;
}

/** @param {string} entry @returns {Promise<string>} */
async function bundle(entry) {
    const result = await build({
        entryPoints: [join(folder, entry)],
        bundle: true,
        minify: true,
        format: 'iife',
        target: 'es2022',
        legalComments: 'none',
        write: false,
        metafile: true,
        logLevel: 'warning',
    });
    const inputs = Object.keys(result.metafile.inputs);
    return (entry.endsWith('.js') ? licences(inputs) : '') + result.outputFiles[0].text;
}

/** @param {string} text */
const hashOf = (text) => `'sha256-${createHash('sha256').update(text).digest('base64')}'`;

/** @param {string} text @returns {string} */
function literals(text) {
    const lines = [];
    const bytes = Buffer.from(text);
    for (let at = 0; at < bytes.length; at += longestLiteral) {
        let line = '';
        for (const byte of bytes.subarray(at, at + longestLiteral)) {
            const isPlain = byte >= 32 && byte < 127 && !'"\\?'.includes(String.fromCharCode(byte));
            line += isPlain ? String.fromCharCode(byte) : `\\${byte.toString(8).padStart(3, '0')}`;
        }
        lines.push(`    "${line}"`);
    }
    return `${lines.join('\n')}, ${bytes.length}`;
}

const style = (await bundle('style.css')).trim();
// Nothing in a script may look like its end.
const script = (await bundle('main.js')).replaceAll('</script', '<\\/script').trim();
// Of the scripts on the page only this one runs, and nothing is loaded from anywhere.
const policy = [
    "default-src 'none'",
    `script-src ${hashOf(script)}`,
    `style-src ${hashOf(style)}`,
    'img-src data: blob:',
    "base-uri 'none'",
    "form-action 'none'",
].join('; ');

const [head, tail] = readFileSync(join(folder, 'page.html'), 'utf8')
    .replace('{{policy}}', () => policy)
    .replace('{{style}}', () => style)
    .replace('{{script}}', () => script)
    .split('{{data}}\n');

writeFileSync(process.argv[2], `#include "ViewPage.h"

std::string_view view::pageHead() {
    return {
${literals(head)}};
}

std::string_view view::pageTail() {
    return {
${literals(tail)}};
}
`);
