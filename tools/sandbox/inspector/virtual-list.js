// SPDX-License-Identifier: Apache-2.0
//
// A long list of which only the rows in sight are in the document. Rows are of one height, used again, and written only where
// they differ. Stays at its end while it is there, and where it is otherwise.

import { html, onceAFrame } from "./dom.js";

const spare = 6; // rows above and below those in sight

export class VirtualList {
  #viewport;
  #body;
  #makeRow;
  #fillRow;
  #rowHeight = 28;
  #height = 0;
  #headHeight = 0;
  #items = [];
  #slots = [];
  #drawSoon = onceAFrame(() => this.#draw());
  #atEnd = true;
  #drawn = -1;
  #selected = null;

  /** Called when the view came to the end or left it. */
  onEnd = () => {};

  /**
   * @param {HTMLElement} viewport scrolls; a head that sticks to its top may be in it already.
   * @param {function(): object} makeRow with a member `root`.
   * @param {function(object, object)} fillRow (row, item)
   */
  constructor(viewport, makeRow, fillRow) {
    this.#viewport = viewport;
    this.#makeRow = makeRow;
    this.#fillRow = fillRow;
    this.#body = html("div.virtual-body", { role: "rowgroup" });
    viewport.append(this.#body);
    viewport.addEventListener("scroll", () => this.#onScroll(), { passive: true });
    new ResizeObserver(() => this.#measure()).observe(viewport);
  }

  get atEnd() { return this.#atEnd; }
  get rowsInSight() { return Math.max(1, Math.floor((this.#height - this.#headHeight) / this.#rowHeight)); }

  /**
   * @param {Array} items the same array may come again, longer or shorter.
   * @param {number} removed how many went from its beginning: what is in sight stays where it is.
   */
  show(items, removed = 0) {
    this.#items = items;
    if (this.#atEnd || removed === 0) {
      this.#drawSoon();
      return;
    }
    // At once: whoever looks in between would find the rows where they were.
    this.#viewport.scrollTop -= removed * this.#rowHeight;
    this.#draw();
  }

  /** The item that is marked; null for none. */
  select(item) {
    this.#selected = item;
    this.#drawSoon();
  }

  toEnd() {
    this.#setAtEnd(true);
    this.#drawSoon();
  }

  /** Brings a row in sight. */
  reveal(index) {
    const top = index * this.#rowHeight;
    const room = this.#height - this.#headHeight;
    const from = this.#viewport.scrollTop;
    if (top < from) this.#viewport.scrollTop = top;
    else if (top + this.#rowHeight > from + room) this.#viewport.scrollTop = top + this.#rowHeight - room;
    this.#draw();
  }

  #measure() {
    if (this.#viewport.clientHeight === 0) return;
    const style = getComputedStyle(this.#viewport);
    this.#rowHeight = parseFloat(style.getPropertyValue("--row-height")) || 28;
    this.#height = this.#viewport.clientHeight;
    this.#headHeight = this.#body.offsetTop;
    this.#drawn = -1;
    this.#drawSoon();
  }

  #onScroll() {
    const { scrollTop, scrollHeight, clientHeight } = this.#viewport;
    this.#setAtEnd(scrollTop + clientHeight >= scrollHeight - this.#rowHeight / 2);
    this.#drawSoon();
  }

  #setAtEnd(atEnd) {
    if (this.#atEnd === atEnd) return;
    this.#atEnd = atEnd;
    this.onEnd(atEnd);
  }

  #draw() {
    if (this.#height === 0) return;
    const count = this.#items.length;
    if (this.#drawn !== count) {
      this.#drawn = count;
      this.#body.style.height = `${count * this.#rowHeight}px`;
      this.#viewport.setAttribute("aria-rowcount", String(count + 1));
    }
    if (this.#atEnd) this.#viewport.scrollTop = count * this.#rowHeight;
    const first = Math.max(0, Math.floor(this.#viewport.scrollTop / this.#rowHeight) - spare);
    const last = Math.min(count, first + Math.ceil(this.#height / this.#rowHeight) + 2 * spare);
    this.#need(last - first);
    for (const [at, slot] of this.#slots.entries()) {
      // The row of an index is always the same one: by scrolling a step, one row is written.
      const index = first + ((at - (first % this.#slots.length) + this.#slots.length) % this.#slots.length);
      this.#put(slot, index, last);
    }
  }

  #need(count) {
    while (this.#slots.length < count) {
      const row = this.#makeRow();
      this.#body.append(row.root);
      this.#slots.push({ row, item: null, index: -1, isHidden: false, isSelected: false });
    }
  }

  #put(slot, index, end) {
    const { root } = slot.row;
    const isHidden = index >= end;
    if (slot.isHidden !== isHidden) {
      slot.isHidden = isHidden;
      root.hidden = isHidden;
    }
    if (isHidden) return;
    if (slot.index !== index || slot.height !== this.#rowHeight) {
      slot.index = index;
      slot.height = this.#rowHeight;
      root.style.transform = `translateY(${index * this.#rowHeight}px)`;
      root.setAttribute("aria-rowindex", String(index + 2));
    }
    const item = this.#items[index];
    if (slot.item !== item) {
      slot.item = item;
      this.#fillRow(slot.row, item);
    }
    const isSelected = item === this.#selected;
    if (slot.isSelected !== isSelected) {
      slot.isSelected = isSelected;
      root.setAttribute("aria-selected", String(isSelected));
    }
  }
}
