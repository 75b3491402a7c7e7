// SPDX-License-Identifier: Apache-2.0
//
// The site that ./dev docs makes, as it is opened from a file: on screens of every width, in both colours, asking nobody.

import assert from "node:assert/strict";
import { join } from "node:path";
import { after, before, describe, it } from "node:test";
import { pathToFileURL } from "node:url";

import { startBrowser } from "./harness.mjs";

const root = pathToFileURL(join(import.meta.dirname ?? new URL(".", import.meta.url).pathname, "../../build/docs/html/")).href;
// One of each kind, and those with the longest names and the widest tables.
const pages = [
  "index.html", "guide_errors.html", "guide_phones.html", "page_operations.html", "page_cli.html", "page_architecture.html",
  "classorvane_1_1TripService.html", "structorvane_1_1User.html", "classorvane_1_1UnauthenticatedOrvaneDetailResolver.html",
  "group__operations.html", "annotated.html", "classes.html", "examples.html", "Orvane_8h.html",
];

let browser;
before(async () => {
  browser = await startBrowser();
});
after(() => browser.close());

async function open(options) {
  const context = await browser.newContext(options);
  const complaints = [];
  context.on("request", (request) => {
    if (!/^(file|data):/.test(request.url())) complaints.push(`asks for ${request.url()}`);
  });
  const page = await context.newPage();
  page.on("pageerror", (error) => complaints.push(String(error)));
  page.on("console", (message) => {
    if (message.type() === "error") complaints.push(message.text());
  });
  return { page, complaints, close: () => context.close() };
}

const brightness = (page) => page.evaluate(() => {
  const [red, green, blue] = getComputedStyle(document.body).backgroundColor.match(/\d+/g).map(Number);
  return (red + green + blue) / 3;
});

describe("the site", () => {
  for (const width of [400, 1280, 1920]) {
    for (const colorScheme of ["light", "dark"]) {
      it(`fits ${width} pixels, ${colorScheme}`, async () => {
        const { page, complaints, close } = await open({ viewport: { width, height: 900 }, colorScheme });
        for (const name of pages) {
          await page.goto(root + name);
          await page.locator(".title").first().waitFor();
          // Where scripts have laid it out, the height of the text is theirs.
          await page.waitForFunction(() => document.getElementById("doc-content").style.height !== "");
          const beyond = await page.evaluate(() =>
            [document.documentElement, document.getElementById("doc-content")].map((part) => part.scrollWidth - part.clientWidth));
          assert.deepEqual(beyond, [0, 0], `${name} is wider than the screen`);
          assert.equal(await brightness(page) > 128, colorScheme === "light", name);
        }
        assert.deepEqual(complaints, []);
        await close();
      });
    }
  }

  it("finds a name, and leads there", async () => {
    const { page, complaints, close } = await open({ viewport: { width: 1280, height: 900 } });
    await page.goto(`${root}index.html`);
    await page.locator("#MSearchField").click();
    await page.keyboard.type("RetryPolicy");
    const isFrame = await page.locator("iframe#MSearchResults").count() > 0;
    const found = (isFrame ? page.frameLocator("#MSearchResults") : page.locator("#MSearchResults")).locator("a.SRSymbol:visible");
    await found.first().waitFor();
    assert.match(await found.first().textContent(), /RetryPolicy/);
    await found.first().click();
    await page.waitForURL(/structorvane_1_1RetryPolicy\.html/);
    // Doxygen 1.9.4 shows what it has found in a frame, which Chromium forbids to close itself where all comes from files.
    assert.deepEqual(complaints.filter((complaint) => !complaint.includes("searchBox")), []);
    await close();
  });

  it("changes its colours where it is asked to, and stays so on the next page", async () => {
    const { page, close } = await open({ viewport: { width: 1280, height: 900 }, colorScheme: "light" });
    await page.goto(`${root}index.html`);
    await page.locator("doxygen-awesome-dark-mode-toggle").click();
    assert.ok(await brightness(page) < 128);
    await page.goto(`${root}guide_errors.html`);
    assert.ok(await brightness(page) < 128);
    await close();
  });

  it("has the guides beside the text, in their order", async () => {
    const { page, close } = await open({ viewport: { width: 1280, height: 900 } });
    await page.goto(`${root}guide_errors.html`);
    const beside = page.locator("#nav-tree a.guide_errors\\.html, #nav-tree .selected");
    await beside.first().waitFor();
    const texts = (await page.locator("#nav-tree .label").allTextContents()).map((text) => text.replace(/[^\w ,-]/g, "").trim());
    const first = texts.indexOf("First program");
    assert.deepEqual(texts.slice(first - 1, first + 3), ["Guides", "First program", "Fetch trips", "Errors"]);
    await close();
  });
});
