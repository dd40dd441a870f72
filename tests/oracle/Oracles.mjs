// Two implementations of the query language that share nothing with the matcher or with each other.

import mingo from 'mingo';
import sift from 'sift';

import { rewriteTimes } from './Times.mjs';

const isObject = (value) => value !== null && typeof value === 'object' && !Array.isArray(value);

/** The where document as the oracles take it: patterns as compiled ones, in which a character is a code point. */
function prepared(where) {
  const conditions = Object.entries(where).map(([path, asked]) => {
    if (!isObject(asked) || asked.$regex === undefined) return [path, rewriteTimes(asked)];
    const { $regex, $options, ...others } = asked;
    const letters = [...new Set(`u${$options ?? ''}`)].join('');
    return [path, { ...rewriteTimes(others), $regex: new RegExp($regex, letters) }];
  });
  return Object.fromEntries(conditions);
}

const oracles = {
  mingo: (document, where) => new mingo.Query(where).test(document),
  sift: (document, where) => sift.default(where)(document),
};

export const oracleNames = Object.keys(oracles);

/** What an oracle says: true, false, or the text of the error that it throws. */
export function ask(name, document, where) {
  try {
    return oracles[name](rewriteTimes(document), prepared(where));
  } catch (error) {
    return String(error);
  }
}
