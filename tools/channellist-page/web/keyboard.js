// The keys of the page, and what they command.

const PAGE = 12;  // rows

const inPage = {"ctrl-s": "save", "ctrl-z": "undo", "ctrl-shift-z": "redo", "ctrl-y": "redo", "/": "search"};
const inField = {"ctrl-s": "save"};
const inSearch = {...inField, escape: "list", enter: "list", arrowdown: "list"};
const inList = {
    ...inPage,
    "alt-arrowup": "up", "alt-arrowdown": "down", "alt-home": "top", "alt-end": "end",
    "ctrl-a": "all", escape: "none", delete: "remove", enter: "add-other",
    arrowleft: "other-side", arrowright: "other-side",
};

// "ctrl-z"; Shift counts beside Ctrl alone, for some keyboards have "/" on it.
function nameOf(event) {
    const isControl = event.ctrlKey || event.metaKey;
    return (isControl ? "ctrl-" : "") + (isControl && event.shiftKey ? "shift-" : "")
        + (event.altKey ? "alt-" : "") + event.key.toLowerCase();
}

export function enableKeys(app) {
    addEventListener("keydown", (event) => {
        if (document.querySelector("dialog[open]"))
            return;
        const isInList = event.target.matches(".scroller");
        const meanings = isInList ? inList : event.target.matches(".search") ? inSearch
            : event.target.matches("input, select, textarea") ? inField : inPage;
        const key = nameOf(event);
        if (meanings[key])
            app.command(meanings[key]);
        else if (!isInList || !chooseRows(app, app.active, key, event.shiftKey))
            return;
        event.preventDefault();
    });
}

// Whether the key means something there; then it is done.
function chooseRows(app, pane, key, isShift) {
    const at = pane.focusIndex();
    const steps = {arrowup: at - 1, arrowdown: at + 1, pageup: at - PAGE, pagedown: at + PAGE,
                   home: 0, end: pane.rows.length - 1};
    if (key in steps)
        pane.moveFocus(steps[key], isShift);
    else if (/^[0-9]$/.test(key))
        app.command("number", key);
    else if (key === " " && at >= 0 && !pane.rows[at].ott)
        pane.click(pane.focus, isShift, true);
    else
        return false;
    return true;
}
