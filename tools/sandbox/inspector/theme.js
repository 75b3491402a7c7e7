// SPDX-License-Identifier: Apache-2.0
//
// Sets the colours that were chosen before anything is painted; a classic script, as modules come too late for that.
"use strict";

try {
  const chosen = localStorage.getItem("orvane-theme");
  if (chosen === "light" || chosen === "dark") document.documentElement.dataset.theme = chosen;
} catch {
  // Storage may be closed to pages; the system's preference holds then.
}
