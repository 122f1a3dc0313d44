// Timing of processes.
import { spawnSync } from 'node:child_process';
import { writeFileSync } from 'node:fs';

export function median(values) {
  const sorted = [...values].sort((one, other) => one - other);
  const middle = sorted.length >> 1;
  return sorted.length % 2 === 1 ? sorted[middle] : (sorted[middle - 1] + sorted[middle]) / 2;
}

/** The standard output of a command that has to succeed. */
export function output([file, ...rest]) {
  const result = spawnSync(file, rest, { encoding: 'utf8', maxBuffer: 1 << 28 });
  if (result.error) throw result.error;
  if (result.status !== 0) throw new Error(`${file}: ${result.stderr}`);
  return result.stdout;
}

/** Milliseconds from the start of a process to its end; its output goes nowhere. */
function time([file, ...rest]) {
  const start = process.hrtime.bigint();
  const result = spawnSync(file, rest, { stdio: 'ignore' });
  const end = process.hrtime.bigint();
  if (result.error) throw result.error;
  if (result.status !== 0) throw new Error(`${file} ended with ${result.status}`);
  return Number(end - start) / 1e6;
}

export function isInstalled(file) {
  return spawnSync('sh', ['-c', 'command -v "$0"', file], { stdio: 'ignore' }).status === 0;
}

/** Empties the system's caches of what is on disks; for root. */
export function dropCaches() {
  output(['sync']);
  writeFileSync('/proc/sys/vm/drop_caches', '3');
}

/**
 * Runs the programs in turn, so that what else the machine does strikes all of them alike: once
 * without measuring, then `runs` times, each after `before`. A program that is not installed is
 * named and left out.
 */
export function compareProcesses(programs, runs, before = () => {}) {
  const present = programs.filter(({ name, command }) => {
    const there = isInstalled(command[0]);
    if (!there) console.log(`Left out: ${name} is not installed`);
    return there;
  });
  const results = present.map((program) => ({ ...program, times: [] }));
  for (let run = 0; run <= runs; ++run) {
    for (const result of results) {
      before();
      const taken = time(result.command);
      if (run > 0) result.times.push(taken);
    }
  }
  for (const result of results) {
    result.median = median(result.times);
    result.fastest = Math.min(...result.times);
  }
  return results;
}

/** Medians, and each against that of `own`. */
export function table(results, own) {
  const base = results.find(({ name }) => name === own).median;
  console.log(`${'program'.padEnd(12)}${'median ms'.padStart(10)}${'fastest ms'.padStart(12)}` +
    `${`${own} takes`.padStart(20)}`);
  for (const { name, median: middle, fastest } of results) {
    const ratio = name === own ? '' : `${(base / middle).toFixed(2)} of it`;
    console.log(`${name.padEnd(12)}${middle.toFixed(1).padStart(10)}` +
      `${fastest.toFixed(1).padStart(12)}${ratio.padStart(20)}`);
  }
}
