// Where the oracles are known to mean something else, as rules over a pair of document and where document. A pair that a
// rule holds for is not compared with the rule's oracles. A rule looks at what is asked and at what the document holds
// under the first name of the path, never at an answer.

import { canonicalTime, rewrittenText } from './Times.mjs';

const isList = Array.isArray;
const holdsList = (value) => isList(value) && value.some(isList);
const isObject = (value) => value !== null && typeof value === 'object' && !isList(value);

function scalars(value) {
  return value !== null && typeof value === 'object' ? Object.values(value).flatMap(scalars) : [value];
}
const texts = (value) => scalars(value).filter((scalar) => typeof scalar === 'string');
const numbers = (value) => scalars(value).filter((scalar) => typeof scalar === 'number');

/** One operator on one path each; held is what the document has under the first name of the path. */
function conditions(document, where) {
  return Object.entries(where).flatMap(([path, asked]) => {
    const names = path.split('.');
    const common = { document, names, held: document[names[0]] };
    if (!isObject(asked) || !Object.keys(asked).some((name) => name.startsWith('$')))
      return [{ ...common, operator: 'equal', operand: asked }];
    return Object.entries(asked)
      .filter(([operator]) => operator !== '$options')
      .map(([operator, operand]) => ({ ...common, operator, operand, options: asked.$options ?? '' }));
  });
}

const isOrder = ({ operator }) => ['$gte', '$gt', '$lte', '$lt'].includes(operator);
const isPattern = ({ operator }) => operator === '$regex';

const anyTwo = (left, right, holds) => left.some((one) => right.some((other) => holds(one, other)));

function compareCodePoints(left, right) {
  const [one, other] = [left, right].map((text) => Array.from(text, (character) => character.codePointAt(0)));
  for (let i = 0; i < Math.min(one.length, other.length); ++i)
    if (one[i] !== other[i]) return one[i] - other[i];
  return one.length - other.length;
}
const compareCodeUnits = (left, right) => (left < right ? -1 : left > right ? 1 : 0);

/** What a path may meet in a value if lists at any depth are entered, by position and otherwise. */
function follow(value, names, met, lists = 0) {
  if (names.length === 0) {
    met.reached.push(value);
    return met;
  }
  const [name, ...rest] = names;
  const member = value !== null && typeof value === 'object' && Object.hasOwn(value, name);
  if (member) follow(value[name], rest, met, lists + (isList(value) ? 1 : 0));
  if (isList(value)) {
    met.entersList = true;
    met.entersListAgain ||= lists > 0;
    met.listHoldsScalar ||= value.some((other) => other === null || typeof other !== 'object');
    met.entersListInList ||= value.some(isList);
    met.nameInList ||= /^\d+$/.test(name) && value.some((object) => isObject(object) && Object.hasOwn(object, name));
    met.zerosInList ||= /^0\d/.test(name);
    for (const inner of value) if (inner !== null && typeof inner === 'object') follow(inner, names, met, lists + 1);
  }
  met.entersText ||= typeof value === 'string' && Object.hasOwn(value, name);
  return met;
}
const trace = (condition) => (condition.met ??= follow(condition.document, condition.names, { reached: [] }));
const reachesNothing = (condition) => trace(condition).reached.length === 0;

/** Whether an object somewhere in the value has a member that is null. */
const hasNullMember = (value) =>
  value !== null && typeof value === 'object' && Object.values(value).some((member) => (member === null && isObject(value)) || hasNullMember(member));

const wantsNull = ({ operand }) => operand === null || (isList(operand) && operand.includes(null));

export const rules = [
  {
    name: 'pattern dialect',
    oracles: ['mingo', 'sift'],
    reason: 'they take ECMAScript patterns, which have no x option, inline options, atomic groups, possessive quantifiers, POSIX classes, \\A, \\X or \\h',
    holds: (c) => isPattern(c) && (c.options.includes('x') || /\\[AXh]|\(\?[a-z>]|\[\[:|[+*?}]\+/.test(c.operand)),
  },
  {
    name: 'pattern classes outside ASCII',
    oracles: ['mingo', 'sift'],
    reason: 'in ECMAScript \\d, \\w and \\b know ASCII only, and \\s takes U+FEFF for a blank',
    holds: (c) => isPattern(c) && /\\[dwsb]/.test(c.operand) && texts(c.held).some((text) => /[^\0-\x7f]/.test(text)),
  },
  {
    name: 'pattern line ends',
    oracles: ['mingo', 'sift'],
    reason: 'for ECMAScript U+000D, U+2028 and U+2029 end a line too, and $ does not match before a last line feed, nor ^ only where a line follows',
    holds: (c) => isPattern(c) && /[.^$]/.test(c.operand) && texts(c.held).some((text) => /[\r\u2028\u2029]|\n$/.test(text)),
  },
  {
    name: 'pattern on a rewritten time',
    oracles: ['mingo', 'sift'],
    reason: 'they are given times written in one way, but a pattern reads a time as it stands',
    holds: (c) => isPattern(c) && texts(c.held).some((text) => rewrittenText(text) !== text),
  },
  {
    name: 'time before or after a plain text',
    oracles: ['mingo', 'sift'],
    reason: 'they are given times written in one way, but with a text that is no time a time compares as it stands',
    holds: (c) =>
      isOrder(c) &&
      anyTwo(texts(c.held), texts(c.operand), (held, wanted) => {
        const oneTime = (canonicalTime(held) === undefined) !== (canonicalTime(wanted) === undefined);
        return oneTime && compareCodeUnits(held, wanted) !== compareCodeUnits(rewrittenText(held), rewrittenText(wanted));
      }),
  },
  {
    name: 'order of characters above U+FFFF',
    oracles: ['mingo', 'sift'],
    reason: 'they order texts by UTF-16 code unit, where surrogates stand before U+E000 to U+FFFF',
    holds: (c) =>
      isOrder(c) &&
      anyTwo(texts(c.held), texts(c.operand), (held, wanted) => compareCodePoints(held, wanted) < 0 !== compareCodeUnits(held, wanted) < 0),
  },
  {
    name: 'integers beyond doubles',
    oracles: ['mingo', 'sift'],
    reason: 'they hold all numbers as doubles, in which different integers of more than 53 bits become equal',
    holds: (c) =>
      anyTwo(numbers(c.held), numbers(c.operand), (held, wanted) => held === wanted && Math.abs(held) >= 2 ** 53 && Math.abs(held) <= 2 ** 64),
  },
  {
    name: 'null through lists',
    oracles: ['mingo'],
    reason: 'where a path enters a list, null is not found for what is missing',
    holds: (c) => wantsNull(c) && trace(c).entersList,
  },
  {
    name: 'null where a list leads nowhere',
    oracles: ['sift'],
    reason: 'where a path enters a list and reaches nothing, null is not found; here a path that leads nowhere is missing',
    holds: (c) => wantsNull(c) && trace(c).entersList && reachesNothing(c),
  },
  {
    name: 'null where a list holds more than objects',
    oracles: ['sift'],
    reason: 'what is no object in a list that a path enters counts as an object that lacks the rest; here only objects count',
    holds: (c) => wantsNull(c) && trace(c).listHoldsScalar,
  },
  {
    name: 'null in an object',
    oracles: ['sift'],
    reason: 'a member that is null is equal to one that is missing if the objects have as many members',
    holds: (c) => hasNullMember(c.operand),
  },
  {
    name: 'order with null',
    oracles: ['mingo'],
    reason: '$gte and $lte with null do not find what is missing',
    holds: (c) => isOrder(c) && c.operand === null && reachesNothing(c),
  },
  {
    name: 'a list in $in',
    oracles: ['mingo'],
    reason: 'a list among the values of $in or $nin is never equal to a list',
    holds: (c) => ['$in', '$nin'].includes(c.operator) && c.operand.some(isList) && trace(c).reached.some((value) => isList(value)),
  },
  {
    name: 'lists within lists',
    oracles: ['mingo'],
    reason: 'a list that is reached in the objects of a list is not looked into',
    holds: (c) => trace(c).entersList && trace(c).reached.some(isList),
  },
  {
    name: 'an empty list where lists lead nowhere',
    oracles: ['mingo'],
    reason: 'a path that enters a list and reaches nothing is equal to an empty list, and exists when it enters another list in that',
    holds: (c) =>
      trace(c).entersList && reachesNothing(c) && (c.operator === '$exists' ? trace(c).entersListAgain : JSON.stringify(c.operand) === '[]'),
  },
  {
    name: 'zeros before a position',
    oracles: ['mingo'],
    reason: 'digits are a position whatever they begin with',
    holds: (c) => trace(c).zerosInList,
  },
  {
    name: 'positions in a text',
    oracles: ['sift'],
    reason: 'a number in a path is also the position of a character in a text',
    holds: (c) => trace(c).entersText,
  },
  {
    name: 'a number as a name in the objects of a list',
    oracles: ['mingo', 'sift'],
    reason: 'in a list a number is a position only',
    holds: (c) => trace(c).nameInList,
  },
  {
    name: 'lists entered within lists',
    oracles: ['mingo', 'sift'],
    reason: 'a path leads into the objects of lists in a list however deep they lie',
    holds: (c) => trace(c).entersListInList,
  },
  {
    name: 'members of members',
    oracles: ['sift'],
    reason: 'lists in a list are looked into however deep they lie',
    holds: (c) => trace(c).reached.some(holdsList),
  },
  {
    name: 'patterns in members of members',
    oracles: ['mingo'],
    reason: 'a pattern looks into lists in a list',
    holds: (c) => isPattern(c) && trace(c).reached.some(holdsList),
  },
  {
    name: 'lists in order with null',
    oracles: ['sift'],
    reason: 'the language\'s own conversions make a list the empty text and null a zero, which are not after each other',
    holds: (c) => isOrder(c) && c.operand === null && trace(c).reached.some(isList),
  },
];

/** The rules, of all oracles, that hold for a pair. */
export function rulesFor(document, where) {
  const asked = conditions(document, where);
  return rules.filter((rule) => asked.some(rule.holds));
}

/** The operators of a where document, each once. */
export const operatorsIn = (where) => new Set(conditions({}, where).map((condition) => condition.operator));
