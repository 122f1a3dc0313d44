// What others may put in the program's way: it goes on working, and it ends when it is asked to.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { mkdirSync } from 'node:fs';
import { dirname } from 'node:path';
import { test } from 'node:test';
import { startChild } from '../../tools/desktop/children.mjs';
import { atEnd, Home, temporaryFolder } from './support/home.mjs';
import { bundle, desktopEntry, xmlPropertyList } from './support/made_app.mjs';
import { played, probePage } from './support/probe_page.mjs';
import { desktopFor, line, programWith, start } from './support/velto.mjs';

const watch = { type: 'systemWatch', payload: { on: true } };
const safetyNet = 120_000; // for a machine with much else to do; the program needs seconds

/** A pipe that nobody ever writes to: whoever opens it the ordinary way waits for ever. */
function pipe(home, path) {
  mkdirSync(dirname(home.at(path)), { recursive: true });
  execFileSync('mkfifo', [home.at(path)]);
  return home;
}

/** The program with a page that plays `steps`, and its desktop. */
async function open(t, home, steps) {
  const desktop = await desktopFor(t);
  const file = programWith(temporaryFolder(t), probePage(steps));
  return { desktop, velto: start(t, home, desktop, { file }) };
}

/** Closes the window, which fills the display, by the button in its corner. */
async function endsWithItsWindow(velto, desktop) {
  await desktop.steady();
  await desktop.click(desktop.width - 30, 31);
  assert.deepEqual(await velto.ended(safetyNet), { status: 0, signal: null });
}

const last = (seen, what) => seen.findLast((one) => one.what === what).args[0];

test('pipes among desktop entries and icons stop neither the list, nor the live view, nor the end', async (t) => {
  const home = new Home(t, { layout: 'freedesktop' });
  desktopEntry(home, 'harbour', 'bin/harbour', { name: 'Harbour', icon: [[255, 0, 0], [0, 0, 255]] });
  desktopEntry(home, 'meadow', 'bin/meadow', { name: 'Meadow' });
  for (const name of ['harbour', 'meadow']) {
    home.text(`bin/${name}`, '#!/bin/sh\n');
    execFileSync('chmod', ['700', home.at(`bin/${name}`)]);
  }
  const entries = '.local/share/applications';
  home.text(`${entries}/meadow.desktop`, `${home.read(`${entries}/meadow.desktop`)}Icon=meadow\n`);
  pipe(home, `${entries}/x.desktop`);
  pipe(home, `${entries}/folder/y.desktop`);
  pipe(home, '.local/share/icons/hicolor/48x48/apps/meadow.png');
  home.sparse(`${entries}/sparse.desktop`, 3_000_000_000);

  const { velto, desktop } = await open(t, home, [
    { send: { type: 'appsList' }, until: 'onApps' },
    { send: watch, until: 'onSystem' },
    { send: { type: 'appsList' }, until: 'onSystem' },
  ]);
  const apps = last(await played(velto, safetyNet), 'onApps');
  const named = (name) => apps.find((app) => app.name === name);
  assert.match(named('Harbour').icon, /^data:image\/png;base64,/);
  assert.equal(named('Meadow').icon, undefined);
  await endsWithItsWindow(velto, desktop);
});

test('pipes and bombs among bundles stop neither the list, nor the live view, nor the end', async (t) => {
  const home = new Home(t);
  bundle(home, 'Applications/Harbour.app', { id: 'com.example.harbour', icon: [[255, 0, 0], [0, 0, 255]] });
  pipe(home, 'Applications/Pipe.app/Contents/Info.plist');
  const icon = { CFBundleIdentifier: 'com.example.icon', CFBundleIconFile: 'Icon' };
  home.text('Applications/Icon.app/Contents/Info.plist', xmlPropertyList(icon));
  pipe(home, 'Applications/Icon.app/Contents/Resources/Icon.icns');
  home.sparse('Applications/Sparse.app/Contents/Info.plist', 3_000_000_000);
  const entities = { CFBundleIdentifier: 'com.example.bomb', CFBundleName: '&'.repeat(800_000) };
  home.text('Applications/Bomb.app/Contents/Info.plist', xmlPropertyList(entities));
  // A page of a billion points with a blur over all of it.
  const drawing = { CFBundleIdentifier: 'com.example.drawing', CFBundleIconFile: 'Icon' };
  home.text('Applications/Drawing.app/Contents/Info.plist', xmlPropertyList(drawing));
  home.text(
    'Applications/Drawing.app/Contents/Resources/Icon.icns',
    `<svg xmlns="http://www.w3.org/2000/svg" width="30000" height="30000"><filter id="f">
      <feGaussianBlur stdDeviation="900"/></filter><rect width="30000" height="30000" filter="url(#f)"/></svg>`,
  );

  const { velto, desktop } = await open(t, home, [
    { send: { type: 'appsList' }, until: 'onApps' },
    { send: watch, until: 'onSystem' },
  ]);
  const apps = last(await played(velto, safetyNet), 'onApps');
  assert.deepEqual(apps.map(({ bid }) => bid).sort(), [
    'com.example.drawing', 'com.example.harbour', 'com.example.icon',
  ]);
  assert.match(apps.find(({ name }) => name === 'Harbour').icon, /^data:image\/png;base64,/);
  await endsWithItsWindow(velto, desktop);
});

test('whoever keeps the trash for himself keeps nobody from leaving', async (t) => {
  const home = new Home(t);
  home.text('Downloads/a.txt', 'something to remove\n').folder(home.dataFolder);
  for (const name of ['Trash.lock', 'history.json.lock', 'cloud.json.lock']) {
    const holder = startChild('flock', ['--no-fork', home.at(home.data(name)), 'sh', '-c', 'echo held; exec sleep 600'], {
      stdio: ['ignore', 'pipe', 'ignore'],
    });
    atEnd(t, () => holder.kill('SIGKILL'));
    await new Promise((resolve) => holder.stdout.once('data', resolve));
  }
  const remove = { type: 'deleteFiles', payload: { paths: [home.at('Downloads/a.txt')] } };
  const { velto, desktop } = await open(t, home, [{ send: remove, until: 'nothing' }]);
  await velto.waitFor(line.booted);
  await endsWithItsWindow(velto, desktop);
  assert.ok(home.has('Downloads/a.txt') || home.has(home.data('Trash/manifest.json')));
});

test('a signal ends the program as its window does', async (t) => {
  const home = new Home(t, { layout: 'freedesktop' });
  pipe(home, '.local/share/applications/x.desktop');
  const { velto } = await open(t, home, [
    { send: { type: 'appsList' }, until: 'onApps' }, { send: watch, until: 'onSystem' },
  ]);
  await played(velto, safetyNet);
  velto.child.kill('SIGTERM');
  assert.deepEqual(await velto.ended(safetyNet), { status: 0, signal: null });
});

test('the log tells what happens and not what the files are called, on lines that are what they seem', async (t) => {
  const home = new Home(t, { layout: 'freedesktop' });
  const desktop = await desktopFor(t);
  const paths = ['plans/a\u001b[2Jb\u202egnp.exe', 'plans/second.txt'].map((name) => home.at(name));
  const exclude = { type: 'addExclusion', payload: '/private plans/first\nVelto ▶ made up' };
  const steps = [
    { send: { type: 'cleanPaths', payload: { paths } }, until: 'toast' }, { send: exclude, until: 'toast' },
  ];
  const file = programWith(temporaryFolder(t), probePage(steps));
  const velto = start(t, home, desktop, { file, detailed: false });
  const cleaned = await velto.waitFor(line.intent('cleanPaths'));
  assert.ok(cleaned.endsWith('payload: {"paths":[2: "…/a\\u001b[2Jb\\u202egnp.exe", …]}'), cleaned);
  const excluded = await velto.waitFor(line.intent('addExclusion'));
  assert.ok(excluded.endsWith('payload: "…/first\\u000aVelto ▶ made up"'), excluded);
  assert.equal(velto.count(/plans\//), 0);
  assert.equal(velto.count(/[\u0000-\u001f\u007f-\u009f\u202a-\u202e]/), 0);
});
