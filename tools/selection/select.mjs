// Which tests of a CTest folder have to run: those of which something that they depend on has changed since they passed.
//   node tools/selection/select.mjs choose FOLDER [all]   writes FOLDER/chosen (for `ctest -I`), tells the counts
//   node tools/selection/select.mjs record FOLDER LOG     notes which of the chosen passed, by what CTest said
// FOLDER/passed.json holds the fingerprints with which tests have passed. What is chosen is taken out of it first, so
// that whatever comes between leaves a test to be run again.
import { execFileSync } from 'node:child_process';
import { readFileSync, renameSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { fingerprints } from './fingerprints.mjs';

function read(file) {
  try {
    return JSON.parse(readFileSync(file, 'utf8'));
  } catch {
    return {};
  }
}

function write(file, text) {
  writeFileSync(`${file}.new`, text);
  renameSync(`${file}.new`, file);
}

/** The tests in the order of their numbers. A name that two of them have tells of neither: both always run. */
function testsIn(folder) {
  const said = execFileSync('ctest', ['--test-dir', folder, '--show-only=json-v1'], { maxBuffer: 1 << 28 });
  const { tests } = JSON.parse(said);
  const fingerprintOf = fingerprints();
  const times = new Map();
  for (const { name } of tests) times.set(name, (times.get(name) ?? 0) + 1);
  return tests.map((test, index) => ({
    name: test.name,
    number: index + 1,
    fingerprint: times.get(test.name) === 1 ? fingerprintOf(test) : null,
  }));
}

function choose(folder, everything) {
  const passed = read(join(folder, 'passed.json'));
  const tests = testsIn(folder);
  const chosen = tests.filter(({ name, fingerprint }) =>
    everything || fingerprint === null || passed[name] !== fingerprint);
  for (const { name } of chosen) delete passed[name];
  // What is no test any more is forgotten.
  const names = new Set(tests.map(({ name }) => name));
  for (const name of Object.keys(passed)) if (!names.has(name)) delete passed[name];
  write(join(folder, 'passed.json'), JSON.stringify(passed));
  write(join(folder, 'chosen.json'), JSON.stringify(Object.fromEntries(chosen.map(({ name, fingerprint }) => [name, fingerprint]))));
  // No range (from, to, step), and then the numbers.
  write(join(folder, 'chosen'), `0,0,0,${chosen.map(({ number }) => number).join(',')}\n`);
  console.log(`${chosen.length} ${tests.length - chosen.length}`);
}

/** "12/40 Test #7: asan.cleaning.Trash ....   Passed    0.10 sec" */
const passing = /^ *\d+\/\d+ +Test +#\d+: (\S+) \.* *Passed /;

function record(folder, log) {
  const chosen = read(join(folder, 'chosen.json'));
  const passed = read(join(folder, 'passed.json'));
  const now = new Map(testsIn(folder).map(({ name, fingerprint }) => [name, fingerprint]));
  for (const line of readFileSync(log, 'utf8').split('\n')) {
    const name = line.match(passing)?.[1];
    // What was changed while it ran is not what has passed.
    if (name && chosen[name] && chosen[name] === now.get(name)) passed[name] = chosen[name];
  }
  write(join(folder, 'passed.json'), JSON.stringify(passed));
}

const [, , what, folder, given] = process.argv;
if (what === 'choose') choose(folder, given === 'all');
else if (what === 'record') record(folder, given);
else throw new Error('usage: select.mjs choose FOLDER [all] | record FOLDER LOG');
