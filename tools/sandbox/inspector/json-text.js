// SPDX-License-Identifier: Apache-2.0
//
// Shows JSON indented. The text is taken apart, not evaluated, so that long numbers keep their digits, members their order, and
// what was cut off or is broken is shown as far as it goes.

import { html } from "./dom.js";

const token = /"(?:[^"\\]|\\[^])*"?|[{}[\],:]|[^\s{}[\],:"]+/y;
const blank = /\s*/y;
// Deeper levels are drawn at this one: a hundred thousand of them would be ten thousand million blanks.
const deepestIndent = 24;
const mostLines = 2000;

function kindOf(text, isKey) {
  if (text.startsWith("\"")) return isKey ? "key" : "string";
  if (/^-?\d/.test(text)) return "number";
  return /^(?:true|false|null)$/.test(text) ? "literal" : "";
}

/**
 * The pieces of a text, as [text, kind], with line breaks and indents put in.
 * @returns {{pieces: Array, rest: number}} rest: the characters left out beyond the most lines.
 */
export function indented(text, limit = mostLines) {
  const pieces = [];
  let plain = "";
  let depth = 0;
  let lines = 1;
  let at = 0;
  const line = () => {
    lines += 1;
    plain += `\n${"  ".repeat(Math.min(depth, deepestIndent))}`;
  };
  const skip = () => {
    blank.lastIndex = at;
    blank.test(text);
    at = blank.lastIndex;
  };
  for (skip(); at < text.length && lines <= limit; skip()) {
    token.lastIndex = at;
    const word = token.exec(text)[0];
    at = token.lastIndex;
    if (word === "{" || word === "[") {
      plain += word;
      depth += 1;
      skip();
      if (text[at] === "}" || text[at] === "]") {
        plain += text[at];
        at += 1;
        depth -= 1;
      } else {
        line();
      }
    } else if (word === "}" || word === "]") {
      depth = Math.max(0, depth - 1);
      line();
      plain += word;
    } else if (word === ",") {
      plain += word;
      line();
    } else if (word === ":") {
      plain += ": ";
    } else {
      skip();
      const kind = kindOf(word, text[at] === ":");
      if (kind === "") {
        plain += word;
        continue;
      }
      if (plain !== "") pieces.push([plain, ""]);
      plain = "";
      pieces.push([word, kind]);
    }
  }
  if (plain !== "") pieces.push([plain, ""]);
  return { pieces, rest: text.length - at };
}

/** A code element with the text in it, coloured. */
export function jsonCode(text) {
  const code = html("code.json");
  const { pieces, rest } = indented(text);
  const fragment = document.createDocumentFragment();
  for (const [piece, kind] of pieces) fragment.append(kind === "" ? piece : html(`span.json-${kind}`, {}, piece));
  code.append(fragment);
  if (rest > 0) code.append(`\n… ${rest} more characters`);
  return code;
}

export function isJSON(text) {
  try {
    JSON.parse(text);
    return true;
  } catch {
    return false;
  }
}
