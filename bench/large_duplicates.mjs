// Duplicates among many large files: cold, the time (as root only); warm, the time of the processors.
import { spawnSync } from 'node:child_process';
import { existsSync, linkSync, mkdirSync, readdirSync } from 'node:fs';
import { join } from 'node:path';
import { dropCaches, isInstalled, median, output } from './measure.mjs';

const coldTarget = 0.5; // of the time of jdupes
const warmTarget = 0.7; // of its processor time
const warmFamilies = 15; // 8 GB: what a machine of 16 GB keeps in its cache

/** Seconds that a command takes: by the clock, and of all processors (in the program and for it in the kernel). */
function measured([file, ...rest]) {
  const result = spawnSync('bash', ['-c', 'TIMEFORMAT="%R %U %S"; { time "$@" >/dev/null 2>&1; }', 'bash', file, ...rest],
    { encoding: 'utf8', env: { ...process.env, LC_ALL: 'C' } });
  if (result.status !== 0) throw new Error(`${file} ended with ${result.status}`);
  const [elapsed, user, system] = result.stderr.trim().split('\n').pop().split(' ').map(Number);
  return { elapsed, busy: user + system };
}

/** Runs both in turn, each after `before`; the medians of what `measured` tells. */
function compare(programs, runs, before) {
  const results = programs.map((program) => ({ ...program, elapsed: [], busy: [] }));
  for (let run = 0; run < runs; ++run) {
    for (const result of results) {
      before();
      const { elapsed, busy } = measured(result.command);
      result.elapsed.push(elapsed);
      result.busy.push(busy);
    }
  }
  for (const { name, elapsed, busy } of results) {
    console.log(`${name.padEnd(8)}${median(elapsed).toFixed(2).padStart(8)} s, of processors ` +
      `${median(busy).toFixed(2)} s (${elapsed.map((time) => time.toFixed(2)).join(', ')} s)`);
  }
  return results.map(({ elapsed, busy }) => ({ elapsed: median(elapsed), busy: median(busy) }));
}

const commands = (program, folder) => [
  { name: 'velto', command: [program, '--unlimited', folder] },
  { name: 'jdupes', command: ['jdupes', '-r', '-q', folder] },
];

/** Throws unless the groups are those that were made: a pair in each tenth family. */
function checkGroups(program, folder) {
  const families = new Set(readdirSync(folder).map((name) => Number(name.split(' ')[1])));
  const pairs = [...families].filter((family) => family % 10 === 0).length;
  const found = output([program, '--unlimited', folder]).trim();
  if (found !== `${pairs} ${2 * pairs}`) throw new Error(`found ${found}, not ${pairs} pairs`);
  return pairs;
}

/** The first families by other names of the same files. */
function firstFamilies(folder, part) {
  if (existsSync(part)) return;
  mkdirSync(part);
  for (const name of readdirSync(folder)) {
    if (Number(name.split(' ')[1]) < warmFamilies) linkSync(join(folder, name), join(part, name));
  }
}

/** `folder` holds what bench_make_images has made. */
export function compareLarge(program, folder, runs) {
  if (!isInstalled('jdupes')) {
    console.log('\nLeft out: duplicates among large files (jdupes is not installed)');
    return;
  }
  const part = `${folder}-first`;
  firstFamilies(folder, part);
  checkGroups(program, part);
  console.log(`\nDuplicates among ${readdirSync(part).length} files of 64 MiB, warm cache`);
  readAll(part);
  const [own, jdupes] = compare(commands(program, part), runs, () => {});
  console.log(`processor time against jdupes: ${(own.busy / jdupes.busy).toFixed(2)} (target: at most ${warmTarget.toFixed(2)}), ` +
    `time ${(own.elapsed / jdupes.elapsed).toFixed(2)}`);

  if (process.getuid() !== 0 || !existsSync('/proc/sys/vm/drop_caches')) {
    console.log('\nLeft out: the same of what is in no cache (only root may empty the caches)');
    return;
  }
  const pairs = checkGroups(program, folder);
  console.log(`\nDuplicates among ${readdirSync(folder).length} files of 64 MiB, ${pairs} pairs, in no cache`);
  const cold = compare(commands(program, folder), runs, dropCaches);
  console.log(`against jdupes: ${(cold[0].elapsed / cold[1].elapsed).toFixed(2)} (target: at most ${coldTarget.toFixed(2)})`);
}

/** Leaves the files in the cache. */
function readAll(folder) {
  for (const name of readdirSync(folder)) spawnSync('cat', [join(folder, name)], { stdio: 'ignore' });
}
