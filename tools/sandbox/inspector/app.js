// SPDX-License-Identifier: Apache-2.0
//
// The inspector: frames the rooms, leads from one to the other, and tells how the connection to the sandbox is.

import { API, Feed } from "./api.js";
import { announce, emptyState, html, icon, problem, replace, setText } from "./dom.js";
import { makeDataRoom } from "./data.js";
import { makeFaultsRoom } from "./faults.js";
import { counted, decoded, timeOfDay } from "./format.js";
import { makePeopleRoom } from "./people.js";
import { makeRequestsRoom } from "./requests.js";
import { singleKeysOn, showKeys } from "./shortcuts.js";
import { makeTripsRoom } from "./trips.js";

const rooms = [
  { name: "requests", title: "Requests", make: makeRequestsRoom },
  { name: "people", title: "People", make: makePeopleRoom },
  { name: "trips", title: "Trips", make: makeTripsRoom },
  { name: "faults", title: "Faults", make: makeFaultsRoom },
  { name: "data", title: "Data", make: makeDataRoom },
];

const main = document.getElementById("room");
const feed = new Feed();
const api = new API(showLocked);
let current = null;

// --- Rooms --------------------------------------------------------------------------------------

/** The address of a room and of what is open in it: "#/trips/1001/2026-11-16". */
function place() {
  const [name, ...open] = location.hash.replace(/^#\/?/, "").split("/").map(decoded);
  return { room: rooms.find((room) => room.name === name) ?? rooms[0], open };
}

const addressOf = (parts) => `#/${parts.map(encodeURIComponent).join("/")}`;

function navigate(...parts) {
  location.hash = addressOf(parts);
}

/** As navigate(), in place of the present entry of the history: for steps along a list. */
function move(...parts) {
  history.replaceState(null, "", addressOf(parts));
  enter();
}

function enter() {
  const { room, open } = place();
  if (current !== room) {
    current?.view.leave?.();
    current = room;
    for (const other of rooms) {
      other.view.root.hidden = other !== room;
      if (other === room) other.link.setAttribute("aria-current", "page");
      else other.link.removeAttribute("aria-current");
    }
    document.title = `${room.title} · Orvane sandbox`;
  }
  room.view.enter(open);
}

function build(session) {
  const context = { api, feed, navigate, move, session };
  const links = document.querySelector("nav.rooms");
  for (const room of rooms) {
    room.link = html("a", { href: `#/${room.name}` }, icon(room.name), html("span", {}, room.title));
    links.append(room.link);
    room.view = room.make(context);
    room.view.root.hidden = true;
    main.append(room.view.root);
  }
}

// --- Bar ----------------------------------------------------------------------------------------

function showConnection(isThere) {
  const sign = document.getElementById("connection");
  sign.dataset.state = isThere ? "live" : "lost";
  replace(sign, isThere ? "Live" : html("span", {}, "Connection lost", html("span.wide-only", {}, "; trying again")));
  document.body.classList.toggle("is-offline", !isThere);
}

function watchFaults() {
  const badge = document.getElementById("faults-on");
  feed.on("faults", ({ faults }) => {
    badge.hidden = faults.length === 0;
    setText(badge, faults.length === 0 ? "" : `${counted(faults.length, "fault")} on`);
  });
  const recording = document.getElementById("recording-on");
  feed.on("recording", (state) => { recording.hidden = !state.recording; });
}

// The server's clock, which may run ahead or behind: what it said last, and the time since then.
function watchClock(session) {
  const shown = document.getElementById("server-time");
  let ahead = Date.parse(session.now) - Date.now();
  const show = () => {
    const now = new Date(Date.now() + ahead).toISOString();
    setText(shown, timeOfDay(now));
    shown.title = `The sandbox's clock; its today is ${session.today.slice(0, 10)}`;
  };
  feed.on("clock", (clock) => {
    ahead = Date.parse(clock.now) - Date.now();
    session.today = clock.today;
    shown.classList.toggle("is-skewed", clock.skew !== 0);
    show();
  });
  shown.classList.toggle("is-skewed", session.skew !== 0);
  show();
  setInterval(show, 1000);
}

// --- Colours ------------------------------------------------------------------------------------

const themes = ["system", "light", "dark"];

function themeNow() {
  return document.documentElement.dataset.theme ?? "system";
}

function showTheme(button) {
  const now = themeNow();
  replace(button, icon(now));
  button.setAttribute("aria-label", `Colours: ${now}`);
  button.title = now === "system" ? "Colours: as the system has them" : `Colours: ${now}`;
}

function nextTheme(button) {
  const theme = themes[(themes.indexOf(themeNow()) + 1) % themes.length];
  if (theme === "system") delete document.documentElement.dataset.theme;
  else document.documentElement.dataset.theme = theme;
  try {
    localStorage.setItem("orvane-theme", theme);
  } catch {
    // The choice then holds for this page only.
  }
  showTheme(button);
  announce(button.title);
}

// --- Keys ---------------------------------------------------------------------------------------

function isTyping(target) {
  return target.closest("input:not([type=checkbox], [type=radio]), select, textarea, dialog") !== null;
}

function onKey(event) {
  if (event.ctrlKey || event.metaKey || event.altKey) return;
  if (event.key === "Escape" && !event.target.closest("dialog")) {
    if (current?.view.close?.()) event.preventDefault();
    else if (isTyping(event.target)) event.target.blur();
    return;
  }
  if (isTyping(event.target) || !singleKeysOn()) return;
  const number = Number(event.key);
  if (event.key === "?") {
    showKeys();
  } else if (number >= 1 && number <= rooms.length) {
    navigate(rooms[number - 1].name);
  } else if (!current?.view.key?.(event)) {
    return;
  }
  event.preventDefault();
}

// --- Start --------------------------------------------------------------------------------------

function showLocked() {
  feed.stop();
  showConnection(false);
  setText(document.getElementById("connection"), "Session ended");
  replace(main, emptyState("This page's session has ended",
    "The sandbox was started anew, or never let this browser in. Open the link that it prints when it starts."));
}

/** The session, however long it takes until the sandbox can be reached. */
async function firstSession() {
  for (;;) {
    try {
      return await api.session();
    } catch (error) {
      if (error.status !== 0) throw error;
      showConnection(false);
      await new Promise((resolve) => { setTimeout(resolve, 1000); });
    }
  }
}

async function start() {
  const themeButton = document.getElementById("toggle-theme");
  showTheme(themeButton);
  themeButton.addEventListener("click", () => nextTheme(themeButton));
  const keysButton = document.getElementById("show-keys");
  keysButton.append(icon("keys"));
  keysButton.addEventListener("click", showKeys);

  const session = await firstSession();
  setText(document.getElementById("base-url"), session.baseURL);
  document.querySelector(".brand").title = `Version ${session.version}`;
  build(session);
  watchFaults();
  watchClock(session);
  feed.on("connection", (isThere) => {
    showConnection(isThere);
    // The feed does not say why it ended; a session that has ended is told by any answer.
    if (!isThere) api.get("session").catch(() => {});
  });
  document.getElementById("recording-on").hidden = !session.recording;
  addEventListener("hashchange", enter);
  addEventListener("keydown", onKey);
  document.querySelector(".skip").addEventListener("click", (event) => {
    event.preventDefault();
    main.focus();
  });
  enter();
  feed.start();
}

start().catch((error) => {
  if (error.status !== 401) replace(main, problem(error));
});
