// Whoever leaves while something is being moved or deleted: the program ends when it is done.
import assert from 'node:assert/strict';
import { test } from 'node:test';
import { startChild } from '../../tools/desktop/children.mjs';
import { atEnd, Home, temporaryFolder } from './support/home.mjs';
import { notificationsFor } from './support/notifications.mjs';
import { probePage, reports } from './support/probe_page.mjs';
import { desktopFor, expectInOrder, line, programWith, start } from './support/velto.mjs';

const safetyNet = 120_000; // for a machine with much else to do; the program needs seconds
const waits = 'Velto ▶ salida: se espera a que termine lo que está en marcha';
const moved = 'Velto ▶ Papelera de Velto: 2 elementos';

/** Keeps everyone from changing the trash until it is called. */
async function holdTrash(t, home) {
  home.folder(home.dataFolder);
  const holder = startChild('flock', ['--no-fork', home.at(home.data('Trash.lock')), 'sh', '-c', 'echo held; exec sleep 600'], {
    stdio: ['ignore', 'pipe', 'ignore'],
  });
  atEnd(t, () => holder.kill('SIGKILL'));
  await new Promise((resolve) => holder.stdout.once('data', resolve));
  return () => holder.kill('SIGKILL');
}

/** A home in which two files are being moved to the trash, and cannot be yet. */
async function movingHome(t, desktop, variables = {}, prepare = () => {}) {
  const home = new Home(t);
  home.text('Downloads/a.txt', 'first\n').text('Downloads/folder/b.txt', 'second\n');
  prepare(home);
  const release = await holdTrash(t, home);
  const paths = ['Downloads/a.txt', 'Downloads/folder'].map((name) => home.at(name));
  // Whoever waits for the trash gives up after ten seconds: the window stands before it is asked to.
  const steps = [{ quiet: 3_000 }, { send: { type: 'deleteFiles', payload: { paths } }, until: 'nothing' }];
  const velto = start(t, home, desktop, { file: programWith(temporaryFolder(t), probePage(steps)), variables });
  await desktop.steady();
  await velto.waitFor(line.intent('deleteFiles'), { limit: safetyNet });
  return { home, velto, release };
}

/** All of it is in the trash, listed, and nothing is left to be settled. */
function expectDone(home, velto) {
  expectInOrder(velto.lines, [waits, moved]);
  assert.ok(!home.has('Downloads/a.txt') && !home.has('Downloads/folder'));
  const { items } = JSON.parse(home.read(home.data('Trash/manifest.json')));
  assert.deepEqual(items.map(({ name }) => name), ['a.txt', 'folder']);
  const stored = (item, rest = '') => home.read(home.data(`Trash/${item.opID}/${item.id}-${item.name}${rest}`));
  assert.equal(stored(items[0]), 'first\n');
  assert.equal(stored(items[1], '/b.txt'), 'second\n');
  assert.ok(!home.has(home.data('Trash.journal')), 'a step is half done');
}

const close = (desktop) => desktop.click(desktop.width - 30, 31);

test('a window that is closed in the middle stays, says why, and ends with the work', async (t) => {
  const desktop = await desktopFor(t);
  const { home, velto, release } = await movingHome(t, desktop);
  await close(desktop);
  await velto.waitFor(waits, { limit: safetyNet });
  await velto.waitFor(/"what":"onQuitting"/, { limit: safetyNet });
  assert.deepEqual(reports(velto).find(({ what }) => what === 'onQuitting').args, [{ running: 'cleanup' }]);
  await close(desktop); // once more changes nothing
  assert.ok(home.has('Downloads/a.txt'));
  assert.equal(velto.count(moved), 0);
  release();
  assert.deepEqual(await velto.ended(safetyNet), { status: 0, signal: null });
  expectDone(home, velto);
});

test('a signal waits for the work too', async (t) => {
  const desktop = await desktopFor(t);
  const { home, velto, release } = await movingHome(t, desktop);
  velto.child.kill('SIGTERM');
  await velto.waitFor(/"what":"onQuitting"/, { limit: safetyNet });
  release();
  assert.deepEqual(await velto.ended(safetyNet), { status: 0, signal: null });
  expectDone(home, velto);
});

test('without a window a notification says that the program is about to end', async (t) => {
  const desktop = await desktopFor(t);
  const service = await notificationsFor(t);
  // With maintenance installed the program goes on without its window.
  const { home, velto, release } = await movingHome(t, desktop, { ...service.variables, LANG: 'es_ES.UTF-8' }, (made) =>
    made.text('Library/LaunchAgents/app.velto.maintenance.plist', ''));
  await close(desktop);
  await desktop.lookUntil(({ colours }) => colours === 1);
  assert.equal(velto.count(waits), 0);
  const told = service.next();
  velto.child.kill('SIGTERM');
  await told;
  assert.match(JSON.stringify(service.received), /Velto (se cerrará al terminar|will quit when it has finished)/);
  release();
  assert.deepEqual(await velto.ended(safetyNet), { status: 0, signal: null });
  expectDone(home, velto);
});
