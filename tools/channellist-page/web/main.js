// The page: holds the state, draws what it says, and lets the parts speak with each other.
import * as server from "./server.js";
import * as st from "./state.js";
import * as work from "./work.js";
import {drawBar, drawConflict, showChanges} from "./changes.js";
import {beginDrag, command, drop, moveTo} from "./commands.js";
import {folded} from "./search.js";
import {Pane} from "./pane.js";
import {enableDragging} from "./drag.js";
import {enableKeys} from "./keyboard.js";

const POLL = 1500;       // milliseconds
const $ = (id) => document.getElementById(id);

// Control characters and those that turn the direction of a text are seen as what they are.
const shown = (name) => name.replace(/[\p{Cc}\u061c\u200e\u200f\u202a-\u202e\u2066-\u2069]/gu, "\ufffd");

const baseNumbers = new WeakMap();  // of lists as they were read

const app = {
    lists: {},            // by uuid: {name, fav, all, count, reserved}
    services: new Map(),  // by key: {name, shown, folded, kind, place, hd, scrambled}
    state: st.start({}),
    saved: null,          // what a save replaced, until the next change
    conflict: null,       // lists as others left them: {uuid: {version, entries}}
    isReadOnly: false,
    isBegun: false,       // until then, the work of before a reload stays kept as it is
    isDragging: () => false,
    panes: [],

    entries: (uuid) => st.current(app.state)[uuid],
    nameOf: (uuid) => app.lists[uuid]?.name ?? "",
    other: (pane) => app.panes[pane === app.panes[0] ? 1 : 0],
    baseNumbers(uuid) {
        const entries = app.state.base[uuid]?.entries ?? [];
        if (!baseNumbers.has(entries))
            baseNumbers.set(entries, new Map(entries.map((entry) => [entry.key, entry.number])));
        return baseNumbers.get(entries);
    },
    favsOf: (id) => app.favs.get(id) ?? [],
    uuidOfFav: (n) => Object.keys(app.lists).find((uuid) => app.lists[uuid].fav === n),
    uuidOfAll: () => Object.keys(app.lists).find((uuid) => app.lists[uuid].all),

    say(text) { $("said").textContent = text; },

    trouble(text) {
        $("trouble").textContent = text;
        $("trouble").hidden = !text;
    },

    command: (pane, what) => command(app, pane, what),

    activate(pane) {
        app.active = pane;
        for (const each of app.panes)
            each.root.classList.toggle("active", each === pane);
        drawLists();
    },

    async choose(pane, uuid) {
        pane.setList(uuid);
        pane.refresh();
        drawLists();
        if (!app.entries(uuid))
            await attempt(async () => take(await server.lists([uuid])));
    },

    // Whether it was done.
    act(op, told) {
        if (app.isReadOnly) {
            app.trouble("This database is read-only: nothing can be changed here.");
            return false;
        }
        app.state = st.perform(app.state, op, app.lists);
        app.saved = null;
        changed();
        app.say(told);
        return true;
    },

    undo() {
        app.state = st.undo(app.state);
        changed();
        app.say("undone");
    },

    redo() {
        app.state = st.redo(app.state, app.lists);
        changed();
        app.say("done again");
    },

    askNumber(pane, digits = "") {
        const dialog = $("ask-number");
        $("number").value = digits;
        dialog.returnValue = "no";
        dialog.onclose = () => {
            const number = Number($("number").value);
            if (dialog.returnValue === "yes" && number >= 1 && number <= 2147483647)
                moveTo(app, pane, {number});
            pane.scroller.focus();
        };
        dialog.showModal();
        $("number").setSelectionRange(digits.length, digits.length);
    },

    async save() {
        const doc = st.current(app.state);
        const uuids = st.changedLists(app.state);
        if (uuids.length === 0 || app.isBusy)
            return;
        // The FAV lists follow the marks of another list: what they are to hold is said, too.
        if (uuids.some((uuid) => !app.lists[uuid].fav))
            uuids.push(...Object.keys(doc).filter((uuid) => app.lists[uuid].fav && !uuids.includes(uuid)));
        const before = Object.fromEntries(uuids.map((uuid) => [uuid, app.state.base[uuid].entries]));
        const answer = await busy("Saving …", () => server.save(uuids.map((uuid) => ({
            uuid, version: app.state.base[uuid].version,
            entries: doc[uuid].map((entry) => [entry.id, entry.number, entry.hidden ? 1 : 0]),
        }))));
        if (!answer)
            return;
        await attempt(reload);
        if (answer.overtaken.length === 0) {
            app.saved = before;
            drawBar(app, `Written, and flushed to the disk. ${answer.notes.join(" ")}`);
            app.say("Written, and flushed to the disk.");
        }
    },
};

// After every change of the state.
function changed() {
    if (app.conflict && st.changedLists(app.state).length === 0) {  // all of it was undone
        app.state = st.start({...app.state.base, ...app.conflict});
        app.conflict = null;
    }
    if (app.isBegun && !work.keep(app.database, app.state))
        app.trouble("The browser has no room to keep this over a reload: save it soon.");
    draw();
}

function draw() {
    app.favs = new Map();
    for (const [uuid, {fav}] of Object.entries(app.lists))
        for (const entry of (fav && app.entries(uuid)) || [])
            app.favs.set(entry.id, [...(app.favs.get(entry.id) ?? []), fav]);
    for (const pane of app.panes)
        pane.refresh();
    drawLists();
    drawBar(app);
    drawConflict(app);
}

function drawLists() {
    const changedOnes = new Set(st.changedLists(app.state));
    $("lists").replaceChildren(...Object.entries(app.lists).map(([uuid, list]) => {
        const button = document.createElement("button");
        const [name, count] = [document.createElement("span"), document.createElement("span")];
        name.textContent = list.name;
        count.textContent = app.entries(uuid)?.length ?? list.count;
        count.className = "count";
        button.append(name, count);
        button.className = changedOnes.has(uuid) ? "changed" : "";
        button.setAttribute("aria-current", app.active?.uuid === uuid);
        button.addEventListener("click", () => app.choose(app.active, uuid));
        const item = document.createElement("li");
        item.append(button);
        return item;
    }));
}

// Lists as the server sent them, as a base.
function read(answer) {
    for (const {rows} of answer.lists)
        for (const [id, , , name, kind, place, hd, scrambled] of rows)
            app.services.set(id, {name, shown: shown(name), folded: folded(name), kind, place, hd, scrambled});
    return Object.fromEntries(answer.lists.map(({uuid, version, rows}) =>
        [uuid, {version, entries: st.entriesOf(rows)}]));
}

// New lists, and those that others changed. What was done to the latter is never written over them.
function take(answer) {
    const news = read(answer);
    const overtaken = st.changedLists(app.state).filter((uuid) => news[uuid]
        && news[uuid].version !== app.state.base[uuid].version && !st.isDone(app.state, news, uuid));
    app.conflict = overtaken.length > 0
        ? Object.fromEntries(overtaken.map((uuid) => [uuid, news[uuid]])) : null;
    for (const uuid of overtaken)
        delete news[uuid];
    app.state = st.rebase(app.state, news, app.lists);
    changed();
    showFilters();
}

function showFilters() {
    for (const name of ["kind", "place"]) {
        const values = [...new Set([...app.services.values()].map((each) => each[name]))].filter(Boolean).sort();
        for (const pane of app.panes) {
            const select = pane.part(`[data-filter=${name}]`);
            for (const value of values)
                if (![...select.options].some((option) => option.value === value))
                    select.add(new Option(value, value));
        }
    }
}

function takeOverview(overview) {
    const rank = (list) => list.fav || (list.all ? 5 : 6);
    app.lists = Object.fromEntries(overview.lists.sort((a, b) => rank(a) - rank(b)).map((list) =>
        [list.uuid, {...list, name: list.all ? "All" : shown(list.name), reserved: new Set(list.reserved)}]));
    app.database = overview.database;
    app.mark = overview.mark;
    app.isReadOnly = overview.readOnly;
    $("database").textContent = overview.database.split("/").pop();
    $("database").title = overview.database;
    for (const pane of app.panes)
        pane.part(".choice").replaceChildren(
            ...Object.entries(app.lists).map(([uuid, {name}]) => new Option(name, uuid)));
}

async function reload() {
    const overview = await server.overview();
    const uuids = new Set(overview.lists.map((list) => list.uuid));
    const isOther = Object.keys(app.state.base).some((uuid) => !uuids.has(uuid));
    if (isOther && st.changedLists(app.state).length > 0)
        throw new server.Refused("The database has other lists now: bring the former one back, or discard");
    if (isOther) {
        app.state = st.start({});
        return load();
    }
    takeOverview(overview);
    const known = Object.keys(app.state.base).filter((uuid) => app.lists[uuid]);
    take(await server.lists(known));
}

// Runs a talk with the server; says in words what went wrong. Undefined then.
async function attempt(talk) {
    try {
        const result = await talk();
        app.trouble(app.isReadOnly ? "Read-only: look around, nothing can be saved." : "");
        $("connection").textContent = "";
        return result ?? true;
    } catch (error) {
        if (!(error instanceof server.Refused || error instanceof server.Unreachable))
            throw error;
        const isGone = error instanceof server.Unreachable;
        $("connection").textContent = isGone ? "not connected" : "";
        app.trouble(isGone
            ? "The server of this page does not answer. Your work stays here; start \"channellist page\" again and open its address in this tab."
            : `${error.message}. Your work stays here.`);
        return undefined;
    }
}

async function busy(text, talk) {
    app.isBusy = true;
    $("save").disabled = true;
    $("count").textContent = text;
    try {
        return await attempt(talk);
    } finally {
        app.isBusy = false;
        drawBar(app);
    }
}

async function poll() {
    const isTroubled = !$("trouble").hidden && !app.isReadOnly;
    if (!app.isBusy && !app.isDragging()) {
        try {
            const mark = await server.mark();
            if (!app.isBegun || mark !== app.mark || $("connection").textContent)
                await (app.isBegun ? attempt(reload) : start());
        } catch {
            if (!isTroubled || !$("connection").textContent)
                await attempt(server.mark);
        }
    }
    setTimeout(poll, POLL);
}

// Does to the lists what the reload of the page has interrupted.
function resume(kept) {
    if (!kept)
        return;
    if (kept.past.some((op) => !app.lists[op.list]))
        return app.trouble("Unsaved work is for lists that this database does not have. It stays until you change something here.");
    const fits = Object.entries(kept.versions).every(([uuid, version]) =>
        !app.state.base[uuid] || app.state.base[uuid].version === version);
    try {
        app.state = st.rebase({...app.state, past: [...kept.past, ...app.state.past],
                               future: kept.future ?? []}, {}, app.lists);
        changed();
        if (!fits)
            app.trouble("The lists have changed since: this is your work on top of them. Look at it before you save.");
    } catch {
        app.trouble("Unsaved work of before could not be read.");
    }
}

// What the page begins with.
async function load() {
    const {overview, content} = await server.first();
    takeOverview(overview);
    const all = [app.uuidOfAll()].filter(Boolean);
    app.panes[0].setList(app.uuidOfFav(1));
    app.panes[1].setList(all[0]);
    app.activate(app.panes[0]);
    take(content);
    requestAnimationFrame(() => window.firstList = performance.now());
    take(await server.lists(all));
}

// Again until it succeeds: work of before a reload waits for it.
async function start() {
    if (!await attempt(load))
        return;
    const kept = work.kept(app.database);
    const others = new Set(kept?.past.map((op) => op.list).filter((uuid) => app.lists[uuid] && !app.entries(uuid)));
    if (others.size > 0 && !await attempt(async () => take(await server.lists([...others]))))
        return;
    app.isBegun = true;
    resume(kept);
}

async function begin() {
    app.panes.push(new Pane(app), new Pane(app));
    document.querySelector("main").append(...app.panes.map((pane) => pane.root));
    app.active = app.panes[0];
    app.favs = new Map();
    app.isDragging = enableDragging(app.panes, {
        begin: (...words) => beginDrag(app, ...words),
        drop: (...words) => drop(app, ...words),
    });
    enableKeys(app);
    for (const [id, action] of Object.entries({
        undo: app.undo, redo: app.redo, save: app.save, "show-changes": () => showChanges(app),
        help: () => $("keys").showModal(),
        switch: () => {
            const isSecond = document.body.classList.toggle("second");
            $("switch").setAttribute("aria-pressed", isSecond);
            app.activate(app.panes[isSecond ? 1 : 0]);
            draw();
        },
        discard: () => {
            app.state = st.start(app.state.base);
            app.conflict = null;
            changed();
            attempt(reload);
        },
        merge: () => {
            const news = app.conflict;
            app.conflict = null;
            app.state = st.rebase(app.state, news, app.lists);
            changed();
        },
        drop: () => {
            app.state = st.start({...app.state.base, ...app.conflict});
            app.conflict = null;
            changed();
        },
        "take-back": async () => {
            const lists = Object.entries(app.saved).map(([uuid, entries]) => ({
                uuid, version: app.state.base[uuid].version,
                entries: entries.map((entry) => [entry.id, entry.number, entry.hidden ? 1 : 0]),
            }));
            const answer = await busy("Taking it back …", () => server.save(lists));
            if (!answer)
                return;
            app.saved = null;
            await attempt(reload);
            drawBar(app, answer.overtaken.length ? "Others have written since: it was not taken back."
                : "Taken back, and flushed to the disk.");
        },
    }))
        $(id).addEventListener("click", action);
    addEventListener("beforeprint", () => {
        const rows = app.active.entries.filter((entry) => !entry.hidden);
        $("print").replaceChildren(...[null, ...rows].map((entry) =>
            Object.assign(document.createElement("p"), {textContent: entry
                ? `${entry.number ?? ""}  ${app.services.get(entry.id).shown}` : app.nameOf(app.active.uuid)})));
    });
    addEventListener("afterprint", () => $("print").replaceChildren());

    await start();
    setTimeout(poll, POLL);
}

begin();
