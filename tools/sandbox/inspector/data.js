// SPDX-License-Identifier: Apache-2.0
//
// The room of data: what differs from the data as laid, snapshots, the way back to the start, and recordings.

import { announce, confirmed, emptyState, html, problem, replace } from "./dom.js";
import { counted, words } from "./format.js";

// --- Changes ------------------------------------------------------------------------------------

function valueText(value) {
  if (value === null || value === undefined) return "–";
  return typeof value === "string" ? value : JSON.stringify(value);
}

const isSame = (one, other) => JSON.stringify(one) === JSON.stringify(other);

/** The members that differ, as [name, before, after]. */
function differences({ before, after }) {
  const names = new Set([...Object.keys(before ?? {}), ...Object.keys(after ?? {})]);
  return [...names].map((name) => [name, before?.[name], after?.[name]]).filter(([, one, other]) => !isSame(one, other));
}

function value(text, name) {
  return html(`td.value-${name}`, {}, text === "" ? html("span.note", {}, "empty") : text);
}

function change(one) {
  const members = differences(one);
  return html("details.change", { open: members.length <= 12, "data-kind": one.kind },
    html("summary", {}, html("span.change-kind", {}, words(one.kind)), " ", html("span.change-what", {}, `${words(one.table)} ${one.key}`),
      html("span.note", {}, counted(members.length, "member"))),
    html("table", {},
      html("thead", {}, html("tr", {}, ["Member", "Before", "After"].map((name) => html("th", { scope: "col" }, name)))),
      html("tbody", {}, members.map(([name, before, after]) => html("tr", {},
        html("th", { scope: "row" }, name), value(valueText(before), "before"), value(valueText(after), "after"))))));
}

// --- The room -----------------------------------------------------------------------------------

export function makeDataRoom({ api, feed, session }) {
  let scheduled = 0;
  const changes = html("div.changes");
  const snapshots = html("div.snapshots");
  const troubles = html("div.troubles", { "aria-live": "polite" });
  const said = html("p.said", { "aria-live": "polite" });
  const name = html("input", { type: "text", name: "name", required: true, maxlength: 64, placeholder: "before-the-invitation", "aria-label": "Name of the snapshot", spellcheck: "false" });
  const save = html("form.inline", {}, name, html("button", {}, "Save"));
  const reset = html("button.danger", { type: "button" }, "Reset everything");
  const record = html("button", { type: "button", "aria-pressed": "false" });
  const withSecrets = html("input", { type: "checkbox" });
  const download = html("a.button", { href: "/inspector/api/recording", download: "recording.json", hidden: true }, "Download");
  const recorded = html("span.note", {});
  const root = html("section.room.room-data", { "aria-labelledby": "data-title" },
    html("header.room-head", {}, html("h1", { id: "data-title" }, "Data"), said), troubles,
    html("div.data-columns", {},
      html("section.panel", { "aria-labelledby": "changes-title" },
        html("h2", { id: "changes-title" }, "What changed"),
        html("p.note", {}, "Against the data as it was laid."), changes),
      html("div.column", {},
        html("section.panel", { "aria-labelledby": "snapshots-title" },
          html("h2", { id: "snapshots-title" }, "Snapshots"),
          html("p.note", {}, "All data under a name, to come back to."), save, snapshots),
        html("section.panel", { "aria-labelledby": "recording-title" },
          html("h2", { id: "recording-title" }, "Recording"),
          html("p.note", {}, "Requests with their answers, in a file that ", html("code", {}, "orvane-sandbox --replay"), " answers from. Tokens and e-mail addresses are replaced."),
          html("label.check", {}, withSecrets, "Keep tokens and addresses as they are"),
          html("div.buttons", {}, record, download, recorded)),
        html("section.panel", { "aria-labelledby": "reset-title" },
          html("h2", { id: "reset-title" }, "Start again"),
          html("p.note", {}, "Lays the data anew; requests, faults and the clock go back as well. Snapshots stay."),
          html("div.buttons", {}, reset)),
        html("p.note.folder", {}, "All of it is in ", html("code", {}, session.data)))));

  function showProblem(error) {
    replace(troubles, error && problem(error));
  }

  function say(text) {
    said.textContent = text;
    announce(text);
  }

  // What is done, what is said then, and what was refused.
  async function act(work, text) {
    showProblem(null);
    try {
      await work();
      say(text);
    } catch (error) {
      showProblem(error);
    }
  }

  function showChanges({ changes: list, more }) {
    replace(changes, list.length === 0
      ? emptyState("Nothing has changed", ["Requests that write show their traces here, member by member. Try ",
        html("code", {}, "orvane user address --city Bern"), "."])
      : list.map(change), more && html("p.note", {}, "There are more than are shown."));
  }

  function snapshot(kept) {
    return html("li", {}, html("span.snapshot-name", {}, kept),
      html("button.small", {
        type: "button", "aria-label": `Restore ${kept}`,
        onClick: async () => {
          if (await confirmed(`Restore “${kept}”?`, "The present data is replaced by the snapshot's.", "Restore")) {
            act(() => api.post("restore", { name: kept }).then(load), `Restored ${kept}.`);
          }
        },
      }, "Restore"),
      html("button.small.quiet", {
        type: "button", "aria-label": `Remove ${kept}`,
        onClick: async () => {
          if (await confirmed(`Remove “${kept}”?`, "The snapshot is gone for good.", "Remove")) {
            act(() => api.delete(`snapshots/${encodeURIComponent(kept)}`).then(loadSnapshots), `Removed ${kept}.`);
          }
        },
      }, "Remove"));
  }

  function showSnapshots(list) {
    replace(snapshots, list.length === 0 ? html("p.note.none", {}, "None yet: save one before you try something.") : html("ul", {}, list.map(snapshot)));
  }

  function showRecording({ recording: isOn, count = 0, full: isFull = false }) {
    replace(record, isOn ? "Stop recording" : "Record");
    recorded.textContent = count === 0 ? "" : `${counted(count, "request")}${isFull ? ", and no room for more" : ""}`;
    download.hidden = count === 0;
    record.setAttribute("aria-pressed", String(isOn));
    record.classList.toggle("is-recording", isOn);
    withSecrets.disabled = isOn;
    session.recording = isOn;
  }

  async function loadSnapshots() {
    showSnapshots((await api.get("snapshots")).snapshots);
  }

  async function load() {
    const [answer] = await Promise.all([api.get("changes"), loadSnapshots()]);
    showChanges(answer);
  }

  async function enter() {
    try {
      await load();
      showProblem(null);
    } catch (error) {
      showProblem(error);
    }
  }

  save.addEventListener("submit", (event) => {
    event.preventDefault();
    const wanted = name.value.trim();
    act(async () => {
      await api.post("snapshots", { name: wanted });
      name.value = "";
      await loadSnapshots();
    }, `Saved as ${wanted}.`);
  });
  reset.addEventListener("click", async () => {
    const isSure = await confirmed("Reset everything?", "The data is laid anew and all changes are lost. Save a snapshot first if you want to come back to them.", "Reset");
    if (!isSure) return;
    reset.disabled = true;
    await act(() => api.post("reset", {}).then(load), "Everything is as at the start.");
    reset.disabled = false;
  });
  record.addEventListener("click", () => {
    const isOn = !session.recording;
    act(async () => {
      feed.tell("recording", await api.post("recording", { on: isOn, withSecrets: withSecrets.checked }));
    }, isOn ? "Recording." : "The recording has stopped.");
  });
  feed.on("recording", showRecording);
  feed.on("data", () => {
    if (root.hidden) return;
    // A burst of changes is looked at once.
    clearTimeout(scheduled);
    scheduled = setTimeout(enter, 300);
  });
  showRecording(session);

  return { root, enter };
}
