// Unsaved work, kept in the tab over a reload and a server that was started again.

const name = (database) => `work of ${database}`;

const idsOf = (op) => op.ids ?? (op.keys ?? []).map((key) => parseInt(key, 10));

// The `print` of a service tells what it is, whatever its key.
export function keep(database, state, services) {
    try {
        if (state.past.length === 0)
            sessionStorage.removeItem(name(database));
        else
            sessionStorage.setItem(name(database), JSON.stringify({
                past: state.past,
                future: state.future,
                prints: Object.fromEntries(state.past.flatMap(idsOf).map((id) => [id, services.get(id)?.print])),
                versions: Object.fromEntries(
                    Object.entries(state.base).map(([uuid, list]) => [uuid, list.version])),
            }));
        return true;
    } catch {
        return false;  // no room
    }
}

// {past, future, prints, versions}; null without.
export function kept(database) {
    try {
        const work = JSON.parse(sessionStorage.getItem(name(database)));
        return Array.isArray(work?.past) && work.past.length > 0 ? work : null;
    } catch {
        return null;
    }
}
