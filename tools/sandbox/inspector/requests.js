// SPDX-License-Identifier: Apache-2.0
//
// The room of requests: what arrives, as it arrives, and one of them taken apart.

import { announce, emptyState, html, icon, onceAFrame, problem, replace, setText } from "./dom.js";
import { answerSize, counted, duration, number, statusClass, timeOfDay } from "./format.js";
import { detailOf } from "./request-detail.js";
import { VirtualList } from "./virtual-list.js";

const most = 10_000;
const apiRoot = "/kavra/api/sdk/"; // where nearly all paths begin

const statusFilters = [
  ["", "Any status"], ["2", "2xx: fine"], ["3", "3xx: elsewhere"], ["4", "4xx: refused"], ["5", "5xx: failed"],
  ["0", "Dropped"], ["refused", "All refused"], ["fault", "Hit by a fault"],
];

const addressOf = (request) => (request.query === "" ? request.path : `${request.path}?${request.query}`);

// --- The filter ---------------------------------------------------------------------------------

class Filter {
  text = "";
  status = "";
  user = "";

  get isOn() { return this.text !== "" || this.status !== "" || this.user !== ""; }

  admits(request) {
    if (this.user !== "" && (request.user ?? "-") !== this.user) return false;
    if (this.status === "fault") {
      if (request.fault === null) return false;
    } else if (this.status === "refused") {
      if (request.status >= 200 && request.status < 400) return false;
    } else if (this.status !== "" && statusClass(request.status) !== this.status) {
      return false;
    }
    return this.text === "" || this.#texts(request).includes(this.text);
  }

  #texts(request) {
    return `${request.method} ${addressOf(request)} ${request.status} ${request.name ?? ""} ${request.reason ?? ""}`.toLowerCase();
  }
}

// --- Rows ---------------------------------------------------------------------------------------

const columns = [["time", "Time"], ["method", "Method"], ["path", "Path"], ["status", "Status"], ["duration", "Took"], ["size", "Size"], ["who", "Who"]];

let rowsMade = 0;

function makeRow() {
  rowsMade += 1;
  const root = html("div.request-row", { role: "row", id: `request-row-${rowsMade}`, "aria-selected": "false" });
  const cells = {};
  for (const [name] of columns) {
    cells[name] = html(`span.cell.cell-${name}`, { role: "gridcell" });
    root.append(cells[name]);
  }
  const path = { root: html("span.path-root"), rest: html("span"), query: html("span.path-query") };
  cells.path.append(path.root, path.rest, path.query);
  return { root, cells, path };
}

function fillRow({ root, cells, path }, request) {
  root.request = request;
  setText(cells.time, timeOfDay(request.time, true));
  setText(cells.method, request.method);
  const rootLength = request.path.startsWith(apiRoot) ? apiRoot.length : 0;
  setText(path.root, request.path.slice(0, rootLength));
  setText(path.rest, request.path.slice(rootLength));
  setText(path.query, request.query === "" ? "" : `?${request.query}`);
  setText(cells.status, request.status === 0 ? "dropped" : String(request.status));
  setText(cells.duration, duration(request.duration));
  setText(cells.size, answerSize(request));
  setText(cells.who, request.name ?? request.user ?? "–");
  root.dataset.status = statusClass(request.status);
  root.classList.toggle("is-spoilt", request.fault !== null);
}

// --- The room -----------------------------------------------------------------------------------

export function makeRequestsRoom({ api, feed, navigate, move }) {
  const filter = new Filter();
  let all = [];        // the oldest first
  let admitted = [];   // those of them that the filter lets through; the same array while there is none
  let waiting = [];    // arrived since it was paused
  let arrived = [];    // arrived since the last frame
  let dropped = 0;
  let unseen = 0;
  let isPaused = false;
  let isMissingSome = false; // arrived unheard while it was paused
  let active = null;
  let openId = null;
  let asking = null;
  const people = new Map();

  const count = html("span.count", {});
  const text = html("input", { type: "search", placeholder: "Filter: path, query, name, reason", "aria-label": "Filter by text", "aria-keyshortcuts": "/" });
  const status = html("select", { "aria-label": "Status" }, statusFilters.map(([value, label]) => html("option", { value }, label)));
  const person = html("select", { "aria-label": "Person" }, html("option", { value: "" }, "Anybody"), html("option", { value: "-" }, "Nobody (no token)"));
  const pause = html("button", { type: "button", "aria-pressed": "false", "aria-keyshortcuts": "p" });
  const clear = html("button", { type: "button" }, "Clear");
  const toEnd = html("button.to-end", { type: "button", hidden: true });
  const grid = html("div.request-grid", { role: "grid", tabindex: "0", "aria-label": "Requests", "aria-keyshortcuts": "j k" },
    html("div.request-head", { role: "row", "aria-rowindex": "1" },
      columns.map(([name, label]) => html(`span.cell.cell-${name}`, { role: "columnheader" }, label))));
  const list = new VirtualList(grid, makeRow, fillRow);
  const empty = html("div.empty-place");
  const detailBody = html("div.detail-body");
  const close = html("button.quiet.icon-button", { type: "button", "aria-label": "Close", title: "Close (Escape)" }, icon("close"));
  const detail = html("section.detail", { "aria-label": "Request", hidden: true },
    html("header.detail-head", {}, html("h2", {}, "Request"), close), detailBody);
  const root = html("section.room.room-requests", { "aria-labelledby": "requests-title" },
    html("h1.visually-hidden", { id: "requests-title" }, "Requests"),
    html("div.tools", { role: "search" }, text, status, person, html("span.spacer"), count, pause, clear),
    html("div.split", {}, html("div.split-list", {}, grid, empty, toEnd), detail));

  // --- What is shown

  function showCounts() {
    const total = number(all.length);
    setText(count, filter.isOn ? `${number(admitted.length)} of ${total}` : counted(all.length, "request"));
    count.title = dropped > 0 ? `${counted(dropped, "older one")} no longer kept` : "";
    empty.hidden = admitted.length > 0;
    if (admitted.length > 0) return;
    if (filter.isOn && all.length > 0) {
      replace(empty, emptyState("Nothing fits the filter",
        html("button", { type: "button", onClick: clearFilter }, "Show all")));
    } else {
      replace(empty, emptyState("No requests yet", ["They appear here as they arrive. ", html("a", { href: "#/people" }, "People"),
        " has the lines to export for the command line; then try ", html("code", {}, "orvane user show"), "."]));
    }
  }

  function showPause() {
    replace(pause, icon(isPaused ? "play" : "pause"), html("span", {}, isPaused ? "Go on" : "Pause"),
      isPaused && waiting.length > 0 && html("span.waiting", {}, number(waiting.length)));
    pause.setAttribute("aria-pressed", String(isPaused));
    pause.setAttribute("aria-label", isPaused ? `Go on, ${waiting.length} waiting` : "Pause");
  }

  function showUnseen() {
    toEnd.hidden = list.atEnd || unseen === 0;
    if (!toEnd.hidden) replace(toEnd, icon("down"), `${number(unseen)} new`);
  }

  // --- What arrives

  const takeInSoon = onceAFrame(() => {
    const fresh = arrived;
    arrived = [];
    add(fresh);
  });

  function add(fresh) {
    if (fresh.length === 0) return;
    for (const request of fresh) know(request);
    all.push(...fresh);
    const tooMany = Math.max(0, all.length - most);
    let removed = tooMany;
    if (filter.isOn) {
      const fitting = fresh.filter((request) => filter.admits(request));
      admitted.push(...fitting);
      unseen += fitting.length;
      removed = tooMany === 0 ? 0 : countBefore(admitted, all[tooMany].id);
      if (removed > 0) admitted.splice(0, removed);
    } else {
      unseen += fresh.length;
    }
    if (tooMany > 0) {
      all.splice(0, tooMany);
      dropped += tooMany;
    }
    list.show(admitted, removed);
    if (list.atEnd) unseen = 0;
    showUnseen();
    showCounts();
  }

  function countBefore(requests, id) {
    let index = 0;
    while (index < requests.length && requests[index].id < id) index += 1;
    return index;
  }

  function know({ user, name }) {
    if (user === null || people.has(user)) return;
    people.set(user, name ?? user);
    const option = html("option", { value: user }, name === null ? user : `${name} (${user})`);
    const after = [...person.options].slice(2).find((other) => Number(other.value) > Number(user));
    person.insertBefore(option, after ?? null);
  }

  function sift() {
    admitted = filter.isOn ? all.filter((request) => filter.admits(request)) : all;
    unseen = 0;
    list.show(admitted);
    list.toEnd();
    showUnseen();
    showCounts();
    announce(`${counted(admitted.length, "request")} shown`);
  }

  function clearFilter() {
    text.value = "";
    status.value = "";
    person.value = "";
    onFilter();
    text.focus();
  }

  function onFilter() {
    filter.text = text.value.trim().toLowerCase();
    filter.status = status.value;
    filter.user = person.value;
    sift();
  }

  async function load() {
    const answer = await api.get(`requests?limit=${most}`);
    // What the feed told while the answer was under way may be newer.
    const last = answer.requests.at(-1)?.id ?? 0;
    all = answer.requests.concat(all.filter(({ id }) => id > last));
    arrived = arrived.filter(({ id }) => id > last);
    waiting = [];
    dropped = answer.dropped;
    isMissingSome = false;
    for (const request of all) know(request);
    admitted = filter.isOn ? all.filter((request) => filter.admits(request)) : all;
    list.show(admitted);
    showCounts();
    showPause();
  }

  const reload = () => load().catch((error) => announce(error.message));

  function forget() {
    all = [];
    admitted = all;
    waiting = [];
    arrived = [];
    dropped = 0;
    unseen = 0;
    active = null;
    list.select(null);
    sift();
    showPause();
  }

  function setPaused(paused) {
    isPaused = paused;
    if (!paused) {
      if (isMissingSome) reload();
      else add(waiting);
      waiting = [];
      list.toEnd();
    }
    showPause();
  }

  // --- The one that is open

  function activate(index, isOpening) {
    if (admitted.length === 0) return;
    const at = Math.min(Math.max(index, 0), admitted.length - 1);
    active = admitted[at];
    list.select(active);
    list.reveal(at);
    const row = [...grid.querySelectorAll(".request-row")].find((candidate) => candidate.request === active && !candidate.hidden);
    if (row) grid.setAttribute("aria-activedescendant", row.id);
    if (openId !== null) move("requests", String(active.id));
    else if (isOpening) navigate("requests", String(active.id));
  }

  function step(by) {
    const at = active === null ? -1 : admitted.indexOf(active);
    if (at < 0) activate(by > 0 ? Math.max(0, admitted.length - list.rowsInSight) : admitted.length - 1, false);
    else activate(at + by, false);
  }

  async function open(id) {
    openId = id;
    detail.hidden = false;
    root.classList.add("is-open");
    if (active?.id !== id) {
      active = all.find((request) => request.id === id) ?? null;
      list.select(active);
    }
    asking?.abort();
    asking = new AbortController();
    try {
      const request = await api.get(`requests/${id}`, { signal: asking.signal });
      replace(detailBody, detailOf(request));
      detailBody.scrollTop = 0;
    } catch (error) {
      if (error.name === "AbortError") return;
      replace(detailBody, error.status === 404 ? emptyState("No longer kept", "The log forgot this request, or was cleared.") : problem(error));
    }
  }

  function shut() {
    if (openId === null) return false;
    openId = null;
    detail.hidden = true;
    root.classList.remove("is-open");
    return true;
  }

  function onGridKey(event) {
    const at = active === null ? -1 : admitted.indexOf(active);
    const moves = { ArrowDown: 1, ArrowUp: -1, PageDown: list.rowsInSight, PageUp: -list.rowsInSight };
    if (event.key in moves) step(moves[event.key]);
    else if (event.key === "Home") activate(0, false);
    else if (event.key === "End") activate(admitted.length - 1, false);
    else if (event.key === "Enter" && at >= 0) activate(at, true);
    else return;
    event.preventDefault();
  }

  // --- Wiring

  text.addEventListener("input", onFilter);
  text.addEventListener("keydown", (event) => {
    if (event.key === "Enter" || event.key === "ArrowDown") {
      grid.focus();
      event.preventDefault();
    }
  });
  status.addEventListener("change", onFilter);
  person.addEventListener("change", onFilter);
  pause.addEventListener("click", () => setPaused(!isPaused));
  clear.addEventListener("click", () => api.delete("requests").then(forget, (error) => announce(error.message)));
  close.addEventListener("click", () => { navigate("requests"); grid.focus(); });
  toEnd.addEventListener("click", () => { unseen = 0; list.toEnd(); showUnseen(); grid.focus(); });
  grid.addEventListener("keydown", onGridKey);
  grid.addEventListener("click", (event) => {
    const row = event.target.closest(".request-row");
    if (row && getSelection().isCollapsed) activate(admitted.indexOf(row.request), true);
  });
  list.onEnd = (atEnd) => {
    if (atEnd) unseen = 0;
    showUnseen();
  };
  feed.on("requests", (fresh) => {
    if (isPaused) {
      waiting.push(...fresh);
      if (waiting.length > most) waiting.splice(0, waiting.length - most);
      showPause();
      return;
    }
    arrived.push(...fresh);
    // There are no frames while nobody looks at the page.
    if (arrived.length > most) arrived.splice(0, arrived.length - most);
    takeInSoon();
  });
  feed.on("cleared", forget);
  // What arrived while nobody listened is in the log.
  feed.on("connection", (isThere) => {
    if (!isThere) return;
    if (isPaused) isMissingSome = true;
    else reload();
  });
  admitted = all;
  showPause();
  showCounts();

  return {
    root,
    enter([id]) {
      if (id) open(Number(id));
      else shut();
    },
    close() {
      if (openId === null) return false;
      navigate("requests");
      grid.focus();
      return true;
    },
    key(event) {
      if (event.key === "/") text.focus();
      else if (event.key === "p") setPaused(!isPaused);
      else if (event.key === "j") step(1);
      else if (event.key === "k") step(-1);
      else return false;
      if (event.key === "j" || event.key === "k") grid.focus({ preventScroll: true });
      return true;
    },
  };
}
