// The real page in the real window: what is painted, and what a click or a key does.
import assert from 'node:assert/strict';
import { readdirSync } from 'node:fs';
import { test } from 'node:test';
import { openGuided } from './support/guided_page.mjs';
import { furnishedHome } from './support/home.mjs';
import { desktopFor, expectInOrder, line, start } from './support/velto.mjs';

const size = { width: 1180, height: 760 };

// Where the rail's entries are: views below the strip that drags the window, theme and language at
// the bottom.
const view = (index) => [100, 74 + 38 * index];
const themeChoice = [100, size.height - 66];
const languageChoice = [100, size.height - 28];

/** A window that shows the analysis of a furnished home. */
async function shown(t, home = furnishedHome(t)) {
  const desktop = await desktopFor(t, size);
  const velto = start(t, home, desktop);
  await velto.waitFor(line.intent('webReady'));
  if (velto.count(line.noSaved) > 0) await velto.waitFor(line.finished);
  await desktop.steady();
  return { home, desktop, velto };
}

const differs = (from) => (now, previous) =>
  now.signature !== from.signature && now.signature === previous?.signature;

test('the page is painted with the state it was given, and the rail opens its views', async (t) => {
  const { desktop, velto } = await shown(t);
  expectInOrder(velto.lines, [line.booted, line.intent('webReady')]);
  const overview = await desktop.steady();
  assert.ok(overview.colours > 100, `only ${overview.colours} colours are on the display`);
  const seen = [overview];
  for (const index of [1, 2, 3]) {
    await desktop.click(...view(index));
    const now = await desktop.lookUntil(differs(seen.at(-1)));
    assert.ok(!seen.some((one) => one.signature === now.signature), `view ${index} is like another`);
    seen.push(now);
  }
});

test('a theme that is chosen is told to the window and outlives a restart', async (t) => {
  const { home, desktop, velto } = await shown(t);
  await desktop.click(...themeChoice);
  const told = await velto.waitFor('Velto ▶ tema de la ventana: ');
  await velto.stop();

  // What the web engine keeps lies in the data folder, so that a reset takes it along.
  assert.ok(readdirSync(home.at(home.dataFolder)).length > 1);
  const again = start(t, home, desktop);
  await again.waitFor(line.intent('setTheme'));
  assert.ok(again.lines.find((one) => one.includes(line.intent('setTheme')))
    .includes(told.includes('Dark') ? 'dark' : 'light'));
});

test('a language that is chosen is stored by the program', async (t) => {
  const { desktop, velto } = await shown(t);
  const before = await desktop.steady();
  await desktop.click(...languageChoice);
  await velto.waitFor('Velto ▶ ajustes: idioma=es');
  await desktop.lookUntil(differs(before));
});

test('the shortcut for an analysis works wherever the page is', async (t) => {
  const { desktop, velto } = await shown(t);
  const from = velto.lines.length;
  await desktop.click(...view(1));
  await desktop.input('key', 'ctrl+r');
  await velto.waitFor(line.intent('scan'), { from });
  await velto.waitFor(line.finished, { from });
});

test('the shortcut for the uninstaller asks for its view', async (t) => {
  const { desktop, velto } = await shown(t);
  await desktop.click(...view(0));
  await desktop.input('key', 'ctrl+shift+d');
  await velto.waitFor(`${line.intent('goView')}"apps"`);
});

test('the page is made larger by key, and is as large after a restart', async (t) => {
  const home = furnishedHome(t);
  const key = (page, name) => page.desktop.input('key', name);
  const page = await openGuided(t, home);
  await page.click('History');
  await page.sees('Large files');
  for (let step = 0; step < 5; ++step) await key(page, 'ctrl+plus');
  await page.seesNot('Large files'); // at twice its size the rail has icons alone
  await page.stop();

  const again = await openGuided(t, home);
  await again.click('History');
  await again.seesNot('Large files');
  await key(again, 'ctrl+minus');
  await key(again, 'ctrl+0');
  await again.sees('Large files');
});
