// SPDX-License-Identifier: Apache-2.0
//
// That everybody can use every room: by axe's rules, in both colours, on screens of every width, and with much going on.

import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { createRequire } from "node:module";
import { after, before, describe, it } from "node:test";

import { openInspector, Sandbox, startBrowser } from "./harness.mjs";
import { go, overflowing, rooms } from "./rooms.mjs";

const axe = readFileSync(createRequire(import.meta.url).resolve("axe-core/axe.min.js"), "utf8");

let sandbox;
let browser;

before(async () => {
  sandbox = await Sandbox.start();
  browser = await startBrowser();
  await sandbox.orvane(["user", "address", "--city", "Bern"]);
  // All that the bar can show is in it.
  await sandbox.admin("misbehave", { status: 503, path: "^/never$" });
  await sandbox.admin("clock", { skew: -120 });
  const { page, close } = await openInspector(browser, sandbox, { room: "data" });
  await page.getByRole("button", { name: "Record", exact: true }).click();
  await page.locator("#recording-on:visible").waitFor();
  await close();
});

after(async () => {
  await browser?.close();
  await sandbox?.stop();
});

for (const colorScheme of ["light", "dark"]) {
  describe(`in ${colorScheme} colours`, () => {
    for (const width of [360, 800, 1600]) {
      it(`at ${width} pixels every room is whole, and has no finding of axe's`, async () => {
        const { page, complaints, close } = await openInspector(browser, sandbox, { colorScheme, viewport: { width, height: 800 } });
        const { places } = await rooms(page);
        await page.evaluate(axe);
        for (const place of places) {
          await go(page, sandbox, place);
          assert.deepEqual(await page.evaluate(overflowing), [], `${place.name} overflows`);
          const { violations } = await page.evaluate(() => axe.run(document, { runOnly: ["wcag2a", "wcag2aa", "wcag21a", "wcag21aa", "best-practice"] }));
          const serious = violations.filter(({ impact }) => impact === "serious" || impact === "critical")
            .map(({ id, nodes }) => `${id}: ${nodes.map(({ html, failureSummary }) => `${html} ${failureSummary}`).slice(0, 3).join("; ")}`);
          assert.deepEqual(serious, [], place.name);
        }
        assert.deepEqual(complaints, []);
        await close();
      });
    }
  });
}

describe("the choice of colours", () => {
  it("is kept, and comes before anything is painted", async () => {
    const { page, close } = await openInspector(browser, sandbox, { colorScheme: "light" });
    const ground = () => page.evaluate(() => getComputedStyle(document.body).backgroundColor);
    const light = await ground();
    await page.getByRole("button", { name: "Colours: system" }).click();
    await page.getByRole("button", { name: "Colours: light" }).click();
    await page.getByRole("button", { name: "Colours: dark" }).waitFor();
    assert.notEqual(await ground(), light);
    await page.reload();
    assert.notEqual(await ground(), light);
    await close();
  });
});

describe("ten thousand requests on record", () => {
  it("stay smooth while more arrive, with only what is in sight in the document", async () => {
    const { page, complaints, close } = await openInspector(browser, sandbox);
    const call = () => sandbox.resource("identity");
    const many = async (count) => {
      const each = async () => { for (let left = count / 8; left > 0; left -= 1) await call(); };
      await Promise.all(Array.from({ length: 8 }, each));
    };
    await many(10_200);
    await page.locator(".count", { hasText: "10,000 requests" }).waitFor({ timeout: 30_000 });
    assert.ok(await page.locator(".request-row").count() < 80, "rows beyond those in sight are in the document");

    // The gaps between frames while some 200 a second arrive.
    const frames = page.evaluate(() => new Promise((resolve) => {
      const gaps = [];
      let last = performance.now();
      const frame = (now) => {
        gaps.push(now - last);
        last = now;
        if (gaps.length < 180) requestAnimationFrame(frame);
        else resolve(gaps.slice(1).sort((one, other) => one - other));
      };
      requestAnimationFrame(frame);
    }));
    const timer = setInterval(() => { for (let left = 10; left > 0; left -= 1) call().catch(() => {}); }, 50);
    const gaps = await frames;
    clearInterval(timer);
    const at = (share) => gaps[Math.floor(gaps.length * share)];
    console.log(`frames: median ${at(0.5).toFixed(1)} ms, 95 % within ${at(0.95).toFixed(1)} ms, longest ${gaps.at(-1).toFixed(1)} ms`);
    assert.ok(at(0.95) < 50, `one frame in twenty takes longer than ${at(0.95)} ms`);

    // Scrolled up, what is in sight stays while more arrive.
    const grid = page.locator(".request-grid");
    await grid.hover();
    await grid.evaluate((element) => {
      element.addEventListener("scrollend", () => element.classList.add("at-rest"), { once: true });
    });
    await page.mouse.wheel(0, -4000);
    await page.locator(".request-grid.at-rest").waitFor();
    assert.ok(await grid.evaluate(({ scrollTop, scrollHeight, clientHeight }) => scrollTop < scrollHeight - clientHeight - 3000));
    const inSight = () => page.evaluate(() => {
      const { top } = document.querySelector(".request-grid").getBoundingClientRect();
      const rows = [...document.querySelectorAll(".request-row:not([hidden])")].filter((row) => row.getBoundingClientRect().top > top + 40);
      return Math.min(...rows.map((row) => row.request.id));
    });
    const before = await inSight();
    await many(80);
    await page.waitForFunction(() => parseInt(document.querySelector(".to-end").innerText, 10) >= 80);
    assert.equal(await inSight(), before);
    assert.deepEqual(complaints, []);
    await close();
  });
});
