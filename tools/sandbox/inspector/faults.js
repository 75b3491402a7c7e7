// SPDX-License-Identifier: Apache-2.0
//
// The room of faults: what the sandbox does wrong, for which requests and how often, and its clock. The kinds and their
// parameters are the sandbox's own list.

import { announce, emptyState, html, problem, replace, setText } from "./dom.js";
import { counted, dateAndTime, words } from "./format.js";

// --- One kind -----------------------------------------------------------------------------------

/** A parameter that only says that its kind is on has no field. */
const isFieldless = (kind, parameter) => parameter.type === "boolean" && kind.parameters.length === 1 && parameter.name === kind.name;

function field(kind, parameter) {
  const name = `${kind.name}-${parameter.name}`;
  if (parameter.type === "choice") {
    return html("select", { name }, parameter.choices.map((choice) => html("option", { value: choice, selected: choice === parameter.default }, choice)));
  }
  if (parameter.type === "boolean") return html("input", { name, type: "checkbox", checked: parameter.default === true });
  if (parameter.type === "integer") {
    return html("input", { name, type: "number", step: 1, required: true, value: parameter.default, min: parameter.least, max: parameter.most });
  }
  return html("input", { name, type: "text", value: parameter.default });
}

function valueOf(parameter, input) {
  if (parameter.type === "boolean") return input.checked;
  if (parameter.type === "integer") return Number(input.value);
  return input.value;
}

/** The unit stands beside the field: "delayMs" is "Delay", "cutAfterBytes" is "Cut after", and "bytesPerSecond" is "At most". */
function labelOf(parameter) {
  return words(parameter.name.replace(/(?:Ms|Bytes)$/, "").replace(/^bytesPerSecond$/, "at most"));
}

function isOfKind(kind, { fault }) {
  return kind.name in fault || kind.parameters.some(({ name }) => name in fault);
}

class KindSwitch {
  #kind;
  #inputs = new Map();
  #button;

  /**
   * @param {function(object, boolean): Promise} onTurn (members of the fault, whether it is to be on); rejects with what was refused.
   */
  constructor(kind, onTurn) {
    this.#kind = kind;
    this.#button = html("button.switch", { type: "button", role: "switch", "aria-checked": "false", "aria-label": kind.title }, html("span"));
    const fields = kind.parameters.filter((parameter) => !isFieldless(kind, parameter)).map((parameter) => {
      const input = field(kind, parameter);
      this.#inputs.set(parameter.name, input);
      return html("label.field", {}, html("span.field-name", {}, labelOf(parameter)),
        html("span.field-value", {}, input, parameter.unit && html("span.note", {}, parameter.unit)));
    });
    this.form = html("form.kind", { "data-kind": kind.name },
      html("div.kind-text", {}, html("h3", {}, kind.title), html("p.note", {}, kind.description)),
      html("div.kind-fields", {}, fields), this.#button);
    this.#button.addEventListener("click", () => this.#turn(onTurn));
    this.form.addEventListener("submit", (event) => {
      event.preventDefault();
      if (!this.isOn) this.#turn(onTurn);
    });
  }

  get kind() { return this.#kind; }
  get isOn() { return this.#button.getAttribute("aria-checked") === "true"; }

  show(faults) {
    this.#button.setAttribute("aria-checked", String(faults.some((running) => isOfKind(this.#kind, running))));
  }

  async #turn(onTurn) {
    if (!this.isOn && !this.form.reportValidity()) return;
    this.#button.disabled = true;
    try {
      await onTurn(this.#kind, this.#members(), !this.isOn);
    } finally {
      this.#button.disabled = false;
      this.#button.focus();
    }
  }

  #members() {
    const members = {};
    for (const parameter of this.#kind.parameters) {
      const input = this.#inputs.get(parameter.name);
      members[parameter.name] = input ? valueOf(parameter, input) : parameter.default ?? true;
    }
    if (this.#kind.parameters.length === 0) members[this.#kind.name] = true;
    return members;
  }
}

// --- Which requests, and how often --------------------------------------------------------------

class Scope {
  #path = html("input", { type: "text", name: "path", placeholder: "all paths", spellcheck: "false", autocapitalize: "off" });
  #method = html("select", { name: "method" }, ["", "GET", "POST", "PUT", "DELETE"].map((method) => html("option", { value: method }, method || "any")));
  #times = html("input", { type: "number", name: "times", min: 1, step: 1, placeholder: "always" });

  constructor() {
    const label = (name, input) => html("label.field", {}, html("span.field-name", {}, name), html("span.field-value", {}, input));
    this.form = html("form.scope", {},
      html("h2", {}, "Which requests"),
      html("p.note", {}, "Holds for what is switched on next. The path is a regular expression, searched for in the request's path; without a number of times a fault stays until it is ended."),
      html("div.scope-fields", {}, label("Path", this.#path), label("Method", this.#method), label("Times", this.#times)));
    this.form.addEventListener("submit", (event) => event.preventDefault());
  }

  get isValid() { return this.form.reportValidity(); }

  members() {
    const members = {};
    if (this.#path.value !== "") members.path = this.#path.value;
    if (this.#method.value !== "") members.method = this.#method.value;
    if (this.#times.value !== "") members.times = Number(this.#times.value);
    return members;
  }
}

// --- The clock ----------------------------------------------------------------------------------

function makeClock({ api }, onProblem) {
  const now = html("span.clock-now");
  const skew = html("input", { type: "number", step: 1, value: 0, name: "skew", required: true });
  const today = html("input", { type: "date", name: "today", required: true });
  const todayField = html("form.clock-form", {}, html("label.field", {}, html("span.field-name", {}, "Today"),
    html("span.field-value", {}, today, html("button", {}, "Move"))));
  const form = html("form.clock-form", {},
    html("label.field", {}, html("span.field-name", {}, "Ahead by"),
      html("span.field-value", {}, skew, html("span.note", {}, "seconds"), html("button", {}, "Move"))));
  const set = (body) => api.post("clock", body).then(() => onProblem(null), onProblem);
  const quick = (label, seconds) => html("button.small", { type: "button", onClick: () => set({ skew: seconds }) }, label);
  form.addEventListener("submit", (event) => {
    event.preventDefault();
    set({ skew: Number(skew.value) });
  });
  todayField.addEventListener("submit", (event) => {
    event.preventDefault();
    set({ today: today.value });
  });
  const section = html("section.panel", { "aria-labelledby": "clock-title" },
    html("h2", { id: "clock-title" }, "Clock"),
    html("p.note", {}, "A server whose clock is off refuses tokens; clients find out by its Date header."),
    now, form, html("div.buttons", {}, quick("5 min behind", -300), quick("Right", 0), quick("5 min ahead", 300)), todayField);
  const show = (clock) => {
    setText(now, `${dateAndTime(clock.now)}${clock.skew === 0 ? "" : `, ${counted(Math.abs(clock.skew), "second")} ${clock.skew > 0 ? "ahead" : "behind"}`}; today is ${clock.today.slice(0, 10)}`);
    if (document.activeElement !== skew) skew.value = String(clock.skew);
    if (document.activeElement !== today) today.value = clock.today.slice(0, 10);
  };
  return { section, show };
}

// --- The room -----------------------------------------------------------------------------------

export function makeFaultsRoom(context) {
  const { api, feed } = context;
  let running = [];
  let switches = [];

  const scope = new Scope();
  const kinds = html("div.kinds");
  const list = html("div.running");
  const troubles = html("div.troubles", { "aria-live": "polite" });
  const allWell = html("button.primary", { type: "button" }, "All well");
  const clock = makeClock(context, showProblem);
  const root = html("section.room.room-faults", { "aria-labelledby": "faults-title" },
    html("header.room-head", {}, html("h1", { id: "faults-title" }, "What goes wrong"), allWell), troubles,
    html("div.faults-columns", {},
      html("div.column", {}, scope.form, kinds),
      html("div.column", {},
        html("section.panel", { "aria-labelledby": "running-title" }, html("h2", { id: "running-title" }, "On now"), list),
        clock.section)));

  function showProblem(error) {
    replace(troubles, error && problem(error));
  }

  function showRunning() {
    if (running.length === 0) {
      replace(list, emptyState("All is well", "Switch something on, and the requests that it hits are answered wrongly."));
      return;
    }
    replace(list,
      html("ol.running-list", {}, running.map((fault) => html("li", {},
        html("span.running-text", {}, fault.text,
          (fault.left === null || fault.permanent) && html("span.note", {}, fault.permanent ? "from the command line" : "until it is ended")),
        html("button.small", {
          type: "button", disabled: fault.permanent, title: fault.permanent ? "The command line asked for it: it ends with the sandbox" : null, "aria-label": `End: ${fault.text}`,
          onClick: () => end(fault),
        }, "End")))),
      running.length > 1 && html("p.note.order", {}, "The first that fits a request is the one that hits it."));
  }

  function show({ kinds: known, faults }) {
    running = faults;
    if (known && known.map(({ name }) => name).join() !== switches.map(({ kind }) => kind.name).join()) {
      switches = known.map((kind) => new KindSwitch(kind, turn));
      replace(kinds, switches.map(({ form }) => form));
    }
    for (const one of switches) one.show(running);
    showRunning();
  }

  async function turn(kind, members, isOn) {
    showProblem(null);
    try {
      if (isOn) {
        if (!scope.isValid) return;
        await api.post("faults", { ...members, ...scope.members() });
      } else {
        const mine = running.filter((fault) => isOfKind(kind, fault) && !fault.permanent);
        await Promise.all(mine.map(({ id }) => api.delete(`faults/${id}`)));
      }
      show(await api.get("faults"));
      announce(`${kind.title} is ${isOn ? "on" : "off"}`);
    } catch (error) {
      showProblem(error);
    }
  }

  async function end({ id, text }) {
    try {
      await api.delete(`faults/${id}`);
      show(await api.get("faults"));
      announce(`Ended: ${text}`);
    } catch (error) {
      showProblem(error);
    }
  }

  async function load() {
    try {
      const [faults, time] = await Promise.all([api.get("faults"), api.get("clock")]);
      show(faults);
      clock.show(time);
      showProblem(null);
    } catch (error) {
      showProblem(error);
    }
  }

  allWell.addEventListener("click", async () => {
    try {
      await api.delete("faults");
      await load();
      announce("All is well");
    } catch (error) {
      showProblem(error);
    }
  });
  feed.on("faults", show);
  feed.on("clock", clock.show);
  // The badge in the bar is told by the feed, and the feed tells only what changes.
  feed.on("connection", (isThere) => { if (isThere) load(); });
  showRunning();

  return { root, enter: load };
}
