// The page: what its parts share, and how they are joined.
import * as st from "./state.js";
import * as sync from "./sync.js";
import * as work from "./work.js";
import {beginDrag, command, drop} from "./commands.js";
import {drawBar, drawConflict} from "./changes.js";
import {drawFilters, drawLists} from "./choices.js";
import {$, element} from "./element.js";
import {Dragging} from "./drag.js";
import {enableKeys} from "./keyboard.js";
import {Pane} from "./pane.js";

const app = {
    lists: {},            // by uuid: {name, fav, all, count, reserved}
    services: new Map(),  // by key: {name, folded, kind, place, hd, scrambled, print}
    state: st.start({}),
    saved: null,          // what a save replaced, until the next change
    conflict: null,       // lists as others left them: {uuid: {version, entries}}
    isReadOnly: false,
    isBegun: false,       // until then, the work of before a reload stays kept as it is
    panes: [],

    entries: (uuid) => st.current(app.state)[uuid],
    nameOf: (uuid) => app.lists[uuid]?.name ?? "",
    other: (pane) => app.panes[pane === app.panes[0] ? 1 : 0],
    favsOf: (id) => app.favs.get(id) ?? [],
    uuidOfFav: (n) => Object.keys(app.lists).find((uuid) => app.lists[uuid].fav === n),
    uuidOfAll: () => Object.keys(app.lists).find((uuid) => app.lists[uuid].all),

    say(text) { $("said").textContent = text; },

    trouble(text) {
        if ($("trouble").textContent !== text)  // what was read out is not said again
            $("trouble").textContent = text;
        $("trouble").hidden = !text;
    },

    command: (what, ...more) => command(app, app.active, what, ...more),

    activate(pane) {
        app.active = pane;
        for (const each of app.panes)
            each.root.classList.toggle("active", each === pane);
        drawLists(app);
    },

    choose(pane, uuid) {
        pane.setList(uuid);
        pane.refresh();
        drawLists(app);
        if (!app.entries(uuid))
            sync.attempt(app, () => sync.read(app));
    },

    // Whether it was done.
    act(op, told) {
        if (op.keys?.length === 0)
            return false;
        app.trouble(app.isReadOnly ? "This database is read-only: nothing can be changed here." : "");
        if (app.isReadOnly)
            return false;
        app.saved = null;
        app.become(st.perform(app.state, op, app.lists), told);
        return true;
    },

    become(state, told) {
        app.state = state;
        if (app.conflict && st.changedLists(state).length === 0)  // all of it was undone
            return sync.discard(app);
        if (app.isBegun && !work.keep(app.database, state, app.services))
            app.trouble("The browser has no room to keep this over a reload: save it soon.");
        app.draw();
        if (told)
            app.say(told);
    },

    draw() {
        app.favs = new Map();
        for (const [uuid, {fav}] of Object.entries(app.lists))
            for (const entry of (fav && app.entries(uuid)) || [])
                app.favs.set(entry.id, [...(app.favs.get(entry.id) ?? []), fav]);
        for (const pane of app.panes)
            pane.refresh();
        drawLists(app);
        drawFilters(app);
        drawBar(app);
        drawConflict(app);
    },
};

function enablePrinting() {
    addEventListener("beforeprint", () => {
        const rows = app.active.entries.filter((entry) => !entry.hidden);
        const lines = rows.map((entry) => `${entry.number ?? ""}  ${app.services.get(entry.id).name}`);
        $("print").replaceChildren(...[app.nameOf(app.active.uuid), ...lines]
            .map((line) => element("p", {}, line)));
    });
    addEventListener("afterprint", () => $("print").replaceChildren());
}

app.panes.push(new Pane(app), new Pane(app));
document.querySelector("main").append(...app.panes.map((pane) => pane.root));
app.activate(app.panes[0]);
app.dragging = new Dragging(app.panes, (...words) => beginDrag(app, ...words), (...words) => drop(app, ...words));
document.addEventListener("click", ({target}) => {
    const button = target.closest("button");
    app.command(button?.dataset.do ?? button?.id);
    button?.closest("details")?.removeAttribute("open");
});
enableKeys(app);
enablePrinting();
sync.follow(app);
