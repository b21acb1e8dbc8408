// Unsaved work, kept in the tab over a reload and a server that was started again.

const name = (database) => `work of ${database}`;

export function keep(database, state) {
    try {
        if (state.past.length === 0)
            sessionStorage.removeItem(name(database));
        else
            sessionStorage.setItem(name(database), JSON.stringify({
                past: state.past,
                future: state.future,
                versions: Object.fromEntries(
                    Object.entries(state.base).map(([uuid, list]) => [uuid, list.version])),
            }));
        return true;
    } catch {
        return false;  // no room
    }
}

// {past, future, versions}; null without.
export function kept(database) {
    try {
        const work = JSON.parse(sessionStorage.getItem(name(database)));
        return Array.isArray(work?.past) && work.past.length > 0 ? work : null;
    } catch {
        return null;
    }
}
