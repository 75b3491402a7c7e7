// SPDX-License-Identifier: Apache-2.0
//
// Asks the sandbox that served the page, and listens to what it tells by itself. Nothing else is ever asked.

const root = "/inspector/api/";

/** A refusal or a failure, in words for people. */
class Refusal extends Error {
  constructor(message, status) {
    super(message);
    this.status = status;
  }
}

export class API {
  #token = "";
  #onLocked;

  /** @param {function()} onLocked called when the session has ended. */
  constructor(onLocked) {
    this.#onLocked = onLocked;
  }

  get(path, options = {}) {
    return this.#ask("GET", path, undefined, options.signal);
  }

  post(path, body) {
    return this.#ask("POST", path, body);
  }

  delete(path) {
    return this.#ask("DELETE", path);
  }

  async session() {
    const session = await this.get("session");
    this.#token = session.token;
    return session;
  }

  async #ask(method, path, body, signal) {
    const headers = {};
    if (method !== "GET") headers["X-Inspector-Token"] = this.#token;
    if (body !== undefined) headers["Content-Type"] = "application/json";
    const answer = await this.#send(path, { method, headers, signal, body: body && JSON.stringify(body) });
    if (answer.status === 401) this.#onLocked();
    const text = await answer.text();
    let value = {};
    try {
      value = text === "" ? {} : JSON.parse(text);
    } catch {
      throw new Refusal(`The sandbox answered ${answer.status} with something that is not JSON.`, answer.status);
    }
    if (!answer.ok) throw new Refusal(value.message || `The sandbox answered ${answer.status}.`, answer.status);
    return value;
  }

  async #send(path, options) {
    try {
      return await fetch(root + path, { ...options, cache: "no-store", credentials: "same-origin", redirect: "error" });
    } catch (error) {
      if (error.name === "AbortError") throw error;
      throw new Refusal("The sandbox can't be reached.", 0);
    }
  }
}

/**
 * What the sandbox tells by itself (server-sent events). A lost connection is made again, at first soon and then every few seconds.
 * Besides the sandbox's own events there is "connection", with true and false.
 */
export class Feed {
  #listeners = new Map();
  #source = null;
  #attempts = 0;
  #timer = 0;

  on(name, listener) {
    if (!this.#listeners.has(name)) this.#listeners.set(name, []);
    this.#listeners.get(name).push(listener);
    if (this.#source && name !== "connection") this.#listen(name);
  }

  /** Says what the sandbox will say as well, for all who listen to know it at once. */
  tell(name, value) {
    this.#emit(name, value);
  }

  start() {
    this.#source = new EventSource(`${root}events`);
    this.#source.addEventListener("open", () => {
      this.#attempts = 0;
      this.#emit("connection", true);
    });
    this.#source.addEventListener("error", () => this.#lost());
    for (const name of this.#listeners.keys()) {
      if (name !== "connection") this.#listen(name);
    }
  }

  stop() {
    clearTimeout(this.#timer);
    this.#source?.close();
  }

  #listen(name) {
    if (this.#source.heard?.has(name)) return;
    this.#source.heard = (this.#source.heard ?? new Set()).add(name);
    this.#source.addEventListener(name, (event) => this.#emit(name, JSON.parse(event.data)));
  }

  #emit(name, value) {
    for (const listener of this.#listeners.get(name) ?? []) listener(value);
  }

  // The browser's own repetition stops for good at a refusal; this one does not.
  #lost() {
    this.#source.close();
    this.#emit("connection", false);
    this.#attempts += 1;
    this.#timer = setTimeout(() => this.start(), Math.min(250 * 2 ** this.#attempts, 4000));
  }
}
