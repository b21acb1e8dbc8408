// The changes that are not saved: their count in the bar, their table, and what others changed.
import * as st from "./state.js";
import {$, element} from "./element.js";

const MOST_LINES = 1000; // of a table of changes

export const many = (count, word) => `${count} ${word}${count === 1 ? "" : "s"}`;

const linesOf = (app, from, to) => Object.keys(to).flatMap((uuid) =>
    from[uuid] && to[uuid] !== from[uuid]
        ? st.changes(from[uuid], to[uuid]).map((line) => ({list: app.nameOf(uuid), ...line})) : []);

const myLines = (app) => linesOf(app, st.docOf(app.state.base), st.current(app.state));

export function drawBar(app, text) {
    const count = myLines(app).length;
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

const sentence = (app, line) => `${line.list}: ${app.services.get(line.id)?.name ?? line.id} ${line.what.join(", ")}`
    + (line.before !== null && line.after !== null && line.before !== line.after
        ? ` from ${line.before} to ${line.after}` : "");

export function drawConflict(app) {
    $("conflict").hidden = !app.conflict;
    if (!app.conflict)
        return;
    const theirs = linesOf(app, st.docOf(app.state.base), st.docOf(app.conflict));
    for (const [id, lines] of [["theirs", theirs], ["mine", myLines(app)]])
        $(id).replaceChildren(...lines.slice(0, 100).map((line) => element("li", {}, sentence(app, line))));
}

export function showChanges(app) {
    const lines = myLines(app);
    const cells = (line) => [line.list, line.what.join(", "), line.before ?? "", line.after ?? "",
                             app.services.get(line.id)?.name ?? line.id];
    $("changes").querySelector("tbody").replaceChildren(...lines.slice(0, MOST_LINES).map((line) =>
        element("tr", {}, ...cells(line).map((text) => element("td", {}, text)))));
    $("changes-title").textContent = lines.length > MOST_LINES
        ? `The first ${MOST_LINES} of ${lines.length} changes` : many(lines.length, "change");
    $("changes").showModal();
}
