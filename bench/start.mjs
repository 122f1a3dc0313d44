// Start of the program: from the start of its process to the page's first painted state, with a
// saved analysis, against a bare web view window with an empty page (bench_bare_window). Both run
// in turn on the same virtual display: `node bench/start.mjs BUILD-FOLDER [RUNS]`.
import { mkdirSync, mkdtempSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { startDesktop } from '../tools/desktop/desktop.mjs';
import { homeVariables, startProgram } from '../tools/desktop/program.mjs';

const build = process.argv[2] ?? 'build/release';
const runs = Number(process.argv[3] ?? 15);
const target = 1.2;

/**
 * An analysis as full as one gets: 500 large files, as unequal as real ones, that fit into their
 * category, and 150 groups of three duplicates.
 */
function fullAnalysis(home) {
  const category = (id, name, gb, col) => ({
    id, name, gb, col, icon: 'doc', eq: 'como 8.000 libros digitales', sub: [], files: 40_000,
  });
  const file = (index) => ({
    name: `recording ${index}.mov`, gb: Math.max(0.3, Math.round(120 * 0.93 ** index) / 10), kind: 'video', last: 'hace 2 meses',
    lastN: 61, path: `${home}/Movies/2023/a folder of some length/recording ${index}.mov`,
    isProtected: false,
  });
  const group = (index) => ({
    id: index.toString(16).padStart(64, '0'), name: `photo ${index}.raw`, recommended: 0,
    paths: ['a', 'b', 'c'].map((copy) => `${home}/Pictures/${copy}/photo ${index}.raw`),
    pairs: ['a', 'b', 'c'].map(() => [[`photo ${index}.raw`, '0.1']]),
  });
  const list = (length, make) => Array.from({ length }, (_, index) => make(index));
  return {
    ts: Date.now() / 1000 - 3600,
    state: {
      total: 994.7, free: 312.4, ser: 71,
      cats: [
        category('fotos', 'Fotos y vídeo', 379.5, '#E8355A'),
        category('apps', 'Aplicaciones', 88.1, '#2563EB'),
        category('docs', 'Documentos', 40.7, '#E88F0C'),
        category('descargas', 'Descargas', 21.3, '#0BA5D6'),
        category('musica', 'Música y audio', 9.9, '#7C3AED'),
        category('sistema', 'macOS y Datos del sistema', 142.8, '#8B919C'),
      ],
      files: list(500, file),
      dupGroups: list(150, group),
      history: [],
      settings: {
        retention: 30, autoMaintenance: false, frequency: 'daily', language: 'en',
        rules: { systemTrash: true, oldDownloads: true, caches: true, duplicates: false },
      },
      protected: [],
    },
  };
}

const milliseconds = (since) => Number(process.hrtime.bigint() - since) / 1e6;

async function programStart(variables) {
  const start = process.hrtime.bigint();
  const velto = startProgram(join(build, 'velto'), [], variables);
  await velto.waitFor('Velto ▶ intención: webReady');
  const time = milliseconds(start);
  await velto.stop();
  return time;
}

async function bareStart(variables, folder) {
  const start = process.hrtime.bigint();
  const bare = startProgram(join(build, 'bench', 'bench_bare_window'), [folder], variables);
  await bare.waitFor('painted');
  const time = milliseconds(start);
  await bare.ended();
  return time;
}

function median(values) {
  const sorted = values.toSorted((a, b) => a - b);
  const middle = sorted.length >> 1;
  return sorted.length % 2 ? sorted[middle] : (sorted[middle - 1] + sorted[middle]) / 2;
}

async function main() {
  const folder = mkdtempSync(join(tmpdir(), 'velto-start-'));
  const data = join(folder, 'Library', 'Application Support', 'Velto');
  mkdirSync(data, { recursive: true });
  writeFileSync(join(data, 'lastScan.json'), JSON.stringify(fullAnalysis(folder)));
  const desktop = await startDesktop();
  const variables = {
    ...desktop.variables,
    ...homeVariables(folder),
  };
  try {
    // The first pair fills the caches of the machine and is not counted.
    const program = [];
    const bare = [];
    for (let round = 0; round <= runs; round++) {
      // Each goes first in every other round, so that neither always finds the machine as the
      // other left it.
      const inTurn = [[bare, bareStart], [program, programStart]];
      if (round % 2) inTurn.reverse();
      for (const [times, start] of inTurn) {
        const time = await start(variables, folder);
        if (round > 0) times.push(time);
      }
    }
    const show = (name, times) =>
      console.log(`  ${name.padEnd(34)} ${median(times).toFixed(0).padStart(5)} ms` +
        `   (${Math.min(...times).toFixed(0)} to ${Math.max(...times).toFixed(0)})`);
    const ratio = median(program) / median(bare);
    console.log(`Start to the first painted state, median of ${runs} runs in turn`);
    show('bare window, empty page', bare);
    show('velto, saved analysis of 500 files', program);
    console.log(`  ratio ${ratio.toFixed(2)} (at most ${target}: ${ratio <= target ? 'met' : 'NOT met'})`);
  } finally {
    await desktop.stop();
    rmSync(folder, { recursive: true, force: true });
  }
}

main().catch((error) => {
  console.error(`bench: ${error.message}`);
  process.exitCode = 1;
});
