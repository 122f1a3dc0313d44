import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { existsSync } from 'node:fs';
import { dirname } from 'node:path';
import { test } from 'node:test';
import { furnishedHome, MB, temporaryFolder } from './support/home.mjs';
import { played, probePage, reports } from './support/probe_page.mjs';
import { desktopFor, expectInOrder, line, program, programWith, start } from './support/velto.mjs';

/** Starts the program with a page that plays `steps`. */
async function startProbe(t, home, steps, variables) {
  const file = programWith(temporaryFolder(t), probePage(steps));
  return start(t, home, await desktopFor(t), { file, variables });
}

const names = (list) => list.map(({ what }) => what);
const last = (list, what) => list.findLast((one) => one.what === what);

/** A home whose analysis is saved already; `state` is that of a real first analysis. */
async function analysedHome(t) {
  const home = furnishedHome(t);
  const velto = await startProbe(t, home, []);
  await velto.waitFor(line.finished);
  await velto.stop();
  return home;
}

test('the page has the saved analysis before its own scripts run', async (t) => {
  const home = await analysedHome(t);
  const { ts, state } = home.saved();
  const velto = await startProbe(t, home, []);
  const [first, ...rest] = await played(velto);

  assert.equal(first.what, 'atStart');
  assert.deepEqual(first.args[0].state, state);
  assert.equal(first.args[0].stamp, ts);
  assert.match(first.args[0].setState, /window\.velto\._state = s; if \(ts\) window\.velto\._stamp = ts;/);

  // Access first, then the state with its own stamp, then the trash.
  // The window comes to the front at a moment of its own, and then tells the access once more.
  const pushed = names(rest);
  assert.deepEqual([...new Set(pushed)].slice(0, 3), ['onPermissions', 'setState', 'onTrashState']);
  assert.deepEqual(rest[0].args, [{ fda: false }]);
  assert.deepEqual(last(rest, 'setState').args, [state, ts]);
  assert.deepEqual(last(rest, 'onTrashState').args, [[]]);
  assert.ok(!pushed.includes('onScanStarted'));
});

test('a first analysis reaches the page from its start to its end', async (t) => {
  const home = furnishedHome(t).withAccess();
  const velto = await startProbe(t, home, [{ until: 'onScanFinished' }]);
  const seen = await played(velto);
  assert.equal(seen[0].what, 'atStart');
  assert.equal(seen[0].args[0], null, 'nothing is saved, so nothing is in the page');

  const often = ['onScanProgress', 'onPermissions', 'console'];
  const order = names(seen).filter((what) => !often.includes(what));
  assert.deepEqual(order, [
    'atStart', 'setState', 'onTrashState', 'onScanStarted', 'setState', 'onScanFinished', 'done',
  ]);
  const empty = seen.find(({ what }) => what === 'setState').args[0];
  assert.deepEqual([empty.cats, empty.files, empty.dupGroups], [[], [], []]);
  const [state, stamp] = last(seen, 'setState').args;
  assert.deepEqual({ state, ts: stamp }, home.saved());
  assert.deepEqual(last(seen, 'onPermissions').args, [{ fda: true }]);
});

test('excluding and taking back reach the page, the file and the next analysis', async (t) => {
  const home = await analysedHome(t);
  const music = home.at('Music');
  const velto = await startProbe(t, home, [
    { send: { type: 'addExclusion', payload: music }, until: 'toast' },
    { send: { type: 'addExclusion', payload: music }, until: 'toast' },
    { send: { type: 'scan' }, until: 'onScanFinished' },
  ]);
  const seen = await played(velto);
  const toasts = seen.filter(({ what }) => what === 'toast').map(({ args }) => args);
  assert.deepEqual(toasts, [
    ['Excluded from the analysis', music],
    ['Excluded from the analysis', music],
  ]);
  assert.deepEqual(JSON.parse(home.read(home.data('exclusions.json'))), [music]);
  assert.ok(home.saved().state.files.every((file) => file.name !== 'concert.wav'));
  await velto.stop();

  const back = await startProbe(t, home, [
    { send: { type: 'removeExclusion', payload: music }, until: 'onExclusions' },
  ]);
  assert.deepEqual(last(await played(back), 'onExclusions').args, [[]]);
  assert.deepEqual(JSON.parse(home.read(home.data('exclusions.json'))), []);
});

test('settings are kept for the next start, and the page speaks the chosen language', async (t) => {
  const home = await analysedHome(t);
  const settings = {
    retention: 7, frequency: 'weekly', enabled: false, language: 'es-MX', rules: { caches: false },
  };
  const velto = await startProbe(t, home, [
    { send: { type: 'settings', payload: settings } },
    { send: { type: 'addExclusion', payload: '/x' }, until: 'toast' },
    { send: { type: 'settings', payload: { boot: true, retention: 99 } } },
    { send: { type: 'webReady' }, until: 'console' },
  ]);
  assert.equal(last(await played(velto), 'toast').args[0], 'Excluido del análisis');
  expectInOrder(velto.lines, ['Velto ▶ ajustes: idioma=es']);
  assert.equal(velto.count('Velto ▶ ajustes: idioma='), 1, 'the start-up push is ignored');
  await velto.stop();

  const next = await startProbe(t, home, []);
  const { settings: kept } = last(await played(next), 'setState').args[0];
  assert.equal(kept.retention, 7);
  assert.equal(kept.frequency, 'daily', 'an unknown frequency is replaced');
  assert.equal(kept.language, 'es');
  assert.equal(kept.rules.caches, false);
  assert.equal(kept.rules.systemTrash, true);
});

test('last uses that are switched off are deleted, and stay off at the next start', async (t) => {
  const home = await analysedHome(t);
  const file = home.data('app-usage.json');
  home.text(file, '{"com.example.one":1700000000,"com.example.two":1700000001}');
  const velto = await startProbe(t, home, [
    { send: { type: 'about' }, until: 'onAbout' },
    { send: { type: 'appUses' }, until: 'onAppUses' },
    { send: { type: 'recordAppUses', payload: { on: false } }, until: 'onAppUses' },
  ]);
  const seen = await played(velto);
  const [about] = last(seen, 'onAbout').args;
  assert.equal(`Velto ${about.version}\n`, execFileSync(program, ['--version'], { encoding: 'utf8' }));
  const data = about.places.find(({ role }) => role === 'data');
  assert.deepEqual(data, { role: 'data', path: dirname(home.at(file)), there: true });
  const uses = seen.filter(({ what }) => what === 'onAppUses').map(({ args }) => args[0]);
  assert.deepEqual(uses, [{ recording: true, applications: 2 }, { recording: false, applications: 0 }]);
  await velto.stop();
  assert.equal(existsSync(home.at(file)), false);

  const next = await startProbe(t, home, [{ send: { type: 'appUses' }, until: 'onAppUses' }]);
  assert.deepEqual(last(await played(next), 'onAppUses').args, [{ recording: false, applications: 0 }]);
});

test('every intent is logged, echoed to the console, and shown its view', async (t) => {
  const home = await analysedHome(t);
  const velto = await startProbe(t, home, [
    { send: { type: 'webReady' }, until: 'console' },
    { send: { type: 'goView', payload: 'papelera' }, until: 'go' },
    { send: { type: 'setTheme', payload: { theme: 'dark' } } },
    { send: { type: 'setTheme', payload: { theme: 'light' } } },
    { send: { type: 'setTheme', payload: { theme: 'light' } }, until: 'console' },
    { send: { type: 'checkAccess' }, until: 'console' },
  ]);
  const seen = await played(velto);
  assert.deepEqual(last(seen, 'go').args, ['papelera']);
  assert.ok(
    seen.some(({ what, args }) => what === 'console' &&
      args[0] === '[velto] intención recibida: webReady'),
  );
  const themes = velto.lines.filter((one) => one.includes('Velto ▶ tema de la ventana: '));
  assert.ok(themes.length === 1 || themes.length === 2, themes.join('\n'));
  assert.match(themes.at(-1), /Aqua$/);
  assert.doesNotMatch(themes.at(-1), /Dark/);
});

test('messages that make no sense do nothing, and the program goes on', async (t) => {
  const home = await analysedHome(t);
  const before = home.read(home.data('lastScan.json'));
  const nonsense = [null, 7, 'scan', [], {}, { payload: 1 }, { type: 5 }, { type: null }];
  const wrong = [
    'settings', 'setTheme', 'appAnalysis', 'uninstall', 'revealPath', 'deleteFiles', 'restoreItem',
    'purgeItem', 'addExclusion', 'removeExclusion', 'cleanPaths', 'moveCloud', 'goView',
    'setAutoMaintenance',
  ].flatMap((type) => [{ type }, { type, payload: 5 }, { type, payload: [1, 2] }]);
  const emptyLists = ['deleteFiles', 'cleanPaths', 'moveCloud'].map((type) => ({
    type, payload: { paths: [] },
  }));
  const unknown = [{ type: 'noSuchIntent', payload: { a: [1, null, 'ñ"\\\n'] } }, { type: 'SCAN' }];
  const velto = await startProbe(t, home, [
    ...[...nonsense, ...wrong, ...emptyLists, ...unknown].map((send) => ({ send })),
    { send: { type: 'goView', payload: 'inicio' }, until: 'go' },
  ]);
  const seen = await played(velto);

  assert.equal(velto.count(line.intent('noSuchIntent')), 1, 'an unknown intent is still recorded');
  assert.equal(velto.count(line.intent('SCAN')), 1);
  assert.equal(velto.count(line.started), 0, '"scan" is case-sensitive and needs a whole message');
  assert.deepEqual(names(seen).filter((what) => !['console', 'go'].includes(what)),
    ['atStart', 'onPermissions', 'setState', 'onTrashState', 'done']);
  assert.equal(home.read(home.data('lastScan.json')), before);
  // Each intent with a name, sensible or not, was written to the log as one line.
  const logged = velto.lines.filter((one) => one.includes('Velto ▶ intención: ')).length;
  assert.equal(logged - reports(velto).length, wrong.length + emptyLists.length + unknown.length + 1);
});

test('a scan asked for twice runs once', async (t) => {
  const home = await analysedHome(t);
  // Two large equal files keep the first scan busy when the second request comes.
  home.allocated('Movies/one.bin', 400 * MB).allocated('Movies/two.bin', 400 * MB);
  const velto = await startProbe(t, home, [
    { send: { type: 'scan' } },
    { send: { type: 'scan' } },
    { until: 'onScanFinished' },
  ]);
  const seen = await played(velto);
  assert.equal(names(seen).filter((what) => what === 'onScanStarted').length, 1);
  assert.equal(velto.count(line.started), 1);
});

test('a reset from the page deletes the data and tells so', async (t) => {
  const home = await analysedHome(t);
  const velto = await startProbe(t, home, [
    { send: { type: 'addExclusion', payload: '/x' }, until: 'toast' },
    { send: { type: 'resetVelto' }, until: 'toast' },
  ]);
  const seen = await played(velto);
  assert.deepEqual(last(seen, 'toast').args, [
    'Velto has been reset',
    'Automatic maintenance and all local data have been removed.',
  ]);
  assert.equal(home.has(home.data('lastScan.json')), false);
  assert.equal(home.has(home.data('exclusions.json')), false);
});

test('file names from outside never become script', async (t) => {
  const home = await analysedHome(t);
  const path = '/a"); window.go("broken"); ("\\b\nc';
  const velto = await startProbe(t, home, [
    { send: { type: 'addExclusion', payload: path }, until: 'toast' },
    { send: { type: 'goView', payload: 'inicio' }, until: 'go' },
  ]);
  const seen = await played(velto);
  assert.deepEqual(seen.filter(({ what }) => what === 'go').map(({ args }) => args), [['inicio']]);
  const detail = last(seen, 'toast').args[1];
  assert.ok(detail.startsWith('/a"); window.go("broken"); ("') && !/[\\\n]/.test(detail), detail);
});
