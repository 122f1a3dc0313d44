// How time and memory grow with what there is: each measurement at a tenth of its size and at all of it, each in a
// process of its own, that its peak of memory is its own. The walks are left out where nobody is root, or no file of
// 15 TB can be made.
import {
  closeSync, constants, copyFileSync, mkdirSync, mkdtempSync, openSync, renameSync, rmSync, statfsSync,
  truncateSync,
} from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { median, output } from './measure.mjs';
import { mounted } from './volumes.mjs';

const mostMemory = 512; // MiB
const mostGrowth = 12; // times the time of a tenth
const volume = 15e12; // bytes; most of them never written
const bigFile = 320_000_000;

const numbers = (command) => output(command).trim().split(' ').map(Number);

/** The walk and, in turn with it, the bare floor: what both take longer, the system takes. */
function walk(programs, home, runs) {
  const walkers = [programs.scan, programs.floor].map((program) => ({ program, times: [], memory: 0 }));
  for (let run = 0; run <= runs; ++run) {
    for (const walker of walkers) {
      const start = process.hrtime.bigint();
      walker.memory = Math.max(walker.memory, numbers([walker.program, home])[2]);
      if (run > 0) walker.times.push(Number(process.hrtime.bigint() - start) / 1e6);
    }
  }
  return walkers.map(({ times, memory }) => ({ time: median(times), memory }));
}

function tellWalks(title, [tenth, all]) {
  told(title, [tenth[0], all[0]]);
  told('  the floor there', [tenth[1], all[1]]);
}

/** Files that share their space, each of it counted as its own; no two neighbours of one size. */
function makeBigFiles(home, count) {
  const first = join(home, 'first');
  mkdirSync(home);
  closeSync(openSync(first, 'w'));
  output(['fallocate', '-l', String(bigFile), first]);
  for (let number = 1; number < count; ++number) {
    const folder = join(home, `folder ${Math.floor(number / 500)}`);
    if (number % 500 === 0 || number === 1) mkdirSync(folder);
    const file = join(folder, `film ${number}.mov`);
    copyFileSync(first, file, constants.COPYFILE_FICLONE_FORCE);
    truncateSync(file, bigFile - (number % 4000) * 4096);
  }
}

function told(title, [tenth, all]) {
  const times = all.time / tenth.time;
  const misses = [];
  if (all.memory / 1024 > mostMemory) misses.push('memory');
  if (times > mostGrowth) misses.push('time');
  console.log(`${title.padEnd(48)}${tenth.time.toFixed(0).padStart(9)}${(tenth.memory / 1024).toFixed(0).padStart(7)}` +
    `${all.time.toFixed(0).padStart(10)}${(all.memory / 1024).toFixed(0).padStart(7)}${times.toFixed(1).padStart(8)}  ` +
    (misses.length === 0 ? 'met' : `${misses.join(' and ')} NOT met`));
}

function walks(programs, data, runs) {
  if (process.getuid() !== 0) {
    console.log('Left out: the walks (only root may mount a file system)');
    return;
  }
  mkdirSync(data, { recursive: true });
  const { bavail, bsize } = statfsSync(data);
  if (bavail * bsize < 12e9) {
    console.log(`Left out: the walks (they need 12 GB free in ${data})`);
    return;
  }
  const done = mounted('xfs', join(data, 'large'), volume, (folder) => {
    const bigFiles = [5000, 50_000].map((count) => {
      const home = join(folder, `big-${count}`);
      makeBigFiles(home, count);
      return walk(programs, home, runs);
    });
    tellWalks('a walk of 50,000 big files', bigFiles);
    const machines = [1_000_000, 10_000_000].map((count) => {
      const home = join(folder, `machine-${count}`);
      output([programs.makeMachine, home, String(count)]);
      return walk(programs, home, runs);
    });
    tellWalks('a walk of 10,000,000 files', machines);
  });
  if (!done) console.log('Left out: the walks (no XFS in a file of 15 TB can be made and mounted here)');
}

function processes(programs, runs) {
  try {
    told('a sample of the monitor beside 5,000 processes', [500, 5000].map((count) => {
      const [time, , , , memory] = numbers([programs.monitor, 'cost', String(count), String(runs)]);
      return { time, memory };
    }));
  } catch (error) {
    console.log(`Left out: a sample beside 5,000 processes (${error.message.trim()})`);
  }
}

/** Time and memory of an action in a home that is afterwards as it was: some actions change it. */
function measured(programs, action, { home, count }, runs) {
  const all = [];
  for (let run = 0; run < runs; ++run) {
    const kept = `${home}-kept`;
    output(['cp', '--archive', home, kept]);
    const [time, memory] = numbers([programs.records, action, home, String(count)]);
    all.push({ time, memory });
    rmSync(home, { recursive: true });
    renameSync(kept, home);
  }
  return { time: median(all.map(({ time }) => time)), memory: Math.max(...all.map(({ memory }) => memory)) };
}

/** `kind`: "trash" or "history"; `actions`: what is measured, by name, with what it is. */
function records(programs, kind, counts, actions, runs) {
  const made = mkdtempSync(join(tmpdir(), 'velto-large-'));
  try {
    const homes = counts.map((count) => ({ home: join(made, String(count)), count }));
    for (const { home, count } of homes) output([programs.records, `make-${kind}`, home, String(count)]);
    for (const [action, title] of actions) {
      told(title, homes.map((home) => measured(programs, `${action}-${kind}`, home, runs)));
    }
  } finally {
    rmSync(made, { recursive: true });
  }
}

/** `programs`: the paths of scan, floor, makeMachine, monitor and records. */
export function measureLarge(data, programs, runs) {
  console.log(`\nLarge numbers: at a tenth and at all of it (targets: ${mostMemory} MiB, ${mostGrowth} times the time)`);
  console.log(`${''.padEnd(48)}${'tenth ms'.padStart(9)}${'MiB'.padStart(7)}${'all ms'.padStart(10)}${'MiB'.padStart(7)}` +
    `${'times'.padStart(8)}`);
  processes(programs, runs);
  records(programs, 'history', [10_000, 100_000], [['load', 'a history of 100,000 cleanups: load'],
    ['record', '  record one more'], ['tell', '  tell the page']], runs);
  records(programs, 'trash', [100_000, 1_000_000], [['load', 'a trash of 1,000,000 items: load'],
    ['undo', '  undo an operation of 1,000'], ['tell', '  tell the page after a piece of work']], 1);
  walks(programs, data, runs);
}
