// SPDX-License-Identifier: Apache-2.0
//
// What somebody does with the inspector, in the order of its rooms.

import assert from "node:assert/strict";
import { after, afterEach, before, beforeEach, describe, it } from "node:test";

import { openInspector, Sandbox, startBrowser, Wire } from "./harness.mjs";
import { overflowing, rooms } from "./rooms.mjs";

let sandbox;
let browser;
let view;
let laid; // a record as it was laid

before(async () => {
  sandbox = await Sandbox.start();
  browser = await startBrowser();
  laid = await record();
});

after(async () => {
  await browser?.close();
  await sandbox?.stop();
});

beforeEach(async () => {
  view = await openInspector(browser, sandbox);
});

afterEach(async () => {
  const { complaints, strangers } = view;
  await view.close();
  assert.deepEqual(complaints, [], "the page complained");
  assert.deepEqual(strangers, [], "a request left the sandbox");
});

const room = (name) => view.page.goto(`${sandbox.url}/#/${name}`);
const record = async () => (await sandbox.resource("users/1001")).body;
const rows = (page = view.page) => page.locator(".request-row:not([hidden])");

describe("requests", () => {
  it("appear within a second of the command line's call, taken apart when opened", async () => {
    const { page } = view;
    await page.getByRole("button", { name: "Clear" }).click();
    await page.getByText("No requests yet").waitFor();
    const { code, stderr } = await sandbox.orvane(["user", "show", "--expand", "role,associatedAccount"]);
    assert.equal(code, 0, stderr);
    const row = rows().filter({ hasText: "users/1001?expand=" });
    await row.waitFor({ timeout: 1000 });
    assert.match(await row.innerText(), /GET[^]*200[^]*Anna Keller/);

    await row.click();
    const detail = page.getByRole("region", { name: "Request", exact: true });
    await detail.getByText("200 OK").waitFor();
    const text = await detail.innerText();
    assert.match(text, /expand\s+associatedAccount\s+expand\s+role/);
    assert.match(text, /Authorization\s+Bearer sandbox-t…01/i);
    assert.match(text, /"userId": "1001"/);
    assert.doesNotMatch(text, /sandbox-token-1001/);
  });

  it("are copied as lines that ask the same again", async () => {
    const { page, context } = view;
    await context.grantPermissions(["clipboard-read", "clipboard-write"]);
    await page.getByRole("button", { name: "Clear" }).click();
    await page.getByText("No requests yet").waitFor();
    await sandbox.resource("users/1001?expand=role&expand=customFields");
    await rows().filter({ hasText: "users/1001" }).last().click();
    let count = 1;
    for (const name of ["Copy as curl", "Copy as orvane"]) {
      await page.getByRole("button", { name }).click();
      await page.locator(".copy[data-said=yes]", { hasText: name }).waitFor();
      const line = await page.evaluate(() => navigator.clipboard.readText());
      const { code, stdout, stderr } = await sandbox.shell(line);
      assert.equal(code, 0, `${line}\n${stderr}`);
      assert.match(stdout, /"userId":\s*"1001"/, line);
      count += 1;
      await page.waitForFunction((wanted) => [...document.querySelectorAll(".request-row:not([hidden]) .cell-path")]
        .filter(({ textContent }) => textContent.endsWith("users/1001?expand=role&expand=customFields")).length === wanted, count);
    }
  });

  it("show a form field by field and a refusal in words", async () => {
    const { page } = view;
    await sandbox.orvane(["user", "address", "--city", "Bern"]);
    await rows().filter({ hasText: "POST" }).last().click();
    await page.getByRole("rowheader", { name: "city" }).waitFor();
    assert.match(await page.locator(".form-fields").innerText(), /city\s+Bern/);

    await sandbox.resource("users/1004");
    await rows().filter({ hasText: "403" }).last().click();
    await page.locator(".detail .notice-danger", { hasText: "Refused" }).waitFor();
  });

  it("are filtered, paused and walked through by keys", async () => {
    const { page } = view;
    await page.getByRole("button", { name: "Clear" }).click();
    await page.getByText("No requests yet").waitFor();
    for (const path of ["identity", "users/1001", "users/9999"]) await sandbox.resource(path);
    await sandbox.resource("identity", { user: "1002" });
    await page.locator(".count", { hasText: "4 requests" }).waitFor();

    await page.keyboard.press("/");
    await page.keyboard.type("IDENT");
    await page.locator(".count", { hasText: "2 of 4" }).waitFor();
    await page.getByRole("combobox", { name: "Person" }).selectOption({ label: "Marc Keller (1002)" });
    await page.locator(".count", { hasText: "1 of 4" }).waitFor();
    await page.keyboard.press("Escape");
    await page.getByLabel("Filter by text").fill("");
    await page.getByRole("combobox", { name: "Person" }).selectOption("");
    await page.getByRole("combobox", { name: "Status" }).selectOption("4");
    await page.locator(".count", { hasText: "1 of 4" }).waitFor();
    await page.getByRole("combobox", { name: "Status" }).selectOption("");

    await page.locator(".request-grid").focus();
    await page.keyboard.press("p");
    await sandbox.resource("identity");
    await page.locator(".waiting", { hasText: "1" }).waitFor();
    assert.equal(await rows().count(), 4);
    await page.keyboard.press("p");
    await page.locator(".count", { hasText: "5 requests" }).waitFor();

    await page.keyboard.press("Home");
    await page.keyboard.press("j");
    await page.keyboard.press("Enter");
    await page.locator(".detail-path", { hasText: "users/1001" }).waitFor();
    await page.keyboard.press("j");
    await page.locator(".detail-path", { hasText: "users/9999" }).waitFor();
    await page.keyboard.press("k");
    await page.locator(".detail-path", { hasText: "users/1001" }).waitFor();
    await page.keyboard.press("Escape");
    await page.locator(".detail-path").waitFor({ state: "hidden" });
  });
});

describe("JSON", () => {
  it("is indented as it stands, whole or broken", async () => {
    const cases = [
      ["{\"a\":12345678901234567890.10,\"b\":[]}", "{\n  \"a\": 12345678901234567890.10,\n  \"b\": []\n}"],
      [" [ 1 , {\"x\" : {}} ] ", "[\n  1,\n  {\n    \"x\": {}\n  }\n]"],
      ["{\"a\":\"\\\"{[,:\\\\\"}", "{\n  \"a\": \"\\\"{[,:\\\\\"\n}"],
      ["{\"cut\":\"here", "{\n  \"cut\": \"here"],
      ["]]{\"a\"", "\n]\n]{\n  \"a\""],
      ["null", "null"],
      ["", ""],
    ];
    const shown = await view.page.evaluate(async (texts) => {
      const { indented } = await import("/inspector/json-text.js");
      return texts.map((text) => indented(text).pieces.map(([piece]) => piece).join(""));
    }, cases.map(([text]) => text));
    assert.deepEqual(shown, cases.map(([, wanted]) => wanted));

    const { length, rest } = await view.page.evaluate(async () => {
      const { indented } = await import("/inspector/json-text.js");
      const deep = indented("[".repeat(100_000));
      return { length: deep.pieces.map(([piece]) => piece).join("").length, rest: deep.rest };
    });
    assert.ok(length < 200_000 && rest > 90_000, `${length} characters, ${rest} left out`);
  });
});

describe("people", () => {
  it("hand out what works on the command line", async () => {
    const { page, context } = view;
    await context.grantPermissions(["clipboard-read", "clipboard-write"]);
    await room("people");
    await page.getByRole("link", { name: /Léa Keller/ }).click();
    await page.getByRole("button", { name: "Copy: Token" }).click();
    await page.locator(".copy[data-said=yes]").waitFor();
    const token = await page.evaluate(() => navigator.clipboard.readText());
    const { status, body } = await sandbox.ask("/kavra/api/sdk/identity", { headers: { Authorization: `Bearer ${token}` } });
    assert.equal(status, 200);
    assert.match(body, /1003/);
    const lines = await page.getByRole("region", { name: "Lines to export" }).innerText();
    assert.match(lines, /^export ORVANE_BASE_URL=\S+$/m);
    assert.match(lines, /^export ORVANE_TOKEN=\S*1003\S*$/m);
  });
});

describe("trips", () => {
  it("lie on the map with as many events as they have, and a place that keys and pointer move", async () => {
    const { page } = view;
    const { trip } = await rooms(page);
    assert.ok(trip.events > 1, "the busiest trip has events");
    await room(`trips/1002/2026-05-11/${trip.id}`);
    await page.locator(".map .event-sign").first().waitFor();
    assert.equal(await page.locator(".map [data-event]").count(), trip.events);
    assert.equal(await page.locator(".timeline [data-event]").count(), trip.events);
    assert.equal(await page.locator(".event-list li").count(), trip.events);
    // Each can be seen and clicked, however near to one another they lie: here on a map as small as a stamp.
    for (let steps = 0; steps < 6; steps += 1) await page.getByRole("button", { name: "Farther" }).click();
    await page.evaluate(() => new Promise((drawn) => { requestAnimationFrame(() => requestAnimationFrame(drawn)); }));
    const middles = await page.evaluate(() => [...document.querySelectorAll(".map [data-event]")].map((sign) => {
      const { e, f } = sign.transform.baseVal.consolidate().matrix;
      return [e, f];
    }));
    for (const [index, [x, y]] of middles.entries()) {
      const nearest = Math.min(...middles.slice(index + 1).map(([otherX, otherY]) => Math.hypot(otherX - x, otherY - y)));
      assert.ok(nearest > 18, `two signs lie ${nearest} pixels apart`);
    }
    await page.getByRole("button", { name: "The whole trip" }).click();

    const slider = page.getByRole("slider", { name: "Time of the trip" });
    const marker = page.locator(".map-marker");
    const at = () => marker.getAttribute("transform");
    const start = await at();
    await slider.focus();
    await page.keyboard.press("End");
    await page.waitForFunction((before) => document.querySelector(".map-marker").getAttribute("transform") !== before, start);
    assert.equal(await slider.getAttribute("aria-valuenow"), await slider.getAttribute("aria-valuemax"));
    await page.keyboard.press("Home");
    const box = await slider.boundingBox();
    await page.mouse.move(box.x + box.width / 2, box.y + box.height / 2);
    const middle = Number(await slider.getAttribute("aria-valuenow")) / Number(await slider.getAttribute("aria-valuemax"));
    assert.ok(Math.abs(middle - 0.5) < 0.1, `the pointer is in the middle, the place at ${middle}`);
  });

  it("are looked at from nearer and farther by wheel, fingers, keys and buttons", async () => {
    const { page, context } = view;
    const { trip } = await rooms(page);
    await room(`trips/1002/2026-05-11/${trip.id}`);
    await page.locator(".map .event-sign").first().waitFor();
    // What was asked for is drawn with the next frame; a first size is told after that frame's callbacks.
    const scale = () => page.evaluate(async () => {
      for (let frames = 0; frames < 2; ++frames) await new Promise(requestAnimationFrame);
      return document.querySelector(".map svg > g").transform.baseVal.consolidate().matrix.a;
    });
    const changes = async (act, isNearer) => {
      const before = await scale();
      await act();
      await page.waitForFunction(([from, nearer]) => {
        const now = document.querySelector(".map svg > g").transform.baseVal.consolidate().matrix.a;
        return nearer ? now > from * 1.05 : now < from * 0.95;
      }, [before, isNearer]);
    };
    const fitted = await scale();
    await page.locator(".map-canvas").hover();
    await changes(() => page.mouse.wheel(0, -200), true);
    await changes(() => page.mouse.wheel(0, 200), false);
    const { x, y, width, height } = await page.locator(".map-canvas").boundingBox();
    const devtools = await context.newCDPSession(page);
    const fingers = (apart) => [-apart, apart].map((by, id) => ({ x: x + width / 2 + by, y: y + height / 2, id }));
    await changes(async () => {
      await devtools.send("Input.dispatchTouchEvent", { type: "touchStart", touchPoints: fingers(30) });
      for (const apart of [40, 60, 90]) await devtools.send("Input.dispatchTouchEvent", { type: "touchMove", touchPoints: fingers(apart) });
      await devtools.send("Input.dispatchTouchEvent", { type: "touchEnd", touchPoints: [] });
    }, true);
    await page.locator(".map-canvas").focus();
    await changes(() => page.keyboard.press("+"), true);
    await changes(() => page.getByRole("button", { name: "Farther" }).click(), false);
    await changes(() => page.getByRole("button", { name: "Nearer" }).click(), true);
    await page.getByRole("button", { name: "The whole trip" }).click();
    await page.waitForFunction((wanted) =>
      Math.abs(document.querySelector(".map svg > g").transform.baseVal.consolidate().matrix.a / wanted - 1) < 0.001, fitted);
  });
});

describe("faults", () => {
  it("that are switched on hit the next call, and are off again when used up", async () => {
    const { page } = view;
    await room("faults");
    await page.getByLabel("Times").fill("1");
    await page.getByLabel("Path").fill("users/1001");
    const toggle = page.locator(".kind[data-kind=status] [role=switch]");
    await page.locator(".kind[data-kind=status] input").fill("418");
    await toggle.click();
    await page.locator(".running-list li").waitFor();
    assert.equal((await sandbox.resource("identity")).status, 200);
    assert.equal((await sandbox.resource("users/1001")).status, 418);
    await page.locator(".running-list li").waitFor({ state: "detached" });
    await page.locator(".kind[data-kind=status] [aria-checked=false]").waitFor();
    assert.equal((await sandbox.resource("users/1001")).status, 200);

    await room("requests");
    await rows().filter({ hasText: "418" }).last().click();
    await page.locator(".detail .notice-warning", { hasText: "Hit by a fault" }).waitFor();
  });

  it("of every kind can be switched on and off, and all end at once", async () => {
    const { page } = view;
    await room("faults");
    await page.locator(".kind").first().waitFor();
    const names = await page.locator(".kind").evaluateAll((kinds) => kinds.map(({ dataset }) => dataset.kind));
    assert.ok(names.length >= 7, names.join());
    for (const name of names) {
      const toggle = page.locator(`.kind[data-kind="${name}"] [role=switch]`);
      await toggle.click();
      await page.locator(`.kind[data-kind="${name}"] [aria-checked=true]`).waitFor();
      await toggle.click();
      await page.locator(`.kind[data-kind="${name}"] [aria-checked=false]`).waitFor();
    }
    await page.locator(`.kind[data-kind="drop"] [role=switch]`).click();
    await page.getByRole("button", { name: "5 min ahead" }).click();
    await page.locator(".clock-now", { hasText: "300 seconds ahead" }).waitFor();
    await assert.rejects(sandbox.resource("identity"));
    await page.getByRole("button", { name: "All well" }).click();
    await page.getByText("All is well").first().waitFor();
    await page.locator(".clock-now", { hasNotText: "ahead" }).waitFor();
    assert.equal((await sandbox.resource("identity")).status, 200);
  });

  it("that the sandbox refuses are told in its words", async () => {
    const { page } = view;
    await room("faults");
    await page.getByLabel("Path").fill("(");
    await page.locator(".kind[data-kind=drop] [role=switch]").click();
    await page.locator(".troubles [role=alert]").waitFor();
    assert.equal(await page.locator(".running-list li").count(), 0);
    // A refusal is an answer of 400, which the browser writes on its console.
    assert.equal(view.complaints.length, 1);
    assert.match(view.complaints.pop(), /400/);
  });
});

describe("data", () => {
  it("shows a change member by member, and a reset undoes it", async () => {
    const { page } = view;
    await sandbox.orvane(["user", "address", "--city", "Thun"]);
    await room("data");
    const change = page.locator(".change", { hasText: "Users 1001" });
    await change.waitFor();
    assert.match(await change.innerText(), /city\s+\S[^]*?\s+Thun/);
    await page.getByRole("button", { name: "Reset everything" }).click();
    await page.getByRole("dialog").getByRole("button", { name: "Cancel" }).click();
    assert.match(await record(), /Thun/);
    await page.getByRole("button", { name: "Reset everything" }).click();
    await page.getByRole("dialog").getByRole("button", { name: "Reset" }).click();
    await page.getByText("Everything is as at the start.").first().waitFor();
    await page.getByText("Nothing has changed").waitFor();
    assert.equal(await record(), laid);
  });

  it("is saved, restored and removed under a name", async () => {
    const { page } = view;
    const name = "a name / with <b>marks</b>".replaceAll(/[^a-z-]/g, "-");
    await room("data");
    await page.getByLabel("Name of the snapshot").fill(name);
    await page.getByRole("button", { name: "Save" }).click();
    await page.getByRole("button", { name: `Restore ${name}` }).waitFor();
    await sandbox.orvane(["user", "address", "--city", "Chur"]);
    await page.locator(".change", { hasText: "Chur" }).waitFor();
    await page.getByRole("button", { name: `Restore ${name}` }).click();
    await page.getByRole("dialog").getByRole("button", { name: "Restore" }).click();
    await page.getByText("Nothing has changed").waitFor();
    await page.getByRole("button", { name: `Remove ${name}` }).click();
    await page.getByRole("dialog").getByRole("button", { name: "Remove" }).click();
    await page.getByText("None yet").waitFor();
  });
});

describe("the connection", () => {
  it("is told when lost, and made again with what arrived meanwhile", async () => {
    const wire = await Wire.to(sandbox.url);
    const ownBrowser = await startBrowser(wire.browserArguments);
    try {
      const { page } = await openInspector(ownBrowser, sandbox, { viewport: { width: 360, height: 740 } });
      wire.cut();
      await page.locator("#connection[data-state=lost]").waitFor();
      assert.deepEqual(await page.evaluate(overflowing), []);
      await sandbox.resource("identity?lost=1");
      await wire.mend();
      await page.locator("#connection[data-state=live]").waitFor();
      await rows(page).filter({ hasText: "identity?lost=1" }).waitFor();
    } finally {
      await ownBrowser.close();
      wire.cut();
    }
  });

  it("to a sandbox that was started anew needs a new link", async () => {
    const other = await Sandbox.start();
    const { page, close } = await openInspector(browser, other);
    try {
      await other.restart();
      await page.getByText("This page's session has ended").waitFor();
    } finally {
      await close();
      await other.stop();
    }
  });
});
