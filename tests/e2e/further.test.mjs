// What people are told of their tools' and projects' leftovers, and that it comes back.
import assert from 'node:assert/strict';
import { readdirSync, utimesSync } from 'node:fs';
import { join } from 'node:path';
import { test } from 'node:test';
import { openGuided } from './support/guided_page.mjs';
import { Home, MB } from './support/home.mjs';

/** All that lies below was changed so many days ago. */
function setOld(path, days) {
  const date = Date.now() / 1000 - days * 86_400;
  const all = readdirSync(path, { recursive: true }).map((name) => join(path, name));
  for (const one of [...all.toReversed(), path]) utimesSync(one, date, date);
}

test('an idle project gives its dependencies to the trash by keyboard alone, and gets them back', async (t) => {
  const home = new Home(t, { layout: 'freedesktop' });
  home.text('work/shop/package.json', '{}').allocated('work/shop/node_modules/a/index.js', 30 * MB);
  home.text('work/busy/package.json', '{}').allocated('work/busy/node_modules/a/index.js', 30 * MB);
  home.allocated('.npm/_cacache/content-v2/x', 20 * MB).text('.npmrc', 'token');
  setOld(home.at('work/shop'), 200);
  const page = await openGuided(t, home);
  const key = (name) => page.desktop.input('key', name);

  await page.keyTo('Tab', 'Cleanup');
  await key('Return');
  await page.sees('Dependencies of Node projects');
  await page.sees('npm cache');
  const shows = (name) => (rows) => rows.some(({ cells }) => cells.some((cell) => cell.startsWith(name)));
  await page.lists('the idle project', shows('shop/node_modules'));
  await page.lists('not the one that is worked on', (rows) => !shows('busy/node_modules')(rows));
  await page.keyTo('Tab', 'kind:further:node-modules');
  await key('Down');
  await page.focuses(home.at('work/shop/node_modules'));
  await key('space');
  await page.sees(/1 of 2 items selected/);
  await key('Delete');
  await page.sees('Removed');
  assert.ok(!home.has('work/shop/node_modules'));
  assert.ok(home.has('work/shop/package.json'));
  assert.ok(home.has('work/busy/node_modules/a/index.js'));
  assert.ok(home.has('.npm/_cacache/content-v2/x'));

  await key('ctrl+z');
  await page.lists('that it is back', shows('shop/node_modules'));
  assert.ok(home.has('work/shop/node_modules/a/index.js'));
  assert.ok(home.has('.npmrc'));
});
