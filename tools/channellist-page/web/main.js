// The page: holds the state, draws what it says, and lets the parts speak with each other.
import * as server from "./server.js";
import * as st from "./state.js";
import * as work from "./work.js";
import {folded} from "./search.js";
import {Pane} from "./pane.js";
import {enableDragging} from "./drag.js";
import {enableKeys} from "./keyboard.js";

const POLL = 1500;       // milliseconds
const MOST_LINES = 1000; // of a table of changes
const $ = (id) => document.getElementById(id);
const many = (count, word) => `${count} ${word}${count === 1 ? "" : "s"}`;

// Control characters and those that turn the direction of a text are seen as what they are.
const shown = (name) => name.replace(/[\p{Cc}\u061c\u200e\u200f\u202a-\u202e\u2066-\u2069]/gu, "\ufffd");

const app = {
    lists: {},            // by uuid: {name, fav, all, count, reserved}
    services: new Map(),  // by key: {name, shown, folded, kind, place, hd, scrambled}
    state: st.start({}),
    saved: null,          // what a save replaced, until the next change
    conflict: null,       // lists as others left them: {uuid: {version, entries}}
    isReadOnly: false,
    isDragging: () => false,
    panes: [],

    entries: (uuid) => st.current(app.state)[uuid],
    nameOf: (uuid) => app.lists[uuid]?.name ?? "",
    other: (pane) => app.panes[pane === app.panes[0] ? 1 : 0],
    baseNumbers: (uuid) =>
        new Map((app.state.base[uuid]?.entries ?? []).map((entry) => [entry.key, entry.number])),
    favsOf: (id) => app.favs.get(id) ?? [],
    uuidOfFav: (n) => Object.keys(app.lists).find((uuid) => app.lists[uuid].fav === n),
    uuidOfAll: () => Object.keys(app.lists).find((uuid) => app.lists[uuid].all),

    say(text) { $("said").textContent = text; },

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

    act(op, told) {
        if (app.isReadOnly)
            return trouble("This database is read-only: nothing can be changed here.");
        app.state = st.perform(app.state, op, app.lists);
        app.saved = null;
        changed();
        app.say(told);
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
                moveTo(pane, {number});
            pane.scroller.focus();
        };
        dialog.showModal();
        $("number").setSelectionRange(digits.length, digits.length);
    },

    command(pane, what) {
        const block = chosen(pane);
        const uuid = pane.uuid;
        const keys = block.map((entry) => entry.key);
        const told = many(block.length, "channel");
        const all = app.uuidOfAll();
        const everywhere = () => {
            const ids = new Set(block.map((entry) => entry.id));
            return app.entries(all).filter((entry) => ids.has(entry.id)).map((entry) => entry.key);
        };
        const other = app.other(pane);
        const commands = {
            all: () => pane.selectAll(),
            top: () => moveTo(pane, {before: app.entries(uuid)[0]?.key}),
            up: () => moveTo(pane, {by: -1}),
            down: () => moveTo(pane, {by: 1}),
            end: () => moveTo(pane, {before: null}),
            number: () => app.askNumber(pane),
            remove: () => app.lists[uuid].fav
                && app.act({what: "remove", list: uuid, keys}, `${told} removed`),
            hide: () => app.act({what: "hide", list: uuid, keys}, `${told} hidden`),
            show: () => app.act({what: "show", list: uuid, keys}, `${told} shown`),
            "hide-everywhere": () => app.act({what: "hide", list: all, keys: everywhere()}, `${told} hidden`),
            "show-everywhere": () => app.act({what: "show", list: all, keys: everywhere()}, `${told} shown`),
            "by-name": () => order(pane, block, (entry) => app.services.get(entry.id).folded),
            "by-number": () => {
                const numbers = new Map(app.entries(all).map((entry) => [entry.id, entry.number]));
                order(pane, block, (entry) => numbers.get(entry.id) ?? Infinity);
            },
            close: () => app.act({what: "close", list: uuid}, "the gaps are closed"),
            copy: () => add(other.uuid, pane.entries.filter((entry) => !entry.hidden)),
            "add-other": () => add(other.uuid, block),
        };
        for (const n of [1, 2, 3, 4])
            commands[`add-${n}`] = () => add(app.uuidOfFav(n), block);
        const isForSome = !["all", "close", "copy"].includes(what);
        if (!isForSome || block.length > 0)
            commands[what]();
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
            drawBar(`Written, and flushed to the disk. ${answer.notes.join(" ")}`);
            app.say("Written, and flushed to the disk.");
        }
    },
};

// The selected ones, else the one with the focus.
function chosen(pane) {
    const block = pane.selection();
    return block.length > 0 ? block : pane.entries.filter((entry) => entry.key === pane.focus);
}

function moveTo(pane, place) {
    const block = chosen(pane);
    if (block.length === 0)
        return;
    const reserved = app.lists[pane.uuid].reserved;
    if (place.number !== undefined && reserved.has(place.number))
        return trouble(`Number ${place.number} belongs to an OTT channel.`);
    const key = block.some((entry) => entry.key === pane.focus) ? pane.focus : block[0].key;
    app.act({what: "move", list: pane.uuid, keys: block.map((entry) => entry.key), ...place}, "");
    pane.follow(key);
    const now = app.entries(pane.uuid).find((entry) => entry.key === key);
    app.say(`${app.services.get(now.id).shown} is number ${now.number} now`);
}

function order(pane, block, value) {
    const keys = block.map((entry) => [value(entry), entry.key])
        .sort(([a], [b]) => a < b ? -1 : a > b ? 1 : 0).map(([, key]) => key);
    app.act({what: "order", list: pane.uuid, keys}, "sorted");
}

function add(uuid, block, before = null) {
    if (!app.lists[uuid]?.fav)
        return trouble("Channels are added to FAV1 to FAV4 only.");
    const held = new Set(app.entries(uuid).map((entry) => entry.id));
    const ids = block.map((entry) => entry.id).filter((id) => !held.has(id));
    if (ids.length > 0)
        app.act({what: "add", list: uuid, ids, before}, `${many(ids.length, "channel")} added to ${app.nameOf(uuid)}`);
    else
        app.say(`${app.nameOf(uuid)} holds them already`);
}

function drop(from, to, gap) {
    const block = chosen(from);
    const before = to.keyAtGap(gap);
    if (from.uuid === to.uuid)
        return moveTo(from, {before});
    add(to.uuid, block, before);
}

// What a dragged row takes along; null where nothing may be changed.
function beginDrag(pane, key) {
    if (!key || app.isReadOnly)
        return null;
    if (!pane.selected.has(key))
        pane.click(key, false, false);
    const block = pane.selection();
    return block.length === 1 ? app.services.get(block[0].id).shown : many(block.length, "channel");
}

function trouble(text) {
    $("trouble").textContent = text;
    $("trouble").hidden = !text;
}

// After every change of the state.
function changed() {
    if (!work.keep(app.database, app.state))
        trouble("The browser has no room to keep this over a reload: save it soon.");
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
    drawBar();
    drawConflict();
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

const linesOf = (from, to) => Object.keys(to).flatMap((uuid) =>
    from[uuid] && to[uuid] !== from[uuid]
        ? st.changes(from[uuid], to[uuid]).map((line) => ({list: app.nameOf(uuid), ...line})) : []);

const baseDoc = (base) => Object.fromEntries(Object.entries(base).map(([uuid, {entries}]) => [uuid, entries]));
const myLines = () => linesOf(baseDoc(app.state.base), st.current(app.state));

function drawBar(text) {
    const count = myLines().length;
    $("undo").disabled = app.state.past.length === 0;
    $("redo").disabled = app.state.future.length === 0;
    $("bar").hidden = count === 0 && !app.saved && !text;
    $("count").textContent = text ?? (count ? many(count, "change") : app.saved ? "Saved." : "");
    $("take-back").hidden = !app.saved || count > 0;
    for (const id of ["show-changes", "discard", "save"])
        $(id).hidden = count === 0;
    $("save").disabled = Boolean(app.conflict) || app.isReadOnly;
    document.title = count ? `(${count}) Channels` : "Channels";
}

const sentence = (line) => `${line.list}: ${app.services.get(line.id)?.shown ?? line.id} ${line.what.join(", ")}`
    + (line.before !== null && line.after !== null && line.before !== line.after
        ? ` from ${line.before} to ${line.after}` : "");

function drawConflict() {
    $("conflict").hidden = !app.conflict;
    if (!app.conflict)
        return;
    const theirs = linesOf(baseDoc(app.state.base), baseDoc(app.conflict));
    for (const [id, lines] of [["theirs", theirs], ["mine", myLines()]])
        $(id).replaceChildren(...lines.slice(0, 100).map((line) => {
            const item = document.createElement("li");
            item.textContent = sentence(line);
            return item;
        }));
}

function showChanges() {
    const lines = myLines();
    const cells = (line) => [line.list, line.what.join(", "), line.before ?? "", line.after ?? "",
                             app.services.get(line.id).shown];
    $("changes").querySelector("tbody").replaceChildren(...lines.slice(0, MOST_LINES).map((line) => {
        const row = document.createElement("tr");
        for (const text of cells(line))
            row.append(Object.assign(document.createElement("td"), {textContent: text}));
        return row;
    }));
    $("changes-title").textContent = lines.length > MOST_LINES
        ? `The first ${MOST_LINES} of ${lines.length} changes` : many(lines.length, "change");
    $("changes").showModal();
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
    const mine = new Set(st.changedLists(app.state));
    const doc = st.current(app.state);
    const isOvertaken = Object.keys(news).some((uuid) => mine.has(uuid)
        && news[uuid].version !== app.state.base[uuid].version);
    const isDone = isOvertaken && [...mine].every((uuid) => news[uuid] && st.isSame(news[uuid].entries, doc[uuid]));
    if (isDone) {  // saved, by whomever
        app.state = st.start({...app.state.base, ...news});
        app.conflict = null;
    } else if (isOvertaken) {
        app.conflict = news;
    } else {
        app.state = st.rebase(app.state, news, app.lists);
    }
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

async function readOverview() {
    const overview = await server.overview();
    const rank = (list) => list.fav || (list.all ? 5 : 6);
    app.lists = Object.fromEntries(overview.lists.sort((a, b) => rank(a) - rank(b)).map((list) =>
        [list.uuid, {...list, name: list.all ? "All" : shown(list.name), reserved: new Set(list.reserved)}]));
    app.database = overview.database;
    app.mark = overview.mark;
    app.isReadOnly = overview.readOnly;
    $("database").textContent = overview.database;
    for (const pane of app.panes)
        pane.part(".choice").replaceChildren(
            ...Object.entries(app.lists).map(([uuid, {name}]) => new Option(name, uuid)));
}

async function reload() {
    await readOverview();
    const known = Object.keys(app.state.base).filter((uuid) => app.lists[uuid]);
    take(await server.lists(known));
}

// Runs a talk with the server; says in words what went wrong. Undefined then.
async function attempt(talk) {
    try {
        const result = await talk();
        trouble(app.isReadOnly ? "Read-only: look around, nothing can be saved." : "");
        $("connection").textContent = "";
        return result ?? true;
    } catch (error) {
        if (!(error instanceof server.Refused || error instanceof server.Unreachable))
            throw error;
        const isGone = error instanceof server.Unreachable;
        $("connection").textContent = isGone ? "not connected" : "";
        trouble(isGone
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
        drawBar();
    }
}

async function poll() {
    const isTroubled = !$("trouble").hidden && !app.isReadOnly;
    if (!app.isBusy && !app.isDragging()) {
        try {
            const mark = await server.mark();
            if (mark !== app.mark || $("connection").textContent) {
                await attempt(reload);
            }
        } catch {
            if (!isTroubled || !$("connection").textContent)
                await attempt(server.mark);
        }
    }
    setTimeout(poll, POLL);
}

// Does to the lists what the reload of the page has interrupted.
function resume() {
    const kept = work.kept(app.database);
    if (!kept)
        return;
    const fits = Object.entries(kept.versions).every(([uuid, version]) =>
        !app.state.base[uuid] || app.state.base[uuid].version === version);
    try {
        app.state = st.rebase({...app.state, past: kept.past, future: kept.future ?? []}, {}, app.lists);
        changed();
        trouble(fits ? "" : "The lists have changed since: this is your work on top of them. Look at it before you save.");
    } catch {
        trouble("Unsaved work of before could not be read.");
    }
}

async function begin() {
    app.panes.push(new Pane(app), new Pane(app));
    document.querySelector("main").append(...app.panes.map((pane) => pane.root));
    app.active = app.panes[0];
    app.favs = new Map();
    app.isDragging = enableDragging(app.panes, {begin: beginDrag, drop});
    enableKeys(app);
    for (const [id, action] of Object.entries({
        undo: app.undo, redo: app.redo, save: app.save, "show-changes": showChanges,
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
            drawBar(answer.overtaken.length ? "Others have written since: it was not taken back."
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

    await attempt(async () => {
        await readOverview();
        const favs = [1, 2, 3, 4].map(app.uuidOfFav).filter(Boolean);
        app.panes[0].setList(favs[0]);
        app.panes[1].setList(app.uuidOfAll());
        app.activate(app.panes[0]);
        take(await server.lists(favs));
        take(await server.lists([app.uuidOfAll()]));
        resume();
    });
    setTimeout(poll, POLL);
}

begin();
