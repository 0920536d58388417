// The same page in different ways: in Chromium and in Firefox, each also where a script may not read pixels. A tab
// navigates, runs functions in the page and takes pictures of it.
import assert from 'node:assert/strict';
import { readFileSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { compare, keep, Site } from './browser.mjs';
import { Firefox } from './firefox.mjs';

const jQueries = { '': 'jquery', '-1.9': 'jquery-1.9', '-4': 'jquery-4' };
const later = (milliseconds) => new Promise((done) => { setTimeout(done, milliseconds); });

// Keeps what a console of the page's would show of trouble.
const listener = `<script>var troubles = [];
addEventListener('error', (e) => troubles.push(String(e.message)), true);
addEventListener('unhandledrejection', (e) => troubles.push(String(e.reason)));
console.error = console.warn = (...what) => troubles.push(what.join(' '));</script>`;

// Runs in the page: the rectangle of each character of an element, in the order of the text.
function rectsOf(selector) {
    const walker = document.createTreeWalker(document.querySelector(selector), NodeFilter.SHOW_TEXT);
    const range = document.createRange();
    const rects = [];
    for (let node = walker.nextNode(); node; node = walker.nextNode()) {
        for (let i = 0; i < node.data.length; ++i) {
            range.setStart(node, i);
            range.setEnd(node, i + 1);
            const { left, right, top, bottom } = range.getBoundingClientRect();
            rects.push({ character: node.data[i], left, right, top, bottom });
        }
    }
    return rects;
}

export class Tabs {
    site = new Site();
    firefox = new Firefox();
    size = { width: 1200, height: 700 };

    async open() {
        await Promise.all([this.site.open(), this.firefox.open()]);
        for (const [name, folder] of Object.entries(jQueries))
            writeFileSync(join(this.site.folder, `jquery${name}.js`), readFileSync(new URL(`./node_modules/${folder}/${name === '-1.9' ? 'jquery.min.js' : 'dist/jquery.min.js'}`, import.meta.url)));
    }

    close() { return Promise.all([this.site.close(), this.firefox.close()]); }

    // The address of a page with this head and body, on which the font of FONT.js is family FONT. Of fonts with a "large"
    // size the class "f" has it.
    write(body, { head = '', jQuery = 'jquery.js', font = 'demo', size = 100 } = {}) {
        const name = `page${Math.random().toString(36).slice(2)}.html`;
        writeFileSync(join(this.site.folder, name), '<!DOCTYPE html><html lang="en"><head><meta charset="utf-8">' + listener +
            (jQuery ? `<script src="${jQuery}"></script>` : '') + `<script src="lettrino-1.0.js"></script><script src="${font}.js"></script>` +
            `<style>body{margin:20px;background:#fff}.f{font-family:${font};font-size:${size}px;line-height:1.3;margin:0}</style>${head}</head><body>${body}</body></html>`);
        return name;
    }

    address(way, name) {
        return way === 'chromium on a file' ? `file://${join(this.site.folder, name)}` : `http://127.0.0.1:${this.site.server.address().port}/${name}`;
    }

    // Opens a page and waits until its fonts are drawn (`fonts`: how many).
    async tab(way, name, { fonts = 1, ...options } = {}) {
        const tab = await (way.startsWith('chromium') ? this.chromiumTab(options) : this.firefoxTab(way, options));
        tab.rects = (selector) => tab.run(rectsOf, selector);
        await tab.goto(this.address(way, name));
        for (let tries = 0; await tab.run(() => [...document.fonts].filter((face) => face.status === 'loaded').length) < fonts; ++tries) {
            if (tries === 100) throw new Error(`${way}: the font doesn't come: ${await tab.run(() => JSON.stringify(window.troubles))}`);
            await later(50);
        }
        return tab;
    }

    // One page serves all tabs that ask for nothing special.
    async chromiumTab(options) {
        const special = Object.keys(options).length > 0;
        const page = special || !this.page ? await this.newPage(options) : this.page;
        if (!special) await (this.page = page).setViewportSize(this.size);
        return {
            page,
            goto: (url) => page.goto(url),
            run: (work, ...args) => page.evaluate(`(${work})(...${JSON.stringify(args)})`),
            shot: () => page.screenshot(),
            resize: (width, height) => page.setViewportSize({ width, height }),
            type: (text) => page.keyboard.insertText(text),
            shortcut: (key) => page.keyboard.press(`Control+${key}`),
            close: async () => { if (special) await page.context().close(); },
        };
    }

    async newPage(options) {
        const context = await this.site.browser.newContext({ viewport: this.size, ...options });
        const page = await context.newPage();
        await page.route('http*://*/**', (route) => (new URL(route.request().url()).hostname === '127.0.0.1' ? route.continue() : route.abort()));
        return page;
    }

    async firefoxTab(way, { deviceScaleFactor = 1 }) {
        const { firefox } = this;
        await firefox.setPreference('privacy.resistFingerprinting', way === 'firefox without pixels');
        await firefox.setDensity(deviceScaleFactor);
        await firefox.send('WebDriver:SetWindowRect', { width: 1200, height: 800 });
        return {
            goto: (url) => firefox.goto(url),
            run: (work, ...args) => firefox.run(`return (${work})(...arguments)`, ...args),
            // The pictures inside of glyphs come when they are decoded.
            async shot() {
                for (let last = await firefox.shot(); ;) {
                    await later(120);
                    const shot = await firefox.shot();
                    if (shot.equals(last)) return shot;
                    last = shot;
                }
            },
            resize: (width, height) => firefox.send('WebDriver:SetWindowRect', { width, height: height + 85 }),
            type: (text) => firefox.type(text),
            shortcut: (key) => firefox.type(key, true),
            close: async () => {},
        };
    }

    // A page shows a line, which is a picture or a text of the font f.sm, and nothing else.
    async assertDrawn(tab, line, name, { size = 1, mean = 0.5, off = 0.002 } = {}) {
        const found = compare(this.keep(await tab.shot(), name), typeof line === 'string' ? this.site.lineOf(line) : line);
        const [[w1, h1], [w2, h2]] = found.sizes;
        assert.ok(Math.abs(w1 - w2) <= size && Math.abs(h1 - h2) <= size && found.mean <= mean && found.off <= off, `${name}: ${JSON.stringify(found)}`);
    }

    keep(png, name) { return keep(png, name, 'web-page'); }
}

export const browsers = ['chromium', 'firefox'];
export const ways = [...browsers, 'chromium on a file', 'firefox without pixels'];
