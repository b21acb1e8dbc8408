// Elements of the page: the one of an id, and a new one with its properties and what it contains.
export const $ = (id) => document.getElementById(id);

export function element(tag, properties = {}, ...content) {
    const made = Object.assign(document.createElement(tag), properties);
    made.append(...content);
    return made;
}
