// The keys of a list, and those of the whole page.

const PAGE = 12;  // rows

export function enableKeys(app) {
    addEventListener("keydown", (event) => {
        if (document.querySelector("dialog[open]"))
            return;
        const isControl = event.ctrlKey || event.metaKey;
        const key = event.key.toLowerCase();
        const isTyping = event.target.matches("input, select, textarea");
        const whole = isControl && key === "s" ? () => app.save()
            : isControl && !isTyping && key === "z" ? () => event.shiftKey ? app.redo() : app.undo()
            : isControl && !isTyping && key === "y" ? () => app.redo()
            : !isControl && !isTyping && key === "/" ? () => app.active.part(".search").focus()
            : event.target.matches(".search") && ["escape", "enter", "arrowdown"].includes(key)
                ? () => app.active.scroller.focus()
            : null;
        if (whole) {
            event.preventDefault();
            whole();
        } else if (event.target.matches(".scroller") && inList(app, app.active, event, key, isControl)) {
            event.preventDefault();
        }
    });
}

// Whether the key means something there; then it is done.
function inList(app, pane, event, key, isControl) {
    if (event.altKey) {
        const moves = {arrowup: "up", arrowdown: "down", home: "top", end: "end"};
        if (moves[key])
            app.command(pane, moves[key]);
        return Boolean(moves[key]);
    }
    if (isControl && key === "a") {
        pane.selectAll();
        return true;
    }
    if (isControl)
        return false;
    const at = pane.focusIndex();
    const steps = {arrowup: at - 1, arrowdown: at + 1, pageup: at - PAGE, pagedown: at + PAGE,
                   home: 0, end: pane.rows.length - 1};
    if (key in steps) {
        pane.moveFocus(steps[key], event.shiftKey);
        return true;
    }
    const commands = {delete: "remove", enter: "add-other"};
    if (key === " " && at >= 0 && !pane.rows[at].ott)
        pane.click(pane.focus, event.shiftKey, true);
    else if (commands[key])
        app.command(pane, commands[key]);
    else if (key === "escape")
        pane.selectNone();
    else if (key === "arrowleft" || key === "arrowright")
        app.other(pane).scroller.focus();
    else if (/^[0-9]$/.test(key))
        app.askNumber(pane, key);
    else
        return false;
    return true;
}
