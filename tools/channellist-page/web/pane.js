// One of the two lists: its choice, search and filters, its rows, and what is selected of them.
import {found} from "./search.js";
import {ListView} from "./list-view.js";

const FAVS = [1, 2, 3, 4];
let panes = 0;

function mark(text, title, isHeld) {
    const element = document.createElement("span");
    element.textContent = text;
    element.title = title;
    element.className = isHeld ? "held" : "";
    return element;
}

export class Pane {
    // `app`: see main.js. It hears of a choice, and of everything that is to be done.
    constructor(app) {
        this.app = app;
        this.id = `pane${panes++}`;
        const root = document.getElementById("pane").content.cloneNode(true).firstElementChild;
        this.root = root;
        this.part = (name) => root.querySelector(name);
        this.scroller = this.part(".scroller");
        this.view = new ListView(this.scroller, (element, row, index) => this.draw(element, row, index));
        this.line = document.createElement("div");
        this.line.className = "line";
        this.line.hidden = true;
        this.scroller.append(this.line);
        this.filter = {};
        this.selected = new Set();
        this.focus = null;   // key of the row that has the focus
        this.anchor = null;  // where a selection with Shift begins
        this.rows = [];
        for (const n of FAVS) {
            const button = document.createElement("button");
            button.dataset.do = `add-${n}`;
            button.textContent = `FAV${n}`;
            this.part(".adds").append(button);
        }
        this.listen();
    }

    listen() {
        this.root.addEventListener("focusin", () => this.app.activate(this));
        this.root.addEventListener("pointerdown", () => this.app.activate(this));
        this.part(".choice").addEventListener("change", (event) => this.app.choose(this, event.target.value));
        this.part(".search").addEventListener("input", (event) => this.setFilter("text", event.target.value));
        for (const select of this.root.querySelectorAll("[data-filter]"))
            select.addEventListener("change", () => this.setFilter(select.dataset.filter, select.value));
        this.part(".tools").addEventListener("click", (event) => {
            const button = event.target.closest("[data-do]");
            if (button) {
                this.app.command(this, button.dataset.do);
                button.closest("details")?.removeAttribute("open");
            }
        });
        let isTouch = false;
        this.scroller.addEventListener("pointerdown", (event) => isTouch = event.pointerType !== "mouse");
        this.scroller.addEventListener("click", (event) => {
            const key = event.target.closest(".row")?.dataset.key;
            if (key && !this.app.isDragging())
                this.click(key, event.shiftKey, event.ctrlKey || event.metaKey || isTouch);
        });
        this.scroller.addEventListener("focus", () => {
            if (!this.focus && this.rows.length > 0)
                this.moveFocus(0);
        });
    }

    setFilter(name, value) {
        this.filter[name] = value;
        this.part(".filters").classList.toggle("on",
            Object.entries(this.filter).some(([key, each]) => key !== "text" && each));
        this.scroller.scrollTop = 0;
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
        this.part(".empty").hidden = Boolean(entries?.length);
        this.part(".empty").textContent = !entries ? "Loading …"
            : "Nothing here yet. Drag channels to this list, or select them and press Add to.";
        const keys = new Set((entries ?? []).map((entry) => entry.key));
        for (const key of this.selected)
            if (!keys.has(key))
                this.selected.delete(key);
        this.base = app.baseNumbers(uuid);
        this.entries = entries ?? [];
        this.rows = this.withReserved(found(this.entries, app.services, this.filter));
        this.index = new Map(this.rows.map((row, i) => [row.key, i]));
        this.view.show(this.rows);
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

    draw(element, row, index) {
        const {app} = this;
        const service = app.services.get(row.id);
        if (!element.firstChild) {
            for (const name of ["handle", "number", "name", "marks"])
                element.append(Object.assign(document.createElement("span"), {className: name}));
            element.setAttribute("role", "option");
            element.firstChild.textContent = "⠿";
            element.firstChild.setAttribute("aria-hidden", "true");
        }
        const [handle, number, name, marks] = element.children;
        element.id = `${this.id}-${index}`;
        element.dataset.key = row.ott ? "" : row.key;
        element.className = "row" + (row.ott ? " ott" : "") + (row.hidden ? " off" : "")
            + (row.key === this.focus ? " focus" : "")
            + (!row.ott && this.base.get(row.key) !== row.number ? " moved" : "");
        element.setAttribute("aria-selected", this.selected.has(row.key));
        element.setAttribute("aria-posinset", index + 1);
        element.setAttribute("aria-setsize", this.rows.length);
        handle.style.visibility = row.ott ? "hidden" : "";
        number.textContent = row.number ?? "–";
        name.textContent = row.ott ? "an OTT channel" : service.shown;
        marks.replaceChildren();
        if (row.ott)
            return;
        if (row.hidden)
            marks.append(mark("hidden", "not shown in this list"));
        if (service.kind !== "TV")
            marks.append(mark(service.kind, "kind"));
        if (service.hd)
            marks.append(mark("HD", "high definition"));
        if (service.scrambled)
            marks.append(mark("scr", "scrambled"));
        for (const n of app.favsOf(row.id))
            if (app.lists[this.uuid].fav !== n)
                marks.append(mark(n, `in FAV${n}`, true));
    }

    showSelection() {
        const count = this.selected.size;
        const {app} = this;
        const isFav = app.lists[this.uuid]?.fav > 0;
        this.part(".chosen").textContent = count ? `${count} selected` : "";
        for (const button of this.root.querySelectorAll("[data-do]")) {
            const what = button.dataset.do;
            const needsNone = ["all", "close", "copy"].includes(what);
            button.disabled = (!needsNone && count === 0)
                || (["remove", "close"].includes(what) && !isFav)
                || (what === `add-${app.lists[this.uuid]?.fav}`);
        }
        if (this.focus && this.index.has(this.focus))
            this.scroller.setAttribute("aria-activedescendant", `${this.id}-${this.index.get(this.focus)}`);
        else
            this.scroller.removeAttribute("aria-activedescendant");
        this.view.paint();
    }

    click(key, isRange, isToggle) {
        this.focus = key;
        if (isRange && this.anchor) {
            this.selectRange(this.anchor, key);
        } else if (isToggle) {
            if (!this.selected.delete(key))
                this.selected.add(key);
            this.anchor = key;
        } else {
            this.selected = new Set([key]);
            this.anchor = key;
        }
        this.showSelection();
    }

    selectRange(from, to) {
        const [first, last] = [this.index.get(from) ?? 0, this.index.get(to) ?? 0].sort((a, b) => a - b);
        this.selected = new Set(this.rows.slice(first, last + 1).filter((row) => !row.ott)
            .map((row) => row.key));
    }

    selectAll() {
        this.selected = new Set(this.rows.filter((row) => !row.ott).map((row) => row.key));
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

    moveFocus(index, isRange = false, keepsSelection = true) {
        const at = Math.max(0, Math.min(this.rows.length - 1, index));
        if (this.rows.length === 0)
            return;
        this.focus = this.rows[at].key;
        if (isRange)
            this.selectRange(this.anchor ??= this.rows[at].key, this.focus);
        else if (!keepsSelection)
            this.anchor = this.focus;
        this.view.reveal(at);
        this.showSelection();
    }

    // After a move: the focus goes with its row.
    follow(key = this.focus) {
        this.focus = key;
        if (this.index.has(key))
            this.view.reveal(this.index.get(key));
        this.showSelection();
    }

    // The key of the entry that a gap between the rows is in front of; null behind all.
    keyAtGap(gap) {
        return this.rows.slice(gap).find((row) => !row.ott)?.key
            ?? (gap < this.rows.length ? null : this.keyBehindAllShown());
    }

    // Behind the last row that a search shows, not behind those that it does not.
    keyBehindAllShown() {
        const last = this.rows.filter((row) => !row.ott).pop();
        const at = this.entries.findIndex((entry) => entry.key === last?.key);
        return this.entries[at + 1]?.key ?? null;
    }
}
