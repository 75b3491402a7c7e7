// SPDX-License-Identifier: Apache-2.0
//
// How driving events look and what they are called: the shape and the colour tell the severity, the letter the type. The colours
// are told apart by people who are colour-blind as well (Okabe and Ito, "Color Universal Design"); so are the shapes.

import { html, svg } from "./dom.js";
import { words } from "./format.js";

const types = {
  MultiLevelAccelerationViolation: ["Hard acceleration", "A"],
  MultiLevelBrakingViolation: ["Hard braking", "B"],
  MultiLevelCorneringViolation: ["Hard cornering", "C"],
  MultiLevelSpeedViolation: ["Speeding", "S"],
  PostedSpeedLimitViolation: ["Above the speed limit", "L"],
  PhoneHandlingViolation: ["Phone in hand", "P"],
};

const severities = {
  1: { name: "very low", path: "M0-8A8 8 0 1 1 0 8 8 8 0 1 1 0-8Z" },
  2: { name: "low", path: "M-7.5-7.5h15v15h-15Z" },
  3: { name: "medium", path: "M0-10.5 10 7.5h-20Z" },
  4: { name: "high", path: "M0-10.5 10.5 0 0 10.5-10.5 0Z" },
  5: { name: "very high", path: "M-4.1-10h8.2L10-4.1v8.2L4.1 10h-8.2L-10 4.1v-8.2Z" },
};
const unrated = { name: "not rated", path: "M0-8A8 8 0 1 1 0 8 8 8 0 1 1 0-8Z" };

export const typeText = (type) => types[type]?.[0] ?? words(type.replace(/Violation$/, ""));
export const severityText = (severity) => (severities[severity] ?? unrated).name;
const letterOf = (type) => types[type]?.[1] ?? type.charAt(0).toUpperCase();

export const eventText = (event) => `${typeText(event.type)}, ${severityText(event.severity)}`;

/** The sign of an event, its middle at 0, 0 and some 20 pixels wide. */
export function eventSign(event, properties = {}) {
  const { path } = severities[event.severity] ?? unrated;
  return svg(`g.event-sign.severity-${severities[event.severity] ? event.severity : "none"}`, properties,
    svg("path", { d: path }),
    svg("text", { y: event.severity === 3 ? 5 : 3.5, "aria-hidden": "true" }, letterOf(event.type)));
}

/** The same in a text. */
export function eventIcon(event) {
  return svg("svg.event-icon", { viewBox: "-12 -12 24 24", "aria-hidden": "true" }, eventSign(event));
}

/** What the shapes mean. */
export function severityLegend() {
  return html("ul.legend", { "aria-label": "Severities" }, Object.entries(severities).map(([severity, { name, path }]) =>
    html("li", {}, svg("svg.event-icon", { viewBox: "-12 -12 24 24", "aria-hidden": "true" },
      svg(`g.event-sign.severity-${severity}`, {}, svg("path", { d: path }))), name)));
}
