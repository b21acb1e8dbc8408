// What a person does to the chosen rows: by a button, a key or a drag.
import {many} from "./changes.js";

// The selected ones, else the one with the focus.
function chosen(pane) {
    const block = pane.selection();
    return block.length > 0 ? block : pane.entries.filter((entry) => entry.key === pane.focus);
}

export function moveTo(app, pane, place) {
    const block = chosen(pane);
    if (block.length === 0)
        return;
    const reserved = app.lists[pane.uuid].reserved;
    if (place.number !== undefined && reserved.has(place.number))
        return app.trouble(`Number ${place.number} belongs to an OTT channel.`);
    const key = block.some((entry) => entry.key === pane.focus) ? pane.focus : block[0].key;
    if (!app.act({what: "move", list: pane.uuid, keys: block.map((entry) => entry.key), ...place}, ""))
        return;
    pane.follow(key);
    const now = app.entries(pane.uuid).find((entry) => entry.key === key);
    app.say(`${app.services.get(now.id).shown} is number ${now.number} now`);
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
    else
        app.say(`${app.nameOf(uuid)} holds them already`);
}

export function drop(app, from, to, gap) {
    const block = chosen(from);
    const before = to.keyAtGap(gap);
    if (from.uuid === to.uuid)
        return moveTo(app, from, {before});
    add(app, to.uuid, block, before);
}

// What a dragged row takes along; null where nothing may be changed.
export function beginDrag(app, pane, key) {
    if (!key || app.isReadOnly)
        return null;
    if (!pane.selected.has(key))
        pane.click(key, false, false);
    const block = pane.selection();
    return block.length === 1 ? app.services.get(block[0].id).shown : many(block.length, "channel");
}

// `what`: as the buttons' data-do names it.
export function command(app, pane, what) {
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
        top: () => moveTo(app, pane, {before: app.entries(uuid)[0]?.key}),
        up: () => moveTo(app, pane, {by: -1}),
        down: () => moveTo(app, pane, {by: 1}),
        end: () => moveTo(app, pane, {before: null}),
        number: () => app.askNumber(pane),
        remove: () => app.lists[uuid].fav
            && app.act({what: "remove", list: uuid, keys}, `${told} removed`),
        hide: () => app.act({what: "hide", list: uuid, keys}, `${told} hidden`),
        show: () => app.act({what: "show", list: uuid, keys}, `${told} shown`),
        "hide-everywhere": () => app.act({what: "hide", list: all, keys: everywhere()}, `${told} hidden`),
        "show-everywhere": () => app.act({what: "show", list: all, keys: everywhere()}, `${told} shown`),
        "by-name": () => order(app, pane, block, (entry) => app.services.get(entry.id).folded),
        "by-number": () => {
            const numbers = new Map(app.entries(all).map((entry) => [entry.id, entry.number]));
            order(app, pane, block, (entry) => numbers.get(entry.id) ?? Infinity);
        },
        close: () => app.act({what: "close", list: uuid}, "the gaps are closed"),
        copy: () => add(app, other.uuid, pane.entries.filter((entry) => !entry.hidden)),
        "add-other": () => add(app, other.uuid, block),
    };
    for (const n of [1, 2, 3, 4])
        commands[`add-${n}`] = () => add(app, app.uuidOfFav(n), block);
    const isForSome = !["all", "close", "copy"].includes(what);
    if (!isForSome || block.length > 0)
        commands[what]();
}
