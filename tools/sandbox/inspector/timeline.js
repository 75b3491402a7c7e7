// SPDX-License-Identifier: Apache-2.0
//
// The speed of a trip over its time, with its events, and a place on it that pointer and keys move. A slider to assistive
// technology (ARIA Authoring Practices Guide, "Slider Pattern").

import { html, svg } from "./dom.js";
import { eventSign, eventText } from "./events.js";
import { hoursAndMinutes, kilometresPerHour, timeOfDay } from "./format.js";

const left = 34;
const right = 10;
const top = 30;     // the events' strip is above
const bottom = 20;
const height = 150;

/** Where a trip is at a time: position, speed, index of the point before. Between points it moves evenly. */
export function whereAt(route, seconds) {
  let low = 0;
  let high = route.length - 1;
  while (low < high) {
    const middle = Math.ceil((low + high) / 2);
    if (route[middle][2] <= seconds) low = middle;
    else high = middle - 1;
  }
  const before = route[low];
  const after = route[Math.min(low + 1, route.length - 1)];
  const span = after[2] - before[2];
  const share = span > 0 ? Math.min(Math.max((seconds - before[2]) / span, 0), 1) : 0;
  const between = (member) => before[member] + (after[member] - before[member]) * share;
  return { index: low, position: [between(0), between(1)], speed: between(3) };
}

function timeStep(seconds) {
  return [60, 120, 300, 600, 900, 1800, 3600, 7200].find((step) => seconds / step <= 7) ?? 14_400;
}

function speedStep(most) {
  return [10, 20, 50, 100, 200].find((step) => most / step <= 5) ?? 500;
}

export class Timeline {
  #svg = svg("svg", { "aria-hidden": "true" });
  #cursor = svg("g.timeline-cursor", {}, svg("line", { y1: 4, y2: height - bottom }), svg("circle", { r: 4.5 }));
  #trip = null;
  #seconds = 0;
  #end = 1;
  #most = 50;
  #width = 0;

  /** Called with the seconds from the start, whenever they change. */
  onMove = () => {};

  constructor() {
    this.root = html("div.timeline", {
      tabindex: "0", role: "slider", "aria-label": "Time of the trip", "aria-valuemin": "0", "aria-valuemax": "0", "aria-valuenow": "0",
    }, this.#svg);
    new ResizeObserver(([entry]) => {
      if (entry.contentRect.width === 0 || entry.contentRect.width === this.#width) return;
      this.#width = entry.contentRect.width;
      this.#draw();
    }).observe(this.root);
    this.#listen();
  }

  show(trip) {
    this.#trip = trip;
    this.#end = Math.max(1, trip.route.at(-1)?.[2] ?? 1, ...trip.events.map((event) => event.seconds));
    this.#most = Math.max(20, ...trip.route.map((point) => point[3] * 3.6)) * 1.05;
    this.root.setAttribute("aria-valuemax", String(Math.round(this.#end)));
    this.#draw();
    this.moveTo(0);
  }

  moveTo(seconds) {
    if (this.#trip === null || this.#trip.route.length === 0) return;
    this.#seconds = Math.min(Math.max(seconds, 0), this.#end);
    const { speed } = whereAt(this.#trip.route, this.#seconds);
    this.root.setAttribute("aria-valuenow", String(Math.round(this.#seconds)));
    this.root.setAttribute("aria-valuetext", `${timeOfDay(this.timeAt(this.#seconds))}, ${kilometresPerHour(speed)} kilometres per hour`);
    this.#putCursor();
    this.onMove(this.#seconds);
  }

  /** The time of day, as ISO text. */
  timeAt(seconds) {
    return new Date(Date.parse(this.#trip.start) + seconds * 1000).toISOString();
  }

  #x(seconds) {
    return left + (seconds / this.#end) * (this.#width - left - right);
  }

  #y(kilometresAnHour) {
    return height - bottom - (kilometresAnHour / this.#most) * (height - top - bottom);
  }

  #draw() {
    if (this.#trip === null || this.#width === 0) return;
    const { route, events } = this.#trip;
    const base = height - bottom;
    this.#svg.setAttribute("viewBox", `0 0 ${this.#width} ${height}`);
    this.#svg.replaceChildren(...this.#axes());
    if (route.length > 1) {
      const line = route.map((point) => `${this.#x(point[2]).toFixed(1)} ${this.#y(point[3] * 3.6).toFixed(1)}`).join("L");
      this.#svg.append(
        svg("path.speed-area", { d: `M${this.#x(route[0][2])} ${base}L${line}L${this.#x(route.at(-1)[2])} ${base}Z` }),
        svg("path.speed-line", { d: `M${line}` }));
    }
    for (const event of events) {
      const x = this.#x(event.seconds);
      this.#svg.append(svg("line.event-line", { x1: x, x2: x, y1: 24, y2: base }));
      const sign = eventSign(event, { transform: `translate(${x} 14) scale(0.85)`, "data-event": event.type });
      sign.prepend(svg("title", {}, eventText(event)));
      this.#svg.append(sign);
    }
    this.#svg.append(this.#cursor);
    this.#putCursor();
  }

  #axes() {
    const marks = [];
    const speed = speedStep(this.#most);
    for (let value = 0; value <= this.#most; value += speed) {
      const y = this.#y(value);
      marks.push(svg("line.grid", { x1: left, x2: this.#width - right, y1: y, y2: y }),
        svg("text.axis", { x: left - 5, y: y + 4, "text-anchor": "end" }, String(value)));
    }
    const time = timeStep(this.#end * (560 / Math.max(this.#width - left - right, 80)));
    for (let value = 0; value <= this.#end; value += time) {
      const isEdge = this.#x(value) > this.#width - 28;
      marks.push(svg("text.axis", { x: this.#x(value), y: height - 5, "text-anchor": isEdge ? "end" : value === 0 ? "start" : "middle" },
        hoursAndMinutes(this.timeAt(value))));
    }
    marks.push(svg("text.axis", { x: 2, y: top - 8 }, "km/h"));
    return marks;
  }

  #putCursor() {
    if (this.#trip === null || this.#trip.route.length === 0 || this.#width === 0) return;
    const { speed } = whereAt(this.#trip.route, this.#seconds);
    this.#cursor.setAttribute("transform", `translate(${this.#x(this.#seconds).toFixed(1)} 0)`);
    this.#cursor.lastChild.setAttribute("cy", String(this.#y(speed * 3.6)));
  }

  #listen() {
    const toPointer = (event) => {
      const box = this.root.getBoundingClientRect();
      this.moveTo(((event.clientX - box.left - left) / (this.#width - left - right)) * this.#end);
    };
    this.root.addEventListener("pointerdown", (event) => {
      this.root.setPointerCapture(event.pointerId);
      toPointer(event);
    });
    this.root.addEventListener("pointermove", (event) => {
      if (event.pointerType === "mouse" || this.root.hasPointerCapture(event.pointerId)) toPointer(event);
    });
    this.root.addEventListener("keydown", (event) => this.#onKey(event));
  }

  #onKey(event) {
    if (this.#trip === null || event.ctrlKey || event.metaKey || event.altKey) return;
    const { route } = this.#trip;
    if (route.length === 0) return;
    const { index } = whereAt(route, this.#seconds);
    const point = (at) => route[Math.min(Math.max(at, 0), route.length - 1)][2];
    const back = route[index][2] < this.#seconds ? index : index - 1;
    const places = {
      ArrowRight: () => point(index + 1), ArrowUp: () => point(index + 1),
      ArrowLeft: () => point(back), ArrowDown: () => point(back),
      PageUp: () => this.#seconds + 30, PageDown: () => this.#seconds - 30,
      Home: () => 0, End: () => this.#end,
    };
    if (!(event.key in places)) return;
    this.moveTo(places[event.key]());
    event.preventDefault();
  }
}
