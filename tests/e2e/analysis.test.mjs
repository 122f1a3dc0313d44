import assert from 'node:assert/strict';
import { test } from 'node:test';
import { Home, MB, furnishedHome } from './support/home.mjs';
import { after, desktopFor, expectInOrder, line, start } from './support/velto.mjs';

const everyLocation = [
  'desktop', 'documents', 'downloads', 'photos', 'icloud', 'mail', 'messages', 'safari',
  'calendars', 'contacts', 'iphone',
];
const categoryOrder = ['fotos', 'apps', 'docs', 'descargas', 'musica', 'sistema'];

const byId = (state) => Object.fromEntries(state.cats.map((cat) => [cat.id, cat]));

test('a first start measures by itself what needs no permission and remembers it', async (t) => {
  const home = furnishedHome(t);
  const desktop = await desktopFor(t);
  const before = Date.now() / 1000;
  const velto = start(t, home, desktop);
  const last = await velto.waitFor(line.finished);
  const { ts, state } = home.saved();

  assert.ok(ts >= before && ts <= Date.now() / 1000, `made at ${ts}`);
  assert.deepEqual(state.cats.map((cat) => cat.id), categoryOrder);
  assert.deepEqual(state.protected, everyLocation);
  assert.ok(state.total > 0 && state.free > 0 && state.free < state.total);
  assert.equal(
    state.ser,
    Math.min(99, Math.max(5, Math.round((state.free / state.total) ** 0.3 * 100))),
  );

  const cats = byId(state);
  assert.deepEqual([cats.fotos.gb, cats.fotos.files], [0.5, 5]);
  assert.deepEqual([cats.musica.gb, cats.musica.files], [0.4, 2]);
  assert.deepEqual([cats.apps.gb, cats.apps.files], [0.3, 1]);
  assert.deepEqual([cats.docs.gb, cats.docs.files], [0, 0], 'Desktop and Documents are closed');
  assert.deepEqual([cats.descargas.gb, cats.descargas.files], [0, 0], 'Downloads is closed');
  assert.equal(cats.sistema.files, 1);
  assert.ok(cats.sistema.gb > 0, 'what the walk did not see counts as system');

  assert.deepEqual(
    state.files.map(({ name, gb, kind, path }) => ({ name, gb, kind, path })),
    [
      { name: 'holiday.mov', gb: 0.5, kind: 'video', path: home.at('Pictures/2019/holiday.mov') },
      { name: 'concert.wav', gb: 0.4, kind: 'video', path: home.at('Music/concert.wav') },
      { name: 'blob', gb: 0.3, kind: 'app', path: home.at('Library/Caches/com.example.app/blob') },
    ],
  );
  assert.ok(state.files.every((file) => file.last === 'hoy' && file.lastN === 0));

  assert.equal(state.dupGroups.length, 1);
  assert.deepEqual(
    state.dupGroups[0].paths.toSorted(),
    ['Pictures/2019/beach.raw', 'Pictures/beach copy.raw', 'beach again.raw'].map((p) => home.at(p)),
  );
  assert.match(state.dupGroups[0].id, /^[0-9a-f]{64}$/);

  expectInOrder(velto.lines, [
    'Velto ▶ permiso de disco: sin rutas de prueba legibles en este Mac',
    line.noSaved,
    `${line.booted}pendiente de análisis · categorías=0 · archivos=0`,
    line.started,
    `${line.walked}9 archivos, candidatos duplicado: 7`,
    `${line.processed}1 grupos)`,
    line.finished,
  ]);
  assert.match(after(last, line.finished), /^3 archivos top, \d+\.\d GB libres$/);
});

test('with full access the protected folders are measured too', async (t) => {
  const home = furnishedHome(t).withAccess();
  const desktop = await desktopFor(t);
  const velto = start(t, home, desktop);
  await velto.waitFor(line.finished);
  const { state } = home.saved();
  const cats = byId(state);

  assert.deepEqual(state.protected, []);
  assert.deepEqual([cats.docs.gb, cats.docs.files], [0.6, 2]);
  assert.deepEqual([cats.descargas.gb, cats.descargas.files], [0, 1]);
  assert.equal(state.files[0].path, home.at('Desktop/archive.zip'));
  assert.equal(state.files[0].kind, 'doc');
  expectInOrder(velto.lines, [
    `Velto ▶ permiso de disco: concedido (lee ${home.at('Library/Application Support/com.apple.TCC')})`,
  ]);
});

test('the second start shows the saved analysis and does not measure again', async (t) => {
  const home = furnishedHome(t);
  const desktop = await desktopFor(t);
  const first = start(t, home, desktop);
  await first.waitFor(line.finished);
  await first.stop();
  const saved = home.read(home.data('lastScan.json'));
  home.allocated('Movies/new.mov', 700 * MB);

  const second = start(t, home, desktop);
  await second.waitFor(line.intent('webReady'));
  expectInOrder(second.lines, [
    line.saved,
    `${line.booted}real · categorías=6 · archivos=3`,
    line.intent('webReady'),
  ]);
  assert.equal(second.count(line.started), 0);
  assert.match(second.lines.find((one) => one.includes(line.saved)),
    /hace \d+\.\d min · escaneo automático: no$/);
  assert.equal(home.read(home.data('lastScan.json')), saved);
});

test('a Linux home is measured whole: it has no closed folders', async (t) => {
  const home = new Home(t, { layout: 'freedesktop' });
  home
    .allocated('Desktop/archive.zip', 600 * MB)
    .allocated('.cache/thing/blob', 400 * MB)
    .text('Documents/letter.txt', 'Dear reader\n');
  const desktop = await desktopFor(t);
  const velto = start(t, home, desktop);
  await velto.waitFor(line.finished);
  const { state } = home.saved();
  assert.deepEqual(state.protected, []);
  assert.equal(byId(state).docs.files, 2);
  assert.ok(state.files.some((file) => file.path === home.at('Desktop/archive.zip')));
  assert.equal(byId(state).apps.gb, 0.4, 'the caches are seen although their folder is hidden');
});

test('what the user has excluded is not measured', async (t) => {
  const home = furnishedHome(t);
  home.text(home.data('exclusions.json'), JSON.stringify([home.at('Music')]));
  const desktop = await desktopFor(t);
  const velto = start(t, home, desktop);
  await velto.waitFor(line.finished);
  const { state } = home.saved();
  assert.deepEqual([byId(state).musica.gb, byId(state).musica.files], [0, 1], 'song.mp3 is left');
  assert.ok(state.files.every((file) => file.name !== 'concert.wav'));
});

test('damaged files count as absent, and the next save replaces them', async (t) => {
  const home = furnishedHome(t);
  home.text(home.data('lastScan.json'), '{"state": {"total": 1');
  home.text(home.data('exclusions.json'), '{"not": "a list"}');
  home.text('.config/velto/settings.json', '{"velto.retentionDays": 7');
  const desktop = await desktopFor(t);
  const velto = start(t, home, desktop);
  await velto.waitFor(line.finished);
  assert.equal(velto.count(line.noSaved), 1);
  const { state } = home.saved();
  assert.equal(state.settings.retention, 30);
  assert.ok(state.files.some((file) => file.name === 'concert.wav'), 'nothing is excluded');
  await velto.stop(); // the window's frame is remembered when it closes
  const settings = JSON.parse(home.read('.config/velto/settings.json'));
  assert.ok(Object.keys(settings).length > 0);
  assert.equal(settings['velto.retentionDays'], undefined);
});

test('settings that can be read count', async (t) => {
  const home = furnishedHome(t);
  home.text('.config/velto/settings.json', '{"velto.retentionDays": 7}');
  const velto = start(t, home, await desktopFor(t));
  await velto.waitFor(line.finished);
  assert.equal(home.saved().state.settings.retention, 7);
});

test('a saved analysis without its time counts as absent', async (t) => {
  const home = furnishedHome(t);
  const desktop = await desktopFor(t);
  const first = start(t, home, desktop);
  await first.waitFor(line.finished);
  await first.stop();
  const entry = home.saved();
  delete entry.ts;
  home.text(home.data('lastScan.json'), JSON.stringify(entry));
  const second = start(t, home, desktop);
  await second.waitFor(line.finished);
  assert.equal(second.count(line.noSaved), 1);
  assert.equal(typeof home.saved().ts, 'number');
});
