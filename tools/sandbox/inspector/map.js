// SPDX-License-Identifier: Apache-2.0
//
// A map of one trip, drawn from what the sandbox knows: its roads, the route and its events. No tiles, no other server.
// Mercator's projection around the trip (Snyder, "Map Projections: A Working Manual", 1987, equations 7-1 and 7-2), in metres as
// they are in the middle of the map, with y downwards.

import { html, icon, onceAFrame, svg } from "./dom.js";
import { eventSign, eventText } from "./events.js";
import { distance } from "./format.js";

const earthRadius = 6_371_008.8; // metres, the mean
const radians = Math.PI / 180;
const farAway = 150_000;         // metres from the trip; roads beyond belong to another city
const closest = 4;               // pixels per metre
const farthest = 1 / 4000;
const step = 60;                 // pixels that an arrow key moves
const edge = 32;                 // pixels left free around a trip
const pitch = 21;                // pixels between the middles of two signs side by side

class Projection {
  constructor([latitude, longitude]) {
    this.scale = Math.cos(latitude * radians);
    this.longitude = longitude;
    this.y = this.#northing(latitude);
  }

  #northing(latitude) {
    return Math.asinh(Math.tan(latitude * radians)) * earthRadius;
  }

  at([latitude, longitude]) {
    return [(longitude - this.longitude) * radians * earthRadius * this.scale, (this.y - this.#northing(latitude)) * this.scale];
  }
}

const pathOf = (points) => `M${points.map(([x, y]) => `${x.toFixed(1)} ${y.toFixed(1)}`).join("L")}`;

function boundsOf(points) {
  const bounds = { left: Infinity, top: Infinity, right: -Infinity, bottom: -Infinity };
  for (const [x, y] of points) {
    bounds.left = Math.min(bounds.left, x);
    bounds.right = Math.max(bounds.right, x);
    bounds.top = Math.min(bounds.top, y);
    bounds.bottom = Math.max(bounds.bottom, y);
  }
  return bounds;
}

/** 1, 2 or 5 times a power of ten, no longer than that. */
function roundLength(most) {
  const power = 10 ** Math.floor(Math.log10(most));
  return [5, 2, 1].map((times) => times * power).find((length) => length <= most) ?? power;
}

/**
 * Moves signs apart that would lie on one another, as far as there is need. Where they end changes little while the map is zoomed.
 * @param {Array<{at: number[], isFixed: boolean}>} signs
 * @param {number} scale pixels per metre
 * @returns {number[][]} for each sign how far it is from its place, in pixels.
 */
export function spread(signs, scale) {
  const middles = signs.map(({ at: [x, y] }) => [x * scale, y * scale]);
  for (let round = 0, moved = true; moved && round < 40; round += 1) {
    moved = false;
    for (let one = 0; one < signs.length; one += 1) {
      for (let other = one + 1; other < signs.length; other += 1) {
        let x = middles[other][0] - middles[one][0];
        let y = middles[other][1] - middles[one][1];
        const apart = Math.hypot(x, y);
        if (apart >= pitch || (signs[one].isFixed && signs[other].isFixed)) continue;
        moved ||= pitch - apart > 0.5;
        // Signs of one place part in a direction of their own.
        if (apart < 0.01) [x, y] = [Math.cos(2.4 * other), Math.sin(2.4 * other)];
        const share = (pitch - apart) / Math.hypot(x, y);
        const ofOther = signs[one].isFixed ? share : signs[other].isFixed ? 0 : share / 2;
        middles[other][0] += x * ofOther;
        middles[other][1] += y * ofOther;
        middles[one][0] -= x * (share - ofOther);
        middles[one][1] -= y * (share - ofOther);
      }
    }
  }
  return signs.map(({ at }, index) => [middles[index][0] - at[0] * scale, middles[index][1] - at[1] * scale]);
}

export class TripMap {
  #svg = svg("svg", { "aria-hidden": "true" });
  #world = svg("g");
  #roads = svg("g.map-roads");
  #route = svg("g.map-route");
  #leaders = svg("g.map-leaders");
  #signs = svg("g");
  #marker = svg("g.map-marker", { hidden: "" }, svg("circle", { r: 12 }), svg("circle.dot", { r: 7 }));
  #scaleBar = html("span.scale-bar-line");
  #scaleText = html("span");
  #canvas;
  #allRoads = [];
  #projection = new Projection([0, 0]);
  #placed = [];   // what keeps its size, with its place, and what leads there from where it had to move to
  #offsets = [];
  #spreadAt = 0;  // the scale for which they have moved
  #bounds = null;
  #width = 0;
  #height = 0;
  #x = 0;         // what is in the middle
  #y = 0;
  #scale = 0.05;  // pixels per metre
  #isFitted = true;
  #drawSoon = onceAFrame(() => this.#draw());
  #pointers = new Map();
  #markerAt = null;

  /** Called with an event whose sign was chosen. */
  onPick = () => {};

  constructor() {
    this.#world.append(this.#roads, this.#route);
    // The traveller is a ring around a sign, not a lid on it.
    this.#svg.append(this.#world, this.#marker, this.#leaders, this.#signs);
    this.#canvas = html("div.map-canvas", {
      tabindex: "0", role: "application", "aria-label": "Map of the trip. Arrow keys move it, plus and minus zoom, 0 shows the whole trip.",
    }, this.#svg);
    const button = (name, label, act) => html("button.icon-button", { type: "button", "aria-label": label, title: label, onClick: act }, icon(name));
    this.root = html("div.map", {}, this.#canvas,
      html("div.map-buttons", {},
        button("plus", "Nearer", () => this.#zoomStep(1.6)),
        button("minus", "Farther", () => this.#zoomStep(1 / 1.6)),
        button("fit", "The whole trip", () => this.fit())),
      html("div.scale-bar", { "aria-hidden": "true" }, this.#scaleText, this.#scaleBar));
    this.#listen();
    new ResizeObserver(([entry]) => this.#resize(entry.contentRect)).observe(this.#canvas);
  }

  /** @param {Array<{kind: string, points: number[][]}>} roads */
  setRoads(roads) {
    this.#allRoads = roads;
    this.#drawRoads();
  }

  /** Draws a trip and shows the whole of it. */
  show(trip) {
    this.#placed = [];
    this.#spreadAt = 0;
    this.#leaders.replaceChildren();
    this.#signs.replaceChildren();
    this.#route.replaceChildren();
    const positions = trip.route.length > 0 ? trip.route : trip.events.map(({ lat, lon }) => [lat, lon]);
    this.#projection = new Projection(positions[0] ?? [0, 0]);
    this.#drawRoads();
    const line = positions.map((position) => this.#projection.at(position));
    this.#bounds = line.length > 0 ? boundsOf(line) : null;
    if (trip.route.length > 1) {
      const d = pathOf(line);
      this.#route.append(svg("path.route-casing", { d }), svg("path.route-line", { d }));
      this.#place(svg("g.map-start", {}, svg("circle", { r: 6 })), line[0], true);
      this.#place(svg("g.map-end", {}, svg("rect", { x: -6, y: -6, width: 12, height: 12 })), line.at(-1), true);
    }
    // The graver an event, the later it is drawn: on top.
    for (const event of [...trip.events].sort((one, other) => (one.severity ?? 0) - (other.severity ?? 0))) {
      const sign = eventSign(event, { "data-event": event.type, onClick: () => this.onPick(event) });
      sign.prepend(svg("title", {}, eventText(event)));
      this.#place(sign, this.#projection.at([event.lat, event.lon]));
    }
    this.setMarker(null);
    this.fit();
  }

  /** Where the traveller is; null for nowhere. */
  setMarker(position) {
    this.#markerAt = position === null ? null : this.#projection.at(position);
    if (position === null) this.#marker.setAttribute("hidden", "");
    else this.#marker.removeAttribute("hidden");
    this.#drawSoon();
  }

  fit() {
    this.#isFitted = true;
    if (this.#bounds === null || this.#width === 0) return;
    const { left, top, right, bottom } = this.#bounds;
    this.#x = (left + right) / 2;
    this.#y = (top + bottom) / 2;
    this.#scale = Math.min(
      (this.#width - 2 * edge) / Math.max(right - left, 1), (this.#height - 2 * edge) / Math.max(bottom - top, 1), closest / 4);
    this.#drawSoon();
  }

  #place(node, at, isFixed = false) {
    const leader = svg("line");
    this.#placed.push({ node, at, isFixed, leader });
    this.#leaders.append(leader);
    this.#signs.append(node);
  }

  #drawRoads() {
    const groups = new Map(["street", "main", "motorway"].map((kind) => [kind, []]));
    for (const { kind, points } of this.#allRoads) {
      const line = points.map((point) => this.#projection.at(point));
      if (Math.hypot(...line[0]) < farAway) groups.get(kind)?.push(pathOf(line));
    }
    const layer = (suffix) => [...groups].map(([kind, paths]) => svg(`path.road-${suffix}.road-${kind}`, { d: paths.join("") }));
    this.#roads.replaceChildren(...layer("casing"), ...layer("line"));
  }

  #resize({ width, height }) {
    if (width === 0) return;
    this.#width = width;
    this.#height = height;
    this.#svg.setAttribute("viewBox", `0 0 ${width} ${height}`);
    if (this.#isFitted) this.fit();
    this.#draw();  // a size is told after the frame's own callbacks and before it is painted: the next frame would be one too late
  }

  #draw() {
    if (this.#width === 0) return;
    const left = this.#width / 2 - this.#x * this.#scale;
    const top = this.#height / 2 - this.#y * this.#scale;
    this.#world.setAttribute("transform", `matrix(${this.#scale} 0 0 ${this.#scale} ${left} ${top})`);
    const onCanvas = ([x, y]) => [x * this.#scale + left, y * this.#scale + top];
    const put = (node, [x, y]) => node.setAttribute("transform", `translate(${x.toFixed(1)} ${y.toFixed(1)})`);
    if (this.#spreadAt !== this.#scale) {
      this.#spreadAt = this.#scale;
      this.#offsets = spread(this.#placed, this.#scale);
    }
    for (const [index, { node, at, leader }] of this.#placed.entries()) {
      const [x, y] = onCanvas(at);
      const [byX, byY] = this.#offsets[index];
      put(node, [x + byX, y + byY]);
      for (const [name, value] of [["x1", x], ["y1", y], ["x2", x + byX], ["y2", y + byY]]) leader.setAttribute(name, value.toFixed(1));
    }
    if (this.#markerAt) put(this.#marker, onCanvas(this.#markerAt));
    const length = roundLength(120 / this.#scale);
    this.#scaleText.textContent = distance(length);
    this.#scaleBar.style.width = `${length * this.#scale}px`;
  }

  #move(x, y) {
    this.#isFitted = false;
    this.#x -= x / this.#scale;
    this.#y -= y / this.#scale;
    this.#drawSoon();
  }

  /** Zooms so that what is at a place of the canvas stays there. */
  #zoom(factor, x = this.#width / 2, y = this.#height / 2) {
    const scale = Math.min(Math.max(this.#scale * factor, farthest), closest);
    const towards = 1 / this.#scale - 1 / scale;
    this.#isFitted = false;
    this.#x += (x - this.#width / 2) * towards;
    this.#y += (y - this.#height / 2) * towards;
    this.#scale = scale;
    this.#drawSoon();
  }

  /** Zooms towards the traveller, or towards the middle while nobody is in sight. */
  #zoomStep(factor) {
    if (this.#markerAt) {
      const x = (this.#markerAt[0] - this.#x) * this.#scale + this.#width / 2;
      const y = (this.#markerAt[1] - this.#y) * this.#scale + this.#height / 2;
      if (x > 0 && x < this.#width && y > 0 && y < this.#height) {
        this.#zoom(factor, x, y);
        return;
      }
    }
    this.#zoom(factor);
  }

  #listen() {
    const canvas = this.#canvas;
    const at = (event) => {
      const box = canvas.getBoundingClientRect();
      return [event.clientX - box.left, event.clientY - box.top];
    };
    canvas.addEventListener("wheel", (event) => {
      event.preventDefault();
      const lines = event.deltaMode === WheelEvent.DOM_DELTA_LINE ? 24 : 1;
      this.#zoom(Math.exp(-Math.max(-240, Math.min(240, event.deltaY * lines)) * (event.ctrlKey ? 0.01 : 0.0022)), ...at(event));
    }, { passive: false });
    canvas.addEventListener("dblclick", (event) => this.#zoom(2, ...at(event)));
    canvas.addEventListener("pointerdown", (event) => {
      this.#pointers.set(event.pointerId, at(event));
      // A sign under the pointer still hears of the click.
      if (!event.target.closest(".event-sign")) canvas.setPointerCapture(event.pointerId);
    });
    canvas.addEventListener("pointermove", (event) => {
      if (this.#pointers.has(event.pointerId)) this.#drag(event.pointerId, at(event));
    });
    for (const name of ["pointerup", "pointercancel", "pointerleave"]) {
      canvas.addEventListener(name, (event) => this.#pointers.delete(event.pointerId));
    }
    canvas.addEventListener("keydown", (event) => this.#onKey(event));
  }

  #drag(id, to) {
    const before = [...this.#pointers.values()];
    const from = this.#pointers.get(id);
    this.#pointers.set(id, to);
    if (before.length === 1) {
      this.#move(to[0] - from[0], to[1] - from[1]);
    } else if (before.length === 2) {
      const after = [...this.#pointers.values()];
      const middle = ([one, other]) => [(one[0] + other[0]) / 2, (one[1] + other[1]) / 2];
      const apart = ([one, other]) => Math.max(1, Math.hypot(one[0] - other[0], one[1] - other[1]));
      const [x, y] = middle(after);
      const [oldX, oldY] = middle(before);
      this.#move(x - oldX, y - oldY);
      this.#zoom(apart(after) / apart(before), x, y);
    }
  }

  #onKey(event) {
    if (event.ctrlKey || event.metaKey || event.altKey) return;
    const moves = { ArrowLeft: [step, 0], ArrowRight: [-step, 0], ArrowUp: [0, step], ArrowDown: [0, -step] };
    if (event.key in moves) this.#move(...moves[event.key]);
    else if (event.key === "+" || event.key === "=") this.#zoomStep(1.6);
    else if (event.key === "-") this.#zoomStep(1 / 1.6);
    else if (event.key === "0") this.fit();
    else return;
    event.preventDefault();
    event.stopPropagation();
  }
}
