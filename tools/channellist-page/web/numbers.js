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
    given.has(entry.key) ? {...entry, number: given.get(entry.key)} : entry);

// The numbers of these entries, dealt out again in this order.
export function dealt(entries, order) {
    const numbers = [...order].sort(byNumber).map((entry) => entry.number);
    const given = new Map();
    order.forEach((entry, i) => entry.number === numbers[i] || given.set(entry.key, numbers[i]));
    return numbered(entries, given);
}

// `count` free numbers, the first of them at `number` or behind it.
const placesFrom = (number, count, reserved) => Array.from({length: count}, () => {
    const place = nextFree(number, reserved);
    number = place + 1;
    return place;
});

const withNumbers = (entries, numbers) =>
    entries.map((entry, i) => entry.number === numbers[i] ? entry : {...entry, number: numbers[i]});

// The indices of the shown ones in the order of their numbers, those of one number in the list's.
const shownIndices = (entries) => [...entries.keys()].filter((i) => isPlaced(entries[i]))
    .sort((a, b) => byNumber(entries[a], entries[b]));

// Entries join at numbers, `wishes` being [entry, number] from the least number on. Those that stand
// at such a number, and those behind them up to the next gap, move on; all in one pass.
function insert(entries, wishes, reserved) {
    const all = [...entries, ...wishes.map(([entry]) => entry)];
    const numbers = all.map((entry) => entry.number);
    const shown = shownIndices(entries);
    const waiting = [];  // for a place: those that stood at the same number stay together
    for (let wish = 0, next = 0, place = 0; wish < wishes.length || waiting.length > 0;) {
        place = nextFree(waiting.length > 0 ? place + 1 : wishes[wish][1], reserved);
        for (; wish < wishes.length && wishes[wish][1] <= place; ++wish)
            waiting.unshift([entries.length + wish]);
        while (entries[shown[next]]?.number < place)
            ++next;
        const there = [];
        for (; entries[shown[next]]?.number === place; ++next)
            there.push(shown[next]);
        if (there.length > 0)
            waiting.push(there);
        for (const index of waiting.shift())
            numbers[index] = place;
    }
    return withNumbers(all, numbers);
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
        const places = placesFrom(Math.max(1, others[index]?.number ?? last + 1), block.length, reserved);
        return insert(rest, block.map((entry, i) => [entry, places[i]]), reserved);
    }
    return dealt(entries, [...others.slice(0, index), ...block, ...others.slice(index)]);
}

// The first index of ascending numbers at which there is `number` or more.
function firstAt(numbers, number) {
    let [first, last] = [0, numbers.length];
    while (first < last) {
        const middle = (first + last) >> 1;
        if (numbers[middle] < number)
            first = middle + 1;
        else
            last = middle;
    }
    return first;
}

// What is at `from` of an array goes to `to`, as `value`; those between close up.
function shift(array, from, to, value) {
    if (from < to)
        array.copyWithin(from, from + 1, to + 1);
    else
        array.copyWithin(to + 1, to, from);
    array[to] = value;
}

// The shown entries as they stand: their indices, and their numbers.
class Line {
    constructor(entries) {
        this.order = Int32Array.from(shownIndices(entries));
        this.numbers = Float64Array.from(this.order, (i) => entries[i].number);
        this.isTied = this.numbers.some((number, i) => number === this.numbers[i - 1]);
    }

    // When the number is in use, those between the old place and the new one close up.
    move(index, number) {
        const {order, numbers} = this;
        const from = order.indexOf(index);
        if (from < 0 || numbers[from] === number)
            return;
        const isUsed = numbers[firstAt(numbers, number)] === number;
        const to = number > numbers[from] ? firstAt(numbers, number + 1) - 1 : firstAt(numbers, number);
        shift(order, from, to, index);
        if (!isUsed)
            shift(numbers, from, to, number);
        else if (this.isTied)
            this.sortTied(Math.min(from, to), Math.max(from, to));
    }

    sortTied(first, last) {
        const {order, numbers} = this;
        for (let i = first; i <= last || numbers[i] === numbers[i - 1]; ++i)
            for (let k = i; numbers[k] === numbers[k - 1] && order[k] < order[k - 1]; --k)
                [order[k - 1], order[k]] = [order[k], order[k - 1]];
    }
}

// A block to `number` and those behind it, as the command does it: those without a number join first.
// Then those in front of or at their place go there from the last on, those behind it from the first
// on: so none of the block is between the old and the new place of another.
export function moveToNumber(entries, block, number, reserved) {
    const ordered = [...block].sort(byNumber);
    const places = placesFrom(number, block.length, reserved);
    const placeOf = new Map(ordered.map((entry, i) => [entry.key, places[i]]));
    const joining = ordered.filter((entry) => entry.number === null && !entry.hidden);
    const joined = joining.length === 0 ? entries : insert(without(entries, joining),
        joining.map((entry) => [entry, placeOf.get(entry.key)]), reserved);
    const moves = [...joined.keys()].filter((i) => placeOf.has(joined[i].key))
        .map((i) => [i, placeOf.get(joined[i].key)]).sort(([, a], [, b]) => a - b);
    const isInFront = ([index, place]) => joined[index].number <= place;
    const line = new Line(joined);
    for (const move of [...moves.filter(isInFront).reverse(), ...moves.filter((each) => !isInFront(each))])
        line.move(...move);
    const given = joined.map((entry) => entry.number);
    for (const [index, place] of moves)
        given[index] = place;
    line.order.forEach((index, i) => given[index] = line.numbers[i]);
    return withNumbers(joined, given);
}

// Shows hidden entries again; one that took such a number in the meantime moves on.
export function restore(entries, block, reserved) {
    const wishes = [...block].sort(byNumber).map((entry) => [{...entry, hidden: false}, entry.number]);
    const hasNone = ([, number]) => number === null;
    return insert([...without(entries, block), ...wishes.filter(hasNone).map(([entry]) => entry)],
        wishes.filter((each) => !hasNone(each)), reserved);
}
