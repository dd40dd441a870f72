// The oracles know no times in text. They are given every text that is a time written in one way, in which the order of
// the texts is the order of the instants.

const form = /^(\d{4})-(\d\d)-(\d\d)T(\d\d):(\d\d):(\d\d)(?:\.(\d+))?(?:Z|([+-])(\d\d):?(\d\d))$/;
const longestFraction = 15;

/** The time as "YYYY-MM-DDThh:mm:ss.fffffffffffffffZ", or undefined when the text names no instant. */
export function canonicalTime(text) {
  const parts = form.exec(text);
  if (parts === null) return undefined;
  const [year, month, day, hour, minute, second] = parts.slice(1, 7).map(Number);
  const written = new Date(0);
  written.setUTCFullYear(year, month - 1, day);
  written.setUTCHours(hour, minute, second);
  const exists =
    written.getUTCMonth() === month - 1 && written.getUTCDate() === day && hour < 24 && minute < 60 && second < 60;
  const offset = parts[8] === undefined ? 0 : Number(parts[8] + 1) * (Number(parts[9]) * 60 + Number(parts[10]));
  if (!exists || Number(parts[10] ?? 0) > 59 || Math.abs(offset) > 14 * 60) return undefined;
  const instant = new Date(written.getTime() - offset * 60000).toISOString();
  return `${instant.slice(0, 19)}.${(parts[7] ?? '').padEnd(longestFraction, '0')}Z`;
}

/** The text as the oracles are given it. */
export const rewrittenText = (text) => canonicalTime(text) ?? text;

/** The value with every time in it, at any depth, in the one way of writing. */
export function rewriteTimes(value) {
  if (typeof value === 'string') return rewrittenText(value);
  if (Array.isArray(value)) return value.map(rewriteTimes);
  if (value === null || typeof value !== 'object') return value;
  return Object.fromEntries(Object.entries(value).map(([name, member]) => [name, rewriteTimes(member)]));
}
