// Cleaning, putting back and deleting for good: all by clicking in the page, and looked up on the
// disk.
import assert from 'node:assert/strict';
import { readdirSync, renameSync, symlinkSync } from 'node:fs';
import { test } from 'node:test';
import { furnishedHome, Home, MB } from './support/home.mjs';
import { openGuided } from './support/guided_page.mjs';

const blob = 'Library/Caches/com.example.app/blob';
const cache = 'Library/Caches/com.example.app';

const manifest = (home) => JSON.parse(home.read(home.data('Trash/manifest.json')));
const history = (home) => JSON.parse(home.read(home.data('history.json')));
/** The names of all files and folders one step inside the operations' folders. */
const held = (home) =>
  manifest(home).operations.flatMap(({ id }) => readdirSync(home.at(home.data(`Trash/${id}`))));

/** Two copies that are large files as well. */
const twins = (home) =>
  home.alike(['Movies/twin.mov', 'Desktop/twin.mov'], (path) => home.allocated(path, 330 * MB));

test('a cache is cleaned, and the Undo of its message brings it back', async (t) => {
  const home = furnishedHome(t).withAccess();
  home.allocated('Downloads/Installer.dmg', 60 * MB);
  const page = await openGuided(t, home);
  await page.click('Cleanup');
  await page.sees('Application caches');
  await page.sees('Installers');
  await page.tick(home.at(cache));
  await page.click(/^Move 1 item, .* to Velto Trash$/);
  await page.sees(/Removed 0\.3 GB in Velto Trash\. Kept for 30 days\./);

  assert.ok(!home.has(cache));
  assert.deepEqual(held(home).length, 1);
  assert.equal(manifest(home).items[0].originalPath, home.at(cache));
  assert.ok(Math.abs(manifest(home).items[0].gb - 0.32) < 0.01, 'a folder is measured as proposed');
  assert.equal(history(home).length, 1);
  await page.seesNot('Application caches');

  await page.click('Undo');
  await page.sees(/Put back “com\.example\.app” is back in .*Library\/Caches/);
  assert.ok(home.has(blob));
  assert.deepEqual(manifest(home), { items: [], operations: [] });
  assert.deepEqual(history(home), []);
  await page.sees('Application caches');
});

test('a large file is removed from its view and from the next start', async (t) => {
  const home = furnishedHome(t).withAccess();
  const page = await openGuided(t, home);
  await page.click('Large files');
  await page.tick(home.at('Desktop/archive.zip'));
  await page.tick(home.at('Music/concert.wav'));
  await page.click('Move to Velto Trash');
  await page.sees(/Removed 1 GB in Velto Trash/);
  assert.ok(!home.has('Desktop/archive.zip') && !home.has('Music/concert.wav'));
  assert.equal(manifest(home).operations.length, 1, 'one step');
  await page.seesNot('concert.wav');
  await page.stop();
  assert.deepEqual(home.saved().state.files.map(({ name }) => name), ['holiday.mov', 'blob']);

  const again = await openGuided(t, home, { desktop: page.desktop });
  await again.click('Velto Trash');
  await again.sees('concert.wav');
  await again.click('Put back: concert.wav');
  await again.sees('“concert.wav” is back in');
  assert.ok(home.has('Music/concert.wav') && !home.has('Desktop/archive.zip'));
});

test('of a selection with something refused in it the rest goes only when asked', async (t) => {
  const home = furnishedHome(t).withAccess();
  const page = await openGuided(t, home);
  await page.click('Large files');
  await page.tick(home.at('Desktop/archive.zip'));
  await page.tick(home.at('Music/concert.wav'));
  renameSync(home.at('Music/concert.wav'), home.at('Music/elsewhere.wav'));
  symlinkSync(home.at('Music/elsewhere.wav'), home.at('Music/concert.wav'));
  await page.click('Move to Velto Trash');
  await page.sees('1 of 2 items cannot be moved “concert.wav” is a link, or lies behind one.');
  await page.sees('Nothing has been moved yet.');
  assert.ok(home.has('Desktop/archive.zip') && home.has('Music/concert.wav'));
  await page.click('Move the other one');
  await page.sees(/Removed 0\.6 GB in Velto Trash/);
  assert.ok(!home.has('Desktop/archive.zip'));
  assert.ok(home.has('Music/concert.wav') && home.has('Music/elsewhere.wav'));
});

test('extra copies go, but never all of them', async (t) => {
  const home = twins(furnishedHome(t).withAccess());
  const page = await openGuided(t, home);
  await page.click('Large files');
  await page.tick(home.at('Movies/twin.mov'));
  await page.tick(home.at('Desktop/twin.mov'));
  await page.click('Move to Velto Trash');
  await page.sees('Nothing was moved Every copy of “twin.mov” is selected. Leave one of them out and try again.');
  assert.equal(page.intents('deleteFiles'), 0);
  assert.ok(home.has('Movies/twin.mov') && home.has('Desktop/twin.mov'));

  await page.click('Duplicates');
  await page.click('Select all but the kept copies');
  await page.sees('3 selected');
  await page.click('Move to Velto Trash');
  await page.sees(/Removed .* GB in Velto Trash/);
  await page.sees('All extra copies are in Velto Trash.');
  const copies = ['Pictures/2019/beach.raw', 'Pictures/beach copy.raw', 'beach again.raw'];
  assert.equal(copies.filter((path) => home.has(path)).length, 1);
  assert.equal(['Movies/twin.mov', 'Desktop/twin.mov'].filter((path) => home.has(path)).length, 1);
  assert.equal(held(home).length, 3);

  await page.click('Undo');
  await page.sees('3 items');
  await page.sees('2 groups');
  assert.ok([...copies, 'Movies/twin.mov', 'Desktop/twin.mov'].every((path) => home.has(path)));
});

test('what comes back finds its place taken and stands beside it', async (t) => {
  const home = furnishedHome(t).withAccess();
  const page = await openGuided(t, home);
  await page.click('Large files');
  await page.tick(home.at('Desktop/archive.zip'));
  await page.click('Move to Velto Trash');
  await page.sees('Removed');
  home.text('Desktop/archive.zip', 'a new one');
  await page.click('Velto Trash');
  await page.click('Put back: archive.zip');
  await page.sees('Velto Trash is empty');
  assert.equal(home.read('Desktop/archive.zip'), 'a new one');
  assert.ok(home.has('Desktop/archive (restaurado 1).zip'));
});

test('what cannot go back to its place says why, and goes to a folder of the user\'s choice', async (t) => {
  const home = furnishedHome(t).withAccess();
  const page = await openGuided(t, home);
  await page.click('Large files');
  await page.tick(home.at('Desktop/archive.zip'));
  await page.click('Move to Velto Trash');
  await page.sees('Removed');
  renameSync(home.at('Desktop'), home.at('Desktop of before'));
  symlinkSync(home.at('Music'), home.at('Desktop'));
  await page.click('Velto Trash');
  await page.click('Put back: archive.zip');
  await page.sees('“archive.zip” is still in Velto Trash: “~/Desktop” is a link now.');
  await page.sees('Desktop is a link now, or no folder any more.');
  assert.ok(!home.has('Music/archive.zip'), 'the link is not followed');
  assert.equal(held(home).length, 1);

  await page.click('Restore to another folder: archive.zip…');
  await page.desktop.chooseFolder('Restore “archive.zip” to another folder', home.at('Pictures/2019'));
  await page.sees('Restored “archive.zip” is in ~/Pictures/2019 now.');
  await page.sees('Velto Trash is empty');
  assert.ok(home.has('Pictures/2019/archive.zip'));
  assert.deepEqual(manifest(home), { items: [], operations: [] });
});

test('deleting for good and emptying ask first, and then free the space', async (t) => {
  const home = furnishedHome(t).withAccess();
  const page = await openGuided(t, home);
  await page.click('Large files');
  for (const path of ['Desktop/archive.zip', 'Music/concert.wav', 'Pictures/2019/holiday.mov']) {
    await page.tick(home.at(path));
  }
  await page.click('Move to Velto Trash');
  await page.sees('Removed 1.5 GB');
  await page.click('Velto Trash');

  await page.click('Delete concert.wav for good…');
  await page.sees('Delete “concert.wav” for good?');
  await page.click('Cancel');
  await page.seesNot('Delete “concert.wav” for good?');
  assert.equal(page.intents('purgeItem'), 0);
  assert.equal(held(home).length, 3);

  await page.click('Delete concert.wav for good…');
  await page.click('Delete for good');
  await page.sees('Deleted permanently.');
  assert.deepEqual(manifest(home).items.map(({ name }) => name).sort(), ['archive.zip', 'holiday.mov']);
  assert.equal(held(home).length, 2);
  assert.ok(!home.has('Music/concert.wav'));

  await page.click('Empty trash…');
  await page.sees('Empty Velto Trash?');
  await page.click('Empty Velto Trash');
  await page.sees('Trash emptied Items deleted permanently.');
  await page.sees('Velto Trash is empty');
  assert.deepEqual(readdirSync(home.at(home.data('Trash'))), ['manifest.json']);
  assert.equal(history(home).length, 1, 'the history tells what was done');
});

test('the history tells each cleanup, and is cleared alone', async (t) => {
  const home = furnishedHome(t).withAccess();
  const page = await openGuided(t, home);
  await page.click('Large files');
  await page.tick(home.at('Desktop/archive.zip'));
  await page.click('Move to Velto Trash');
  await page.seesNot('archive.zip');
  await page.tick(home.at('Music/concert.wav'));
  await page.click('Move to Velto Trash');
  await page.seesNot('concert.wav');
  await page.click('History');
  await page.sees(/2 entries · 1(\.0)? GB removed/);
  assert.deepEqual(history(home).map(({ items }) => items[0].name), ['concert.wav', 'archive.zip']);

  await page.click('Clear history…');
  await page.sees('Clear the history?');
  await page.click('Clear history');
  await page.sees('No cleanup yet');
  await page.velto.waitFor('Velto ▶ historial vaciado');
  assert.deepEqual(history(home), []);
  assert.equal(held(home).length, 2, 'the trash stays');
  await page.stop();
  assert.deepEqual(home.saved().state.history, []);
});

test('the shortcut of the menu undoes the last cleanup, wherever the page is', async (t) => {
  const home = furnishedHome(t).withAccess();
  const page = await openGuided(t, home);
  await page.click('Large files');
  await page.tick(home.at('Desktop/archive.zip'));
  await page.click('Move to Velto Trash');
  await page.sees('Removed');
  await page.click('Overview');
  const from = page.velto.lines.length;
  await page.desktop.input('key', 'ctrl+shift+z');
  await page.velto.waitFor('Velto ▶ intención: undoLast payload: ', { from });
  await page.click('Velto Trash');
  await page.sees('Velto Trash is empty');
  assert.ok(home.has('Desktop/archive.zip'));
});

test('a Linux home has its trash and its history in its own data folder', async (t) => {
  const home = new Home(t, { layout: 'freedesktop' });
  home.allocated('Videos/film.mkv', 320 * MB).allocated('.cache/example/blob', 70 * MB);
  const page = await openGuided(t, home);
  await page.click('Cleanup');
  await page.tick(home.at('.cache/example'));
  await page.click(/^Move 1 item, .* to Velto Trash$/);
  await page.sees('Removed 0.1 GB');
  assert.ok(!home.has('.cache/example'));
  assert.equal(held(home).length, 1);
  await page.click('Undo');
  await page.sees('is back in');
  assert.ok(home.has('.cache/example/blob'));
});
