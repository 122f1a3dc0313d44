// Uninstalling by clicking in the page: what is listed, what is found, what is gone from the disk
// afterwards and what is still there.
import assert from 'node:assert/strict';
import { chmodSync, lstatSync, readdirSync, rmSync, symlinkSync } from 'node:fs';
import { test } from 'node:test';
import { Home, MB } from './support/home.mjs';
import { openGuided } from './support/guided_page.mjs';
import { bundle, desktopEntry, runFrom, xmlPropertyList } from './support/made_app.mjs';

const existsAsLink = (path) => lstatSync(path, { throwIfNoEntry: false })?.isSymbolicLink() ?? false;
const history = (home) => JSON.parse(home.read(home.data('history.json')));
const orange = [[255, 170, 60], [220, 60, 40]];
const green = [[120, 220, 140], [20, 120, 90]];

/** A Mac's home with two applications, one of the system, and what the first left behind. */
function macHome(t) {
  const home = new Home(t).withAccess();
  bundle(home, 'Applications/Harbour.app', {
    id: 'com.example.harbour', version: '3.2.1', binary: true, icon: orange, bytes: 40 * MB,
  });
  bundle(home, 'Applications/Meadow.app', {
    id: 'com.example.meadow', version: '1.0', icon: green, bytes: 12 * MB, store: true,
  });
  bundle(home, 'Applications/Compass.app', { id: 'com.apple.compass', version: '9' });
  return home
    .allocated('Library/Application Support/com.example.harbour/data', 30 * MB)
    .allocated('Library/Caches/com.example.harbour/blob', 20 * MB)
    .text('Library/Preferences/com.example.harbour.plist', xmlPropertyList({ theme: 'dark' }))
    .text('Library/LaunchAgents/com.example.harbour.plist', xmlPropertyList({ Label: 'com.example.harbour' }))
    .allocated('Library/Application Support/Acme/Harbour/maps', 10 * MB)
    .text('Library/Application Support/Harbour Lights/kept', 'of another application')
    .text('Library/Caches/com.example.meadow/blob', 'of a neighbour');
}

test('an application goes with what it certainly left, its helper is quit, and the rest stays', async (t) => {
  const home = macHome(t);
  const app = await runFrom(t, home, 'Applications/Harbour.app/Contents/MacOS/Harbour');
  const helper = await runFrom(
    t, home, 'Applications/Harbour.app/Contents/Library/LoginItems/Pilot.app/Contents/MacOS/Pilot',
  );
  const neighbour = await runFrom(t, home, 'Applications/Meadow.app/Contents/MacOS/Meadow');
  const page = await openGuided(t, home);
  await page.click('Applications');
  await page.sees(/Harbour Running 3\.2\.1/);
  await page.sees(/Meadow Running App Store/);
  await page.sees('1 application that came with the system');
  await page.seesNot('measuring');
  assert.ok(!page.has('Look at what Compass left behind'));
  await page.velto.waitFor('Velto ▶ desinstalador: 3 aplicaciones instaladas');
  await page.velto.waitFor('Velto ▶ desinstalador: tamaños medidos (3 apps)');

  await page.click('Look at what Harbour left behind');
  await page.sees('5 of 6 items selected');
  await page.sees('Harbour is running: it is closed first.');
  await page.sees('Possible: look first');
  await page.seesNot('Harbour Lights');

  await page.click('Uninstall…');
  await page.sees(/Uninstall Harbour\? Harbour is running.* 5 items are deleted for good\. About 90.MB become free\./);
  await page.click('Cancel');
  await page.seesNot('Uninstall Harbour?');
  assert.equal(page.intents('uninstall'), 0);
  assert.ok(home.has('Applications/Harbour.app'));

  await page.click('Uninstall…');
  await page.click('Uninstall');
  await page.sees('Harbour is uninstalled');
  await page.sees(/90.MB became free/);
  await page.sees('5 items deleted · 2 processes closed');
  await page.sees('Everything that was selected is gone.');
  await page.velto.waitFor('Velto ▶ desinstalador: 2 procesos de Harbour cerrados');

  assert.equal((await app.ended).signal, 'SIGTERM');
  assert.equal((await helper.ended).signal, 'SIGTERM');
  assert.equal(neighbour.exitCode ?? neighbour.signalCode, null, 'a neighbour was ended');
  for (const path of [
    'Applications/Harbour.app',
    'Library/Application Support/com.example.harbour',
    'Library/Caches/com.example.harbour',
    'Library/Preferences/com.example.harbour.plist',
    'Library/LaunchAgents/com.example.harbour.plist',
  ]) {
    assert.ok(!home.has(path), `${path} is still there`);
  }
  for (const path of [
    'Applications/Meadow.app/Contents/Info.plist',
    'Applications/Compass.app/Contents/Info.plist',
    'Library/Application Support/Acme/Harbour/maps',
    'Library/Application Support/Harbour Lights/kept',
    'Library/Caches/com.example.meadow/blob',
  ]) {
    assert.ok(home.has(path), `${path} is gone`);
  }
  assert.deepEqual(readdirSync(home.at(home.data('Removing'))), []);

  await page.click('Back to all applications');
  await page.sees('Meadow');
  assert.ok(!page.has('Look at what Harbour left behind'));
  await page.click('History');
  await page.sees('Harbour');
  assert.equal(history(home)[0].kind, 'uninstall');
  assert.equal(history(home)[0].items.length, 5);
});

test('what could not be removed is named, each with its reason, and what to do about it', async (t) => {
  const home = macHome(t);
  const outside = new Home(t).text('maps', 'on another disk');
  rmSync(home.at('Library/Caches/com.example.harbour'), { recursive: true });
  symlinkSync(outside.path, home.at('Library/Caches/com.example.harbour'));
  const page = await openGuided(t, home);
  await page.click('Applications');
  await page.click('Look at what Harbour left behind');
  await page.sees('4 of 6 items selected');
  await page.tick('section:possible');
  rmSync(home.at('Library/Preferences/com.example.harbour.plist'));

  await page.click('Uninstall…');
  await page.click('Uninstall');
  await page.sees('1 item could not be removed');
  await page.sees('Outside your home folder');
  await page.sees('Only an administrator can remove it.');
  await page.sees('Already gone');
  await page.sees('4 items deleted');
  await page.velto.waitFor(
    `Velto ▶ desinstalador: no se pudo quitar ${home.at('Library/Caches/com.example.harbour')}`,
  );
  assert.ok(!home.has('Applications/Harbour.app'));
  assert.ok(!home.has('Library/Application Support/Acme/Harbour'));
  assert.ok(home.has('Library/Caches/com.example.harbour'), 'the link leads outside the home');
  assert.ok(outside.has('maps'), 'something outside the home was deleted');
});

test('one that does not quit is forced, and meanwhile no second removal begins', async (t) => {
  const home = macHome(t);
  const app = await runFrom(t, home, 'Applications/Harbour.app/Contents/MacOS/Harbour', { stubborn: true });
  const page = await openGuided(t, home);
  await page.click('Applications');
  await page.click('Look at what Harbour left behind');
  await page.click('Uninstall…');
  await page.click('Uninstall');
  await page.sees('Closing the application and its services');
  await page.click('Back to all applications');
  await page.click('Look at what Meadow left behind');
  await page.sees('An uninstall is already running');
  await page.sees('Harbour is uninstalled');
  assert.equal((await app.ended).signal, 'SIGKILL');
  assert.ok(!home.has('Applications/Harbour.app'));
  assert.ok(home.has('Applications/Meadow.app'));
  assert.equal(page.intents('uninstall'), 1);
});

test('what is installed for all users is found, left alone and named', async (t) => {
  const home = new Home(t, { onDisk: true }).withAccess();
  const app = '../../Applications/Beacon.app';
  const daemon = '../../Library/LaunchDaemons/com.example.beacon.plist';
  bundle(home, app, { id: 'com.example.beacon', version: '7', icon: green, bytes: 5 * MB });
  home
    .text(daemon, xmlPropertyList({ Label: 'com.example.beacon' }))
    .allocated('Library/Caches/com.example.beacon/blob', 20 * MB);
  const page = await openGuided(t, home);
  await page.click('Applications');
  await page.click('Look at what Beacon left behind');
  await page.sees('Stays: not removable here');
  await page.sees('Needs an administrator');
  await page.sees('2 of 3 items selected');
  await page.click('Uninstall…');
  await page.click('Uninstall');
  await page.sees('Beacon: some of it is still there');
  await page.sees('Outside your home folder Only an administrator can remove it.');
  await page.sees(/20.MB became free 1 item deleted/);
  assert.ok(home.has(`${app}/Contents/Info.plist`) && home.has(daemon));
  assert.ok(!home.has('Library/Caches/com.example.beacon'));
  await page.velto.waitFor(`Velto ▶ desinstalador: no se pudo quitar ${home.at(app)}`);
});

/** A Linux home with an AppImage, and what it and a neighbour left behind. */
function linuxHome(t) {
  const home = new Home(t, { layout: 'freedesktop' });
  desktopEntry(home, 'com.example.Harbour', 'Programs/Harbour.AppImage', {
    name: 'Harbour', icon: orange, more: 'X-AppImage-Version=3.2.1\n',
  });
  desktopEntry(home, 'com.example.Hidden', 'Programs/Harbour.AppImage', { name: 'Hidden', more: 'Hidden=true\n' });
  return home
    .allocated('.config/com.example.Harbour/settings', 1 * MB)
    .allocated('.cache/com.example.Harbour/blob', 70 * MB)
    .allocated('.local/share/com.example.Harbour/data', 30 * MB)
    .text('.config/autostart/com.example.Harbour.desktop', '[Desktop Entry]\nType=Application\n')
    .allocated('.config/Harbour/more', 2 * MB)
    .text('.config/other/settings', 'of a neighbour')
    .text('.ssh/id', 'a key');
}

test('a link among the leftovers of a Linux home goes alone, when it was chosen', async (t) => {
  const home = linuxHome(t).text('Projects/thesis', 'years of work');
  // Few enough rows that all of them are in sight.
  for (const gone of ['.config/com.example.Harbour', '.cache', '.local/share/com.example.Harbour', '.config/autostart']) {
    rmSync(home.at(gone), { recursive: true });
  }
  symlinkSync(home.at('Projects'), home.at('.config/com.example.Harbour'));
  await runFrom(t, home, 'Programs/Harbour.AppImage');
  const page = await openGuided(t, home);
  await page.click('Applications');
  await page.click('Look at what Harbour left behind');
  await page.sees('3 of 5 items selected');
  await page.sees('Projects');
  await page.sees('Only the link goes; what it leads to stays.');
  await page.tick('section:possible');
  await page.click('Uninstall…');
  await page.click('Uninstall');
  await page.sees('Harbour is uninstalled');
  assert.ok(!existsAsLink(home.at('.config/com.example.Harbour')));
  assert.equal(home.read('Projects/thesis'), 'years of work');
});

test('an AppImage of a Linux home goes with its entry and what it left behind', async (t) => {
  const home = linuxHome(t);
  const app = await runFrom(t, home, 'Programs/Harbour.AppImage');
  const page = await openGuided(t, home);
  await page.click('Applications');
  await page.sees(/Harbour Running 3\.2\.1/);
  await page.seesNot('Hidden');
  await page.velto.waitFor('aplicaciones instaladas');
  await page.click('Look at what Harbour left behind');
  await page.sees('Possible: look first');
  await page.click('Uninstall…');
  await page.click('Uninstall');
  await page.sees('Harbour is uninstalled');
  await page.sees('1 process closed');
  await page.sees(/101.MB became free/);

  assert.equal((await app.ended).signal, 'SIGTERM');
  for (const path of [
    'Programs/Harbour.AppImage',
    '.local/share/applications/com.example.Harbour.desktop',
    '.config/com.example.Harbour',
    '.cache/com.example.Harbour',
    '.local/share/com.example.Harbour',
    '.config/autostart/com.example.Harbour.desktop',
    '.local/share/icons/hicolor/128x128/apps/com.example.Harbour.png',
  ]) {
    assert.ok(!home.has(path), `${path} is still there`);
  }
  for (const path of ['.config/Harbour/more', '.config/other/settings', '.ssh/id', 'Programs']) {
    assert.ok(home.has(path), `${path} is gone`);
  }
  assert.equal(history(home)[0].kind, 'uninstall');
  await page.click('Back to all applications');
  await page.sees('Read again');
  assert.ok(!page.has('Look at what Harbour left behind'));
});

test('an unpacked application goes with its folder and its command; of a lone program file the folder stays', async (t) => {
  const home = new Home(t, { layout: 'freedesktop' });
  const unpacked = 'apps/VSCode-linux-x64';
  const lone = 'apps/thing';
  for (const [id, path, name] of [['code', `${unpacked}/code`, 'Visual Studio Code'], ['run', `${lone}/run`, 'Runner']]) {
    home.text(path, '#!/bin/sh\n');
    chmodSync(home.at(path), 0o755);
    desktopEntry(home, id, path, { name });
  }
  home.allocated(`${unpacked}/resources/data`, 50 * MB).text(`${lone}/thesis`, 'years of work').folder('.local/bin');
  symlinkSync(home.at(`${unpacked}/code`), home.at('.local/bin/code'));
  const page = await openGuided(t, home);
  await page.click('Applications');
  await page.click('Look at what Visual Studio Code left behind');
  await page.sees('3 of 3 items selected');
  await page.click('Uninstall…');
  await page.click('Uninstall');
  await page.sees('Visual Studio Code is uninstalled');
  await page.sees(/50.MB became free/);
  assert.ok(!home.has(unpacked));
  assert.ok(!existsAsLink(home.at('.local/bin/code')));

  await page.click('Back to all applications');
  await page.click('Look at what Runner left behind');
  await page.sees(`its folder ${home.at(lone)} stays`);
  await page.click('Uninstall…');
  await page.click('Uninstall');
  await page.sees('The program file of Runner is removed');
  await page.sees('Its folder stays:');
  assert.ok(!home.has(`${lone}/run`));
  assert.equal(home.read(`${lone}/thesis`), 'years of work');
});

test('an application for all users stays with what it has, and the window says so first', async (t) => {
  const home = linuxHome(t);
  const outside = new Home(t, { layout: 'freedesktop' }).text('opt/beacon/beacon', '#!/bin/sh\n');
  chmodSync(outside.at('opt/beacon/beacon'), 0o755);
  home
    .text(
      '.local/share/applications/com.example.Beacon.desktop',
      `[Desktop Entry]\nType=Application\nName=Beacon\nExec=${outside.at('opt/beacon/beacon')}\n`,
    )
    .text('.config/com.example.Beacon/settings', 'mine')
    .text('.local/share/keyrings/login.keyring', 'passwords');
  const page = await openGuided(t, home);
  await page.click('Applications');
  await page.click('Look at what Beacon left behind');
  await page.sees('Beacon itself stays: it is installed for all users');
  await page.sees('Nothing is selected, so nothing is deleted.');
  await page.tick(home.at('.config/com.example.Beacon'));
  await page.click('Remove what is selected…');
  await page.sees(/Remove what Beacon left behind\?.* Beacon itself stays/);
  await page.click('Remove for good');
  await page.sees('What Beacon left behind is removed');
  assert.ok(!home.has('.config/com.example.Beacon'));
  assert.ok(outside.has('opt/beacon/beacon'));
  assert.ok(home.has('.local/share/keyrings/login.keyring'));
});
