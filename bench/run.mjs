// The walk, the discovery of what can be cleaned, the duplicate finder, the trash and the system
// monitor against the bare floor and against other tools. Usage and how to read the result:
// bench/README.md.
import {
  existsSync, lstatSync, mkdirSync, mkdtempSync, readdirSync, rmSync, statfsSync, writeFileSync,
} from 'node:fs';
import { cpus, loadavg, tmpdir } from 'node:os';
import { dirname, join, resolve } from 'node:path';
import { fileURLToPath } from 'node:url';
import { compareCold } from './cold.mjs';
import { measureLarge } from './large.mjs';
import { compareLarge } from './large_duplicates.mjs';
import { compareProcesses, median, output, table } from './measure.mjs';

const root = resolve(dirname(fileURLToPath(import.meta.url)), '..');
const data = join(root, 'build', 'bench-data');
const partNames = ['walk', 'cold', 'memory', 'again', 'folders', 'cleanables', 'further', 'duplicates', 'duplicates-cold', 'trash', 'removal', 'copy', 'growth', 'monitor', 'apps', 'large'];
const usage = `usage: bench/run [--build FOLDER] [--runs N] [--only PART] [--clean]
  --build FOLDER  where the benchmarks were built (build/release)
  --runs N        measured runs of each program, after one that is not (15)
  --only PART     one part instead of all (large: only so): ${partNames.join(', ')}
  --clean         remove the made data (build/bench-data) and do nothing else`;

function options() {
  const chosen = { build: join(root, 'build', 'release'), runs: 15, only: '' };
  const rest = process.argv.slice(2);
  while (rest.length > 0) {
    const option = rest.shift();
    if (option === '--clean') chosen.clean = true;
    else if (option === '--build' && rest.length > 0) chosen.build = resolve(rest.shift());
    else if (option === '--runs' && Number(rest[0]) > 0) chosen.runs = Number(rest.shift());
    else if (option === '--only' && partNames.includes(rest[0])) {
      chosen.only = rest.shift();
    } else {
      console.error(usage);
      process.exit(option === '--help' ? 0 : 2);
    }
  }
  return chosen;
}

const { build, runs, only, clean } = options();
const program = (name) => join(build, 'bench', name);

/** The folder of made data `name`; made by `make(folder)` when it is missing or was not finished. */
function made(name, gigabytes, make) {
  const folder = join(data, name);
  const finished = `${folder}.made`;
  if (existsSync(finished)) return folder;
  mkdirSync(data, { recursive: true });
  const { bavail, bsize } = statfsSync(data);
  if ((bavail * bsize) / 1e9 < gigabytes + 5) {
    console.log(`Left out: ${name} needs ${gigabytes} GB free in ${data}`);
    return undefined;
  }
  console.log(`Making ${folder} (${gigabytes} GB of claimed space) ...`);
  rmSync(folder, { recursive: true, force: true });
  make(folder);
  writeFileSync(finished, '');
  return folder;
}

const smallHome = () => made('home-400k', 10, (folder) => {
  output([program('bench_make_home'), folder, '400000', '18000', '65536']);
});
const largeHome = () => made('home-2m-200k', 17, (folder) => {
  output([program('bench_make_home'), folder, '2000000', '200000', '4096']);
});
const fullCaches = () => made('caches-200k', 1, (folder) => {
  output([program('bench_make_caches'), folder]);
});
const developersHome = () => made('projects-400k', 3, (folder) => {
  output([program('bench_make_projects'), folder, '400000']);
});
const copies = () => made('duplicates', 1, (folder) => {
  output([program('bench_make_duplicates'), folder]);
});

function sameTotals(home) {
  const [scan, floor] = ['bench_scan', 'bench_floor'].map((name) =>
    output([program(name), home]).trim().split(' ').map(Number));
  if (scan[0] !== floor[0] || scan[1] !== floor[1]) {
    throw new Error(`the scanner counts ${scan[0]} files, the floor ${floor[0]}`);
  }
  if (scan[3] !== floor[3]) {
    throw new Error(`the folders hold ${scan[3]} bytes, the floor counts ${floor[3]}`);
  }
  return { files: scan[0], gigabytes: scan[1] / 1e9 };
}

function walk() {
  const home = smallHome();
  if (!home) return;
  const { files, gigabytes } = sameTotals(home);
  console.log(`\nWalk of ${files} files, ${gigabytes.toFixed(1)} GB, warm cache, as processes`);
  const results = compareProcesses([
    { name: 'velto scan', command: [program('bench_scan'), home] },
    { name: 'floor', command: [program('bench_floor'), home] },
    { name: 'du', command: ['du', '-s', home] },
    { name: 'ncdu', command: ['ncdu', '-0', '-o', '/dev/null', home] },
    { name: 'gdu', command: ['gdu', '-npc', home] },
  ], runs);
  table(results, 'velto scan');
  const time = (name) => results.find((result) => result.name === name)?.median;
  if (time('du')) console.log(`against du: ${(time('velto scan') / time('du')).toFixed(2)} (target: at most 0.50)`);
  const peers = results.filter(({ name }) => !['velto scan', 'floor'].includes(name));
  const ratio = time('velto scan') / time('floor');
  console.log(`against the floor: ${ratio.toFixed(2)} (target: at most 1.10)`);
  if (peers.length > 0) {
    const fastest = peers.reduce((one, other) => (other.median < one.median ? other : one));
    console.log(`against the fastest peer, ${fastest.name}: ` +
      `${(time('velto scan') / fastest.median).toFixed(2)} (target: at most 0.60)`);
  }

  console.log('\nThe same inside one process, without starting one');
  const lines = output([program('bench_in_process'), home, String(runs + 1)]).trim().split('\n');
  const pairs = lines.slice(1).map((line) => line.split(' ').map(Number));
  const scan = median(pairs.map(([first]) => first));
  const floor = median(pairs.map(([, second]) => second));
  console.log(`velto scan ${scan.toFixed(1)} ms, floor ${floor.toFixed(1)} ms, ` +
    `ratio ${(scan / floor).toFixed(2)} (target: at most 1.10)`);
}

function cold() {
  const home = smallHome();
  if (home) compareCold(home, data, { scan: program('bench_scan'), floor: program('bench_floor') }, Math.min(runs, 5));
}

function again() {
  const home = smallHome();
  if (!home) return;
  console.log('\nThe second walk, 1 % of the folders changed; in process, told of the changes by the benchmark');
  const lines = output([program('bench_again'), home, String(runs + 1)]).trim().split('\n').slice(1);
  const rows = lines.map((line) => line.split(' ').map(Number));
  const [whole, part] = [0, 1].map((column) => median(rows.map((row) => row[column])));
  console.log(`${rows[0][3]} of ${rows[0][2]} folders: ${part.toFixed(1)} ms, a walk of everything ${whole.toFixed(1)} ms, ` +
    `ratio ${(part / whole).toFixed(3)} (target: at most 0.100)`);
}

function memory() {
  console.log('\nPeak of resident memory of the walk (VmHWM)');
  const peak = (home) => Number(output([program('bench_scan'), home]).trim().split(' ')[2]) / 1024;
  const [small, large] = [smallHome(), largeHome()].map((home) => home && peak(home));
  if (small) console.log(`400,000 files in 18,000 folders: ${small.toFixed(1)} MiB`);
  if (large) console.log(`2,000,000 files in 200,000 folders: ${large.toFixed(1)} MiB (target: at most 48)`);
  if (small && large) console.log(`growth: ${(large - small).toFixed(1)} MiB`);
}

function folders() {
  const home = smallHome();
  if (!home) return;
  const [many, others] = output([program('bench_folders'), home, '10000', '300']).trim().split('\n')
    .map((line) => line.split(' '));
  console.log('\nOpening a folder of an analysis, warm cache, up to the text of the event');
  console.log(`10,000 files: median ${many[0]} ms, 99th percentile ${many[1]} ms (target: at most 16)`);
  console.log(`the 1,000 folders of the most files: median ${others[0]} ms, 99th percentile ${others[1]} ms`);
}

/** Throws unless each cache folder is found with the bytes that du counts in it. */
function sameSizes(home, folders) {
  const lines = output([program('bench_cleanables'), home]).trim().split('\n');
  const found = new Map(lines.map((line) => {
    const [bytes, path] = line.split(/ (.*)/);
    return [path, Number(bytes)];
  }));
  for (const line of output(['du', '-sb', ...folders]).trim().split('\n')) {
    const [bytes, path] = line.split('\t');
    // du counts the folder itself too, which is no entry of its own.
    const expected = Number(bytes) - lstatSync(path).size;
    if (found.get(path) !== expected) {
      throw new Error(`${path}: found ${found.get(path)} bytes, not ${expected}`);
    }
  }
  if (found.size !== folders.length) throw new Error(`found ${found.size} candidates`);
}

function cleanables() {
  const home = fullCaches();
  if (!home) return;
  const caches = join(home, 'Library', 'Caches');
  const folders = readdirSync(caches).map((name) => join(caches, name));
  sameSizes(home, folders);
  console.log('\nWhat can be cleaned: 20 caches of 200,000 files, warm cache, as processes');
  const results = compareProcesses([
    { name: 'velto', command: [program('bench_cleanables'), home] },
    { name: 'du -sb', command: ['du', '-sb', ...folders] },
  ], runs);
  table(results, 'velto');
  const ratio = results[0].median / results[1].median;
  console.log(`against du: ${ratio.toFixed(2)} (target: at most 0.60)`);
}

/** Throws unless each thing that a rule names is found with the very bytes that du says it takes up. */
function sameAllocated(home) {
  const found = output([program('bench_further'), home]).trim().split('\n').map((line) => line.split(/ (.*)/));
  const expected = output(['du', '-s', '--block-size=1', ...found.map(([, path]) => path)]).trim().split('\n').map((line) => line.split('\t'));
  const bytes = new Map(expected.map(([size, path]) => [path, size]));
  for (const [size, path] of found) {
    if (bytes.get(path) !== size) throw new Error(`${path}: found ${size} bytes, not ${bytes.get(path)}`);
  }
  return found.length;
}

function further() {
  const home = developersHome();
  if (!home) return;
  const count = sameAllocated(home);
  console.log(`\nWhat all rules name in a developer's home of 400,000 files (${count} things), warm cache, as processes`);
  const results = compareProcesses([
    { name: 'velto', command: [program('bench_further'), home] },
    { name: 'du', command: ['du', '-s', home] },
  ], runs);
  table(results, 'velto');
  console.log(`against du: ${(results[0].median / results[1].median).toFixed(2)} (target: at most 0.60)`);
}

function duplicates() {
  const folder = copies();
  if (!folder) return;
  const found = output([program('bench_duplicates'), folder]).trim();
  if (found !== '20 60') throw new Error(`found ${found}, not 20 groups of 60 files`);
  console.log('\nDuplicates: 120 files of 8 MiB, 20 groups of three, warm cache, as processes');
  const results = compareProcesses([
    { name: 'velto', command: [program('bench_duplicates'), folder] },
    { name: 'jdupes', command: ['jdupes', '-r', '-q', folder] },
    { name: 'fdupes', command: ['fdupes', '-r', '-q', folder] },
    // Its report only, and no list of things to do with it. Never to a file that is there: it would
    // rename that one first, be it a device, and be it for all.
    { name: 'rmlint', command: ['rmlint', '-T', 'duplicates', '-o', 'fdupes:stdout', folder] },
  ], runs);
  table(results, 'velto');

  console.log('\nThe same a second time: what was read of unchanged files is not read again');
  const memory = mkdtempSync(join(tmpdir(), 'velto-digests-'));
  output([program('bench_duplicates'), folder, memory]);
  const again = compareProcesses([
    { name: 'first', command: [program('bench_duplicates'), folder] },
    { name: 'again', command: [program('bench_duplicates'), folder, memory] },
  ], runs);
  table(again, 'first');
  rmSync(memory, { recursive: true });
  console.log(`against the first: ${(again[1].median / again[0].median).toFixed(3)} (target: at most 0.1)`);
}

function duplicatesCold() {
  const images = made('duplicates-20g', 20, (folder) => {
    output([program('bench_make_images'), folder, '20']);
  });
  if (images) compareLarge(program('bench_duplicates'), images, Math.min(runs, 3));
}

/** The medians of the columns that `name` prints for its folders, after one line. */
function medians(name, ...folders) {
  const lines = output([program(`bench_${name}`), ...folders, String(runs + 1)])
    .trim().split('\n').slice(1).map((line) => line.split(' ').map(Number));
  return lines[0].map((_, column) => median(lines.map((line) => line[column])));
}

const milliseconds = (time) => `${time.toFixed(1)} ms`;

function trash() {
  const [few, many, emptyFew, emptyMany, load, parse] = medians('trash', join(data, 'trash'));
  console.log('\nThe trash, in one process');
  console.log(`undoing an operation: ${milliseconds(few)} with 1,000 files, ` +
    `${milliseconds(many)} with 10,000, ratio ${(many / few).toFixed(1)} (target: at most 12)`);
  console.log(`emptying: ${milliseconds(emptyFew)} with 1,000 files, ${milliseconds(emptyMany)} ` +
    `with 10,000, ratio ${(emptyMany / emptyFew).toFixed(1)} (target: at most 12)`);
  console.log(`loading 100,000 items: ${milliseconds(load)}, parsing them alone ` +
    `${milliseconds(parse)}, ratio ${(load / parse).toFixed(2)} (target: at most 1 s)`);
}

function removal() {
  const [move, rename, deletion, rm] = medians('removal', join(data, 'removal'));
  console.log('\nRemoving, in one process');
  console.log(`1,000 files to the trash: ${milliseconds(move)}, renaming them alone ` +
    `${milliseconds(rename)}, ratio ${(move / rename).toFixed(2)}`);
  console.log(`5,000 files for good: ${milliseconds(deletion)}, rm -rf ${milliseconds(rm)}, ` +
    `ratio ${(deletion / rm).toFixed(2)}`);
}

/** The move also removes its source, which the tools do not. */
function copy() {
  const other = process.platform === 'darwin' ? process.env.VELTO_OTHER_VOLUME ?? '' : '/dev/shm';
  mkdirSync(data, { recursive: true });
  if (!existsSync(other) || lstatSync(other).dev === lstatSync(data).dev) {
    console.log('\nLeft out: copying needs a second volume');
    return;
  }
  const folders = [join(data, 'copy'), join(other, `velto-bench-${process.pid}`)];
  console.log('\nA move to another volume, in one process');
  for (const [way, [from, to]] of [['to memory', folders], ['to the disk', folders.toReversed()]]) {
    const times = medians('copy', from, to);
    for (const [what, tool] of [['256 MiB', 'cmp'], ['2,000 files of 16 KiB', 'diff']]) {
      const [move, tools, onDisk] = times.splice(0, 3);
      console.log(`${what} ${way}: ${move.toFixed(0)} ms, cp and ${tool} ${tools.toFixed(0)} ms, ratio ` +
        `${(move / tools).toFixed(2)} (target: at most 2.20), with the copy read from the disk ` +
        `${onDisk.toFixed(0)} ms, ratio ${(move / onDisk).toFixed(2)}`);
    }
  }
}

function growth() {
  const folder = join(data, 'growth');
  mkdirSync(folder, { recursive: true });
  const [count, bytes] = output([program('bench_growth'), folder, 'size']).trim().split(' ').map(Number);
  const [whole, comparing, keeping] = medians('growth', folder);
  console.log('\nWhat has grown between two analyses of 200,000 folders of 1 MB and more');
  console.log(`reading and comparing two snapshots ${milliseconds(whole)} (target: at most 150 ms), comparing ` +
    `alone ${milliseconds(comparing)}; keeping one ${milliseconds(keeping)}, ${(bytes / 1e6).toFixed(1)} MB of ${count} folders`);
}

/** The mean over the samples has the first one in it and each that makes the process map anew. */
function monitor() {
  console.log('\nSystem monitor: processor time of a sample beside 2,000 sleeping processes, and of one ps');
  const [kept, reopened, first, ps] = output([program('bench_monitor'), 'cost', '2000', String(runs)])
    .trim().split(' ').map(Number);
  console.log(`a sample ${kept.toFixed(1)} ms (the first ${first.toFixed(1)} ms; with files opened anew ` +
    `each time ${reopened.toFixed(1)} ms), ps ${ps.toFixed(1)} ms`);
  console.log(`against ps: ${(kept / ps).toFixed(2)} (target: at most 0.30)`);

  const [early, late] = output([program('bench_monitor'), 'memory', '10000']).trim().split(' ').map(Number);
  console.log(`heap in use after 1,000 samples ${early} bytes, after 10,000 ${late} bytes: ` +
    `growth ${late - early} (target: none)`);
}

function apps() {
  const home = made('apps-300', 1, (folder) => { output([program('bench_make_apps'), folder]); });
  if (!home) return;
  const lines = output([program('bench_list_apps'), home, String(runs + 1)]).trim().split('\n');
  if (lines[0] !== '300') throw new Error(`${lines[0]} applications are listed, not 300`);
  const pairs = lines.slice(2).map((line) => line.split(' ').map(Number));
  const list = median(pairs.map(([first]) => first));
  const read = median(pairs.map(([, second]) => second));
  console.log('\nThe list of 300 applications against reading their Info.plist files, warm cache, ' +
    'in one process');
  console.log(`list ${list.toFixed(2)} ms, reading ${read.toFixed(2)} ms, ` +
    `ratio ${(list / read).toFixed(2)} (target: at most 2.00)`);
}

function large() {
  const programs = { scan: 'scan', floor: 'floor', makeMachine: 'make_machine', monitor: 'monitor', records: 'records' };
  for (const [key, name] of Object.entries(programs)) programs[key] = program(`bench_${name}`);
  measureLarge(data, programs, Math.min(runs, 3));
}

/** The parts that were chosen; a part's name is that of its function, in words. */
function run(parts) {
  const nameOf = (part) => part.name.replace(/[A-Z]/g, (letter) => `-${letter.toLowerCase()}`);
  for (const part of parts) {
    if (only === '' || only === nameOf(part)) part();
  }
}

if (clean) {
  rmSync(data, { recursive: true, force: true });
} else if (process.platform === 'darwin') {
  console.log('The walk and the discovery are measured on Linux only.');
  run([duplicates, duplicatesCold, trash, removal, copy, growth]);
} else {
  console.log(`${cpus().length} processors, ${runs} measured runs each, in turn; ` +
    `load at the start ${loadavg()[0].toFixed(2)}`);
  run([walk, cold, memory, again, folders, cleanables, further, duplicates, duplicatesCold, trash, removal, copy, growth, monitor, apps]);
  if (only === 'large') large(); // takes half an hour
}
