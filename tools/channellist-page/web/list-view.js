// Draws the rows in sight of a list of any length: all rows have one height.
import {$} from "./element.js";

const SPARE = 8;  // rows beyond the edges

export class ListView {
    // `draw(element, row, index)` fills the element of a row.
    constructor(scroller, draw) {
        this.scroller = scroller;
        this.draw = draw;
        this.rows = [];
        this.elements = [];
        this.space = scroller.querySelector(".space");
        scroller.addEventListener("scroll", () => this.paint(), {passive: true});
        new ResizeObserver(() => this.paint()).observe(scroller);
        this.height = 36;
    }

    show(rows) {
        this.rows = rows;
        this.height = parseFloat(getComputedStyle(this.scroller).getPropertyValue("--row")) || 36;
        this.space.style.height = `${rows.length * this.height}px`;
        this.paint();
    }

    paint() {
        const first = Math.max(0, Math.floor(this.scroller.scrollTop / this.height) - SPARE);
        const count = Math.ceil(this.scroller.clientHeight / this.height) + 2 * SPARE;
        const last = Math.min(this.rows.length, first + count);
        for (let used = 0; used < last - first; ++used) {
            const element = this.elements[used] ??= this.newRow();
            element.hidden = false;
            element.style.transform = `translateY(${(first + used) * this.height}px)`;
            this.draw(element, this.rows[first + used], first + used);
        }
        for (let i = Math.max(0, last - first); i < this.elements.length; ++i)
            this.elements[i].hidden = true;
    }

    newRow() {
        const row = $("row").content.firstElementChild.cloneNode(true);
        this.space.append(row);
        return row;
    }

    // The place between rows that is nearest to a point of the window: 0 is in front of all.
    gapAt(y) {
        const top = this.scroller.getBoundingClientRect().top;
        const at = Math.round((y - top + this.scroller.scrollTop) / this.height);
        return Math.max(0, Math.min(this.rows.length, at));
    }

    reveal(index) {
        const top = index * this.height;
        const {scrollTop, clientHeight} = this.scroller;
        if (top < scrollTop)
            this.scroller.scrollTop = top;
        else if (top + this.height > scrollTop + clientHeight)
            this.scroller.scrollTop = top + this.height - clientHeight;
        this.paint();
    }
}
