// Dragging rows with the mouse, and by their handles with a finger or pen.
import {$} from "./element.js";

const SLACK = 5;   // pixels that are no drag yet
const EDGE = 48;   // pixels at the edges of a list that scroll it
const SPEED = 18;  // pixels a frame

const ghost = $("ghost");

// From the press on a row; only once it has a label it is seen.
class Drag {
    constructor(panes, from, key, event) {
        Object.assign(this, {panes, from, key, pointer: event.pointerId, x: event.clientX, y: event.clientY});
        this.start = [this.x, this.y];
    }

    isOffTheStart() {
        return Math.hypot(this.x - this.start[0], this.y - this.start[1]) >= SLACK;
    }

    begin(label) {
        this.label = ghost.textContent = label;
        ghost.hidden = false;
        document.body.classList.add("dragging");
        requestAnimationFrame(() => this.scrollAtEdges());
    }

    // Where it would drop.
    show() {
        ghost.style.transform = `translate(${this.x + 12}px, ${this.y + 12}px)`;
        const under = document.elementFromPoint(this.x, this.y);
        this.over = this.panes.find(({scroller}) => scroller.contains(under));
        for (const pane of this.panes)
            pane.line.hidden = pane !== this.over;
        if (!this.over)
            return;
        this.gap = this.over.view.gapAt(this.y);
        this.over.line.style.transform = `translateY(${this.gap * this.over.view.height - 1}px)`;
    }

    scrollAtEdges() {
        if (ghost.hidden)
            return;
        const box = this.over?.scroller.getBoundingClientRect();
        const pull = !box ? 0 : Math.min(0, this.y - box.top - EDGE) + Math.max(0, this.y - box.bottom + EDGE);
        if (pull !== 0) {
            this.over.scroller.scrollTop += SPEED * pull / EDGE;
            this.show();
        }
        requestAnimationFrame(() => this.scrollAtEdges());
    }

    end() {
        ghost.hidden = true;
        document.body.classList.remove("dragging");
        for (const pane of this.panes)
            pane.line.hidden = true;
    }
}

// `panes`: each {view, scroller, line}. `begin(pane, key)` gives the label of what is dragged, or
// null; `drop(from, to, gap)` ends it. Gives a function that tells whether something is dragged.
export function enableDragging(panes, {begin, drop}) {
    let drag = null;
    const end = (isDropped) => {
        const {from, over, gap} = drag;
        drag.end();
        drag = null;
        if (isDropped && over)
            drop(from, over, gap);
    };
    for (const pane of panes)
        pane.scroller.addEventListener("pointerdown", (event) => {
            const row = event.target.closest(".row");
            const isMeant = event.pointerType === "mouse" || event.target.closest(".handle");
            if (row && isMeant && event.button === 0)
                drag = new Drag(panes, pane, row.dataset.key, event);
        });
    addEventListener("pointermove", (event) => {
        if (drag?.pointer !== event.pointerId)
            return;
        [drag.x, drag.y] = [event.clientX, event.clientY];
        if (!drag.label && drag.isOffTheStart()) {
            const label = begin(drag.from, drag.key);
            if (!label)
                return end(false);
            drag.begin(label);
        }
        if (drag.label)
            drag.show();
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
