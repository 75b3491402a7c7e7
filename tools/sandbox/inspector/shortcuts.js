// SPDX-License-Identifier: Apache-2.0
//
// The keys, and the dialog that lists them. Single letters can be turned off (WCAG 2.1, success criterion 2.1.4).

import { html } from "./dom.js";

const storageKey = "orvane-single-keys";

const groups = [
  ["Everywhere", [["1 … 5", "to a room"], ["/", "to the filter"], ["Escape", "closes what is open"], ["?", "these keys"]]],
  ["In a list", [["j  ↓", "next"], ["k  ↑", "previous"], ["Enter", "opens"], ["Home  End", "first, last"]]],
  ["Requests", [["p", "pauses and goes on"]]],
  ["Map", [["← ↑ → ↓", "move"], ["+  −", "nearer, farther"], ["0", "the whole trip"]]],
  ["Timeline", [["← →", "a position back or on"], ["Page Up  Page Down", "thirty seconds"], ["Home  End", "start, end"]]],
];

export function singleKeysOn() {
  try {
    return localStorage.getItem(storageKey) !== "off";
  } catch {
    return true;
  }
}

function keepSingleKeys(on) {
  try {
    localStorage.setItem(storageKey, on ? "on" : "off");
  } catch {
    // Storage is closed to this page: the keys stay on.
  }
}

export function showKeys() {
  const choice = html("input", { type: "checkbox", checked: singleKeysOn(), onChange: () => keepSingleKeys(choice.checked) });
  const dialog = html("dialog.keys", { "aria-labelledby": "keys-title" },
    html("form", { method: "dialog" },
      html("h2", { id: "keys-title" }, "Keys"),
      html("div.keys-groups", {}, groups.map(([title, keys]) => html("section", {},
        html("h3", {}, title),
        html("dl", {}, keys.map(([key, meaning]) => html("div", {}, html("dt", {}, html("kbd", {}, key)), html("dd", {}, meaning))))))),
      html("label.check", {}, choice, "Single letters and digits are keys"),
      html("div.buttons.end", {}, html("button", { value: "close" }, "Close"))));
  dialog.addEventListener("close", () => dialog.remove());
  document.body.append(dialog);
  dialog.showModal();
}
