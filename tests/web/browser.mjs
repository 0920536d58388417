// A real browser on pages of the tests' own: served from loopback, with jQuery answered from the installed package.
import { spawnSync } from 'node:child_process';
import { mkdirSync, mkdtempSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { createServer } from 'node:http';
import { tmpdir } from 'node:os';
import { extname, join, normalize, resolve } from 'node:path';
import { chromium } from 'playwright-core';

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

    // Runs a function in a page of its own on the pixels of PNGs, each { data, width, height }, and on `more`.
    async withPixels(pngs, work, more) {
        const context = await this.browser.newContext();
        const page = await context.newPage();
        const pictures = pngs.map((png) => png.toString('base64'));
        await page.evaluate(async (list) => {
            window.pictures = await Promise.all(list.map(async (base64) => {
                const image = new Image();
                image.src = 'data:image/png;base64,' + base64;
                await image.decode();
                const canvas = new OffscreenCanvas(image.width, image.height);
                const context2d = canvas.getContext('2d');
                context2d.drawImage(image, 0, 0);
                return context2d.getImageData(0, 0, image.width, image.height);
            }));
        }, pictures);
        const result = await page.evaluate(work, more);
        await context.close();
        return result;
    }

    // The colour of a PNG at a place, both coordinates between 0 and 1.
    colour(png, u, v) {
        return this.withPixels([png], ([x, y]) => {
            const { data, width, height } = window.pictures[0];
            const start = (Math.floor(y * height) * width + Math.floor(x * width)) * 4;
            return [...data.slice(start, start + 3)];
        }, [u, v]);
    }

    // Two PNGs, each cut to its ink on white, compared in the browser: sizes, mean difference of the channels in
    // levels, and the share of pixels that are off by more than 32 levels.
    compare(first, second) {
        return this.withPixels([first, second], () => {
            const [a, b] = window.pictures.map(({ data, width: fullWidth, height: fullHeight }) => {
                let left = fullWidth, right = -1, top = fullHeight, bottom = -1;
                for (let y = 0; y < fullHeight; ++y) {
                    for (let x = 0; x < fullWidth; ++x) {
                        const i = (y * fullWidth + x) * 4;
                        if (data[i] + data[i + 1] + data[i + 2] > 3 * 250) continue;
                        left = Math.min(left, x); right = Math.max(right, x);
                        top = Math.min(top, y); bottom = Math.max(bottom, y);
                    }
                }
                return { data, stride: fullWidth * 4, left, top, width: right - left + 1, height: bottom - top + 1 };
            });
            const width = Math.min(a.width, b.width);
            const height = Math.min(a.height, b.height);
            let sum = 0;
            let off = 0;
            for (let y = 0; y < height; ++y) {
                for (let x = 0; x < width; ++x) {
                    let most = 0;
                    for (let c = 0; c < 3; ++c) {
                        const d = Math.abs(a.data[(a.top + y) * a.stride + (a.left + x) * 4 + c] - b.data[(b.top + y) * b.stride + (b.left + x) * 4 + c]);
                        sum += d;
                        most = Math.max(most, d);
                    }
                    if (most > 32) ++off;
                }
            }
            return { sizes: [[a.width, a.height], [b.width, b.height]], mean: sum / (width * height * 3), off: off / (width * height) };
        });
    }
}
