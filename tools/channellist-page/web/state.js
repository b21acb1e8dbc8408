// The state: what the lists held when they were read (the base), what was done to them since, and
// what was taken back. All of it are values; every function gives a new one.
import {closeGaps, dealt, hasNoGaps, moveBefore, moveToNumber, restore, sorted,
        without} from "./numbers.js";

// `rows` as the server sends them, with the number that was read and the entry's key: its service
// and, where a list names one again, which of them it is. A list that is not in the order of its
// numbers is so by kind first.
export function entriesOf(rows) {
    const seen = new Map();
    const isByKind = rows.some((row, i) => i > 0 && row[1] !== null && row[1] < (rows[i - 1][1] ?? 0));
    const kinds = [];
    return rows.map(([id, number, hidden, , kind]) => {
        const times = seen.get(id) ?? 0;
        seen.set(id, times + 1);
        if (!kinds.includes(kind))
            kinds.push(kind);
        const key = times ? `${id}.${times}` : `${id}`;
        const entry = {key, id, number, was: number, hidden: hidden !== 0};
        return isByKind ? {...entry, group: kinds.indexOf(kind)} : entry;
    });
}

const newEntry = (id) => ({key: `${id}`, id, number: null, hidden: false});

const pick = (entries, keys) => {
    const wanted = new Set(keys);
    const byKey = new Map(entries.filter(({key}) => wanted.has(key)).map((entry) => [entry.key, entry]));
    return keys.map((key) => byKey.get(key)).filter(Boolean);
};

// What the shown entry is in front of which the block steps up or down, as a whole.
function stepped(entries, block, by) {
    const shown = entries.filter((entry) => !entry.hidden);
    const moving = new Set(block);
    const first = shown.findIndex((entry) => moving.has(entry));
    return without(shown, block)[Math.max(0, first + by)]?.key ?? null;
}

const operations = {
    move: (entries, block, {number, by, before}, reserved) => number !== undefined
        ? moveToNumber(entries, block, number, reserved)
        : moveBefore(entries, block, by ? stepped(entries, block, by) : before, reserved),
    add(entries, block, {ids, before}, reserved) {
        const held = new Set(entries.map((entry) => entry.id));
        const joining = [...new Set(ids)].filter((id) => !held.has(id)).map(newEntry);
        return moveBefore(entries, joining, before, reserved);
    },
    remove: without,
    hide(entries, block) {
        const hiding = new Set(block);
        return entries.map((entry) => hiding.has(entry) ? {...entry, hidden: true} : entry);
    },
    show: (entries, block, op, reserved) => restore(entries, block.filter((entry) => entry.hidden), reserved),
    order: dealt,
    close: (entries, block, op, reserved) => closeGaps(entries, reserved),
};

// `doc` holds the entries of lists by uuid, `lists` what else is known of them: {fav, reserved}.
// A FAV list without gaps stays without. What happens to an entry of another list shows or hides
// it in the FAV lists, too.
export function apply(doc, op, lists) {
    const before = doc[op.list];
    const {fav, reserved} = lists[op.list];
    const after = sorted(operations[op.what](before, pick(before, op.keys ?? []), op, reserved));
    const old = new Set(before);
    const marks = new Map(fav ? [] : after.filter((entry) => !old.has(entry))
        .map((entry) => [entry.id, entry.hidden]));
    const next = {...doc, [op.list]: after};
    const isMarked = (entry) => (marks.get(entry.id) ?? entry.hidden) !== entry.hidden;
    for (const uuid of Object.keys(doc).filter((each) => lists[each].fav)) {
        if (next[uuid].some(isMarked))
            next[uuid] = next[uuid].map((entry) => isMarked(entry) ? {...entry, hidden: !entry.hidden} : entry);
        if (next[uuid] !== doc[uuid] && hasNoGaps(doc[uuid], lists[uuid].reserved))
            next[uuid] = closeGaps(next[uuid], lists[uuid].reserved);
    }
    return next;
}

export const docOf = (base) =>
    Object.fromEntries(Object.entries(base).map(([uuid, list]) => [uuid, list.entries]));

// `base`: {uuid: {version, entries}}.
export const start = (base) => ({base, past: [], future: [], docs: [docOf(base)]});
export const current = (state) => state.docs[state.docs.length - 1];

export function perform(state, op, lists) {
    const doc = apply(current(state), op, lists);
    return {...state, past: [...state.past, op], future: [], docs: [...state.docs, doc]};
}

export function undo(state) {
    if (state.past.length === 0)
        return state;
    const op = state.past[state.past.length - 1];
    return {...state, past: state.past.slice(0, -1), future: [op, ...state.future],
            docs: state.docs.slice(0, -1)};
}

export function redo(state, lists) {
    if (state.future.length === 0)
        return state;
    const [op, ...future] = state.future;
    return {...perform(state, op, lists), future};
}

export const isSame = (a, b) => a === b || (a.length === b.length && a.every((entry, i) =>
    entry.id === b[i].id && entry.number === b[i].number && entry.hidden === b[i].hidden));

// What was done to a list is in `base` already: it was saved, by whomever.
export function isDone(state, base, uuid) {
    return Boolean(base[uuid] && state.base[uuid]) && base[uuid].version !== state.base[uuid].version
        && isSame(base[uuid].entries, current(state)[uuid]);
}

// The same is done to other lists: what others wrote meanwhile, or more lists than before.
export function rebase(state, base, lists) {
    let next = start({...state.base, ...base});
    const done = new Set(Object.keys(base).filter((uuid) => isDone(state, base, uuid)));
    for (const op of state.past)
        if (next.base[op.list] && !done.has(op.list))
            next = perform(next, op, lists);
    return {...next, future: state.future};
}

// The lists that hold something else than the base.
export function changedLists(state) {
    const doc = current(state);
    return Object.keys(doc).filter((uuid) => !isSame(doc[uuid], state.base[uuid].entries));
}

// A line for each entry that differs, as the command "diff" tells it.
export function changes(before, after) {
    const gone = new Map(before.map((entry) => [entry.key, entry]));
    const lines = [];
    for (const entry of after) {
        const was = gone.get(entry.key);
        gone.delete(entry.key);
        const what = was ? [] : ["added"];
        if (was && was.number !== entry.number)
            what.push("moved");
        if (entry.hidden !== (was?.hidden ?? false))
            what.push(entry.hidden ? "hidden" : "restored");
        if (what.length > 0)
            lines.push({what, id: entry.id, before: was?.number ?? null, after: entry.number});
    }
    const removed = ({id, number}) => ({what: ["removed"], id, before: number, after: null});
    return [...[...gone.values()].map(removed), ...lines];
}
