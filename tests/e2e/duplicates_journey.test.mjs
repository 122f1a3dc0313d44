// People with copies of copies: which of them stay, what a file holds, and everything back again.
import assert from 'node:assert/strict';
import { utimesSync } from 'node:fs';
import { test } from 'node:test';
import { openGuided } from './support/guided_page.mjs';
import { Home, MB } from './support/home.mjs';
import { png } from './support/pictures.mjs';

const book = {
  original: 'Documents/books/The lighthouse.txt',
  first: 'Downloads/The lighthouse (1).txt',
  second: 'Downloads/The lighthouse (2).txt',
};
const beach = { original: 'Pictures/2019/beach.png', copy: 'Desktop/beach again.png' };
const song = { original: 'Music/song.wav', copy: 'Downloads/song.wav' };
const all = [book, beach, song].flatMap((one) => Object.values(one));

const text = 'The keeper lit the lamp at dusk.\n'.repeat(40_000);

/** Three kinds of files in two or three places, the copies newer than what they were made of. */
function homeWithCopies(t) {
  const home = new Home(t, { layout: 'freedesktop' });
  const make = (paths, write) => home.alike(paths, (path) => write(path).synced(path));
  make(Object.values(book), (path) => home.text(path, text));
  make(Object.values(beach), (path) => home.text(path, png(800, 600)));
  make(Object.values(song), (path) => home.content(path, 'song', 3 * MB));
  const dated = (path, days) => utimesSync(home.at(path), new Date(), Date.now() / 1000 - days * 86_400);
  for (const one of [book, beach, song]) Object.values(one).forEach((path, index) => dated(path, 100 - 20 * index));
  return home;
}

/** The rows of the list by the last name of their path. */
function rowOf(rows, path) {
  const name = path.slice(path.lastIndexOf('/') + 1);
  return rows.find(({ cells }) => cells.some((cell) => cell.endsWith(name) && cell.includes(path.split('/')[0])));
}
const stays = (...paths) => (rows) =>
  paths.every((path) => rowOf(rows, path)?.cells.some((cell) => cell.startsWith('Stays')));
const there = (home, paths) => paths.filter((path) => home.has(path));

test('by clicking: searched, looked at, all copies of a folder taken away and put back, a folder kept', async (t) => {
  const home = homeWithCopies(t);
  const page = await openGuided(t, home);
  await page.click('Duplicates');
  await page.sees('3 groups');
  await page.lists('the newest copies as those that stay', stays(book.second, beach.copy, song.copy));

  await page.click('Search names and locations');
  await page.desktop.input('type', 'LIGHT');
  await page.holds('Search names and locations', 'LIGHT');
  await page.lists('the book alone', (rows) => rows.length === 3 && rowOf(rows, book.original));
  await page.click('Clear search');
  await page.lists('everything again', (rows) => rows.length === all.length);

  await page.openMenu(home.at(beach.original));
  await page.click('Preview');
  await page.sees('800 × 600 pixels');
  await page.seesNot('Reading the file…');
  assert.doesNotMatch(page.text(), /cannot be shown|No preview/);
  await page.click('Close');
  await page.seesNot('800 × 600 pixels');

  await page.openMenu(home.at(book.first));
  await page.click('Select all copies in “~/Downloads”');
  await page.sees(/3 selected/);
  await page.lists('a copy of each elsewhere as the one that stays', stays(book.original, beach.copy, song.original));
  await page.click('Move to Velto Trash');
  await page.sees('Removed');
  await page.lists('the pictures alone', (rows) => rows.length === 2);
  assert.deepEqual(there(home, all), [book.original, beach.original, beach.copy, song.original]);
  await page.click('Undo');
  await page.sees('3 groups');
  assert.deepEqual(there(home, all), all);

  await page.openMenu(home.at(song.original));
  await page.click('Copies in “~/Music” always stay');
  await page.lists('the song in Music as the one that stays', stays(song.original));
  await page.holds('Folder whose copies always stay', 'Always keep: ~/Music');
  await page.click('Select all but the kept copies');
  await page.sees(/4 selected/);
  await page.click('Move to Velto Trash');
  await page.sees('All extra copies are in Velto Trash.');
  assert.ok(home.has(song.original) && !home.has(song.copy));
  await page.click('Undo');
  await page.sees('3 groups');
  assert.deepEqual(there(home, all), all);
});

test('by keyboard alone: the oldest copies stay, files are looked at, the others go and come back', async (t) => {
  const home = homeWithCopies(t);
  const page = await openGuided(t, home);
  const key = (name) => page.desktop.input('key', name);
  await page.keyTo('Tab', 'Duplicates');
  await key('Return');
  await page.sees('3 groups');

  await key('ctrl+f');
  await page.focuses('Search names and locations');
  await page.desktop.input('type', 'lighthouse');
  await page.holds('Search names and locations', 'lighthouse');
  await page.lists('the book alone', (rows) => rows.length === 3 && rowOf(rows, book.original));
  await key('Escape');
  await page.lists('everything again', (rows) => rows.length === all.length);

  await page.keyTo('Tab', 'Which copy stays in each group');
  await key('Down');
  await page.holds('Which copy stays in each group', 'Keep the oldest');
  await page.lists('the oldest copies as those that stay', stays(book.original, beach.original, song.original));

  await page.keyTo('F6', /\/(Music|Pictures|Documents|Downloads|Desktop)\//);
  await page.keyTo('Down', home.at(book.first));
  await key('p');
  await page.sees('The keeper lit the lamp at dusk.');
  await page.sees('only the beginning is shown');
  await key('Down');
  await page.sees('The lighthouse (2).txt');
  await key('p');
  await page.seesNot('only the beginning is shown');
  await page.focuses(home.at(book.second));

  await key('m');
  await page.keyTo('Down', 'Select all copies in “~/Downloads”');
  await key('Return');
  await page.sees(/3 selected/);
  await key('Delete');
  await page.sees('Removed');
  await page.lists('the pictures alone', (rows) => rows.length === 2);
  assert.deepEqual(there(home, all), [book.original, beach.original, beach.copy, song.original]);
  await key('ctrl+z');
  await page.sees('3 groups');
  assert.deepEqual(there(home, all), all);
  assert.equal(home.read(book.second), text);
});
