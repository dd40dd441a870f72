// Random pairs of a document and a where document, as JSON text. Documents look like the service's own (points with
// samples and relations), with members missing, null or of another type; where documents use the whole language of
// docs/query-language.md and often ask for what the document holds, so that about as many match as do not.

/** A number as it is to be written, because JSON.stringify would write 5.0 as 5 and round large integers. */
class NumberText {
  constructor(text) {
    this.text = text;
  }
}

function write(value) {
  if (value instanceof NumberText) return value.text;
  if (Array.isArray(value)) return `[${value.map(write).join(',')}]`;
  if (value !== null && typeof value === 'object')
    return `{${Object.entries(value).map(([name, member]) => `${JSON.stringify(name)}:${write(member)}`).join(',')}}`;
  return JSON.stringify(value);
}

const texts = [
  'a', 'b', 'ab', 'A', 'B', 'aB', '', ' ', 'K1', 'k1', 'K10', 'Wall K1 north', 'wall k2', '10', '9', '5', 'null', 'true',
  'é', 'É', 'e\u0301', 'z', 'ΣΑΣ', 'σας', 'ПЛОТИНА', '基坑', '基坑 K1', '\u{1f600}', '\uff5e', 'a\u{1f600}b', '\u0663', 'ß', 'ẞ',
  '\u212a1', 'x\ny', 'x\nY', 'x\n', 'x\r\ny', 'x\u2028y', 'a\u0000b', '\u0000', "o'clock", 'a.b', 'a*b', '$in', '\u00a0', '\ufeffa',
  '2024-03-01', '2024-03-01T11', '2024-03', '2024-03-01T00:00:00', '2024-02-30T00:00:00Z', '2024-03-01 00:00:00Z',
  '2024-03-01T24:00:00Z', '2024-03-01T00:00:60Z', '2024-03-01T00:00:00+14:01', '2024-03-01T00:00:00.Z', '2024-13-01T00:00:00Z'];
const commonTexts = ['a', 'b', 'ab', 'A', 'K1', 'k1', 'Wall K1 north', 'é', '基坑', '10'];

const numbers = [
  '0', '-0', '-0.0', '0.0', '1', '1.0', '-1', '2', '5', '5.0', '5e0', '9', '10', '1e1', '1.5', '0.1', '0.3', '0.30000000000000004',
  '-2.5', '100', '1e2', '1e-7', '5e-324', '1.7976931348623157e308', '-1e300', '123456789.125'];
const largeNumbers = [
  '9007199254740991', '9007199254740992', '9007199254740992.0', '9007199254740993', '-9007199254740993', '9223372036854775807',
  '9223372036854775808', '9223372036854775808.0', '-9223372036854775808', '18446744073709551615', '18446744073709551616.0', '1e19'];

const instants = [-1, 0, 951782399999, 1709164799999, 1709251200000, 1709251200001, 1709254800000, 1709337600000, 1735689599000];
const offsets = [null, null, null, 0, 480, -60, 330, -210, 840, -720];

/** One of many ways to write a time. */
function timeText(chance, milliseconds) {
  const offset = chance.of(offsets);
  const local = new Date(milliseconds + (offset ?? 0) * 60000).toISOString();
  const fraction = local.slice(20, 23);
  const fractions = [`.${fraction}`, `.${fraction}0`, `.${fraction}000000`, `.${fraction}4`, `.${fraction}999`, `.${fraction}000000001`];
  if (fraction === '000') fractions.push('', '', '');
  const two = (number) => String(number).padStart(2, '0');
  const size = Math.abs(offset ?? 0);
  const sign = offset < 0 || (offset === 0 && chance.oneIn(2)) ? '-' : '+';
  const zone = offset === null ? 'Z' : sign + two(Math.floor(size / 60)) + (chance.oneIn(3) ? '' : ':') + two(size % 60);
  return local.slice(0, 19) + chance.of(fractions) + zone;
}

const anyTime = (chance) => timeText(chance, chance.of(instants));
const oneText = (chance) => chance.of(chance.oneIn(2) ? texts : commonTexts);
const anyText = (chance) => (chance.oneIn(5) ? `${chance.of(commonTexts)}\n${chance.of(commonTexts)}` : oneText(chance));
const anyNumber = (chance) => new NumberText(chance.of(chance.oneIn(25) ? largeNumbers : numbers));
const anyScalar = (chance) => {
  switch (chance.below(10)) {
    case 0: return null;
    case 1: return true;
    case 2: return false;
    case 3: return anyTime(chance);
    case 4: case 5: case 6: return anyNumber(chance);
    default: return anyText(chance);
  }
};

function anyObject(chance, depth) {
  const object = {};
  for (const name of chance.shuffled(['a', 'b', 'code', 'rId', '0', 'value']).slice(0, chance.below(4)))
    object[name] = anyValue(chance, depth + 1);
  return object;
}

const list = (chance, longest, member) => Array.from({ length: chance.below(longest + 1) }, () => member(chance));

function anyValue(chance, depth = 0) {
  const kind = depth < 3 ? chance.below(10) : 9;
  if (kind === 0) return anyObject(chance, depth);
  if (kind === 1) return list(chance, 3, (c) => anyValue(c, depth + 1));
  return anyScalar(chance);
}

const maybe = (usual) => (chance) => {
  const kind = chance.below(16);
  if (kind === 0) return undefined;
  if (kind === 1) return null;
  return kind === 2 ? anyValue(chance) : usual(chance);
};

/** As maybe, and missing more often, as members of samples and relations are. */
const rarer = (usual) => (chance) => (chance.oneIn(5) ? undefined : maybe(usual)(chance));

/** An object whose members are made in order; those that make undefined are left out. */
const objectOf = (makers) => (chance) =>
  Object.fromEntries(Object.entries(makers).map(([name, make]) => [name, make(chance)]).filter(([, value]) => value !== undefined));

const relation = objectOf({ type: rarer((chance) => chance.of(['model', 'drawing'])), rId: rarer((chance) => chance.of(['m1', 'm2', 'm3'])) });
const sample = objectOf({
  time: maybe(anyTime),
  value: rarer(anyNumber),
  timeFlag: rarer((chance) => chance.of(['A', 'B'])),
  tags: rarer((chance) => list(chance, 2, anyText)),
});

const members = {
  name: maybe(anyText),
  category: maybe((chance) => chance.of(commonTexts)),
  depth: maybe(anyNumber),
  active: maybe((chance) => chance.oneIn(2)),
  createdAt: maybe(anyTime),
  alarmTo: maybe((chance) => list(chance, 3, anyText)),
  levels: maybe((chance) => list(chance, 3, anyNumber)),
  links: maybe((chance) => list(chance, 3, relation)),
  data: maybe((chance) => list(chance, 3, sample)),
  cell: maybe(objectOf({ name: maybe(anyText), site: maybe(objectOf({ code: maybe(anyText), opened: maybe(anyTime) })) })),
  odd: anyValue,
};

const paths = [
  'name', 'name', 'name', 'category', 'category', 'depth', 'depth', 'depth', 'active', 'active', 'createdAt', 'createdAt', 'createdAt',
  'alarmTo', 'alarmTo', 'levels', 'levels', 'links', 'links.rId', 'links.rId', 'links.type', 'data.time', 'data.value', 'data.value',
  'data.timeFlag', 'data.timeFlag', 'data.tags', 'cell', 'cell.name', 'cell.site.code', 'cell.site.opened', 'cell.site', 'odd', 'odd.a', 'odd.b.a', 'odd.0',
  'alarmTo.0', 'levels.1', 'links.0.rId', 'data.1.value', 'data.0.tags.0', 'alarmTo.01', 'name.a', 'remark'];

/** Whatever the path may mean in the document, for operands that are likely to be met. */
function found(value, names) {
  if (names.length === 0) return [value];
  if (value === null || typeof value !== 'object' || value instanceof NumberText) return [];
  const [name, ...rest] = names;
  const direct = Object.hasOwn(value, name) ? found(value[name], rest) : [];
  return Array.isArray(value) ? [...direct, ...value.flatMap((member) => found(member, names))] : direct;
}

const isPlainObject = (value) => value !== null && typeof value === 'object' && !Array.isArray(value) && !(value instanceof NumberText);
const isTime = (value) => typeof value === 'string' && /^\d{4}-\d\d-\d\dT.*[\dZ]$/.test(value) && !Number.isNaN(Date.parse(value));

/** The same value written otherwise, or nearly the same. */
function respelt(chance, value) {
  if (isTime(value)) return timeText(chance, Date.parse(value));
  if (value instanceof NumberText && largeNumbers.includes(value.text)) return new NumberText(chance.of(largeNumbers));
  if (value instanceof NumberText && /^-?\d{1,9}$/.test(value.text)) return new NumberText(`${value.text}.0`);
  if (isPlainObject(value)) return Object.fromEntries(chance.shuffled(Object.entries(value)).slice(chance.oneIn(3) ? 1 : 0));
  if (Array.isArray(value)) return chance.oneIn(3) ? [...value].reverse() : value.map((member) => respelt(chance, member));
  return value;
}

const anyOfType = (chance, path) => {
  if (/time|createdAt|opened/.test(path)) return anyTime(chance);
  if (/depth|value|levels/.test(path)) return anyNumber(chance);
  return path === 'active' ? chance.oneIn(2) : anyText(chance);
};

function operand(chance, document, path) {
  if (chance.oneIn(15)) return null;
  const candidates = found(document, path.split('.'));
  if (candidates.length > 0 && !chance.oneIn(5)) {
    const value = chance.of(candidates);
    const taken = Array.isArray(value) && value.length > 0 && !chance.oneIn(3) ? chance.of(value) : value;
    return chance.oneIn(2) ? taken : respelt(chance, taken);
  }
  return chance.oneIn(4) ? anyValue(chance) : anyOfType(chance, path);
}

/** An operand that has an order: anything but a list or an object. */
function bound(chance, document, path) {
  const value = operand(chance, document, path);
  return Array.isArray(value) || isPlainObject(value) ? anyOfType(chance, path) : value;
}

const escaped = (text) => text.replace(/[\\^$.*+?()[\]{}|]/g, '\\$&');

const patterns = [
  '', 'K1', '^K1$', '^k', 'a|b', '^[a-c]+$', '[^a]', '^.$', '^..$', 'x.y', 'x.Y', '^y$', '^Y$', 'x$', '^$', '^(a|ab)(b?)$', 'a{1,2}b?$', 'é',
  '^É', 'σας', 'плотина', '基', '\\.', 'a\\*b', '(?=.*k)(?=.*1)', '^(?!K)', '(.)\\1', '[\u{1f600}-\u{1f64f}]', '\u{1f600}', 'k1', 'ss', 'ß',
  '\\d', '^\\w+$', '\\s', '\\bK', '\\x41', '\\n', '2024', 'T00:00', 'Z$', '(?<n>a)b', 'a+?b', '[[:alpha:]]', '\\Aa', '\\p{L}', '\\X', '\\h', '(?i)k', 'a++b', '(?>a)b', ' K 1 # name'];

/** A pattern for a part of the text, with some of it open or in the other case, and often bound to the ends of a line. */
function patternWithin(chance, text) {
  const lineBreak = text.indexOf('\n');
  const characters = [...text];
  const begin = lineBreak > 0 && chance.oneIn(2) ? [...text.slice(0, lineBreak)].length + chance.below(2) : chance.below(characters.length);
  const part = characters.slice(begin, begin + 1 + chance.below(4)).map((character) => {
    const kind = chance.below(12);
    if (kind < 2 || (character === '\n' && kind < 8)) return '.';
    return escaped(kind === 2 ? character.toLowerCase() : kind === 3 ? character.toUpperCase() : character);
  });
  return (chance.oneIn(3) ? '^' : '') + part.join('') + (chance.oneIn(4) ? '$' : '');
}

function regexOperators(chance, document, path) {
  const held = found(document, path.split('.')).flat().filter((value) => typeof value === 'string' && value.length > 0);
  const pattern = held.length > 0 && chance.oneIn(2) ? patternWithin(chance, chance.of(held)) : chance.of(patterns);
  const operators = { $regex: pattern };
  if (chance.oneIn(2)) operators.$options = chance.shuffled(['i', 'm', 's', ...(chance.oneIn(8) ? ['x'] : [])]).slice(0, chance.below(4)).join('');
  return chance.oneIn(2) ? operators : Object.fromEntries(Object.entries(operators).reverse());
}

const orderOperators = ['$gte', '$gt', '$lte', '$lt'];

function operators(chance, document, path) {
  switch (chance.below(12)) {
    case 0: return { $ne: operand(chance, document, path) };
    case 1: return { $in: list(chance, 4, (c) => operand(c, document, path)) };
    case 2: return { $nin: list(chance, 4, (c) => operand(c, document, path)) };
    case 3: return { $exists: chance.oneIn(2) };
    case 4: case 5: return regexOperators(chance, document, path);
    case 6: case 7:
      return { [chance.of(['$gte', '$gt'])]: bound(chance, document, path), [chance.of(['$lte', '$lt'])]: bound(chance, document, path) };
    default: return { [chance.of(orderOperators)]: bound(chance, document, path) };
  }
}

function condition(chance, document, path) {
  if (chance.oneIn(4)) return operand(chance, document, path);
  const first = operators(chance, document, path);
  return chance.oneIn(6) ? { ...operators(chance, document, path), ...first } : first;
}

function whereDocument(chance, document) {
  const where = {};
  for (let conditions = chance.of([1, 1, 1, 1, 2, 2, 3]); conditions > 0; --conditions) {
    const path = chance.of(paths);
    where[path] = condition(chance, document, path);
  }
  return chance.oneIn(200) ? {} : where;
}

/** {doc, where}, both as JSON text. */
export function randomPair(chance) {
  const document = objectOf(members)(chance);
  return { doc: write(document), where: write(whereDocument(chance, document)) };
}
