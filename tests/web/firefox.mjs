// Firefox without a window, driven by its own Marionette protocol: a TCP socket with messages [type, id, command,
// parameters], each as its length, a colon and JSON.
import { spawn } from 'node:child_process';
import { once } from 'node:events';
import { mkdtempSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { connect } from 'node:net';
import { tmpdir } from 'node:os';
import { join } from 'node:path';

const later = (milliseconds) => new Promise((done) => { setTimeout(done, milliseconds); });

// Firefox chooses a port and writes it into its profile as soon as it listens there.
async function connected(profile) {
    for (let tries = 0; ; ++tries) {
        try {
            const port = Number(readFileSync(join(profile, 'MarionetteActivePort'), 'utf8'));
            const socket = connect(port, '127.0.0.1');
            await once(socket, 'connect');
            return socket;
        } catch (error) {
            if (tries === 300) throw error;
            await later(100);
        }
    }
}

export class Firefox {
    profile = mkdtempSync(join(tmpdir(), 'lettrino-firefox-'));
    waiting = new Map();
    last = 0;
    received = Buffer.alloc(0);

    async open() {
        const prefs = { 'marionette.port': 0, 'gfx.color_management.mode': 0,
            'app.normandy.enabled': false, 'datareporting.policy.dataSubmissionEnabled': false, 'browser.shell.checkDefaultBrowser': false };
        writeFileSync(join(this.profile, 'user.js'), Object.entries(prefs).map(([key, value]) => `user_pref("${key}", ${JSON.stringify(value)});\n`).join(''));
        this.process = spawn(process.env.FIREFOX ?? 'firefox-esr', ['--headless', '--marionette', '-remote-allow-system-access', '--no-remote', '--profile', this.profile, '--width', '1200', '--height', '800'],
            { stdio: 'ignore', env: { ...process.env, HOME: this.profile, MOZ_HEADLESS_WIDTH: '1200', MOZ_HEADLESS_HEIGHT: '800' } });
        this.socket = await connected(this.profile);
        this.socket.on('data', (bytes) => this.take(bytes));
        await this.send('WebDriver:NewSession', {});
        return this;
    }

    take(bytes) {
        this.received = Buffer.concat([this.received, bytes]);
        for (;;) {
            const colon = this.received.indexOf(':');
            const length = colon < 0 ? NaN : Number(this.received.toString('latin1', 0, colon));
            if (!(this.received.length >= colon + 1 + length)) return;
            const message = JSON.parse(this.received.toString('utf8', colon + 1, colon + 1 + length));
            this.received = this.received.subarray(colon + 1 + length);
            if (!Array.isArray(message)) continue; // the greeting
            const [, id, error, result] = message;
            const { done, fail } = this.waiting.get(id);
            this.waiting.delete(id);
            if (error) fail(new Error(error.message));
            else done(result);
        }
    }

    send(command, parameters) {
        const id = ++this.last;
        const text = JSON.stringify([0, id, command, parameters]);
        this.socket.write(`${Buffer.byteLength(text)}:${text}`);
        return new Promise((done, fail) => { this.waiting.set(id, { done, fail }); });
    }

    goto(url) { return this.send('WebDriver:Navigate', { url }); }
    // The result of a script's `return`, which may be a promise. It runs among the page's own scripts.
    async run(script, ...args) { return (await this.send('WebDriver:ExecuteScript', { script, args, sandbox: null })).value; }
    async shot() { return Buffer.from((await this.send('WebDriver:TakeScreenshot', { full: false })).value, 'base64'); }

    // Runs a script among the browser's own.
    async runInside(script, ...args) {
        await this.send('Marionette:SetContext', { value: 'chrome' });
        const result = await this.run(script, ...args);
        await this.send('Marionette:SetContext', { value: 'content' });
        return result;
    }

    setPreference(name, value) {
        const kind = { boolean: 'Bool', number: 'Int', string: 'Char' }[typeof value];
        return this.runInside(`Services.prefs.set${kind}Pref(...arguments)`, name, value);
    }

    // The number of the screen's pixels for one of the page's, for pages that are loaded from here on.
    setDensity(density) { return this.setPreference('layout.css.devPixelsPerPx', String(density)); }

    // As if typed where the focus is, with Control held if told so.
    type(text, control = false) {
        const held = '\uE009';
        const actions = [...text].flatMap((value) => [{ type: 'keyDown', value }, { type: 'keyUp', value }]);
        if (control) actions.unshift({ type: 'keyDown', value: held }), actions.push({ type: 'keyUp', value: held });
        return this.send('WebDriver:PerformActions', { actions: [{ type: 'key', id: 'keyboard', actions }] });
    }

    async close() {
        this.socket?.destroy();
        const gone = new Promise((done) => { this.process?.once('exit', done); });
        if (this.process?.kill('SIGKILL')) await gone;
        rmSync(this.profile, { recursive: true, force: true, maxRetries: 5 });
    }
}
