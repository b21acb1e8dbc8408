// What a person does, by a button, a key or a drag.
import * as sync from "./sync.js";
import {many, showChanges} from "./changes.js";
import {$} from "./element.js";
import {redo, undo} from "./state.js";

// The selected ones, else the one with the focus.
function chosen(pane) {
    const block = pane.selection();
    return block.length > 0 ? block : pane.entries.filter((entry) => entry.key === pane.focus);
}

const keysOf = (block) => block.map((entry) => entry.key);

function moveTo(app, pane, place) {
    const block = chosen(pane);
    if (app.lists[pane.uuid].reserved.has(place.number))
        return app.trouble(`Number ${place.number} belongs to an OTT channel.`);
    if (!app.act({what: "move", list: pane.uuid, keys: keysOf(block), ...place}, ""))
        return;
    const key = block.some((entry) => entry.key === pane.focus) ? pane.focus : block[0].key;
    pane.follow(key);
    const now = app.entries(pane.uuid).find((entry) => entry.key === key);
    app.say(`${app.services.get(now.id).name} is number ${now.number} now`);
}

function askNumber(app, pane, digits) {
    const dialog = $("ask-number");
    $("number").value = digits;
    dialog.returnValue = "";
    dialog.onclose = () => {
        if (dialog.returnValue === "yes")
            moveTo(app, pane, {number: $("number").valueAsNumber});
        pane.scroller.focus();
    };
    dialog.showModal();
}

function order(app, pane, block, value) {
    const keys = block.map((entry) => [value(entry), entry.key])
        .sort(([a], [b]) => a < b ? -1 : a > b ? 1 : 0).map(([, key]) => key);
    app.act({what: "order", list: pane.uuid, keys}, "sorted");
}

function add(app, uuid, block, before = null) {
    if (!app.lists[uuid]?.fav)
        return app.trouble("Channels are added to FAV1 to FAV4 only.");
    const held = new Set(app.entries(uuid).map((entry) => entry.id));
    const ids = block.map((entry) => entry.id).filter((id) => !held.has(id));
    if (ids.length > 0)
        app.act({what: "add", list: uuid, ids, before}, `${many(ids.length, "channel")} added to ${app.nameOf(uuid)}`);
    else if (block.length > 0)
        app.say(`${app.nameOf(uuid)} holds them already`);
}

export function drop(app, from, to, gap) {
    const before = to.keyAtGap(gap);
    if (from.uuid === to.uuid)
        moveTo(app, from, {before});
    else
        add(app, to.uuid, chosen(from), before);
}

// What a dragged row takes along; null where nothing may be changed.
export function beginDrag(app, pane, key) {
    if (!key || app.isReadOnly)
        return null;
    if (!pane.selected.has(key))
        pane.click(key, false, false);
    const block = pane.selection();
    return block.length === 1 ? app.services.get(block[0].id).name : many(block.length, "channel");
}

const commandsOfPage = (app, pane) => ({
    undo: () => app.become(undo(app.state), "undone"),
    redo: () => app.become(redo(app.state, app.lists), "done again"),
    save: () => sync.save(app),
    "take-back": () => sync.takeBack(app),
    discard: () => sync.discard(app),
    merge: () => sync.merge(app),
    "show-changes": () => showChanges(app),
    help: () => $("keys").showModal(),
    switch: () => app.activate(app.other(pane)),
    "other-side": () => app.other(pane).scroller.focus(),
    search: () => pane.part(".search").focus(),
    list: () => pane.scroller.focus(),
    all: () => pane.selectAll(),
    none: () => pane.selectNone(),
});

function commandsOfList(app, pane, digits) {
    const block = chosen(pane);
    const other = app.other(pane).uuid;
    const all = app.uuidOfAll();
    const change = (what, list, entries, done) =>
        app.act({what, list, keys: keysOf(entries)}, `${many(block.length, "channel")} ${done}`);
    const everywhere = () => {
        const ids = new Set(block.map((entry) => entry.id));
        return app.entries(all).filter((entry) => ids.has(entry.id));
    };
    return {
        top: () => moveTo(app, pane, {before: pane.entries[0]?.key}),
        up: () => moveTo(app, pane, {by: -1}),
        down: () => moveTo(app, pane, {by: 1}),
        end: () => moveTo(app, pane, {before: null}),
        number: () => block.length > 0 && askNumber(app, pane, digits),
        remove: () => app.lists[pane.uuid].fav && change("remove", pane.uuid, block, "removed"),
        hide: () => change("hide", pane.uuid, block, "hidden"),
        show: () => change("show", pane.uuid, block, "shown"),
        "hide-everywhere": () => change("hide", all, everywhere(), "hidden"),
        "show-everywhere": () => change("show", all, everywhere(), "shown"),
        "by-name": () => order(app, pane, block, (entry) => app.services.get(entry.id).folded),
        "by-number": () => {
            const numbers = new Map(app.entries(all).map((entry) => [entry.id, entry.number]));
            order(app, pane, block, (entry) => numbers.get(entry.id) ?? Infinity);
        },
        close: () => app.act({what: "close", list: pane.uuid}, "the gaps are closed"),
        copy: () => add(app, other, pane.entries.filter((entry) => !entry.hidden)),
        "add-other": () => add(app, other, block),
        "add-1": () => add(app, app.uuidOfFav(1), block),
        "add-2": () => add(app, app.uuidOfFav(2), block),
        "add-3": () => add(app, app.uuidOfFav(3), block),
        "add-4": () => add(app, app.uuidOfFav(4), block),
    };
}

// `what`: a button's data-do or id, or what keyboard.js names so.
export function command(app, pane, what, digits = "") {
    const commands = {...commandsOfPage(app, pane), ...commandsOfList(app, pane, digits)};
    commands[what]?.();
}
