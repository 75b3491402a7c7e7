// SPDX-License-Identifier: Apache-2.0
//
// A sandbox of its own for a file of tests, Chromium beside it, and the command line to call the one while the other looks on.
// The environment names the programs: ORVANE_SANDBOX, ORVANE_CLI and, unless it is /usr/bin/chromium, CHROMIUM.

import assert from "node:assert/strict";
import { execFile, spawn } from "node:child_process";
import { once } from "node:events";
import { existsSync, mkdtempSync, readFileSync, rmSync, watch } from "node:fs";
import https from "node:https";
import net from "node:net";
import { tmpdir } from "node:os";
import { dirname, join } from "node:path";
import { promisify } from "node:util";

import { chromium } from "playwright-core";

function needed(name) {
  const value = process.env[name];
  if (!value) throw new Error(`${name} is not set: ./dev test browser sets it`);
  return value;
}

/** Resolves as soon as there is such a file; rejects when the process ends before. */
async function fileAppears(folder, name, child) {
  const watcher = watch(folder);
  try {
    await new Promise((resolve, reject) => {
      const look = () => existsSync(join(folder, name)) && resolve();
      watcher.on("change", look);
      child.once("exit", (code) => reject(new Error(`the sandbox ended with ${code} before it was ready`)));
      look();
    });
  } finally {
    watcher.close();
  }
}

export class Sandbox {
  /** With options of the command line besides its folder, today and port. */
  static async start(...options) {
    const sandbox = new Sandbox();
    sandbox.folder = mkdtempSync(join(tmpdir(), "orvane-browser-"));
    sandbox.options = options;
    await sandbox.run("0");
    return sandbox;
  }

  async run(port) {
    const readyFile = join(this.folder, "ready.json");
    this.child = spawn(needed("ORVANE_SANDBOX"),
      ["--data", join(this.folder, "data"), "--now", "2026-05-17T12:00:00Z", "--weeks", "2", "--port", port, "--ready-file", readyFile, ...this.options],
      { stdio: ["ignore", "ignore", "inherit"] });
    await fileAppears(this.folder, "ready.json", this.child);
    this.ready = JSON.parse(readFileSync(readyFile, "utf8"));
    this.agent = new https.Agent({ keepAlive: true, ca: readFileSync(this.ready.certificateAuthority) });
  }

  /** Another process on the same data and port. */
  async restart() {
    await this.end();
    await this.run(new URL(this.url).port);
  }

  get url() { return this.ready.baseURL; }

  /** The command line, as somebody; resolves with what it wrote and its exit code. */
  orvane(args, { user = "1001" } = {}) {
    return this.#run(needed("ORVANE_CLI"), args, user);
  }

  /** A line of a shell that finds the command line by its name. */
  shell(line, { user = "1001" } = {}) {
    return this.#run("bash", ["-c", line], user);
  }

  async #run(program, args, user) {
    const environment = {
      ...process.env, ORVANE_BASE_URL: this.url, ORVANE_CA_FILE: this.ready.certificateAuthority, ORVANE_API_KEY: this.ready.apiKey,
      ORVANE_TOKEN: `sandbox-token-${user}`, HOME: this.folder, XDG_CONFIG_HOME: this.folder,
      PATH: `${dirname(needed("ORVANE_CLI"))}:${process.env.PATH}`,
    };
    try {
      return { code: 0, ...await promisify(execFile)(program, args, { env: environment }) };
    } catch (error) {
      return { code: error.code, stdout: error.stdout, stderr: error.stderr };
    }
  }

  /** A request of one's own making, where a browser or the library would not let one. */
  ask(path, { method = "GET", headers = {}, body = "" } = {}) {
    return new Promise((resolve, reject) => {
      const request = https.request(this.url + path, { method, headers, agent: this.agent, servername: "" }, (response) => {
        const pieces = [];
        response.on("data", (piece) => pieces.push(piece));
        response.on("end", () => resolve({ status: response.statusCode, headers: response.headers, body: Buffer.concat(pieces).toString() }));
        response.on("error", reject);
      });
      request.on("error", reject);
      request.end(body);
    });
  }

  /** Such a request to a resource, as somebody. */
  resource(path, { user = "1001", headers = {}, ...options } = {}) {
    return this.ask(`/kavra/api/sdk/${path}`, { headers: { Authorization: `Bearer sandbox-token-${user}`, ...headers }, ...options });
  }

  /** What the admin interface answers to a POST. */
  async admin(path, value) {
    const { status, body } = await this.ask(`/admin/${path}`, {
      method: "POST", body: JSON.stringify(value), headers: { [this.ready.adminKeyHeader]: this.ready.adminKey },
    });
    assert.ok(status < 300, body);
    return body === "" ? {} : JSON.parse(body);
  }

  /** A link that lets one more browser in. */
  async link() {
    return (await this.admin("inspector", {})).url;
  }

  async end() {
    this.agent.destroy();
    if (this.child.exitCode !== null) return;
    const ended = once(this.child, "exit");
    this.child.kill("SIGTERM");
    await ended;
  }

  async stop() {
    await this.end();
    rmSync(this.folder, { recursive: true, force: true });
  }
}

/** A wire between browser and sandbox that can be cut. The browser knows nothing of it: names and certificates are the sandbox's. */
export class Wire {
  static async to(url) {
    const wire = new Wire();
    wire.target = new URL(url);
    await wire.mend();
    return wire;
  }

  get browserArguments() {
    return [`--host-resolver-rules=MAP ${this.target.host} 127.0.0.1:${this.port}`];
  }

  async mend() {
    this.ends = new Set();
    this.server = net.createServer((near) => {
      const far = net.connect(Number(this.target.port), this.target.hostname);
      near.pipe(far).pipe(near);
      for (const end of [near, far]) {
        this.ends.add(end);
        end.on("error", () => {});
      }
    });
    this.server.listen(this.port ?? 0, "127.0.0.1");
    await once(this.server, "listening");
    this.port = this.server.address().port;
  }

  cut() {
    this.server.close();
    for (const end of this.ends) end.destroy();
  }
}

export async function startBrowser(options = []) {
  const args = process.getuid() === 0 ? ["--no-sandbox", ...options] : options;
  return chromium.launch({ executablePath: process.env.CHROMIUM || "/usr/bin/chromium", args });
}

/**
 * A browser that has been let in, with one page. Whatever the page says on its console or asks of another host is kept.
 * @returns {Promise<{page, context, complaints: string[], strangers: string[], close: function()}>}
 */
export async function openInspector(browser, sandbox, { room = "", ...options } = {}) {
  const context = await browser.newContext({ ignoreHTTPSErrors: true, timezoneId: "Europe/Zurich", viewport: { width: 1280, height: 800 }, ...options });
  const complaints = [];
  const strangers = [];
  context.on("request", (request) => {
    if (!request.url().startsWith(`${sandbox.url}/`) && !request.url().startsWith("data:")) strangers.push(request.url());
  });
  const page = await context.newPage();
  page.setDefaultTimeout(10_000);
  page.on("console", (message) => {
    if (["error", "warning"].includes(message.type())) complaints.push(`${message.text()} (${message.location().url})`);
  });
  page.on("pageerror", (error) => complaints.push(String(error)));
  page.on("dialog", (dialog) => {
    complaints.push(`a dialog: ${dialog.message()}`);
    dialog.dismiss();
  });
  await page.goto(await sandbox.link());
  if (room !== "") await page.goto(`${sandbox.url}/#/${room}`);
  await page.locator("#connection[data-state=live]").waitFor();
  return { page, context, complaints, strangers, close: () => context.close() };
}
