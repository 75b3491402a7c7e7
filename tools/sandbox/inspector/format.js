// SPDX-License-Identifier: Apache-2.0
//
// Values as people read them. Times are shown in the browser's time zone.

const whole = new Intl.NumberFormat("en");
const clockTime = new Intl.DateTimeFormat("en-GB", { hour: "2-digit", minute: "2-digit", second: "2-digit" });
const shortTime = new Intl.DateTimeFormat("en-GB", { hour: "2-digit", minute: "2-digit" });
const wholeTime = new Intl.DateTimeFormat("en-GB", { dateStyle: "medium", timeStyle: "medium" });
// Days come without a zone and are the same everywhere.
const dayName = new Intl.DateTimeFormat("en-GB", { weekday: "short", day: "numeric", month: "short", timeZone: "UTC" });
const dayOnly = new Intl.DateTimeFormat("en-GB", { day: "numeric", month: "short", timeZone: "UTC" });
const dayAndYear = new Intl.DateTimeFormat("en-GB", { day: "numeric", month: "short", year: "numeric", timeZone: "UTC" });

export const number = (value) => whole.format(value);

/** "1 trip", "2 trips". */
export const counted = (count, one, many = `${one}s`) => `${number(count)} ${count === 1 ? one : many}`;

export function timeOfDay(iso, withMilliseconds = false) {
  const time = new Date(iso);
  const text = clockTime.format(time);
  return withMilliseconds ? `${text}.${String(time.getMilliseconds()).padStart(3, "0")}` : text;
}

export const hoursAndMinutes = (iso) => shortTime.format(new Date(iso));
export const dateAndTime = (iso) => wholeTime.format(new Date(iso));

const midnight = (day) => new Date(`${day}T00:00:00Z`);

export const dayText = (day) => dayName.format(midnight(day));

export function weekText(monday) {
  return `${dayOnly.format(midnight(monday))} – ${dayAndYear.format(midnight(plusDays(monday, 6)))}`;
}

export function plusDays(day, count) {
  const date = midnight(day);
  date.setUTCDate(date.getUTCDate() + count);
  return date.toISOString().slice(0, 10);
}

/** The Monday of a day's week. */
export function mondayOf(day) {
  return plusDays(day, -((midnight(day).getUTCDay() + 6) % 7));
}

/** @param {number} milliseconds */
export function duration(milliseconds) {
  if (milliseconds < 0.05) return "<0.1 ms";
  if (milliseconds < 10) return `${milliseconds.toFixed(1)} ms`;
  if (milliseconds < 1000) return `${Math.round(milliseconds)} ms`;
  if (milliseconds < 10_000) return `${(milliseconds / 1000).toFixed(2)} s`;
  return `${(milliseconds / 1000).toFixed(1)} s`;
}

/** Bytes, in steps of a thousand (SI). */
export function size(bytes) {
  if (bytes < 1000) return `${bytes} B`;
  if (bytes < 1_000_000) return `${(bytes / 1000).toFixed(1)} kB`;
  return `${(bytes / 1_000_000).toFixed(1)} MB`;
}

/** The size of a request's answer, if there was one. */
export const answerSize = (request) => (request.status === 0 ? "–" : size(request.responseSize));

/** A stretch of time in minutes and hours. */
export function stretch(seconds) {
  const minutes = Math.round(seconds / 60);
  if (minutes < 1) return `${Math.round(seconds)} s`;
  if (minutes < 60) return `${minutes} min`;
  return `${Math.floor(minutes / 60)} h ${String(minutes % 60).padStart(2, "0")} min`;
}

export function distance(metres) {
  if (metres < 1000) return `${Math.round(metres)} m`;
  return `${(metres / 1000).toFixed(metres < 100_000 ? 1 : 0)} km`;
}

export const kilometresPerHour = (metresPerSecond) => Math.round(metresPerSecond * 3.6);

/** "overSpeeding" and "NAMED_DRIVER" as words: "Over speeding", "Named driver". */
export function words(name) {
  const text = String(name)
    .replace(/_/g, " ")
    .replace(/([a-z\d])([A-Z])/g, "$1 $2")
    .toLowerCase();
  return text.charAt(0).toUpperCase() + text.slice(1);
}

const statusTexts = {
  200: "OK", 201: "Created", 204: "No Content", 206: "Partial Content", 301: "Moved Permanently", 302: "Found",
  304: "Not Modified", 400: "Bad Request", 401: "Unauthorized", 403: "Forbidden", 404: "Not Found",
  405: "Method Not Allowed", 408: "Request Timeout", 409: "Conflict", 411: "Length Required", 413: "Content Too Large",
  414: "URI Too Long", 415: "Unsupported Media Type", 416: "Range Not Satisfiable", 429: "Too Many Requests",
  431: "Request Header Fields Too Large", 500: "Internal Server Error", 501: "Not Implemented", 502: "Bad Gateway",
  503: "Service Unavailable", 504: "Gateway Timeout",
};

export function statusText(status) {
  if (status === 0) return "dropped";
  return statusTexts[status] ? `${status} ${statusTexts[status]}` : String(status);
}

/** "2", "3", "4", "5", or "0" for a connection that was dropped. */
export const statusClass = (status) => String(Math.floor(status / 100));

/** A percent-encoded text; one that is not well formed stays as it is. */
export function decoded(text) {
  try {
    return decodeURIComponent(text);
  } catch {
    return text;
  }
}

/** A query as pairs, in order; a plus is a plus. */
export function queryItems(query) {
  return query.split("&").filter((item) => item !== "").map((item) => {
    const at = item.indexOf("=");
    return at < 0 ? [decoded(item), ""] : [decoded(item.slice(0, at)), decoded(item.slice(at + 1))];
  });
}
