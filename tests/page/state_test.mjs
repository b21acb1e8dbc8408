// The state without a browser: node --test tests/page/state_test.mjs
import assert from "node:assert/strict";
import test from "node:test";
import * as st from "../../tools/channellist-page/web/state.js";

const lists = {
    fav: {fav: 1, reserved: new Set([3])},
    gaps: {fav: 2, reserved: new Set()},
    odd: {fav: 3, reserved: new Set()},
    lost: {fav: 4, reserved: new Set()},
    kinds: {fav: 0, reserved: new Set()},
    all: {fav: 0, reserved: new Set()},
};
const row = (id, number, hidden = 0) => [id, number, hidden, `${id}`, "TV", "", 0, 0];
const base = () => ({
    fav: {version: "1", entries: st.entriesOf([row(10, 1), row(11, 2), row(12, 4), row(13, 5)])},
    gaps: {version: "1", entries: st.entriesOf([row(10, 1), row(11, 2, 1), row(12, 7), row(13, 8)])},
    odd: {version: "1", entries: st.entriesOf([row(10, 2), row(11, 3), row(12, 6), row(13, null), row(14, null)])},
    lost: {version: "1", entries: st.entriesOf([row(10, 1, 1), row(11, 1), row(12, 3, 1), row(13, 3), row(14, 6)])},
    kinds: {version: "1", entries: st.entriesOf([10, 11, 12, 13, 14, 15].map((id, i) =>
        [id, i % 3 + 1, 0, `${id}`, i < 3 ? "TV" : "Radio"]))},
    all: {version: "1", entries: st.entriesOf([10, 11, 12, 13, 14, 15].map((id, i) => row(id, i + 1)))},
});
const told = (entries) => entries.map((e) => `${e.number}:${e.hidden ? "-" : ""}${e.id}`).join(" ");

test("what an operation makes of a list", () => {
    const cases = [
        [{what: "move", list: "fav", keys: ["13"], before: "10"}, "1:13 2:10 4:11 5:12"],
        [{what: "move", list: "fav", keys: ["10", "11"], before: null}, "1:12 2:13 4:10 5:11"],
        [{what: "move", list: "fav", keys: ["10", "12"], by: 1}, "1:11 2:10 4:12 5:13"],
        [{what: "move", list: "fav", keys: ["10"], by: -1}, "1:10 2:11 4:12 5:13"],
        [{what: "move", list: "fav", keys: ["10"], number: 4}, "1:11 2:12 4:10 5:13"],
        [{what: "add", list: "fav", ids: [14, 10, 15], before: "11"}, "1:10 2:14 4:15 5:11 6:12 7:13"],
        [{what: "add", list: "fav", ids: [14], before: null}, "1:10 2:11 4:12 5:13 6:14"],
        [{what: "remove", list: "fav", keys: ["10"]}, "1:11 2:12 4:13"],
        [{what: "order", list: "fav", keys: ["13", "10"]}, "1:13 2:11 4:12 5:10"],
        [{what: "remove", list: "gaps", keys: ["12"]}, "1:10 2:-11 8:13"],
        [{what: "move", list: "gaps", keys: ["13"], number: 3}, "1:10 2:-11 3:13 7:12"],
        [{what: "move", list: "gaps", keys: ["13"], number: 7}, "1:10 2:-11 7:13 8:12"],
        [{what: "move", list: "gaps", keys: ["10", "12"], number: 7}, "1:13 2:-11 7:10 8:12"],
        [{what: "move", list: "odd", keys: ["11", "13", "14"], number: 2}, "2:13 3:14 4:11 5:10 6:12"],
        [{what: "move", list: "odd", keys: ["13"], before: "11"}, "null:14 2:10 3:13 4:11 6:12"],
        [{what: "move", list: "odd", keys: ["12"], before: "10"}, "null:13 null:14 2:12 3:10 6:11"],
        [{what: "add", list: "gaps", ids: [14, 15], before: "12"}, "1:10 2:-11 7:14 8:15 9:12 10:13"],
        [{what: "show", list: "gaps", keys: ["11"]}, "1:10 2:11 7:12 8:13"],
        [{what: "show", list: "lost", keys: ["10", "12"]}, "1:10 2:11 3:12 4:13 6:14"],
        [{what: "move", list: "lost", keys: ["14", "13", "10"], number: 2}, "1:11 2:-10 3:-12 3:13 4:14"],
        [{what: "move", list: "lost", keys: ["11", "13"], number: 6}, "1:-10 1:14 3:-12 6:11 7:13"],
        [{what: "move", list: "kinds", keys: ["10", "11"], number: 2}, "1:12 2:10 3:11 1:13 2:14 3:15"],
        [{what: "close", list: "gaps"}, "1:10 2:-11 2:12 3:13"],
    ];
    for (const [op, expected] of cases) {
        const before = st.start(base());
        const after = st.perform(before, op, lists);
        assert.equal(told(st.current(after)[op.list]), expected, JSON.stringify(op));
        assert.deepEqual(st.current(st.undo(after)), st.current(before));
        assert.deepEqual(st.current(st.redo(st.undo(after), lists)), st.current(after));
    }
});

test("other lists hide and show in the FAV lists", () => {
    let state = st.perform(st.start(base()), {what: "hide", list: "all", keys: ["10"]}, lists);
    assert.equal(told(st.current(state).fav), "1:-10 1:11 2:12 4:13");
    assert.equal(told(st.current(state).gaps), "1:-10 2:-11 7:12 8:13");
    state = st.perform(state, {what: "move", list: "all", keys: ["11"], before: null}, lists);
    assert.equal(told(st.current(state).gaps), "1:-10 2:11 7:12 8:13");
});

test("work is done again on what others left", () => {
    let state = st.perform(st.start(base()), {what: "move", list: "fav", keys: ["13"], before: "10"}, lists);
    state = st.perform(state, {what: "remove", list: "fav", keys: ["11"]}, lists);
    const theirs = {version: "2", entries: st.entriesOf([row(11, 1), row(12, 2), row(13, 4), row(15, 5)])};
    const merged = st.rebase(state, {fav: theirs}, lists);
    assert.equal(told(st.current(merged).fav), "1:12 2:15 4:13");  // 10, its neighbour, is gone
    assert.deepEqual(st.changedLists(merged), ["fav"]);
    assert.deepEqual(st.changes(theirs.entries, st.current(merged).fav).map((line) => line.what.join()),
        ["removed", "moved", "moved"]);
});

test("a service that a list names twice stays two entries", () => {
    const twice = {...base(), gaps: {version: "1", entries: st.entriesOf([row(10, 1), row(10, 2)])}};
    const state = st.perform(st.start(twice), {what: "remove", list: "gaps", keys: ["10.1"]}, lists);
    assert.equal(told(st.current(state).gaps), "1:10");
});
