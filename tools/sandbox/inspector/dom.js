// SPDX-License-Identifier: Apache-2.0
//
// Makes elements. Texts become text nodes and nothing else: what came over the wire is never read as markup.

const svgNamespace = "http://www.w3.org/2000/svg";

function assign(node, properties) {
  for (const [name, value] of Object.entries(properties)) {
    if (value === null || value === undefined || value === false) continue;
    if (typeof value === "function") node.addEventListener(name.slice(2).toLowerCase(), value);
    else node.setAttribute(name, value === true ? "" : String(value));
  }
}

function fill(node, children) {
  for (const child of children.flat(Infinity)) {
    if (child === null || child === undefined || child === false) continue;
    node.append(child instanceof Node ? child : String(child));
  }
  return node;
}

/**
 * An HTML element.
 * @param {string} name with classes, as "button.quiet.small".
 * @param {object} properties attributes; functions are listeners, named "onClick"; null and false are left out.
 * @param {...(Node|string|number|null|Array)} children
 */
export function html(name, properties = {}, ...children) {
  const [tag, ...classes] = name.split(".");
  const node = document.createElement(tag);
  if (classes.length > 0) node.className = classes.join(" ");
  assign(node, properties);
  return fill(node, children);
}

/** The same for SVG. */
export function svg(name, properties = {}, ...children) {
  const [tag, ...classes] = name.split(".");
  const node = document.createElementNS(svgNamespace, tag);
  if (classes.length > 0) node.setAttribute("class", classes.join(" "));
  assign(node, properties);
  return fill(node, children);
}

/** Puts children in place of those that an element has. */
export function replace(node, ...children) {
  node.replaceChildren();
  return fill(node, children);
}

/** Sets a text where it differs, so that nothing is laid out anew for the same text. */
export function setText(node, text) {
  if (node.textContent !== text) node.textContent = text;
}

/**
 * Draws before the next frame, once however often it is asked for until then.
 * @param {function()} draw
 * @returns {function()} asks for it.
 */
export function onceAFrame(draw) {
  let isAskedFor = false;
  return () => {
    if (isAskedFor) return;
    isAskedFor = true;
    requestAnimationFrame(() => {
      isAskedFor = false;
      draw();
    });
  };
}

const iconPaths = {
  requests: "M3 4h10M3 8h10M3 12h6",
  people: "M8 8a2.5 2.5 0 1 0 0-5 2.5 2.5 0 0 0 0 5ZM3 13.5c.4-2.6 2.3-4 5-4s4.6 1.4 5 4",
  trips: "M4 13c0-4 2-3.5 4-5s4-1.5 4-5M4 13.1v-.1M12 3v-.1",
  faults: "M8 2.5 14.5 13.5h-13ZM8 6.5v3.2M8 11.7v.1",
  data: "M3 4.5c0-1.1 2.2-2 5-2s5 .9 5 2-2.2 2-5 2-5-.9-5-2Zm0 0v7c0 1.1 2.2 2 5 2s5-.9 5-2v-7M3 8c0 1.1 2.2 2 5 2s5-.9 5-2",
  light: "M8 11a3 3 0 1 0 0-6 3 3 0 0 0 0 6ZM8 1v1.5M8 13.5V15M1 8h1.5M13.5 8H15M3 3l1.1 1.1M11.9 11.9 13 13M13 3l-1.1 1.1M4.1 11.9 3 13",
  dark: "M13.5 9.5A6 6 0 1 1 6.5 2.5a4.8 4.8 0 0 0 7 7Z",
  system: "M2 3h12v8H2ZM6 14h4M8 11v3",
  keys: "M1.5 4h13v8h-13ZM4 6.5h.1M6.7 6.5h.1M9.3 6.5h.1M12 6.5h.1M4.5 9.5h7",
  close: "M4 4l8 8M12 4l-8 8",
  back: "M10 3 5 8l5 5",
  next: "M6 3l5 5-5 5",
  plus: "M8 3v10M3 8h10",
  minus: "M3 8h10",
  fit: "M2.5 6V2.5H6M10 2.5h3.5V6M13.5 10v3.5H10M6 13.5H2.5V10",
  pause: "M5.5 3v10M10.5 3v10",
  play: "M5 3l8 5-8 5Z",
  down: "M8 3v10M3.5 8.5 8 13l4.5-4.5",
};

export function icon(name) {
  return svg("svg.icon", { viewBox: "0 0 16 16", "aria-hidden": "true" }, svg("path", { d: iconPaths[name] }));
}

/** Says something to those who listen to the page instead of seeing it. */
export function announce(text) {
  const announcer = document.getElementById("announcer");
  announcer.textContent = "";
  requestAnimationFrame(() => { announcer.textContent = text; });
}

/** What a room shows where there is nothing yet: what that means, and what to do next, a paragraph each. */
export function emptyState(title, ...hints) {
  return html("div.empty", {}, html("p.empty-title", {}, title), hints.map((hint) => html("p", {}, hint)));
}

/** A line that says what went wrong, in the words of whoever refused. */
export function problem(error) {
  return html("p.notice.notice-danger", { role: "alert" }, error.message);
}

async function writeToClipboard(text) {
  if (navigator.clipboard) {
    await navigator.clipboard.writeText(text);
    return;
  }
  // Plain HTTP from another machine: only the old way is left.
  const area = html("textarea.visually-hidden", { readonly: true });
  area.value = text;
  document.body.append(area);
  area.select();
  const copied = document.execCommand("copy");
  area.remove();
  if (!copied) throw new Error("the browser refused");
}

/**
 * A button that copies, and then says so in place of its label for a moment.
 * @param {function(): string} text asked for when the button is pressed.
 */
export function copyButton(label, text, properties = {}) {
  const name = html("span", {}, label);
  const done = html("span.copy-said", { "aria-hidden": "true" }, "Copied");
  const button = html("button.small.copy", { type: "button", ...properties }, name, done);
  let ends = 0;
  const say = (words, state) => {
    done.textContent = words;
    button.dataset.said = state;
    announce(words);
    clearTimeout(ends);
    ends = setTimeout(() => delete button.dataset.said, 1600);
  };
  button.addEventListener("click", async () => {
    try {
      await writeToClipboard(text());
      say("Copied", "yes");
    } catch {
      say("Not copied", "no");
    }
  });
  return button;
}

/** A text to copy, with its button. */
export function copyBlock(title, text) {
  const lines = Array.isArray(text) ? text.join("\n") : text;
  return html("section.copy-block", {},
    html("div.copy-head", {}, html("h3", {}, title), copyButton("Copy", () => lines, { "aria-label": `Copy: ${title}` })),
    html("pre", { tabindex: "0", role: "region", "aria-label": title }, html("code", {}, lines)));
}

/**
 * Asks before something that can't be undone.
 * @returns {Promise<boolean>}
 */
export function confirmed(title, text, action) {
  return new Promise((resolve) => {
    const dialog = html("dialog", { "aria-labelledby": "confirm-title" },
      html("form", { method: "dialog" },
        html("h2", { id: "confirm-title" }, title),
        html("p", {}, text),
        html("div.buttons.end", {},
          html("button", { value: "no" }, "Cancel"),
          html("button.danger", { value: "yes" }, action))));
    dialog.addEventListener("close", () => {
      dialog.remove();
      resolve(dialog.returnValue === "yes");
    });
    document.body.append(dialog);
    dialog.showModal();
  });
}
