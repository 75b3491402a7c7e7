// SPDX-License-Identifier: Apache-2.0
//
// The room of people: who lives in the sandbox, and what it takes to be one of them.

import { announce, copyBlock, emptyState, html, icon, problem, replace } from "./dom.js";
import { counted, number } from "./format.js";

function initials(name) {
  return name.split(/\s+/).map((part) => part.charAt(0)).slice(0, 2).join("").toUpperCase();
}

function entry(person) {
  return html("a.person", { href: `#/people/${encodeURIComponent(person.userId)}`, "data-id": person.userId },
    html("span.initials", { "aria-hidden": "true" }, initials(person.name)),
    html("span.person-text", {},
      html("span.person-name", {}, person.name, " ", html("span.note", {}, person.userId)),
      html("span.note.person-note", {}, person.note)),
    html("span.person-count", {}, number(person.trips), html("span.note", {}, person.trips === 1 ? " trip" : " trips")));
}

function fact(name, value) {
  return html("div", {}, html("dt", {}, name), html("dd", {}, value));
}

function detailOf(person) {
  const vehicles = person.vehicles.map(({ id, name }) => `${name} (${id})`).join(", ");
  return [
    html("p", {}, person.note),
    html("dl.pairs", {},
      fact("User", person.userId),
      fact("External reference", person.externalReferenceId),
      fact("Account", person.accountId),
      fact("Vehicles", vehicles === "" ? "none" : vehicles),
      fact("Trips", person.trips === 0 ? "none" : html("a", { href: `#/trips/${encodeURIComponent(person.userId)}` }, counted(person.trips, "trip"))),
      fact("Invitations", person.invitations === 0 ? "none" : number(person.invitations))),
    html("h3.part-title", {}, "Be this one"),
    copyBlock("Lines to export", person.export),
    copyBlock("A command to try", person.command),
    copyBlock("In C++", person.cpp),
    copyBlock("Token", person.token),
  ];
}

export function makePeopleRoom({ api, feed, navigate, move }) {
  let people = [];
  let openId = null;
  let isLoaded = false;
  const list = html("div.split-list.people", {});
  const title = html("h2", {}, "Person");
  const close = html("button.quiet.icon-button", { type: "button", "aria-label": "Close", title: "Close (Escape)" }, icon("close"));
  const body = html("div.detail-body");
  const detail = html("section.detail", { "aria-label": "Person" }, html("header.detail-head", {}, title, close), body);
  const root = html("section.room.room-people", { "aria-labelledby": "people-title" },
    html("h1.visually-hidden", { id: "people-title" }, "People"), html("div.split", {}, list, detail));

  async function load() {
    ({ people } = await api.get("people"));
    isLoaded = true;
    replace(list, people.length === 0 ? emptyState("Nobody lives here", "Reset the data in the room Data.") : people.map(entry));
    show();
  }

  function show() {
    const person = people.find(({ userId }) => userId === openId);
    for (const link of list.querySelectorAll(".person")) {
      if (link.dataset.id === openId) link.setAttribute("aria-current", "true");
      else link.removeAttribute("aria-current");
    }
    root.classList.toggle("is-open", person !== undefined);
    title.textContent = person?.name ?? "Be one of them";
    close.hidden = person === undefined;
    replace(body, person ? detailOf(person) : emptyState("Nobody chosen", "Choose somebody to see the token, the lines to export, and the command to try."));
    body.scrollTop = 0;
  }

  function step(by) {
    if (people.length === 0) return;
    const at = people.findIndex(({ userId }) => userId === openId);
    const next = people[Math.min(Math.max(at + by, 0), people.length - 1)].userId;
    (openId === null ? navigate : move)("people", next);
    const link = [...list.querySelectorAll(".person")].find(({ dataset }) => dataset.id === next);
    link?.focus();
  }

  const reload = () => load().catch((error) => (isLoaded ? announce(error.message) : replace(list, problem(error))));
  close.addEventListener("click", () => navigate("people"));
  list.addEventListener("keydown", (event) => {
    const by = { ArrowDown: 1, ArrowUp: -1 }[event.key];
    if (!by) return;
    step(by);
    event.preventDefault();
  });
  feed.on("data", () => { if (!root.hidden) reload(); else isLoaded = false; });
  feed.on("connection", (isThere) => { if (isThere && !isLoaded && !root.hidden) reload(); });

  return {
    root,
    enter([id]) {
      openId = id ?? null;
      if (isLoaded) show();
      else reload();
    },
    close() {
      if (openId === null) return false;
      navigate("people");
      return true;
    },
    key(event) {
      if (event.key !== "j" && event.key !== "k") return false;
      step(event.key === "j" ? 1 : -1);
      return true;
    },
  };
}
