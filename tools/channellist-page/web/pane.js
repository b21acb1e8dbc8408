// One of the two lists: its choice, search and filters, its rows, and what is selected of them.
import {$, element} from "./element.js";
import {found} from "./search.js";
import {ListView} from "./list-view.js";

let panes = 0;

export class Pane {
    // `app`: see main.js. It hears of a choice, and of everything that is to be done.
    constructor(app) {
        this.app = app;
        this.id = `pane${panes++}`;
        this.root = $("pane").content.firstElementChild.cloneNode(true);
        this.part = (name) => this.root.querySelector(name);
        this.scroller = this.part(".scroller");
        this.view = new ListView(this.scroller, (...row) => this.draw(...row));
        this.line = this.part(".line");  // where a drag would drop
        this.form = this.part("form");
        this.filter = {};     // see search.js
        this.selected = new Set();
        this.focus = null;   // key of the row that has the focus
        this.anchor = null;  // where a selection with Shift begins
        this.listen();
        this.refresh();
    }

    listen() {
        this.root.addEventListener("focusin", () => this.app.activate(this));
        this.root.addEventListener("pointerdown", () => this.app.activate(this));
        this.part(".choice").addEventListener("input", (event) => this.app.choose(this, event.target.value));
        this.form.addEventListener("input", () => this.search());
        let isTouch = false;
        this.scroller.addEventListener("pointerdown", (event) => isTouch = event.pointerType !== "mouse");
        this.scroller.addEventListener("click", (event) => {
            const key = event.target.closest(".row")?.dataset.key;
            if (key && !this.app.dragging.label)
                this.click(key, event.shiftKey, event.ctrlKey || event.metaKey || isTouch);
        });
    }

    search() {
        this.filter = Object.fromEntries(new FormData(this.form));
        this.scroller.scrollTop = 0;
        this.selected.clear();
        this.refresh();
        this.app.say(`${this.rows.length} channels`);
    }

    setList(uuid) {
        this.uuid = uuid;
        this.selected.clear();
        this.focus = this.anchor = null;
        this.scroller.scrollTop = 0;
    }

    // From the state.
    refresh() {
        const {app, uuid} = this;
        const entries = app.entries(uuid);
        this.part(".choice").value = uuid ?? "";
        this.entries = entries ?? [];
        this.rows = this.withReserved(found(this.entries, app.services, this.filter));
        this.index = new Map(this.rows.map((row, i) => [row.key, i]));
        // Nothing is done to a row that a search does not show.
        for (const key of this.selected)
            if (!this.index.has(key))
                this.selected.delete(key);
        if (!this.index.has(this.focus))
            this.focus = this.rows[0]?.key ?? null;
        this.view.show(this.rows);
        this.part(".empty").hidden = this.rows.length > 0;
        this.part(".empty").textContent = !entries ? "Loading …"
            : entries.length > 0 ? "Nothing of this list is found."
            : "Nothing here yet. Drag channels to this list, or select them and press Add to.";
        this.scroller.setAttribute("aria-label", `${app.nameOf(uuid)}, ${this.rows.length} channels`);
        this.showSelection();
    }

    // The numbers of OTT channels are places that are taken.
    withReserved(entries) {
        const reserved = this.app.lists[this.uuid]?.reserved ?? new Set();
        if (reserved.size === 0 || Object.values(this.filter).some(Boolean))
            return entries;
        const places = [...reserved].map((number) => ({key: `ott${number}`, number, ott: true}));
        return [...entries, ...places].sort((a, b) => (a.number ?? -1) - (b.number ?? -1));
    }

    draw(drawn, row, index) {
        const [, number, name, marks] = drawn.children;
        drawn.id = `${this.id}-${index}`;
        drawn.dataset.key = row.ott ? "" : row.key;
        drawn.setAttribute("aria-selected", this.selected.has(row.key));
        drawn.setAttribute("aria-posinset", index + 1);
        drawn.setAttribute("aria-setsize", this.rows.length);
        const looks = {ott: row.ott, off: row.hidden, focus: row.key === this.focus,
                       moved: !row.ott && row.number !== row.was};
        for (const [look, is] of Object.entries(looks))
            drawn.classList.toggle(look, Boolean(is));
        number.textContent = row.number ?? "–";
        name.textContent = row.ott ? "an OTT channel" : this.app.services.get(row.id).name;
        marks.replaceChildren(...(row.ott ? [] : this.marksOf(row)));
    }

    marksOf({id, hidden}) {
        const {kind, hd, scrambled} = this.app.services.get(id);
        const others = this.app.favsOf(id).filter((n) => n !== this.app.lists[this.uuid].fav);
        return [
            [hidden, "hidden", "not shown in this list"],
            [kind !== "TV", kind, "kind"],
            [hd, "HD", "high definition"],
            [scrambled, "scr", "scrambled"],
            ...others.map((n) => [true, n, `in FAV${n}`, "held"]),
        ].filter(([is]) => is).map(([, textContent, title, className = ""]) =>
            element("span", {textContent, title, className}));
    }

    showSelection() {
        const count = this.selected.size;
        const fav = this.app.lists[this.uuid]?.fav;
        this.part(".chosen").textContent = count ? `${count} selected` : "";
        for (const button of this.root.querySelectorAll("[data-do]")) {
            const what = button.dataset.do;
            const needsNone = ["all", "close", "copy"].includes(what);
            button.disabled = (!needsNone && count === 0)
                || (["remove", "close"].includes(what) && !fav)
                || what === `add-${fav}`;
        }
        const at = this.focusIndex();
        this.scroller.setAttribute("aria-activedescendant", at < 0 ? "" : `${this.id}-${at}`);
        this.view.paint();
    }

    click(key, isRange, isToggle) {
        this.focus = key;
        if (isRange && this.anchor) {
            this.selectRange(this.anchor, key);
        } else {
            if (!isToggle)
                this.selected = new Set([key]);
            else if (!this.selected.delete(key))
                this.selected.add(key);
            this.anchor = key;
        }
        this.showSelection();
    }

    select(rows) {
        this.selected = new Set(rows.filter((row) => !row.ott).map((row) => row.key));
    }

    selectRange(from, to) {
        const [first, last] = [this.index.get(from) ?? 0, this.index.get(to) ?? 0].sort((a, b) => a - b);
        this.select(this.rows.slice(first, last + 1));
    }

    selectAll() {
        this.select(this.rows);
        this.showSelection();
        this.app.say(`${this.selected.size} selected`);
    }

    selectNone() {
        this.selected.clear();
        this.showSelection();
    }

    // In the order of the list.
    selection() {
        return this.entries.filter((entry) => this.selected.has(entry.key));
    }

    focusIndex() {
        return this.index.get(this.focus) ?? -1;
    }

    moveFocus(index, isRange = false) {
        const row = this.rows[Math.max(0, Math.min(this.rows.length - 1, index))];
        if (!row)
            return;
        this.anchor = isRange ? this.anchor ?? this.focus : row.key;
        if (isRange)
            this.selectRange(this.anchor, row.key);
        this.follow(row.key);
    }

    // The focus goes with a row.
    follow(key) {
        this.focus = key;
        if (this.index.has(key))
            this.view.reveal(this.index.get(key));
        this.showSelection();
    }

    // The key of the entry that a gap between the rows is in front of; null behind all.
    keyAtGap(gap) {
        const next = this.rows.slice(gap).find((row) => !row.ott);
        if (next || gap < this.rows.length)
            return next?.key ?? null;
        // Behind the last row that a search shows, not behind those that it does not.
        const last = this.rows.findLast((row) => !row.ott);
        return this.entries[this.entries.indexOf(last) + 1]?.key ?? null;
    }
}
