// SPDX-License-Identifier: Apache-2.0
//
// Every room, with what shows that it is there, and whether it fits the window.

function mondayOf(day) {
  const date = new Date(`${day}T00:00:00Z`);
  date.setUTCDate(date.getUTCDate() - ((date.getUTCDay() + 6) % 7));
  return date.toISOString().slice(0, 10);
}

export async function rooms(page) {
  const trip = await page.evaluate(async () => {
    const answer = await fetch("/inspector/api/trips?user=1002&first=2026-05-04&last=2026-05-16");
    const { trips } = await answer.json();
    return trips.filter(({ end }) => end !== null).sort((one, other) => other.events - one.events)[0];
  });
  const requests = await page.evaluate(async () => (await (await fetch("/inspector/api/requests")).json()).requests);
  return {
    trip,
    places: [
      { name: "requests", address: "requests", sign: ".request-row" },
      { name: "a request", address: `requests/${requests.at(-1).id}`, sign: ".detail-line" },
      { name: "people", address: "people", sign: ".person" },
      { name: "a person", address: "people/1001", sign: ".copy-block" },
      { name: "trips", address: "trips/1002/2026-05-11", sign: ".trip" },
      { name: "a trip", address: `trips/1002/${mondayOf(trip.day)}/${trip.id}`, sign: ".map .event-sign" },
      { name: "faults", address: "faults", sign: ".kind" },
      { name: "data", address: "data", sign: ".change" },
    ],
  };
}

export async function go(page, sandbox, { address, sign }) {
  await page.goto(`${sandbox.url}/#/${address}`);
  await page.locator(sign).first().waitFor();
}

/** In the page: what sticks out to the right, beyond the window. */
export function overflowing() {
  const width = document.documentElement.clientWidth;
  const isScrolled = (node) => node.closest("pre, .cell, svg, .visually-hidden") !== null;
  const found = [...document.querySelectorAll("body *")]
    .filter((node) => !isScrolled(node) && node.getBoundingClientRect().width > 0 && node.getBoundingClientRect().right > width + 1)
    .map((node) => `${node.tagName}.${node.className}`);
  const main = document.querySelector("main");
  if (main.scrollWidth > main.clientWidth) found.push("main");
  return found;
}
