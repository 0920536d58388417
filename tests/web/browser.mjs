// A real browser on pages of the tests' own: served from loopback, with jQuery answered from the installed package.
import { spawnSync } from 'node:child_process';
import { mkdtempSync, readFileSync, rmSync } from 'node:fs';
import { createServer } from 'node:http';
import { tmpdir } from 'node:os';
import { extname, join, normalize } from 'node:path';
import { chromium } from 'playwright-core';

const types = { '.html': 'text/html; charset=utf-8', '.js': 'text/javascript', '.css': 'text/css', '.png': 'image/png' };
const jQuery = readFileSync(new URL('./node_modules/jquery/dist/jquery.min.js', import.meta.url));

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
        this.browser = await chromium.launch({
            executablePath: process.env.CHROMIUM ?? '/usr/bin/chromium',
            args: ['--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run', '--disable-background-networking',
                '--disable-component-update', '--disable-sync', '--force-color-profile=srgb'],
        });
        return this;
    }

    async close() {
        await this.browser?.close();
        this.server?.close();
        rmSync(this.folder, { recursive: true, force: true });
    }

    // Runs lettrino-cli in the site's folder; what it prints, or throws.
    cli(...args) {
        const run = spawnSync(process.env.LETTRINO_CLI, args, { cwd: this.folder, encoding: 'utf8', maxBuffer: 1 << 28 });
        if (run.status !== 0) throw new Error(`lettrino-cli ${args.join(' ')}: ${run.stderr}`);
        return run.stdout;
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

    // Two PNGs, each cut to its ink on white, compared in the browser: sizes, mean difference of the channels in
    // levels, and the share of pixels that are off by more than 32 levels.
    async compare(first, second) {
        const context = await this.browser.newContext();
        const page = await context.newPage();
        const result = await page.evaluate(async (pictures) => {
            const [a, b] = await Promise.all(pictures.map(async (base64) => {
                const image = new Image();
                image.src = 'data:image/png;base64,' + base64;
                await image.decode();
                const canvas = document.createElement('canvas');
                canvas.width = image.width;
                canvas.height = image.height;
                const context2d = canvas.getContext('2d');
                context2d.drawImage(image, 0, 0);
                const { data } = context2d.getImageData(0, 0, image.width, image.height);
                let left = image.width, right = -1, top = image.height, bottom = -1;
                for (let y = 0; y < image.height; ++y) {
                    for (let x = 0; x < image.width; ++x) {
                        const i = (y * image.width + x) * 4;
                        if (data[i] + data[i + 1] + data[i + 2] > 3 * 250) continue;
                        left = Math.min(left, x); right = Math.max(right, x);
                        top = Math.min(top, y); bottom = Math.max(bottom, y);
                    }
                }
                return { data, stride: image.width * 4, left, top, width: right - left + 1, height: bottom - top + 1 };
            }));
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
        }, [first.toString('base64'), second.toString('base64')]);
        await context.close();
        return result;
    }
}
