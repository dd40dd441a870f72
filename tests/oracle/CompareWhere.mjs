// Compares the matcher's verdicts on random pairs of document and where document with those of the oracles.
//
//   node CompareWhere.mjs MATCHER
//
// MATCHER is the program where_verdicts. In the environment, RK_TEST_SEED: the same seed gives the same pairs; RK_TEST_LONG:
// twenty times as many. The exit status is 1 when a verdict differs, a where document is refused or too little was compared.

import { spawnSync } from 'node:child_process';

import { Chance } from './Chance.mjs';
import { operatorsIn, rules, rulesFor } from './Deviations.mjs';
import { ask, oracleNames } from './Oracles.mjs';
import { randomPair } from './RandomPairs.mjs';

const batchSize = 10_000;
const longestList = 10;

const [matcher] = process.argv.slice(2);
const wantedPairs = process.env.RK_TEST_LONG === undefined ? 50_000 : 1_000_000;
const seed = Number(process.env.RK_TEST_SEED ?? 20240301);
if (matcher === undefined || !Number.isInteger(seed)) {
  console.error('usage: [RK_TEST_SEED=INTEGER] [RK_TEST_LONG=1] node CompareWhere.mjs MATCHER');
  process.exit(2);
}

function matcherVerdicts(pairs) {
  const lines = pairs.map((pair) => `${JSON.stringify(pair)}\n`).join('');
  const run = spawnSync(matcher, { input: lines, encoding: 'utf8', maxBuffer: 1 << 28 });
  const verdicts = (run.stdout ?? '').split('\n').slice(0, -1);
  if (run.status !== 0 || verdicts.length !== pairs.length)
    throw new Error(`the matcher ended with ${run.status ?? run.signal ?? run.error} after ${verdicts.length} verdicts: ${run.stderr}`);
  return verdicts;
}

const newTally = () => ({ compared: 0, matched: 0, different: 0, operators: {}, rules: {} });
const tallies = Object.fromEntries(oracleNames.map((name) => [name, newTally()]));
const together = { compared: 0, different: 0 };
const failures = [];
let matched = 0;

function fail(text) {
  failures.push(text);
}

/** Whether the oracle, when the pair may be compared with it, says the same; undefined when it may not. */
function compareWith(name, pair, document, where, verdict, deviations) {
  const tally = tallies[name];
  const answer = String(ask(name, document, where));
  if (deviations.length > 0) {
    for (const rule of deviations) {
      tally.rules[rule.name] ??= { pairs: 0, otherwise: 0 };
      ++tally.rules[rule.name].pairs;
      // What another rule explains says nothing about this one.
      if (answer !== verdict && deviations.length === 1) ++tally.rules[rule.name].otherwise;
    }
    return undefined;
  }
  ++tally.compared;
  if (verdict === 'true') ++tally.matched;
  for (const operator of operatorsIn(where)) tally.operators[operator] = (tally.operators[operator] ?? 0) + 1;
  if (answer === verdict) return true;
  ++tally.different;
  fail(`${name} says ${answer}, the matcher ${verdict}\n  document ${pair.doc}\n  where    ${pair.where}`);
  return false;
}

function comparePair(pair, verdict) {
  if (verdict === 'true') ++matched;
  else if (verdict !== 'false') return fail(`refused: ${verdict}\n  where    ${pair.where}`);
  const document = JSON.parse(pair.doc);
  const where = JSON.parse(pair.where);
  const deviations = rulesFor(document, where);
  const same = oracleNames.map((name) =>
    compareWith(name, pair, document, where, verdict, deviations.filter((rule) => rule.oracles.includes(name))));
  if (same.includes(undefined)) return;
  ++together.compared;
  if (same.includes(false)) ++together.different;
}

const chance = new Chance(seed);
for (let made = 0; made < wantedPairs; made += batchSize) {
  const pairs = Array.from({ length: Math.min(batchSize, wantedPairs - made) }, () => randomPair(chance));
  const verdicts = matcherVerdicts(pairs);
  pairs.forEach((pair, i) => comparePair(pair, verdicts[i]));
}

const share = (part, whole) => `${((100 * part) / whole).toFixed(1)} %`;

function report(name) {
  const tally = tallies[name];
  console.log(`\n${name}: ${tally.compared} compared (${share(tally.compared, wantedPairs)}), ${tally.different} different`);
  console.log(`  with ${Object.entries(tally.operators).map(([operator, pairs]) => `${operator} ${pairs}`).join(', ')}`);
  console.log('  pairs left out by rule, and those of them that only this rule leaves out and the oracle answers otherwise:');
  for (const rule of rules.filter((candidate) => candidate.oracles.includes(name))) {
    const { pairs, otherwise } = tally.rules[rule.name] ?? { pairs: 0, otherwise: 0 };
    console.log(`  ${String(pairs).padStart(7)} ${String(otherwise).padStart(6)}  ${rule.name}: ${rule.reason}`);
  }
}

// The comparison is worth something only when all of the language is in it, and both verdicts.
function checkCoverage(name) {
  const { compared, matched: compareMatched, operators } = tallies[name];
  if (compared < wantedPairs / 2) fail(`${name}: fewer than half of the pairs were compared`);
  if (compareMatched < compared / 6) fail(`${name}: only ${compareMatched} of the pairs compared match`);
  for (const operator of ['equal', '$ne', '$in', '$nin', '$exists', '$regex', '$gte', '$gt', '$lte', '$lt'])
    if ((operators[operator] ?? 0) < wantedPairs / 50) fail(`${name}: too few pairs with ${operator}`);
}

console.log(`${wantedPairs} pairs from seed ${seed}, ${matched} match (${share(matched, wantedPairs)})`);
oracleNames.forEach(report);
console.log(`\nall three: ${together.compared} compared, ${together.different} different`);
oracleNames.forEach(checkCoverage);

for (const text of failures.slice(0, longestList)) console.error(text);
if (failures.length > longestList) console.error(`and ${failures.length - longestList} more`);
process.exitCode = failures.length > 0 ? 1 : 0;
