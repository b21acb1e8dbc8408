// An element of the page with its properties and what it contains.
export function element(tag, properties = {}, ...content) {
    const made = Object.assign(document.createElement(tag), properties);
    made.append(...content);
    return made;
}
