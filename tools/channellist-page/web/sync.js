// Keeps the page and the database together: reads the lists, follows what others write, saves.
import * as server from "./server.js";
import * as st from "./state.js";
import * as work from "./work.js";
import {drawBar} from "./changes.js";
import {$} from "./element.js";
import {folded} from "./search.js";

const POLL = 1500;  // milliseconds

const pick = (doc, uuids) => Object.fromEntries(uuids.map((uuid) => [uuid, doc[uuid]]));

// Runs a talk with the server, and says in words what went wrong with it; undefined then.
export async function attempt(app, talk) {
    let result;
    let error = null;
    try {
        result = await talk() ?? true;
    } catch (each) {
        error = each;
    }
    if (error && !(error instanceof server.Refused))
        throw error;
    $("connection").textContent = error instanceof server.Unreachable ? "not connected"
        : app.isReadOnly ? "read-only" : "";
    if (error || app.hasFailed)
        app.trouble(error ? `${error.message}. Your work stays here.` : "");
    app.hasFailed = Boolean(error);
    return result;
}

// Reads all lists that the page shows or has read before, and `more`.
export async function read(app, more = []) {
    const known = Object.keys(app.state.base);
    const shown = app.panes.map((pane) => pane.uuid).filter(Boolean);
    const {overview, content} = await server.lists([...new Set([...known, ...shown, ...more])]);
    // A scan may deal other keys: what was done by the former ones would be done to other services.
    const isOther = known.some((uuid) => overview.lists.every((list) => list.uuid !== uuid))
        || content.lists.some(({rows}) => rows.some(({0: id, 8: print}) =>
            (app.services.get(id)?.print ?? print) !== print));
    if (isOther && st.changedLists(app.state).length > 0)
        throw new server.Refused("The database has other lists or services now: bring the former one back, or discard what you did");
    if (isOther)
        Object.assign(app, {state: st.start({}), saved: null, conflict: null, isBegun: false});
    takeOverview(app, overview);
    take(app, content.lists);
    if (app.panes.some(({uuid}) => uuid && !app.entries(uuid)))
        await read(app);
}

function takeOverview(app, {database, mark, readOnly, lists}) {
    Object.assign(app, {database, mark, isReadOnly: readOnly});
    app.lists = Object.fromEntries(lists.map((list) =>
        [list.uuid, {...list, reserved: new Set(list.reserved)}]));
    $("database").textContent = database.split("/").pop();
    $("database").title = database;
    for (const [i, pane] of app.panes.entries()) {
        pane.part(".choice").replaceChildren(...lists.map(({name, uuid}) => new Option(name, uuid)));
        if (!app.lists[pane.uuid])
            pane.setList(i === 0 ? app.uuidOfFav(1) : app.uuidOfAll());
    }
}

// What was done to a list that others changed is never written over them.
function take(app, lists) {
    for (const {rows} of lists)
        for (const [id, , , name, kind, place, hd, scrambled, print] of rows)
            app.services.set(id, {name, folded: folded(name), kind, place, hd, scrambled, print});
    const news = Object.fromEntries(lists.map(({uuid, version, rows}) =>
        [uuid, {version, entries: st.entriesOf(rows)}]));
    const overtaken = st.changedLists(app.state).filter((uuid) => news[uuid]
        && news[uuid].version !== app.state.base[uuid].version && !st.isDone(app.state, news, uuid));
    app.conflict = overtaken.length > 0 ? pick(news, overtaken) : null;
    for (const uuid of overtaken)
        delete news[uuid];
    app.become(st.rebase(app.state, news, app.lists));
    requestAnimationFrame(() => window.firstList ??= performance.now());
}

// Sends what lists are to hold, and reads what they hold then. Undefined if nothing was written.
async function write(app, text, doc) {
    const lists = Object.entries(doc).map(([uuid, entries]) => ({
        uuid, version: app.state.base[uuid].version,
        entries: entries.map(({id, number, hidden}) => [id, number, hidden ? 1 : 0, app.services.get(id).print]),
    }));
    app.isBusy = true;
    $("save").disabled = true;
    $("count").textContent = text;
    try {
        const answer = await attempt(app, () => server.save(lists));
        if (answer)
            await attempt(app, () => read(app));
        return answer;
    } finally {
        app.isBusy = false;
        drawBar(app);
    }
}

export async function save(app) {
    const doc = st.current(app.state);
    const uuids = st.changedLists(app.state);
    if (uuids.length === 0 || app.isBusy)
        return;
    // The FAV lists follow the marks of another list: what they are to hold is said, too.
    if (uuids.some((uuid) => !app.lists[uuid].fav))
        uuids.push(...Object.keys(doc).filter((uuid) => app.lists[uuid].fav && !uuids.includes(uuid)));
    const before = pick(st.docOf(app.state.base), uuids);
    const answer = await write(app, "Saving …", pick(doc, uuids));
    if (!answer || answer.overtaken.length > 0)
        return;
    app.saved = before;
    drawBar(app, `Written, and flushed to the disk. ${answer.notes.join(" ")}`);
    app.say("Written, and flushed to the disk.");
}

export async function takeBack(app) {
    const answer = await write(app, "Taking it back …", app.saved);
    if (!answer)
        return;
    app.saved = null;
    drawBar(app, answer.overtaken.length ? "Others have written since: it was not taken back."
        : "Taken back, and flushed to the disk.");
}

// What others wrote stays, what was done here does not.
export function discard(app) {
    const base = {...app.state.base, ...app.conflict};
    app.conflict = null;
    app.become(st.start(base));
    attempt(app, () => read(app));
}

export function merge(app) {
    const news = app.conflict;
    app.conflict = null;
    app.become(st.rebase(app.state, news, app.lists));
}

// Reads what the page begins with, and does to it what the reload of the page has interrupted.
async function begin(app) {
    await read(app);
    const kept = work.kept(app.database);
    if (kept)
        await read(app, kept.past.map((op) => op.list));
    app.isBegun = true;
    if (kept)
        resume(app, kept);
}

function resume(app, {past, future = [], prints = {}, versions}) {
    const isHere = past.every((op) => app.entries(op.list))
        && Object.entries(prints).every(([id, print]) => app.services.get(Number(id))?.print === print);
    if (!isHere)
        return app.trouble("Unsaved work is for lists or services that this database does not have. It stays until you change something here.");
    const fits = Object.entries(versions).every(([uuid, version]) =>
        (app.state.base[uuid]?.version ?? version) === version);
    try {
        app.become(st.rebase({...app.state, past: [...past, ...app.state.past], future}, {}, app.lists));
        if (!fits)
            app.trouble("The lists have changed since: this is your work on top of them. Look at it before you save.");
    } catch {
        app.trouble("Unsaved work of before could not be read.");
    }
}

// For as long as the page is open; work of before a reload waits until the first reading succeeds.
export async function follow(app) {
    if (!app.isBusy && !app.dragging.label)
        await attempt(app, async () => {
            if (!app.isBegun)
                await begin(app);
            else if (await server.mark() !== app.mark)
                await read(app);
        });
    setTimeout(follow, POLL, app);
}
