// SPDX-License-Identifier: Apache-2.0
//
// The room of trips: a person's week, and one trip on the map and over time.

import { announce, emptyState, html, icon, problem, replace, setText } from "./dom.js";
import { eventIcon, eventText, severityLegend, severityText, typeText } from "./events.js";
import {
  counted, dateAndTime, dayText, distance, hoursAndMinutes, kilometresPerHour, mondayOf, number, plusDays, stretch, timeOfDay, weekText, words,
} from "./format.js";
import { TripMap } from "./map.js";
import { Timeline, whereAt } from "./timeline.js";

const secondsBetween = (start, end) => (Date.parse(end) - Date.parse(start)) / 1000;

// Half the score's colours would have to be told apart by hue alone; the figure is enough.
function scoreText(score) {
  return score === null || score === undefined ? "–" : score.toFixed(0);
}

// --- The week -----------------------------------------------------------------------------------

function entry(trip, address) {
  const isUnderWay = trip.end === null;
  return html("a.trip", { href: address, "data-id": trip.id },
    html("span.trip-time", {}, hoursAndMinutes(trip.start)),
    html("span.trip-text", {},
      html("span.trip-places", {}, trip.startAddress || "somewhere", html("span.note", {}, " → "), isUnderWay ? "on the way" : trip.endAddress || "somewhere"),
      html("span.note.trip-facts", {}, [
        distance(trip.distance), isUnderWay ? null : stretch(secondsBetween(trip.start, trip.end)),
        trip.mode === "DRIVER" ? null : words(trip.mode),
        trip.events > 0 ? counted(trip.events, "event") : null,
      ].filter(Boolean).join(" · "))),
    html("span.trip-score", { title: "Score of the trip" }, scoreText(trip.score)));
}

/** @returns {Array<[string, Array]>} days, the latest first, with their trips, the latest first. */
function byDay(trips, monday) {
  const days = new Map();
  for (const trip of [...trips].sort((one, other) => Date.parse(other.start) - Date.parse(one.start))) {
    const day = trip.day ?? trip.start.slice(0, 10);
    if (!days.has(day)) days.set(day, []);
    days.get(day).push(trip);
  }
  return [...days].filter(([day]) => day >= plusDays(monday, -1) && day <= plusDays(monday, 7));
}

// --- One trip -----------------------------------------------------------------------------------

function scores(list) {
  if (list.length === 0) return html("p.note", {}, "Not scored.");
  return html("dl.scores", {}, list.map(({ name, value }) => html("div", {},
    html("dt", {}, words(name)),
    html("dd", {}, html("meter", { min: 0, max: 100, value, "aria-label": words(name) }), html("span.score-value", {}, value.toFixed(1))))));
}

function eventRow(event, onPick) {
  const value = event.value === null || event.value === undefined ? "" : `${number(event.value)} ${event.unit ?? ""}`;
  return html("li", {}, html("button.quiet.event-row", { type: "button", onClick: () => onPick(event) },
    eventIcon(event),
    html("span.event-time", {}, timeOfDay(event.time)),
    html("span.event-what", {}, typeText(event.type), html("span.note", {}, ` · ${severityText(event.severity)}`)),
    html("span.event-value", {}, value)));
}

export function makeTripsRoom({ api, feed, navigate, move, session }) {
  let people = [];
  let user = null;
  let monday = mondayOf(session.today.slice(0, 10));
  let shownWeek = "";
  let trips = [];
  let openId = null;
  let trip = null;
  let asking = null;
  let isStarted = false;

  const map = new TripMap();
  const timeline = new Timeline();

  const person = html("select", { "aria-label": "Person" });
  const week = html("span.week-name", { "aria-live": "polite" });
  const earlier = html("button.icon-button", { type: "button", "aria-label": "The week before", title: "The week before" }, icon("back"));
  const later = html("button.icon-button", { type: "button", "aria-label": "The week after", title: "The week after" }, icon("next"));
  const list = html("div.trip-list", {});
  const title = html("h2", {}, "Trip");
  const close = html("button.quiet.icon-button", { type: "button", "aria-label": "Close", title: "Close (Escape)" }, icon("close"));
  const readout = html("p.readout", { "aria-hidden": "true" });
  const summary = html("p.note.trip-summary");
  const scorePlace = html("div");
  const eventPlace = html("div");
  const nothing = html("div.detail-empty");
  const drawing = html("div.trip-detail", { hidden: true },
    summary, map.root, severityLegend(), readout, timeline.root,
    html("div.trip-columns", {},
      html("section", {}, html("h3", {}, "Events"), eventPlace),
      html("section", {}, html("h3", {}, "Scores"), scorePlace)));
  const body = html("div.detail-body", {}, nothing, drawing);
  const detail = html("section.detail", { "aria-label": "Trip" }, html("header.detail-head", {}, title, close), body);
  const root = html("section.room.room-trips", { "aria-labelledby": "trips-title" },
    html("h1.visually-hidden", { id: "trips-title" }, "Trips"),
    html("div.split", {},
      html("div.split-list", {}, html("div.tools", {}, person, html("div.week", {}, earlier, week, later)), list),
      detail));

  // --- The list

  const address = (id) => ["trips", user, monday, ...(id ? [id] : [])];
  const link = (id) => `#/${address(id).map(encodeURIComponent).join("/")}`;

  async function showWeek(isForced = false) {
    const wanted = `${user}/${monday}`;
    setText(week, weekText(monday));
    person.value = user;
    if (wanted === shownWeek && !isForced) return;
    shownWeek = wanted;
    let answer;
    try {
      answer = await api.get(`trips?user=${encodeURIComponent(user)}&first=${monday}&last=${plusDays(monday, 6)}`);
    } catch (error) {
      shownWeek = "";
      replace(list, problem(error));
      return;
    }
    if (wanted !== shownWeek) return;
    trips = answer.trips;
    const { first, last } = answer.days ?? {};
    earlier.disabled = !first || mondayOf(first) >= monday;
    later.disabled = !last || mondayOf(last) <= monday;
    replace(list, trips.length > 0 ? days(answer.scores ?? []) : nothingDriven(last));
    markOpen();
  }

  function days(dayScores) {
    const scoreOf = new Map(dayScores.map(({ day, score }) => [day, score]));
    return byDay(trips, monday).map(([day, ofDay]) => html("section.trip-day", {},
      html("h3", {}, dayText(day), html("span.day-score", {}, scoreOf.has(day) ? `score of the day ${scoreText(scoreOf.get(day))}` : "")),
      ofDay.map((one) => entry(one, link(one.id)))));
  }

  function nothingDriven(last) {
    if (!last) return emptyState("No trips", "This person has never driven. Choose another one above.");
    const latest = mondayOf(last);
    return emptyState("No trips in this week",
      html("button", { type: "button", onClick: () => navigate("trips", user, latest) }, `To the latest: ${weekText(latest)}`));
  }

  function markOpen() {
    for (const entryLink of list.querySelectorAll(".trip")) {
      if (entryLink.dataset.id === openId) entryLink.setAttribute("aria-current", "true");
      else entryLink.removeAttribute("aria-current");
    }
  }

  function step(by) {
    const links = [...list.querySelectorAll(".trip")];
    if (links.length === 0) return;
    const at = links.findIndex(({ dataset }) => dataset.id === openId);
    const next = links[Math.min(Math.max(at + by, 0), links.length - 1)];
    next.focus();
    (openId === null ? navigate : move)(...address(next.dataset.id));
  }

  // --- The open one

  function showNothing() {
    trip = null;
    drawing.hidden = true;
    nothing.hidden = false;
    close.hidden = true;
    root.classList.remove("is-open");
    setText(title, "Trip");
    replace(nothing, emptyState("No trip chosen", "Choose one to see its way on the map, its speed over time, its events and its scores."));
  }

  async function open(id) {
    openId = id;
    markOpen();
    if (!id) {
      showNothing();
      return;
    }
    root.classList.add("is-open");
    if (trip?.id === id) return;
    asking?.abort();
    asking = new AbortController();
    try {
      trip = await api.get(`trips/${encodeURIComponent(id)}`, { signal: asking.signal });
    } catch (error) {
      if (error.name === "AbortError") return;
      showNothing();
      close.hidden = false;
      root.classList.add("is-open");
      replace(nothing, problem(error));
      return;
    }
    showTrip();
  }

  function showTrip() {
    nothing.hidden = true;
    drawing.hidden = false;
    close.hidden = false;
    setText(title, `Trip ${trip.id}`);
    setText(summary, [
      dateAndTime(trip.start), trip.end === null ? "on the way" : stretch(secondsBetween(trip.start, trip.end)), distance(trip.distance),
      words(trip.mode), words(trip.status),
    ].join(" · "));
    replace(scorePlace, scores(trip.scores ?? []));
    const events = [...trip.events].sort((one, other) => one.seconds - other.seconds);
    replace(eventPlace, events.length === 0
      ? html("p.note", {}, "None: a calm trip.")
      : html("ol.event-list", {}, events.map((event) => eventRow(event, pick))));
    map.show(trip);
    timeline.show(trip);
    if (trip.route.length === 0) setText(readout, "No positions were recorded.");
    body.scrollTop = 0;
  }

  function pick(event) {
    timeline.moveTo(event.seconds);
    announce(`${eventText(event)}, ${timeOfDay(event.time)}`);
  }

  timeline.onMove = (seconds) => {
    const { position, speed } = whereAt(trip.route, seconds);
    map.setMarker(position);
    replace(readout,
      html("span", {}, timeOfDay(timeline.timeAt(seconds))),
      html("span", {}, `${kilometresPerHour(speed)} km/h`),
      html("span.note", {}, `${position[0].toFixed(5)}, ${position[1].toFixed(5)}`));
  };
  map.onPick = pick;

  // --- Start and wiring

  async function start() {
    const [found, { roads }] = await Promise.all([api.get("people"), api.get("roads")]);
    people = found.people;
    map.setRoads(roads);
    replace(person, people.map(({ userId, name, trips: count }) =>
      html("option", { value: userId }, `${name} (${count === 0 ? "no trips" : number(count)})`)));
    isStarted = true;
  }

  async function enter([wantedUser, wantedWeek, wantedTrip]) {
    if (!isStarted) {
      try {
        await start();
      } catch (error) {
        replace(list, problem(error));
        return;
      }
    }
    if (people.length === 0) {
      replace(list, emptyState("Nobody lives here", "Reset the data in the room Data."));
      return;
    }
    user = wantedUser ?? user ?? people[0].userId;
    if (/^\d{4}-\d{2}-\d{2}$/.test(wantedWeek ?? "")) monday = mondayOf(wantedWeek);
    await Promise.all([showWeek(), open(wantedTrip ?? null)]);
  }

  person.addEventListener("change", () => navigate("trips", person.value, monday));
  earlier.addEventListener("click", () => navigate("trips", user, plusDays(monday, -7)));
  later.addEventListener("click", () => navigate("trips", user, plusDays(monday, 7)));
  close.addEventListener("click", () => navigate(...address(null)));
  list.addEventListener("keydown", (event) => {
    const by = { ArrowDown: 1, ArrowUp: -1 }[event.key];
    if (!by) return;
    step(by);
    event.preventDefault();
  });
  feed.on("data", () => {
    shownWeek = "";
    trip = null;
    if (!root.hidden && isStarted) enter([user, monday, openId ?? undefined]);
  });
  showNothing();

  return {
    root,
    enter,
    close() {
      if (!openId) return false;
      navigate(...address(null));
      return true;
    },
    key(event) {
      if (event.key !== "j" && event.key !== "k") return false;
      step(event.key === "j" ? 1 : -1);
      return true;
    },
  };
}
