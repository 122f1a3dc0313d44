// How soon the window answers while the processors are busy: from a click on the page's rail to the
// intent that reaches the program, with as many busy loops running as there are processors, while it
// analyses a large home and while it moves 10,000 files to Velto Trash:
// `node bench/load.mjs BUILD-FOLDER [CLICKS]`. The tool that clicks is there before it is asked to; its
// own way to the display is part of the time.
import { execFile, execFileSync, spawn } from 'node:child_process';
import { appendFileSync, cpSync, mkdirSync, mkdtempSync, rmSync, writeFileSync } from 'node:fs';
import { cpus, tmpdir } from 'node:os';
import { join } from 'node:path';
import { setTimeout as pause } from 'node:timers/promises';
import { promisify } from 'node:util';
import { startDesktop } from '../tools/desktop/desktop.mjs';
import { homeVariables, startProgram } from '../tools/desktop/program.mjs';

const build = process.argv[2] ?? 'build/release';
const clicks = Number(process.argv[3] ?? 60);
const target = 100; // milliseconds, for 19 clicks of 20
const removed = 10_000; // files in one operation

// The entries "Overview" and "System" of the page's rail.
const overviewEntry = [100, 118];
const systemEntry = [100, 378];
const watching = (on) => `Velto ▶ intención: systemWatch payload: {"on":${on}}`;

const milliseconds = (since) => Number(process.hrtime.bigint() - since) / 1e6;
const quantile = (values, share) => values.toSorted((a, b) => a - b)[Math.ceil(values.length * share) - 1];

/** A tool that has started and clicks once, when it is told where. */
function readyClick(variables) {
  const tool = spawn('xdotool', ['-'], { env: { ...process.env, ...variables }, stdio: ['pipe', 'ignore', 'inherit'] });
  const ended = new Promise((resolve) => tool.once('exit', resolve));
  return ([x, y]) => {
    tool.stdin.end(`mousemove ${x} ${y}\nclick 1\n`);
    return ended;
  };
}

/** Clicks to and fro between two views, of which one wants live data and says so, until `isEnough`. */
async function answerTimes(velto, variables, isEnough) {
  const times = [];
  for (let index = 0; !isEnough(times) || index % 2; index += 1) {
    const on = index % 2 === 0;
    const click = readyClick(variables);
    await pause(120);
    const from = velto.lines.length;
    const start = process.hrtime.bigint();
    const clicked = click(on ? systemEntry : overviewEntry); // which rests after the click
    await velto.waitFor(watching(on), { from });
    times.push(milliseconds(start));
    await clicked;
  }
  return times;
}

const after = (count) => (times) => times.length >= count;

/**
 * Lets the program analyse again and again until `done` says so. It is asked over the bus: a second
 * start of the program would be another load.
 */
async function keepAnalysing(velto, variables, state) {
  const ask = ['call', '--session', '--dest', 'app.velto', '--object-path', '/app/velto',
    '--method', 'org.gtk.Actions.Activate', 'analyze', '[]', '{}'];
  while (!state.done) {
    const from = velto.lines.length;
    await promisify(execFile)('gdbus', ask, { env: variables });
    await velto.waitFor('Velto ▶ análisis terminado', { from, limit: 120_000 });
    state.analyses += 1;
  }
}

const removalFolder = 'Downloads/removal';
const intent = (name) => `Velto ▶ intención: ${name} payload`;

/**
 * The program with a page that has one more script: a key moves the files to the trash, another takes
 * that back, and the page says when it has been told the end of it.
 */
function copyWithKeys(folder, home) {
  for (const name of ['velto', 'velto-icons', 'Velto_velto_app.bundle']) {
    cpSync(join(build, name), join(folder, name), { recursive: true });
  }
  const bundle = join(folder, 'Velto_velto_app.bundle');
  appendFileSync(join(bundle, 'later.js'), `
(() => {
  const tell = (type, payload) => webkit.messageHandlers.velto.postMessage({ type, payload });
  const paths = Array.from({ length: ${removed} }, (_, index) => ${JSON.stringify(join(home, removalFolder))} + '/file ' + index + '.bin');
  let held = 0;
  const onTrashState = window.velto.onTrashState;
  window.velto.onTrashState = (items) => {
    onTrashState(items);
    if (items.length !== held) tell(items.length ? 'benchRemoved' : 'benchBack');
    held = items.length;
  };
  addEventListener('keydown', ({ key }) => {
    if (key === 'F8') tell('deleteFiles', { paths, kind: 'wind' });
    if (key === 'F9') tell('undoLast');
  });
})();
`);
  return join(folder, 'velto');
}

/** Clicks while the files go, again and again until there are enough clicks: each time the files come back. */
async function whileRemoving(velto, desktop, count) {
  const times = [];
  let removals = 0;
  while (times.length < count) {
    const from = velto.lines.length;
    await desktop.input('key', 'F8');
    await velto.waitFor(intent('deleteFiles'), { from });
    const hasEnded = () => velto.lines.slice(from).some((line) => line.includes(intent('benchRemoved')));
    times.push(...(await answerTimes(velto, desktop.variables, hasEnded)));
    removals += 1;
    const back = velto.lines.length;
    await desktop.input('key', 'F9');
    await velto.waitFor(intent('benchBack'), { from: back, limit: 120_000 });
    await pause(500);
  }
  return { times, removals };
}

function makeHome(folder) {
  const home = join(folder, 'home');
  execFileSync(join(build, 'bench', 'bench_make_home'), [home, '400000', '18000', '4096']);
  mkdirSync(join(home, removalFolder), { recursive: true });
  for (let index = 0; index < removed; index += 1) writeFileSync(join(home, removalFolder, `file ${index}.bin`), 'x');
  return home;
}

async function main() {
  const folder = mkdtempSync(join(tmpdir(), 'velto-load-'));
  const home = makeHome(folder);
  const desktop = await startDesktop();
  const variables = { ...desktop.variables, ...homeVariables(home, folder) };
  const velto = startProgram(copyWithKeys(folder, home), [], variables);
  const loops = [];
  try {
    await velto.waitFor('Velto ▶ análisis terminado', { limit: 120_000 });
    await pause(2000);
    const idle = await answerTimes(velto, desktop.variables, after(20));
    for (const _ of cpus()) loops.push(spawn('sh', ['-c', 'while :; do :; done'], { stdio: 'ignore' }));
    const beside = await answerTimes(velto, desktop.variables, after(clicks));
    const { times: removing, removals } = await whileRemoving(velto, desktop, clicks);
    const state = { done: false, analyses: 0 };
    const analysing = keepAnalysing(velto, variables, state);
    await pause(500);
    const busy = await answerTimes(velto, desktop.variables, after(clicks));
    state.done = true;
    await analysing;
    const met = (times) => (quantile(times, 0.95) <= target ? 'met' : 'NOT met');
    const row = (name, times, judgement = '') =>
      console.log(`  ${name.padEnd(40)} median ${quantile(times, 0.5).toFixed(0).padStart(4)} ms, ` +
        `19 of 20 within ${quantile(times, 0.95).toFixed(0).padStart(4)} ms of ${times.length} clicks${judgement}`);
    console.log(`From a click to its intent, beside ${loops.length} busy loops but for the first row ` +
      `(${state.analyses} analyses of 400,000 files; ${removals} removals of ${removed} files)`);
    row('at rest', idle);
    row('nothing else', beside);
    row('analysing', busy, ` (at most ${target}: ${met(busy)})`);
    row('moving files to Velto Trash', removing, ` (at most ${target}: ${met(removing)})`);
  } finally {
    for (const loop of loops) loop.kill('SIGKILL');
    await velto.stop();
    await desktop.stop();
    rmSync(folder, { recursive: true, force: true, maxRetries: 20, retryDelay: 50 });
  }
}

main().catch((error) => {
  console.error(`bench: ${error.message}`);
  process.exitCode = 1;
});
