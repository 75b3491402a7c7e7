// SPDX-License-Identifier: Apache-2.0
//
// Takes the pictures of docs/sandbox.md from the running page: node pictures.mjs <folder>

import { join } from "node:path";

import { openInspector, Sandbox, startBrowser } from "./harness.mjs";
import { go, rooms } from "./rooms.mjs";

const folder = process.argv[2] ?? ".";
const viewport = { width: 1180, height: 740 };

async function someCalls(sandbox) {
  const calls = [
    [["user", "show"]], [["trips", "list", "--limit", "5", "--expand", "events,scores"]], [["vehicles", "list"]], [["user", "address", "--city", "Bern"]],
    [["trips", "list", "--limit", "3"], "1002"], [["user", "show", "--expand", "role,associatedAccount"], "1003"], [["scores", "daily"], "1004"],
    [["leaderboard", "show"], "1002"], [["devices", "list"]], [["subscriptions", "list"]], [["user", "show"], "1005"], [["trips", "list", "--limit", "2"], "1006"],
  ];
  for (const [words, user] of calls) await sandbox.orvane(words, { user: user ?? "1001" });
  await sandbox.resource("users/1004");
  await sandbox.resource("users/1001?expand=role,associatedAccount&expand=customFields");
}

async function picture(page, name) {
  // The pointer and what it points at stay out of it, and the type is the same wherever it is taken.
  await page.mouse.move(0, 0);
  await page.evaluate(() => {
    document.body.style.fontFamily = "Inter, system-ui, sans-serif";
    document.documentElement.style.setProperty("--mono", "\"JetBrains Mono\", ui-monospace, monospace");
  });
  await page.screenshot({ path: join(folder, `${name}.png`), animations: "disabled" });
}

const sandbox = await Sandbox.start();
const browser = await startBrowser();
try {
  const light = await openInspector(browser, sandbox, { viewport, colorScheme: "light" });
  await someCalls(sandbox);
  const { places } = await rooms(light.page);
  const trip = places.find(({ name }) => name === "a trip");
  await light.page.locator(".request-row", { hasText: "403" }).last().waitFor();
  await light.page.locator(".request-row", { hasText: "expand=associatedAccount&expand=role" }).last().click();
  await light.page.locator(".detail-line").waitFor();
  await picture(light.page, "inspector-requests");

  await go(light.page, sandbox, trip);
  const slider = light.page.getByRole("slider", { name: "Time of the trip" });
  await slider.focus();
  for (let steps = 0; steps < 4; steps += 1) await slider.press("PageUp");
  await slider.blur();
  await picture(light.page, "inspector-trip");

  const dark = await openInspector(browser, sandbox, { viewport, colorScheme: "dark", room: "faults" });
  const turnOn = (kind) => dark.page.locator(`.kind[data-kind=${kind}] [role=switch]`).click();
  await turnOn("delayMs");
  await dark.page.getByLabel("Path").fill("logbook");
  const times = dark.page.getByRole("spinbutton", { name: "Times" });
  await times.fill("2");
  await turnOn("status");
  await dark.page.locator(".running-list li").nth(1).waitFor();
  await times.blur();
  await picture(dark.page, "inspector-faults");
} finally {
  await browser.close();
  await sandbox.stop();
}
