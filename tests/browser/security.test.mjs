// SPDX-License-Identifier: Apache-2.0
//
// Who may use the inspector, and what others' texts can do to it.

import assert from "node:assert/strict";
import { createServer } from "node:http";
import { once } from "node:events";
import { after, before, describe, it } from "node:test";

import { openInspector, Sandbox, startBrowser } from "./harness.mjs";

const hostile = "<img src=x onerror=alert(1)>";

let sandbox;
let browser;

before(async () => {
  sandbox = await Sandbox.start();
  browser = await startBrowser();
});

after(async () => {
  await browser?.close();
  await sandbox?.stop();
});

describe("who has no code", () => {
  it("sees the locked page, and a code works once", async () => {
    const link = await sandbox.link();
    const code = new URL(link).search;
    const context = await browser.newContext({ ignoreHTTPSErrors: true });
    const page = await context.newPage();
    for (const path of ["/", "/?code=", "/?code=wrong"]) {
      const answer = await page.goto(sandbox.url + path);
      assert.equal(answer.status(), 401, path);
      await page.getByRole("heading", { name: "This sandbox is locked" }).waitFor();
    }
    await page.goto(link);
    await page.locator("#connection[data-state=live]").waitFor();
    assert.doesNotMatch(page.url(), /code=/, "the code must not stay in the address");

    const other = await browser.newContext({ ignoreHTTPSErrors: true });
    const locked = await other.newPage();
    assert.equal((await locked.goto(`${sandbox.url}/${code}`)).status(), 401, "a used code");
    await Promise.all([context.close(), other.close()]);
  });

  it("gets nothing from the interface behind the page", async () => {
    for (const path of ["session", "requests", "requests/1", "events", "people", "trips?user=1001", "roads", "faults", "clock", "snapshots", "changes"]) {
      const { status, body } = await sandbox.ask(`/inspector/api/${path}`);
      assert.equal(status, 401, path);
      assert.doesNotMatch(body, /sandbox-token|Keller/, path);
    }
  });

  it("can't come under another name, as one who rebinds DNS would", async () => {
    const { port } = new URL(sandbox.url);
    for (const host of ["attacker.example", `attacker.example:${port}`, "127.0.0.1.attacker.example"]) {
      for (const path of ["/", "/inspector/app.js", "/inspector/api/session"]) {
        assert.equal((await sandbox.ask(path, { headers: { Host: host } })).status, 403, `${host}${path}`);
      }
    }
  });
});

describe("another origin", () => {
  let stranger;

  before(async () => {
    stranger = createServer((request, response) => response.setHeader("Content-Type", "text/html").end("<!doctype html><title>Elsewhere</title>"));
    stranger.listen(0, "127.0.0.1");
    await once(stranger, "listening");
  });

  after(() => stranger.close());

  it("neither reads, nor changes, nor frames what a browser that was let in may", async () => {
    const { page, context, close } = await openInspector(browser, sandbox);
    await sandbox.orvane(["user", "address", "--city", "Aarau"]);
    const other = await context.newPage();
    await other.goto(`http://127.0.0.1:${stranger.address().port}/`);
    const outcomes = await other.evaluate(async (url) => {
      const tried = async (path, options) => {
        try {
          const answer = await fetch(url + path, { credentials: "include", ...options });
          return `${answer.type} ${answer.status}`;
        } catch {
          return "failed";
        }
      };
      return {
        read: await tried("/inspector/api/session"),
        reset: await tried("/inspector/api/reset", { method: "POST", body: "{}", mode: "no-cors" }),
        event: await new Promise((resolve) => {
          const source = new EventSource(`${url}/inspector/api/events`, { withCredentials: true });
          source.onopen = () => resolve("open");
          source.onerror = () => { source.close(); resolve("failed"); };
        }),
      };
    }, sandbox.url);
    assert.equal(outcomes.read, "failed");
    assert.equal(outcomes.event, "failed");
    const { body } = await sandbox.resource("users/1001");
    assert.match(body, /Aarau/, "a change from elsewhere went through");

    await other.evaluate((url) => {
      const frame = document.createElement("iframe");
      frame.src = url;
      document.body.append(frame);
      return new Promise((resolve) => { frame.onload = resolve; });
    }, sandbox.url);
    const framed = other.frames().find((frame) => frame !== other.mainFrame());
    assert.doesNotMatch(await framed.content(), /Orvane/);
    await page.locator("#connection[data-state=live]").waitFor();
    await close();
  });

  it("is refused by its name even with the session and the token", async () => {
    const { page, context, close } = await openInspector(browser, sandbox);
    const [cookie] = await context.cookies(sandbox.url);
    assert.deepEqual([cookie.httpOnly, cookie.sameSite, cookie.secure], [true, "Strict", true]);
    const token = await page.evaluate(async () => (await (await fetch("/inspector/api/session")).json()).token);
    const post = (headers) => sandbox.ask("/inspector/api/clock", {
      method: "POST", body: "{\"skew\":0}", headers: { "Content-Type": "application/json", Cookie: `${cookie.name}=${cookie.value}`, ...headers },
    });
    assert.equal((await post({})).status, 403, "without the token");
    assert.equal((await post({ "X-Inspector-Token": "wrong" })).status, 403, "with a wrong token");
    assert.equal((await post({ "X-Inspector-Token": token, Origin: "https://attacker.example" })).status, 403, "from elsewhere");
    assert.equal((await post({ "X-Inspector-Token": token, Origin: sandbox.url })).status, 200, "from the page");
    await close();
  });
});

describe("hostile texts", () => {
  it("are shown as they are, wherever they come from", async () => {
    const { page, complaints, close } = await openInspector(browser, sandbox);
    await sandbox.orvane(["user", "update", "--display-name", hostile]);
    await sandbox.resource(`system/i18nContent/${encodeURIComponent(hostile)}?q=${encodeURIComponent(hostile)}`);
    await sandbox.resource("invitations", {
      method: "POST", body: JSON.stringify({ type: hostile }),
      headers: { "Content-Type": "application/json", "X-Requested-With": "XMLHttpRequest", "X-Hostile": hostile },
    });
    const rows = page.locator(".request-row:not([hidden])");
    await rows.filter({ hasText: "invitations" }).last().click();
    await page.locator(".detail").getByText("X-Hostile").waitFor();
    assert.match(await page.locator(".room-requests .detail-body").innerText(), /<img src=x onerror=alert\(1\)>/);
    await rows.filter({ hasText: "i18nContent" }).last().click();
    await page.locator(".detail-path", { hasText: "i18nContent" }).waitFor();

    await sandbox.admin("misbehave", { status: 500, path: hostile.replace(/[()]/g, "."), times: 1 });
    for (const [room, sign] of [["data", ".change"], ["faults", ".running-list li"], ["people", ".person"]]) {
      await page.goto(`${sandbox.url}/#/${room}`);
      await page.locator(sign).first().waitFor();
    }
    await page.goto(`${sandbox.url}/#/data`);
    await page.locator(".change", { hasText: hostile }).waitFor();
    assert.equal(await page.locator("main img").count(), 0);
    assert.deepEqual(complaints, []);
    await close();
  });
});
