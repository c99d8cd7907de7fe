/** Columns as text of comma-separated values (RFC 4180): lines end in CR LF, what is not known is empty. */

function field(value) {
    if (value === null || value === undefined) return "";
    if (typeof value === "number") return Number.isFinite(value) ? String(value) : "";
    return /[",\r\n]/.test(value) ? `"${value.replaceAll('"', '""')}"` : value;
}

/**
 * @param {string[]} names the header.
 * @param {Array[]} columns one for each name, all of one length.
 */
export function toCsv(names, columns) {
    const lines = [names.map(field).join(",")];
    for (let row = 0; row < (columns[0]?.length ?? 0); row += 1)
        lines.push(columns.map((column) => field(column[row])).join(","));
    return lines.map((line) => `${line}\r\n`).join("");
}
