// What there is to choose from: the lists at the left, and what the filters know.
import {changedLists} from "./state.js";
import {$, element} from "./element.js";

export function drawLists(app) {
    const changed = new Set(changedLists(app.state));
    $("lists").replaceChildren(...Object.entries(app.lists).map(([uuid, list]) =>
        element("li", {}, element("button", {
            className: changed.has(uuid) ? "changed" : "",
            ariaCurrent: app.active.uuid === uuid,
            onclick: () => app.choose(app.active, uuid),
        }, element("span", {}, list.name),
        element("span", {className: "count"}, app.entries(uuid)?.length ?? list.count)))));
}

// The kinds and places of all services that were read.
export function drawFilters(app) {
    for (const select of document.querySelectorAll("[name=kind], [name=place]")) {
        const values = new Set([...app.services.values()].map((each) => each[select.name]));
        for (const {value} of select.options)
            values.delete(value);
        select.append(...[...values].sort().map((value) => new Option(value)));
    }
}
