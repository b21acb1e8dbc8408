// The numbers of a list. An entry is {key, id, number, was, hidden, group}, `was` being the number
// that was read; a hidden one keeps its number and holds none. All functions give new entries and
// leave theirs alone. They follow the rules of the commands "edit ... move, add, remove" and
// "--renumber".

const byNumber = (a, b) => (a.number ?? -Infinity) - (b.number ?? -Infinity) || 0;

export const sorted = (entries) =>
    [...entries].sort((a, b) => (a.group ?? 0) - (b.group ?? 0) || byNumber(a, b));

const isPlaced = (entry) => !entry.hidden && entry.number !== null;

export const without = (entries, block) => {
    const keys = new Set(block.map((entry) => entry.key));
    return entries.filter((entry) => !keys.has(entry.key));
};

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

// `given`: numbers by key.
const numbered = (entries, given) => entries.map((entry) =>
    given.has(entry.key) && given.get(entry.key) !== entry.number
        ? {...entry, number: given.get(entry.key)} : entry);

// The numbers of these entries, dealt out again in this order.
export function dealt(entries, order) {
    const numbers = [...order].sort(byNumber).map((entry) => entry.number);
    return numbered(entries, new Map(order.map((entry, i) => [entry.key, numbers[i]])));
}

// A block of entries comes to stand at `number` and behind it. Those that stand there, and those
// behind them up to the next gap, move on.
function insert(entries, block, number, reserved) {
    const at = new Map();
    for (const entry of entries.filter(isPlaced))
        at.set(entry.number, [...(at.get(entry.number) ?? []), entry]);
    const given = new Map();
    const waiting = block.map((entry) => [entry]);
    for (let i = 0, place = nextFree(number, reserved); i < waiting.length; ++i) {
        waiting.push(...(at.has(place) ? [at.get(place)] : []));
        for (const entry of waiting[i])
            given.set(entry.key, place);
        place = nextFree(place + 1, reserved);
    }
    return numbered([...entries, ...block], given);
}

// A block in front of the entry `before`; null: behind all. The numbers in use stay the same ones,
// unless one of the block has none yet: then it is inserted.
export function moveBefore(entries, block, before, reserved) {
    const rest = without(entries, block);
    const others = rest.filter(isPlaced);
    const at = entries.findIndex((entry) => entry.key === before);
    const index = at < 0 ? others.length : without(entries.slice(0, at), block).filter(isPlaced).length;
    if (block.some((entry) => entry.number === null)) {
        const last = rest.reduce((largest, entry) => Math.max(largest, entry.number ?? 0), 0);
        return insert(rest, block, Math.max(1, others[index]?.number ?? last + 1), reserved);
    }
    return dealt(entries, [...others.slice(0, index), ...block, ...others.slice(index)]);
}

// One of `line`, which are entries to be changed, to `number`. When that is in use, those between the
// old place and the new one close up.
function moveOne(line, moved, number) {
    const [least, most] = [moved.number, number].sort((a, b) => a - b);
    const between = line.filter((entry) => entry !== moved && isPlaced(entry)
        && entry.number >= least && entry.number <= most).sort(byNumber);
    if (!moved.hidden && between.some((entry) => entry.number === number)) {
        const order = number < moved.number ? [moved, ...between] : [...between, moved];
        const numbers = [...order].sort(byNumber).map((entry) => entry.number);
        order.forEach((entry, i) => entry.number = numbers[i]);
    }
    moved.number = number;
}

// A block to `number` and those behind it, as the command does it: those without a number join first.
// Then those in front of or at their place go there from the last on, those behind it from the first
// on: so none of the block is between the old and the new place of another.
export function moveToNumber(entries, block, number, reserved) {
    let last = number - 1;
    const ordered = [...block].sort(byNumber);
    const places = ordered.map(() => last = nextFree(last + 1, reserved));
    const joined = ordered.filter((entry) => entry.number === null).reduce((list, entry, i) =>
        entry.hidden ? numbered(list, new Map([[entry.key, places[i]]]))
            : insert(without(list, [entry]), [entry], places[i], reserved), entries);
    const line = joined.map((entry) => ({...entry}));
    const moves = ordered.map(({key}, i) => [line.find((entry) => entry.key === key), places[i]]);
    const isInFront = ([entry, place]) => entry.number <= place;
    const order = [...moves.filter(isInFront).reverse(), ...moves.filter((each) => !isInFront(each))];
    for (const [entry, place] of order)
        moveOne(line, entry, place);
    return numbered(joined, new Map(line.map((entry) => [entry.key, entry.number])));
}

// Shows hidden entries again; one that took such a number in the meantime moves on.
export function restore(entries, block, reserved) {
    return block.reduce((list, entry) => {
        const shown = {...entry, hidden: false};
        return entry.number === null ? [...without(list, [entry]), shown]
            : insert(without(list, [entry]), [shown], entry.number, reserved);
    }, entries);
}
