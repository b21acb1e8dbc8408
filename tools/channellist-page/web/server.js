// The talk with the server.

export class Refused extends Error {}        // it answered, and did not do it
export class Unreachable extends Refused {}  // it did not answer

async function ask(path, options = {}) {
    let response;
    try {
        response = await fetch(path, options);
    } catch {
        throw new Unreachable("The server of this page does not answer: start \"channellist page\" again and open its address in this tab");
    }
    const answer = await response.json().catch(() => ({error: "the server broke off"}));
    if (!response.ok)
        throw new Refused(answer.error ?? response.statusText);
    return answer;
}

export const mark = async () => (await ask("api/mark")).mark;
// Of no list but FAV1 to FAV4, index.html asks early.
export const lists = (uuids) =>
    ask("api/lists" + uuids.map((uuid, i) => (i ? "&uuid=" : "?uuid=") + encodeURIComponent(uuid)).join(""));
export const save = (lists) => ask("api/save", {
    method: "POST",
    headers: {"Content-Type": "application/json"},
    body: JSON.stringify({lists}),
});
