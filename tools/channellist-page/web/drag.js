// Dragging rows with the mouse, and by their handles with a finger or pen.
import {$} from "./element.js";

const SLACK = 5;   // pixels that are no drag yet
const EDGE = 48;   // pixels at the edges of a list that scroll it
const SPEED = 18;  // pixels a frame

const ghost = $("ghost");

export class Dragging {
    // `panes`: each {view, scroller, line}. `begin(pane, key)` gives the label of what is dragged, or
    // null; `drop(from, to, gap)` ends it.
    constructor(panes, begin, drop) {
        Object.assign(this, {panes, begin, drop, pointer: null, label: null, over: null});
        for (const pane of panes)
            pane.scroller.addEventListener("pointerdown", (event) => this.press(pane, event));
        addEventListener("pointermove", (event) => event.pointerId === this.pointer && this.move(event));
        addEventListener("pointerup", (event) => event.pointerId === this.pointer && this.end(true));
        addEventListener("pointercancel", () => this.end(false));
        addEventListener("keydown", (event) => {
            if (event.key === "Escape" && this.label) {
                event.stopImmediatePropagation();
                this.end(false);
            }
        }, true);
    }

    press(from, {target, pointerType, pointerId, button, clientX, clientY}) {
        const row = target.closest(".row");
        const isMeant = pointerType === "mouse" || target.closest(".handle");
        if (row && isMeant && button === 0 && !this.label)
            Object.assign(this, {from, key: row.dataset.key, pointer: pointerId, start: [clientX, clientY]});
    }

    // It is a drag, and seen, once it has a label.
    move({clientX, clientY}) {
        [this.x, this.y] = [clientX, clientY];
        if (!this.label && Math.hypot(this.x - this.start[0], this.y - this.start[1]) >= SLACK) {
            this.label = ghost.textContent = this.begin(this.from, this.key);
            if (!this.label)
                return this.end(false);
            ghost.hidden = false;
            document.body.classList.add("dragging");
            requestAnimationFrame(() => this.scrollAtEdges());
        }
        if (this.label)
            this.show();
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
        if (!this.label)
            return;
        const box = this.over?.scroller.getBoundingClientRect();
        const pull = !box ? 0 : Math.min(0, this.y - box.top - EDGE) + Math.max(0, this.y - box.bottom + EDGE);
        if (pull !== 0) {
            this.over.scroller.scrollTop += SPEED * pull / EDGE;
            this.show();
        }
        requestAnimationFrame(() => this.scrollAtEdges());
    }

    end(isDropped) {
        const {from, over, gap} = this;
        Object.assign(this, {pointer: null, label: null, over: null});
        ghost.hidden = true;
        document.body.classList.remove("dragging");
        for (const pane of this.panes)
            pane.line.hidden = true;
        if (isDropped && over)
            this.drop(from, over, gap);
    }
}
