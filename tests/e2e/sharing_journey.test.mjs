// Space that comes back while every file stays, on volumes that can.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { lstatSync, readFileSync, utimesSync } from 'node:fs';
import { test } from 'node:test';
import { openGuided } from './support/guided_page.mjs';
import { Home, MB } from './support/home.mjs';
import { onOwnVolume, toolPath } from './support/own_volume.mjs';

const kept = 'Videos/summer.mp4';
const copies = ['Downloads/summer.mp4', 'Desktop/summer (copy).mp4'];
const all = [kept, ...copies];
const other = 'Videos/winter.mp4';

function furnish(home) {
  for (const path of all) home.content(path, 'summer', 8 * MB);
  home.content(other, 'winter', 8 * MB);
  all.forEach((path, index) => utimesSync(home.at(path), 1_700_000_000, 1_700_000_000 - 86_400 * index));
}

/** What must be the same afterwards, of each file. */
const everything = (home) => [...all, other].map((path) => {
  const { ino, mode, uid, gid, size, nlink, mtimeMs } = lstatSync(home.at(path));
  return { path, ino, mode, uid, gid, size, nlink, mtimeMs, content: readFileSync(home.at(path)).toString('base64') };
});

/** Bytes of a file whose blocks belong to another one as well, as the kernel tells (FIEMAP). */
function sharedBytes(home, path) {
  const extents = execFileSync('filefrag', ['-v', '-b1', home.at(path)], {
    encoding: 'utf8', env: { ...process.env, PATH: toolPath },
  }).split('\n');
  return extents.filter((line) => /\bshared\b/.test(line)).reduce((sum, line) => sum + Number(line.split(':')[3]), 0);
}

const isShared = (home, path) => sharedBytes(home, path) >= 8 * MB;

async function opened(t, kind) {
  const home = new Home(t, { layout: 'freedesktop' });
  const volume = await onOwnVolume(t, home, kind);
  if (volume.missing) return { skip: volume.missing };
  furnish(volume.home);
  const before = everything(volume.home);
  const page = await openGuided(t, home, { through: volume.through });
  return { page, before, home: volume.home, shown: home };
}

test('on btrfs, by clicking: copies share their space, every file stays, and the history tells it', async (t) => {
  const { page, before, home, skip } = await opened(t, 'btrfs');
  if (skip) return t.skip(skip);
  await page.click('Duplicates');
  await page.sees(/can let 2 copies share the space of the one that stays: (up to )?16 MB comes back at once/);
  assert.ok(all.every((path) => !isShared(home, path)));
  await page.click('Share the space');
  await page.sees(/Space shared .*16 MB came back from 2 copies\. Every file is where it was\./);
  assert.deepEqual(everything(home), before);
  assert.ok(all.every((path) => isShared(home, path)), 'their blocks are the same');
  assert.ok(!isShared(home, other));
  await page.sees('space shared');

  await page.click('History');
  await page.seesNot('Select all but the kept copies');
  await page.sees(/1 entry .*Space shared · 2 items .*Every file stayed/);
  const [entry] = JSON.parse(home.read(home.data('history.json')));
  assert.equal(entry.kind, 'share');
});

test('on XFS, by keyboard alone: one group shares its space', async (t) => {
  const { page, before, home, shown, skip } = await opened(t, 'xfs');
  if (skip) return t.skip(skip);
  const key = (name) => page.desktop.input('key', name);
  await page.keyTo('Tab', 'Duplicates');
  await key('Return');
  await page.sees(/can let 2 copies share the space/);
  await page.keyTo('F6', /\/summer.*\.mp4$/);
  await page.keyTo('Down', shown.at(copies[0]));
  await key('m');
  await page.keyTo('Down', /^Share the space of this group \(16 MB back\)$/);
  await key('Return');
  await page.sees(/Space shared .*16 MB came back from 2 copies\./);
  assert.deepEqual(everything(home), before);
  assert.ok(all.every((path) => isShared(home, path)), 'their blocks are the same');
  assert.ok(!isShared(home, other));
});
