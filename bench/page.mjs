// What long lists of the page cost: processor time of the page's main thread in Chromium, for the
// built page and, side by side, for another one (the state before a change, say):
// `node bench/page.mjs [PAGE-FOLDER [OTHER-PAGE-FOLDER [RUNS]]]`.
import { createRequire } from 'node:module';
import { join, resolve } from 'node:path';
import { fileURLToPath, pathToFileURL } from 'node:url';
import { median } from './measure.mjs';

const root = fileURLToPath(new URL('..', import.meta.url));
const { chromium } = createRequire(join(root, 'resources/package.json'))('playwright-core');

const folders = [process.argv[2] ?? join(root, 'resources/dist'), process.argv[3]].filter(Boolean).map((path) => resolve(path));
const runs = Number(process.argv[4] ?? 9);
const home = '/Users/marina';

const list = (length, make) => Array.from({ length }, (_, index) => make(index));

/** 500 large files, 3,000 groups of two copies. */
function fullState() {
  const kinds = ['video', 'descarga', 'app', 'doc'];
  const places = ['Movies', 'Downloads', 'Library/Application Support/Example', 'Documents/Proyectos'];
  const file = (index) => {
    const name = `grabación ${String(index + 1).padStart(3, '0')}.bin`;
    const gb = Math.round((60 / (1 + index * 0.2) + 0.3) * 10) / 10;
    return {
      name, gb, kind: kinds[index % 4], last: 'hace 2 meses', lastN: (index * 37) % 1500,
      path: `${home}/${places[index % 4]}/${name}`, isProtected: false,
    };
  };
  const group = (index) => {
    const name = `copia ${index}.bin`;
    return {
      id: index.toString(16).padStart(64, '0'), name, recommended: 0,
      paths: [`${home}/Documents/a/${name}`, `${home}/Downloads/${name}`], pairs: [[[name, '1.4']], [[name, '1.4']]],
    };
  };
  const category = (id) => ({ id, name: id, gb: 90, icon: 'doc', col: '#8B919C', eq: '', sub: [], files: 1000 });
  return {
    total: 994.7, free: 312.4, ser: 71, history: [], protected: [],
    cats: ['fotos', 'apps', 'docs', 'descargas', 'musica', 'sistema'].map(category),
    files: list(500, file), dupGroups: list(3000, group),
    settings: {
      retention: 30, autoMaintenance: false, frequency: 'daily', language: 'en',
      rules: { systemTrash: true, oldDownloads: true, caches: true, duplicates: false },
    },
  };
}

/** 5,000 items of Velto Trash, `together` of them in each cleanup. */
function trashOf(together) {
  const now = Date.now() / 1000;
  return list(5000, (index) => ({
    id: `item${index}`, opID: `op${Math.floor(index / together)}`, name: `copia ${index}.bin`, gb: (index % 40) / 10 + 0.1,
    path: `${home}/Downloads/copia ${index}.bin`, taken: now - Math.floor(index / together) * 900, kind: 'wind',
  }));
}

/** Runs in the page before its own scripts: the program's side of the channel. */
function prepare(saved) {
  window.webkit = { messageHandlers: { velto: { postMessage: () => {} } } };
  window.velto = { _state: saved, _stamp: Date.now() / 1000 - 10_800, setState: () => {} };
}

const settled = (page) => page.evaluate(() => new Promise((done) => {
  requestAnimationFrame(() => requestAnimationFrame(() => setTimeout(done)));
}));

const go = (page, view) => page.evaluate((name) => window.go(name), view);
/** What is told is handed over before it is measured. */
const keep = (page, value) => page.evaluate((given) => (window.kept = given), value);
const tellKept = (page, event) => page.evaluate((name) => window.velto[name](window.kept), event);

const press = (page, selector) => page.evaluate((wanted) => document.querySelector(wanted).click(), selector);

/** Each action is measured; what comes before it in the same case is not. */
const cases = [
  { name: 'open Large files, 500 rows', target: 60, act: (page) => go(page, 'archivos') },
  { name: 'a key without effect (what measuring takes)', before: (page) => page.locator('[data-search]').focus(), act: (page) => page.keyboard.press('Shift') },
  { name: 'a key that narrows its search', target: 16, act: (page) => page.keyboard.press('3') },
  { name: 'a key that widens it again', target: 16, act: (page) => page.keyboard.press('Backspace') },
  { name: 'sort it by name', act: (page) => press(page, '[role="columnheader"].name button') },
  { name: 'open Duplicates, 3,000 groups', target: 60, act: (page) => go(page, 'duplicados') },
  { name: 'select all but the kept copies', target: 50, act: (page) => press(page, '.tools button') },
  { name: 'Velto Trash, 5,000 items in 50 cleanups', target: 80, before: (page) => keep(page, trashOf(100)).then(() => go(page, 'inicio')), act: async (page) => {
    await tellKept(page, 'onTrashState');
    await go(page, 'papelera');
  } },
  { name: 'Velto Trash, 5,000 cleanups of one item', target: 80, before: (page) => keep(page, trashOf(1)).then(() => go(page, 'inicio')), act: async (page) => {
    await tellKept(page, 'onTrashState');
    await go(page, 'papelera');
  } },
];

/** Milliseconds of the main thread so far. */
async function spent(session) {
  const { metrics } = await session.send('Performance.getMetrics');
  return metrics.find(({ name }) => name === 'TaskDuration').value * 1000;
}

async function measure(browser, folder) {
  const page = await browser.newPage({ viewport: { width: 1180, height: 760 }, locale: 'en-US' });
  const session = await page.context().newCDPSession(page);
  await session.send('Performance.enable', { timeDomain: 'threadTicks' });
  await page.addInitScript(prepare, fullState());
  await page.goto(pathToFileURL(join(folder, 'index.html')).href);
  await page.locator('p[role="status"]').waitFor({ state: 'attached' });
  await settled(page);
  const times = [];
  for (const { before, act } of cases) {
    await before?.(page);
    await settled(page);
    const start = await spent(session);
    await act(page);
    await settled(page);
    times.push((await spent(session)) - start);
  }
  await page.close();
  return times;
}

async function main() {
  const browser = await chromium.launch({
    executablePath: '/usr/bin/chromium-headless-shell',
    args: ['--no-sandbox', '--disable-gpu', '--no-first-run', '--disable-background-networking'],
  });
  const results = folders.map(() => []);
  try {
    for (let run = 0; run <= runs; run += 1) {
      for (const [index, folder] of folders.entries()) {
        const times = await measure(browser, folder);
        if (run > 0) results[index].push(times); // the first one warms the cache
      }
    }
  } finally {
    await browser.close();
  }
  console.log(`Long lists of the page, processor time of its main thread, median of ${runs}`);
  for (const [index, { name, target }] of cases.entries()) {
    const [own, other] = results.map((all) => median(all.map((times) => times[index])));
    const fastest = Math.min(...results[0].map((times) => times[index]));
    const verdict = target ? ` (at most ${target}: ${own <= target ? 'met' : 'NOT met'})` : '';
    const beside = other === undefined ? '' : `   other ${other.toFixed(1)} ms`;
    console.log(`  ${name.padEnd(50)} ${own.toFixed(1).padStart(8)} ms${verdict}, fastest ${fastest.toFixed(1)}${beside}`);
  }
}

main().catch((error) => {
  console.error(`bench: ${error.message}`);
  process.exitCode = 1;
});
