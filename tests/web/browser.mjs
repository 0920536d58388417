// A real browser on pages of the tests' own: served from loopback, with jQuery answered from the installed package.
import { spawnSync } from 'node:child_process';
import { mkdirSync, mkdtempSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { createServer } from 'node:http';
import { tmpdir } from 'node:os';
import { extname, join, normalize, resolve } from 'node:path';
import { chromium } from 'playwright-core';
import { decode, difference } from './pictures.mjs';

const types = { '.html': 'text/html; charset=utf-8', '.js': 'text/javascript', '.css': 'text/css', '.png': 'image/png' };
const jQuery = readFileSync(new URL('./node_modules/jquery/dist/jquery.min.js', import.meta.url));

// A picture beside those of the other tests, where they are kept.
export function keep(png, name, folder = '') {
    if (!process.env.LETTRINO_ARTEFACTS) return png;
    const kept = join(process.env.LETTRINO_ARTEFACTS, folder);
    mkdirSync(kept, { recursive: true });
    writeFileSync(join(kept, `${name.replace(/[^\w.-]+/g, '-')}.png`), png);
    return png;
}

export const launch = (...more) => chromium.launch({
    executablePath: process.env.CHROMIUM ?? '/usr/bin/chromium',
    args: ['--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run', '--disable-background-networking',
        '--disable-component-update', '--disable-sync', '--force-color-profile=srgb', ...more],
});

export class Site {
    folder = mkdtempSync(join(tmpdir(), 'lettrino-web-'));

    async open() {
        this.server = createServer((request, response) => {
            const path = normalize(decodeURIComponent(new URL(request.url, 'http://x').pathname));
            try {
                const bytes = readFileSync(join(this.folder, path));
                response.writeHead(200, { 'Content-Type': types[extname(path)] ?? 'application/octet-stream' }).end(bytes);
            } catch {
                response.writeHead(404).end();
            }
        });
        await new Promise((done) => this.server.listen(0, '127.0.0.1', done));
        this.browser = await launch();
        return this;
    }

    async close() {
        await this.browser?.close();
        this.server?.close();
        rmSync(this.folder, { recursive: true, force: true });
    }

    // Runs lettrino-cli in the site's folder, or throws.
    run(args) {
        const run = spawnSync(resolve(process.env.LETTRINO_CLI), args, { cwd: this.folder, encoding: 'utf8', maxBuffer: 1 << 28 });
        if (run.status !== 0) throw new Error(`lettrino-cli ${args.join(' ')}: ${run.stderr}`);
        return run;
    }
    // What it prints, and what it warns of.
    cli(...args) { return this.run(args).stdout; }
    warnings(...args) { return this.run(args).stderr; }

    // A line of text as it sets it.
    lineOf(text, font = 'f.sm') {
        this.cli('--open', font, '--text', text, 'line.png');
        return readFileSync(join(this.folder, 'line.png'));
    }

    // A page of the site. Nothing else can be reached; errors of the page's scripts are kept in page.failures.
    async page(path, options = {}) {
        const context = await this.browser.newContext({ viewport: { width: 1200, height: 700 }, ...options });
        const page = await context.newPage();
        page.failures = [];
        page.on('pageerror', (error) => page.failures.push(String(error)));
        await page.route('**/*', (route) => {
            const url = new URL(route.request().url());
            if (url.hostname === '127.0.0.1') return route.continue();
            if (/jquery/.test(url.pathname)) return route.fulfill({ contentType: 'text/javascript', body: jQuery });
            return route.abort();
        });
        await page.goto(`http://127.0.0.1:${this.server.address().port}/${path}`);
        return page;
    }
}

// Around the ink of a picture on white.
function inkOf({ data, width, height }) {
    let left = width, right = -1, top = height, bottom = -1;
    for (let y = 0; y < height; ++y) {
        for (let x = 0; x < width; ++x) {
            const i = (y * width + x) * 4;
            if (data[i] + data[i + 1] + data[i + 2] > 3 * 250) continue;
            left = Math.min(left, x); right = Math.max(right, x);
            top = Math.min(top, y); bottom = Math.max(bottom, y);
        }
    }
    return { left, top, width: right - left + 1, height: bottom - top + 1 };
}

// Two PNGs, each cut to its ink: sizes, mean difference of the channels in levels, and the share of pixels that are off
// by more than 32 levels.
export function compare(first, second) {
    const pictures = [decode(first), decode(second)];
    const [a, b] = pictures.map(inkOf);
    const places = [a, b].map(({ left, top }) => [left, top]);
    return { sizes: [a, b].map((ink) => [ink.width, ink.height]),
        ...difference(...pictures, Math.min(a.width, b.width), Math.min(a.height, b.height), ...places) };
}
