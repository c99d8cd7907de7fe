/** A list program, groups of a voltage and a current for a time, as a curve and as a position on it. */

/** The most groups of a list. */
export const kMostGroups = 512;

/** How long one cycle takes, in seconds. */
export function durationOf(groups) {
    return groups.reduce((sum, group) => sum + group.duration, 0);
}

/**
 * The corners of the curve: each group is level, and the next one begins where it ends.
 * @param {"voltage"|"current"} quantity
 * @returns {{time: number, value: number}[]}
 */
export function cornersOf(groups, quantity) {
    const corners = [];
    let time = 0;
    for (const group of groups) {
        corners.push({ time, value: group[quantity] });
        time += group.duration;
        corners.push({ time, value: group[quantity] });
    }
    return corners;
}

/**
 * The curve as the path of an SVG drawing.
 * @param {{width: number, height: number, maximum: number}} box what the whole duration and 0 to `maximum` fill.
 */
export function pathOf(groups, quantity, box) {
    const duration = durationOf(groups);
    if (!(duration > 0) || !(box.maximum > 0)) return "";
    const x = (time) => Number(((time / duration) * box.width).toFixed(2));
    const y = (value) => Number((box.height - (value / box.maximum) * box.height).toFixed(2));
    return cornersOf(groups, quantity)
        .map((corner, index) => `${index === 0 ? "M" : "L"}${x(corner.time)} ${y(corner.value)}`)
        .join("");
}

/** Where a group begins and ends in its cycle; undefined for one that there is not. The first is 1. */
export function spanOf(groups, number) {
    if (!(number >= 1 && number <= groups.length)) return undefined;
    const from = durationOf(groups.slice(0, number - 1));
    return { from, to: from + groups[number - 1].duration };
}

/** A maximum for an axis: the smallest 1, 2 or 5 times a power of ten that is not less. */
export function roundMaximum(value) {
    if (!(value > 0)) return 1;
    const power = 10 ** Math.floor(Math.log10(value));
    return Number(([1, 2, 5, 10].find((factor) => factor * power >= value * (1 - 1e-9)) * power).toPrecision(6));
}

/** What is wrong with a list, in words; undefined when it can be loaded. Limits of levels are the driver's to keep. */
export function faultOf(groups) {
    if (groups.length === 0) return "The list has no groups";
    if (groups.length > kMostGroups) return `A list has ${kMostGroups} groups at most`;
    const index = groups.findIndex((group) => !(group.duration > 0));
    return index < 0 ? undefined : `Group ${index + 1} takes no time`;
}
