/**
 * What the page knows, as a function of what has happened: messages of the server, and the ends of connections to it.
 * Nothing that was measured or set outlives the connection, or the link, by which it was read.
 */

export const kMostErrors = 200;
export const kMostLines = 400;

/** A state that does not come for so long (ms) is taken for a lost one. */
export const kStaleAfter = 4000;

export function initialState() {
    return {
        server: "connecting", // or "open", "lost"
        hello: null,
        link: { state: "connecting", text: "" },
        time: null,
        sequence: null,
        identity: null,
        sourceMode: null,
        channels: null,
        lists: [],
        programs: new Map(),
        errors: [],
        lines: [],
    };
}

/** What is no longer true once the connection or the link is gone. */
const kUnknown = { time: null, sequence: null, identity: null, sourceMode: null, channels: null, lists: [], programs: new Map() };

const kTransitions = {
    opened: (state) => ({ ...state, server: "open", link: { state: "connecting", text: "" }, errors: [] }),
    closed: (state) => ({ ...state, ...kUnknown, server: "lost", link: { state: "lost", text: "" } }),
    stale: (state) => ({
        ...state,
        ...kUnknown,
        link: { state: "lost", text: "The panel's program has sent no reading for a while." },
    }),
    hello: (state, message) => ({ ...state, hello: message }),
    state: (state, message) => ({
        ...state,
        ...(message.link.state === "connected" ? readingsOf(message) : kUnknown),
        link: message.link,
    }),
    errors: (state, message) => ({
        ...state,
        errors: [...(message.cleared ? [] : state.errors), ...message.entries].slice(-kMostErrors),
    }),
    lines: (state, message) => ({ ...state, lines: [...state.lines, message].slice(-kMostLines) }),
    linesCleared: (state) => ({ ...state, lines: [] }),
    list: (state, message) => ({ ...state, programs: new Map(state.programs).set(message.channel, message) }),
};

function readingsOf(message) {
    return {
        time: message.time,
        sequence: message.sequence,
        identity: message.identity ?? null,
        sourceMode: message.sourceMode ?? null,
        channels: message.channels ?? null,
        lists: message.lists ?? [],
    };
}

/** The state after an event; events and messages of a type that is not known change nothing. */
export function reduce(state, event) {
    const transition = Object.hasOwn(kTransitions, event.type) ? kTransitions[event.type] : undefined;
    return transition ? transition(state, event) : state;
}

/** Whether values may be shown and set. */
export function isConnected(state) {
    return state.server === "open" && state.link.state === "connected" && state.channels !== null;
}

/** The channels that a source mode takes away from outputs 1 and 2, and the one that it makes of them. */
const kModes = {
    normal: { joined: [], makes: undefined },
    series: { joined: ["CH1", "CH2"], makes: "CH5" },
    parallel: { joined: ["CH1", "CH2"], makes: "CH6" },
};

const kMadeBy = { CH5: "series", CH6: "parallel" };

/**
 * What a channel is in a source mode.
 * @returns {{live: boolean, note: string}}
 */
export function roleOf(name, sourceMode) {
    const mode = kModes[sourceMode];
    if (!mode) return { live: false, note: "" };
    if (mode.joined.includes(name)) return { live: false, note: `In ${sourceMode}: part of ${mode.makes}` };
    const maker = kMadeBy[name];
    if (!maker) return { live: true, note: "" };
    if (maker === sourceMode) return { live: true, note: `CH1 and CH2 in ${maker}` };
    return { live: false, note: `Only in ${maker}` };
}

/** The link in words, for the header. */
export function linkTextOf(state) {
    if (state.server === "connecting") return "Connecting to the panel’s program";
    if (state.server === "lost") return "Connection to the panel’s program lost";
    if (state.link.state === "lost") return "Link to the instrument lost";
    if (state.link.state === "connecting") return "Connecting to the instrument";
    return state.hello?.simulated ? "Simulated instrument" : "Connected";
}
