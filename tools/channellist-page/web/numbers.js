// The numbers of a list. An entry is {key, id, number, was, hidden, group}, `was` being the number
// that was read; a hidden one keeps its number and holds none. All functions give new entries and
// leave theirs alone. They follow the rules of the commands "edit ... move, add, remove" and
// "--renumber".

export function sorted(entries) {
    return [...entries].sort((a, b) => (a.group ?? 0) - (b.group ?? 0)
        || (a.number ?? -Infinity) - (b.number ?? -Infinity) || 0);
}

const nextFree = (number, reserved) => {
    while (reserved.has(number))
        ++number;
    return number;
};

// The shown ones get 1, 2, 3 ... in their order, around the numbers of OTT channels.
export function closeGaps(entries, reserved) {
    let last = 0;
    return entries.map((entry) => {
        if (entry.hidden)
            return entry;
        last = nextFree(last + 1, reserved);
        return entry.number === last ? entry : {...entry, number: last};
    });
}

export function hasNoGaps(entries, reserved) {
    return closeGaps(entries, reserved).every((entry, i) => entry === entries[i]);
}

export const numbersOf = (entries) =>
    entries.map((entry) => entry.number).sort((a, b) => (a ?? 0) - (b ?? 0));

// With the first of `numbers` for the first of `order`, and so on.
export function renumbered(entries, order, numbers) {
    const given = new Map(order.map((entry, i) => [entry.key, numbers[i]]));
    return entries.map((entry) => {
        const number = given.has(entry.key) ? given.get(entry.key) : entry.number;
        return number === entry.number ? entry : {...entry, number};
    });
}

// `block` comes to stand at `index` among the others that are shown; the numbers in use stay the
// same ones.
function reorder(entries, block, index) {
    const moving = new Set(block.map((entry) => entry.key));
    const holders = entries.filter((entry) => moving.has(entry.key) || !entry.hidden);
    const order = holders.filter((entry) => !moving.has(entry.key));
    order.splice(index, 0, ...block);
    return renumbered(entries, order, numbersOf(holders));
}

// In front of the entry `before`; null: behind all.
export function moveBefore(entries, block, before) {
    const moving = new Set(block.map((entry) => entry.key));
    const at = entries.findIndex((entry) => entry.key === before);
    const inFront = at < 0 ? entries : entries.slice(0, at);
    return reorder(entries, block, inFront.filter((entry) => !entry.hidden && !moving.has(entry.key)).length);
}

// The first of the block to `number`. When that is in use, those between the old place and the new
// one close up; else nothing else moves.
export function moveToNumber(entries, block, number, reserved) {
    const moving = new Set(block.map((entry) => entry.key));
    const isTaken = entries.some((entry) => !entry.hidden && entry.number === number);
    if (isTaken) {
        const holders = entries.filter((entry) => moving.has(entry.key) || !entry.hidden);
        return reorder(entries, block, numbersOf(holders).indexOf(number));
    }
    const others = entries.filter((entry) => !moving.has(entry.key));
    return insert(others, block, number, reserved);
}

// Entries that stand at `number`, and those behind them up to the next gap, move on.
export function insert(entries, block, number, reserved) {
    const at = new Map();
    for (const entry of entries)
        if (!entry.hidden)
            at.set(entry.number, [...(at.get(entry.number) ?? []), entry]);
    let next = nextFree(Math.max(1, number), reserved);
    for (const entry of block) {
        let pushed = [entry];
        for (let place = next; pushed.length > 0; place = nextFree(place + 1, reserved)) {
            const there = at.get(place) ?? [];
            at.set(place, pushed.map((each) => each.number === place ? each : {...each, number: place}));
            pushed = there;
        }
        next = nextFree(next + 1, reserved);
    }
    return [...entries.filter((entry) => entry.hidden), ...[...at.values()].flat()];
}

export function append(entries, block, reserved) {
    const last = entries.reduce((largest, entry) => Math.max(largest, entry.number ?? 0), 0);
    return insert(entries, block, last + 1, reserved);
}

// Shows hidden entries again; one that took such a number in the meantime moves on.
export function restore(entries, block, reserved) {
    let result = entries;
    for (const entry of block) {
        const shown = {...entry, hidden: false};
        const others = result.filter((each) => each.key !== entry.key);
        result = entry.number === null ? [...others, shown]
            : insert(others, [shown], entry.number, reserved);
    }
    return result;
}
