// Dragging rows with the mouse, and by their handles with a finger or pen.

const SLACK = 5;   // pixels that are no drag yet
const EDGE = 48;   // pixels at the edges of a list that scroll it
const SPEED = 18;  // pixels a frame

// `panes`: each {view, scroller, line}. `begin(pane, key)` gives the label of what is dragged, or
// null; `drop(from, to, gap)` ends it.
export function enableDragging(panes, {begin, drop}) {
    const ghost = document.getElementById("ghost");
    let drag = null;

    const paneAt = (x, y) => panes.find(({scroller}) => {
        const box = scroller.getBoundingClientRect();
        return x >= box.left && x <= box.right && y >= box.top && y <= box.bottom;
    });

    function show() {
        const {x, y} = drag;
        ghost.style.transform = `translate(${x + 12}px, ${y + 12}px)`;
        drag.over = paneAt(x, y);
        for (const pane of panes) {
            pane.line.hidden = pane !== drag.over;
            if (pane === drag.over) {
                drag.gap = pane.view.gapAt(y);
                pane.line.style.transform = `translateY(${drag.gap * pane.view.height - 1}px)`;
            }
        }
    }

    function scrollAtEdges() {
        if (!drag?.label)
            return;
        if (drag.over) {
            const box = drag.over.scroller.getBoundingClientRect();
            const pull = drag.y < box.top + EDGE ? drag.y - box.top - EDGE
                : drag.y > box.bottom - EDGE ? drag.y - box.bottom + EDGE : 0;
            if (pull !== 0) {
                drag.over.scroller.scrollTop += SPEED * pull / EDGE;
                show();
            }
        }
        requestAnimationFrame(scrollAtEdges);
    }

    function end(isDropped) {
        const done = drag;
        drag = null;
        ghost.hidden = true;
        document.body.classList.remove("dragging");
        for (const pane of panes)
            pane.line.hidden = true;
        if (isDropped && done?.label && done.over)
            drop(done.from, done.over, done.gap);
    }

    for (const pane of panes) {
        pane.scroller.addEventListener("pointerdown", (event) => {
            const row = event.target.closest(".row");
            const isHandle = Boolean(event.target.closest(".handle"));
            if (!row || event.button !== 0 || (event.pointerType !== "mouse" && !isHandle))
                return;
            drag = {from: pane, key: row.dataset.key, startX: event.clientX, startY: event.clientY,
                    pointer: event.pointerId};
        });
    }
    addEventListener("pointermove", (event) => {
        if (!drag || event.pointerId !== drag.pointer)
            return;
        drag.x = event.clientX;
        drag.y = event.clientY;
        if (!drag.label) {
            if (Math.hypot(drag.x - drag.startX, drag.y - drag.startY) < SLACK)
                return;
            drag.label = begin(drag.from, drag.key);
            if (!drag.label)
                return end(false);
            ghost.textContent = drag.label;
            ghost.hidden = false;
            document.body.classList.add("dragging");
            requestAnimationFrame(scrollAtEdges);
        }
        show();
    });
    addEventListener("pointerup", (event) => drag?.pointer === event.pointerId && end(true));
    addEventListener("pointercancel", () => drag && end(false));
    addEventListener("keydown", (event) => {
        if (event.key === "Escape" && drag?.label) {
            event.stopImmediatePropagation();
            end(false);
        }
    }, true);
    return () => Boolean(drag?.label);
}
