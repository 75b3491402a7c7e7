// SPDX-License-Identifier: Apache-2.0
//
// One request taken apart: who asked, how it ended and why, query, headers and bodies.

import { copyButton, html } from "./dom.js";
import { answerSize, counted, dateAndTime, duration, queryItems, size, statusClass, statusText } from "./format.js";
import { isJSON, jsonCode } from "./json-text.js";

function pairs(title, items, note = null) {
  return html("details.part", { open: true },
    html("summary", {}, html("h3", {}, title), note && html("span.note", {}, note)),
    items.length === 0 ? html("p.note", {}, "None.") : html("dl.pairs", {},
      items.map(([name, value]) => html("div", {}, html("dt", {}, name), html("dd", {}, value === "" ? html("span.note", {}, "empty") : value)))));
}

function contentType(headers) {
  return headers.find(([name]) => name.toLowerCase() === "content-type")?.[1] ?? "";
}

function bodyText(body, type, isCut) {
  const mayBeJSON = type.includes("json") || /^\s*[{["]/.test(body);
  const isWhole = mayBeJSON && isJSON(body);
  const remarks = [];
  if (isCut) remarks.push("Only the beginning is kept.");
  if (type.includes("json") && !isWhole && !isCut) remarks.push("This is not well-formed JSON.");
  return [
    remarks.length > 0 && html("p.notice.notice-warning", {}, remarks.join(" ")),
    html("pre", { tabindex: "0", role: "region", "aria-label": "Body" }, mayBeJSON ? jsonCode(body) : html("code", {}, body)),
  ];
}

function formTable(form) {
  const hasFiles = form.some(({ filename, contentType: type }) => filename || type);
  const heads = ["Field", "Value", ...(hasFiles ? ["File"] : [])];
  return html("table.form-fields", {},
    html("thead", {}, html("tr", {}, heads.map((name) => html("th", { scope: "col" }, name)))),
    html("tbody", {}, form.map((field) => html("tr", {},
      html("th", { scope: "row" }, field.name),
      html("td", {}, field.value ?? html("span.note", {}, "not text")),
      hasFiles && html("td", {}, [field.filename, field.contentType].filter(Boolean).join(", ") || html("span.note", {}, "–"))))));
}

function bodyPart(title, { body, isCut, headers, bytes, form = null }) {
  const type = contentType(headers);
  const note = [bytes > 0 && size(bytes), type].filter(Boolean).join(", ");
  let content;
  if (form) {
    content = formTable(form);
  } else if (body === null || body === undefined) {
    content = html("p.note", {}, "These bytes are not text (UTF-8).");
  } else if (body === "") {
    content = html("p.note", {}, bytes > 0 ? "Not kept." : "Empty.");
  } else {
    content = bodyText(body, type, isCut);
  }
  const copy = typeof body === "string" && body !== "" && copyButton("Copy", () => body, { "aria-label": `Copy: ${title}` });
  return html("details.part", { open: true },
    html("summary", {}, html("h3", {}, title), html("span.note", {}, note)), copy && html("div.part-copy", {}, copy), content);
}

/** What the open request's panel holds. */
export function detailOf(request) {
  const who = request.user === null ? "nobody (no token)" : `${request.name ?? "user"} (${request.user})`;
  return [
    html("p.detail-line", { "data-status": statusClass(request.status) },
      html("span.method", {}, request.method), " ", html("span.status-text", {}, statusText(request.status)), " ",
      html("span.note", {}, request.status === 0 ? duration(request.duration) : `${duration(request.duration)}, ${answerSize(request)}`)),
    html("p.detail-path", {}, html("code", {}, request.path)),
    html("p.note", {}, `${dateAndTime(request.time)}, by ${who}`),
    request.reason && html("p.notice.notice-danger", {}, html("strong", {}, "Refused: "), request.reason),
    request.fault && html("p.notice.notice-warning", {}, html("strong", {}, "Hit by a fault: "), request.fault),
    html("div.buttons", {},
      copyButton("Copy as curl", () => request.curl),
      copyButton("Copy as orvane", () => request.orvane)),
    request.query !== "" && pairs("Query", queryItems(request.query)),
    pairs("Request headers", request.requestHeaders, counted(request.requestHeaders.length, "header")),
    (request.requestSize > 0 || request.form) && bodyPart("Request body", {
      body: request.requestBody, isCut: request.requestBodyCut, headers: request.requestHeaders, bytes: request.requestSize, form: request.form,
    }),
    request.status === 0
      ? html("p.notice", {}, "The connection was ended without an answer.")
      : [pairs("Response headers", request.responseHeaders, counted(request.responseHeaders.length, "header")),
        bodyPart("Response body", {
          body: request.responseBody, isCut: request.responseBodyCut, headers: request.responseHeaders, bytes: request.responseSize,
        })],
  ];
}
