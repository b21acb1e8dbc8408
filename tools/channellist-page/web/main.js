// The page: holds the state, draws what it says, and lets the parts speak with each other.
import * as server from "./server.js";
import * as st from "./state.js";
import * as work from "./work.js";
import {drawBar, drawConflict, showChanges} from "./changes.js";
import {beginDrag, command, drop, moveTo} from "./commands.js";
import {element} from "./element.js";
import {folded} from "./search.js";
import {Pane} from "./pane.js";
import {enableDragging} from "./drag.js";
import {enableKeys} from "./keyboard.js";

const POLL = 1500;       // milliseconds
const $ = (id) => document.getElementById(id);

// Control characters and those that turn the direction of a text are seen as what they are.
const shown = (name) => name.replace(/[\p{Cc}\u061c\u200e\u200f\u202a-\u202e\u2066-\u2069]/gu, "\ufffd");

const app = {
    lists: {},            // by uuid: {name, fav, all, count, reserved}
    services: new Map(),  // by key: {name, shown, folded, kind, place, hd, scrambled, print}
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
        app.saved = null;
        become(st.perform(app.state, op, app.lists), told);
        return true;
    },

    undo: () => become(st.undo(app.state), "undone"),
    redo: () => become(st.redo(app.state, app.lists), "done again"),

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
        const before = pick(st.docOf(app.state.base), uuids);
        const answer = await write("Saving …", pick(doc, uuids));
        if (answer && answer.overtaken.length === 0) {
            app.saved = before;
            drawBar(app, `Written, and flushed to the disk. ${answer.notes.join(" ")}`);
            app.say("Written, and flushed to the disk.");
        }
    },

    async takeBack() {
        const answer = await write("Taking it back …", app.saved);
        if (!answer)
            return;
        app.saved = null;
        drawBar(app, answer.overtaken.length ? "Others have written since: it was not taken back."
            : "Taken back, and flushed to the disk.");
    },

    // What others wrote stays, what was done here does not.
    discard() {
        const base = {...app.state.base, ...app.conflict};
        app.conflict = null;
        become(st.start(base));
    },

    merge() {
        const news = app.conflict;
        app.conflict = null;
        become(st.rebase(app.state, news, app.lists));
    },

    switchSides() {
        const isSecond = document.body.classList.toggle("second");
        $("switch").setAttribute("aria-pressed", isSecond);
        app.activate(app.panes[isSecond ? 1 : 0]);
        draw();
    },
};

const pick = (doc, uuids) => Object.fromEntries(uuids.map((uuid) => [uuid, doc[uuid]]));

// Sends what lists are to hold, and reads what they hold then. Undefined if nothing was written.
async function write(text, doc) {
    const lists = Object.entries(doc).map(([uuid, entries]) => ({
        uuid, version: app.state.base[uuid].version,
        entries: entries.map((entry) => [entry.id, entry.number, entry.hidden ? 1 : 0, print(entry.id)]),
    }));
    const answer = await busy(text, () => server.save(lists));
    if (answer)
        await attempt(reload);
    return answer;
}

function become(state, told) {
    app.state = state;
    if (app.conflict && st.changedLists(state).length === 0)  // all of it was undone
        return app.discard();
    if (app.isBegun && !work.keep(app.database, app.state, print))
        app.trouble("The browser has no room to keep this over a reload: save it soon.");
    draw();
    if (told)
        app.say(told);
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
    $("lists").replaceChildren(...Object.entries(app.lists).map(([uuid, list]) => element("li", {},
        element("button", {
            className: changedOnes.has(uuid) ? "changed" : "",
            ariaCurrent: app.active?.uuid === uuid,
            onclick: () => app.choose(app.active, uuid),
        }, element("span", {}, list.name),
        element("span", {className: "count"}, app.entries(uuid)?.length ?? list.count)))));
}

// What tells a service from others, whatever its key.
const print = (id) => app.services.get(id)?.print;

// A scan may deal other keys: what was done by the former ones would be done to other services.
function checkKeys(answer) {
    const isOther = answer.lists.some(({rows}) => rows.some((row) =>
        app.services.has(row[0]) && print(row[0]) !== row[8]));
    if (isOther && st.changedLists(app.state).length > 0)
        throw new server.Refused("A scan gave other keys to the services: what you did cannot be saved any more; discard it");
    if (isOther)
        app.saved = null;
}

// Lists as the server sent them, as a base.
function read(answer) {
    for (const {rows} of answer.lists)
        for (const [id, , , name, kind, place, hd, scrambled, print] of rows)
            app.services.set(id, {name, shown: shown(name), folded: folded(name), kind, place, hd, scrambled, print});
    return Object.fromEntries(answer.lists.map(({uuid, version, rows}) =>
        [uuid, {version, entries: st.entriesOf(rows)}]));
}

// New lists, and those that others changed. What was done to the latter is never written over them.
function take(answer) {
    const news = read(answer);
    const mine = new Set(st.changedLists(app.state));
    const conflict = {...app.conflict};
    for (const [uuid, list] of Object.entries(news)) {
        delete conflict[uuid];
        if (mine.has(uuid) && list.version !== app.state.base[uuid].version && !st.isDone(app.state, news, uuid)) {
            conflict[uuid] = list;
            delete news[uuid];
        }
    }
    app.conflict = Object.keys(conflict).length > 0 ? conflict : null;
    become(st.rebase(app.state, news, app.lists));
    showFilters();
}

function showFilters() {
    const services = [...app.services.values()];
    for (const select of document.querySelectorAll("[data-filter=kind], [data-filter=place]")) {
        const values = new Set(services.map((each) => each[select.dataset.filter]).filter(Boolean).sort());
        for (const {value} of select.options)
            values.delete(value);
        select.append(...[...values].map((value) => new Option(value)));
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
    const answer = await server.lists(Object.keys(app.state.base).filter((uuid) => uuids.has(uuid)));
    checkKeys(answer);
    takeOverview(overview);
    take(answer);
}

// Says in words what went wrong in a talk with the server.
function tell(error) {
    const isGone = error instanceof server.Unreachable;
    if (!isGone && !(error instanceof server.Refused))
        throw error;
    $("connection").textContent = isGone ? "not connected" : "";
    app.trouble(isGone
        ? "The server of this page does not answer. Your work stays here; start \"channellist page\" again and open its address in this tab."
        : `${error.message}. Your work stays here.`);
}

// Undefined when it went wrong.
async function attempt(talk) {
    try {
        const result = await talk();
        app.trouble(app.isReadOnly ? "Read-only: look around, nothing can be saved." : "");
        $("connection").textContent = "";
        return result ?? true;
    } catch (error) {
        return tell(error);
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

async function follow(isGone) {
    const mark = await server.mark();
    if (!app.isBegun)
        await start();
    else if (mark !== app.mark || isGone)
        await attempt(reload);
}

async function poll() {
    const isGone = Boolean($("connection").textContent);
    try {
        if (!app.isBusy && !app.isDragging())
            await follow(isGone);
    } catch (error) {
        if (!isGone)
            tell(error);
    } finally {
        setTimeout(poll, POLL);
    }
}

// Does to the lists what the reload of the page has interrupted.
function resume(kept) {
    if (!kept)
        return;
    if (kept.past.some((op) => !app.lists[op.list]))
        return app.trouble("Unsaved work is for lists that this database does not have. It stays until you change something here.");
    if (Object.entries(kept.prints ?? {}).some(([id, each]) => print(Number(id)) !== each))
        return app.trouble("Unsaved work is for services that have other keys now. It stays until you change something here.");
    const fits = Object.entries(kept.versions).every(([uuid, version]) =>
        !app.state.base[uuid] || app.state.base[uuid].version === version);
    try {
        become(st.rebase({...app.state, past: [...kept.past, ...app.state.past],
                          future: kept.future ?? []}, {}, app.lists));
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

function enableButtons() {
    const actions = {
        undo: app.undo, redo: app.redo, save: app.save, "take-back": app.takeBack,
        merge: app.merge, drop: app.discard, switch: app.switchSides,
        "show-changes": () => showChanges(app),
        help: () => $("keys").showModal(),
        discard: () => {
            app.discard();
            attempt(reload);
        },
    };
    for (const [id, action] of Object.entries(actions))
        $(id).addEventListener("click", action);
}

function enablePrinting() {
    addEventListener("beforeprint", () => {
        const rows = app.active.entries.filter((entry) => !entry.hidden);
        const lines = rows.map((entry) => `${entry.number ?? ""}  ${app.services.get(entry.id).shown}`);
        $("print").replaceChildren(...[app.nameOf(app.active.uuid), ...lines]
            .map((line) => element("p", {}, line)));
    });
    addEventListener("afterprint", () => $("print").replaceChildren());
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
    enableButtons();
    enablePrinting();
    await start();
    setTimeout(poll, POLL);
}

begin();
