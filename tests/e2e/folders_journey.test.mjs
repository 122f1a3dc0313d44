// The question that people bring: which folder is it, and since when?
import assert from 'node:assert/strict';
import { test } from 'node:test';
import { setTimeout as pause } from 'node:timers/promises';
import { openGuided } from './support/guided_page.mjs';
import { Home, MB } from './support/home.mjs';
import { line } from './support/velto.mjs';

test('a folder that has grown is found, moved to the trash and put back by keyboard alone', async (t) => {
  const home = new Home(t, { layout: 'freedesktop' });
  home.allocated('Videos/Lanzarote/day1.mkv', 40 * MB).allocated('Documents/thesis.pdf', 30 * MB);
  const page = await openGuided(t, home);
  const key = (name) => page.desktop.input('key', name);

  home.allocated('Videos/Lanzarote/day2.mkv', 160 * MB);
  await pause(1100); // analyses are told apart by the second
  const from = page.velto.lines.length;
  await key('ctrl+r');
  await page.velto.waitFor(line.finished, { from });
  await page.sees(/160 MB more: .*Videos\/Lanzarote/);

  await page.keyTo('Tab', 'Folders');
  await key('Return');
  await page.sees('Videos');
  await page.keyTo('Tab', home.at('Videos'));
  await key('Return');
  await page.focuses(home.at('Videos/Lanzarote'));
  const isHere = (rows) => rows.some(({ cells }) => cells.some((cell) => cell.startsWith('Lanzarote')));
  await page.lists('what has grown', (rows) =>
    isHere(rows) && rows.some(({ cells }) => cells.some((cell) => cell.includes('+160 MB'))));
  await key('space');
  await page.sees(/1 selected · 200 MB/);
  await key('Delete');
  await page.sees('Removed');
  await page.lists('that it is gone', (rows) => !isHere(rows));
  assert.ok(!home.has('Videos/Lanzarote'));

  await key('ctrl+shift+z');
  await page.lists('that it is back', isHere);
  assert.ok(home.has('Videos/Lanzarote/day1.mkv'));
  assert.ok(home.has('Videos/Lanzarote/day2.mkv'));
});
