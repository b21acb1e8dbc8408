// Which entries of a list a pane shows.

// Letters without their marks, in lower case.
export const folded = (text) => text.normalize("NFKD").replace(/\p{M}/gu, "").toLowerCase();

// `filter`: {text, kind, place, hd, scrambled, hidden}, each empty for all. A text of digits alone
// is a number or its beginning, too.
export function found(entries, services, filter) {
    const words = folded(filter.text ?? "").split(/\s+/).filter(Boolean);
    const digits = /^\d+$/.test(filter.text?.trim() ?? "") ? filter.text.trim() : "";
    const fits = (wish, is) => !wish || (wish === "yes") === Boolean(is);
    if (words.length === 0 && !Object.values(filter).some(Boolean))
        return entries;
    return entries.filter((entry) => {
        const service = services.get(entry.id);
        const isNamed = words.every((word) => service.folded.includes(word))
            || (digits !== "" && String(entry.number).startsWith(digits));
        return isNamed && (!filter.kind || service.kind === filter.kind)
            && (!filter.place || service.place === filter.place)
            && fits(filter.hd, service.hd) && fits(filter.scrambled, service.scrambled)
            && fits(filter.hidden, entry.hidden);
    });
}
