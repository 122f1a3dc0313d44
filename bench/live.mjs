// What the live system view costs while it is shown: processor time of the program and of the
// processes of its web engine, on a virtual display: `node bench/live.mjs BUILD-FOLDER [SECONDS]`.
import { execFileSync } from 'node:child_process';
import { mkdirSync, mkdtempSync, readdirSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { setTimeout as pause } from 'node:timers/promises';
import { startDesktop } from '../tools/desktop/desktop.mjs';
import { homeVariables, startProgram } from '../tools/desktop/program.mjs';

const build = process.argv[2] ?? 'build/release';
const seconds = Number(process.argv[3] ?? 60);
const target = 3; // percent of one core
const settling = 10_000; // milliseconds until a view is drawn and its icons are there

// The entry "System" of the page's rail.
const systemEntry = [100, 378];

/** Enough for the program not to analyse by itself. */
const saved = {
  ts: Date.now() / 1000,
  state: {
    total: 994.7, free: 312.4, ser: 71, files: [], dupGroups: [], history: [], protected: [],
    cats: ['fotos', 'apps', 'docs', 'descargas', 'musica', 'sistema'].map((id) => (
      { id, name: id, gb: 10, icon: 'doc', col: '#8B919C', eq: '', sub: [], files: 100 })),
    settings: {
      retention: 30, autoMaintenance: false, frequency: 'daily', language: 'en',
      rules: { systemTrash: true, oldDownloads: true, caches: true, duplicates: false },
    },
  },
};

/** {name, parent, ticks} of every process. */
function processes() {
  const found = new Map();
  for (const number of readdirSync('/proc').filter((name) => /^\d+$/.test(name))) {
    try {
      const text = readFileSync(`/proc/${number}/stat`, 'utf8');
      const end = text.lastIndexOf(')');
      const fields = text.slice(end + 2).split(' ');
      found.set(Number(number), {
        name: text.slice(text.indexOf('(') + 1, end),
        parent: Number(fields[1]),
        ticks: Number(fields[11]) + Number(fields[12]),
      });
    } catch {
      // It has ended since the folder was listed.
    }
  }
  return found;
}

/** Ticks so far by name, of a process and all below it. */
function ticksBelow(root) {
  const all = processes();
  const isBelow = (number) => {
    for (let one = number; all.has(one); one = all.get(one).parent) if (one === root) return true;
    return false;
  };
  const sums = {};
  for (const [number, { name, ticks }] of all) {
    if (isBelow(number)) sums[name] = (sums[name] ?? 0) + ticks;
  }
  return sums;
}

/** Percent of one core by name. */
async function costOf(root) {
  const perSecond = Number(execFileSync('getconf', ['CLK_TCK']));
  const before = ticksBelow(root);
  const start = process.hrtime.bigint();
  await pause(seconds * 1000);
  const elapsed = Number(process.hrtime.bigint() - start) / 1e9;
  const after = ticksBelow(root);
  return Object.fromEntries(Object.entries(after).map(([name, ticks]) =>
    [name, ((ticks - (before[name] ?? 0)) / perSecond / elapsed) * 100]));
}

const sumOf = (cost) => Object.values(cost).reduce((one, other) => one + other, 0);
const percent = (value) => `${value.toFixed(2).padStart(6)} %`;

async function main() {
  const folder = mkdtempSync(join(tmpdir(), 'velto-live-'));
  const data = join(folder, '.local', 'share', 'Velto');
  mkdirSync(data, { recursive: true });
  writeFileSync(join(data, 'lastScan.json'), JSON.stringify(saved));
  const desktop = await startDesktop();
  const velto = startProgram(join(build, 'velto'), [], {
    ...desktop.variables,
    ...homeVariables(folder),
  });
  try {
    await velto.waitFor('Velto ▶ intención: webReady');
    await pause(settling);
    const idle = await costOf(velto.child.pid);
    await desktop.click(...systemEntry);
    await velto.waitFor('Velto ▶ intención: systemWatch payload: {"on":true}');
    await pause(settling);
    const live = await costOf(velto.child.pid);
    console.log(`The live system view, processor time over ${seconds} s, of one core`);
    for (const [name, value] of Object.entries(live)) {
      console.log(`  ${name.padEnd(34)} ${percent(value)}   (overview ${percent(idle[name] ?? 0).trim()})`);
    }
    const sum = sumOf(live);
    console.log(`  together ${percent(sum).trim()} (at most ${target} %: ${sum <= target ? 'met' : 'NOT met'}), ` +
      `overview ${percent(sumOf(idle)).trim()}`);
  } finally {
    await velto.stop();
    await desktop.stop();
    rmSync(folder, { recursive: true, force: true, maxRetries: 20, retryDelay: 50 });
  }
}

main().catch((error) => {
  console.error(`bench: ${error.message}`);
  process.exitCode = 1;
});
