// What a page's text costs with an exported font, beside the same page without it, in Chromium and Firefox:
//
//     scripts/bench web_page
//
// 20,000 characters until they are on the screen, counted from the start of the navigation; the memory of their process
// (proportional set size); a resize event that changes nothing; 3,500 characters printed. Medians of five pages.
import { readFileSync } from 'node:fs';
import { Tabs, browsers } from '../tests/web/tabs.mjs';

const tabs = new Tabs();
await tabs.open();
tabs.site.cli('--family', 'DejaVu Serif', '--height', '64', '--colour', '2060C0', '--select', '33-126', '--generate', '--kern',
    '--minimal-html', 'demo.html');

const words = 'The quick brown fox jumps over the lazy dog, and AVATARS wait. ';
const paragraphs = (characters) => `<p class="f">${words.repeat(4).slice(0, 200)}</p>`.repeat(characters / 200);
const median = (values) => values.sort((a, b) => a - b)[values.length >> 1];

const watch = `<script>addEventListener('load', () => (function look() {
    if (window.demo && ![...document.fonts].some((face) => face.family === 'demo' && face.status === 'loaded')) return requestAnimationFrame(look);
    requestAnimationFrame(() => requestAnimationFrame(() => { window.shownAt = performance.now(); }));
})());</script>`;

function page(characters, drawn) {
    const name = tabs.write(paragraphs(characters), { head: `<style>.f{font-size:16px}${drawn ? '' : '.f{font-family:serif}'}</style>${watch}`, font: drawn ? 'demo' : 'none' });
    return name;
}

const megabytes = (pid) => Number(readFileSync(`/proc/${pid}/smaps_rollup`, 'utf8').match(/^Pss: +(\d+)/m)[1]) / 1024;

async function memory(browser, tab) {
    if (browser === 'firefox') {
        const pids = await tabs.firefox.runInside(`return ChromeUtils.requestProcInfo().then((info) =>
            info.children.filter((child) => child.type.startsWith('web')).map((child) => child.pid))`);
        return Math.max(...pids.map(megabytes));
    }
    const session = await tabs.site.browser.newBrowserCDPSession();
    const { processInfo } = await session.send('SystemInfo.getProcessInfo');
    return Math.max(...processInfo.filter((process) => process.type === 'renderer').map((process) => megabytes(process.id)));
}

async function measure(browser, drawn) {
    const results = { shown: [], memory: [], resize: [], print: [] };
    for (let i = 0; i < 5; ++i) {
        const tab = await tabs.tab(browser, page(20000, drawn), { fonts: 0 });
        results.shown.push(await tab.run(() => new Promise((done) => { (function look() { if (window.shownAt) done(window.shownAt); else setTimeout(look, 5); })(); })));
        results.memory.push(await memory(browser, tab));
        results.resize.push(await tab.run(() => {
            const start = performance.now();
            dispatchEvent(new Event('resize'));
            document.body.getBoundingClientRect();
            return performance.now() - start;
        }));
        await tab.close();
        const short = await tabs.tab(browser, page(3500, drawn), { fonts: drawn ? 1 : 0 });
        const start = performance.now();
        if (short.page) await short.page.pdf(); else await tabs.firefox.send('WebDriver:Print', {});
        results.print.push(performance.now() - start);
        await short.close();
    }
    return Object.fromEntries(Object.entries(results).map(([name, values]) => [name, median(values)]));
}

const units = { shown: '20,000 characters shown', memory: 'memory of their process', resize: 'an idle resize', print: '3,500 characters printed' };
for (const browser of browsers) {
    const plain = await measure(browser, false);
    const ours = await measure(browser, true);
    for (const [name, title] of Object.entries(units))
        console.log(`${browser.padEnd(9)} ${title.padEnd(26)} ${ours[name].toFixed(1).padStart(8)} ${name === 'memory' ? 'MB' : 'ms'}   without the font ${plain[name].toFixed(1).padStart(8)}`);
}
await tabs.close();
