// The keyboard and the pointer in the real window.
import { test } from 'node:test';
import { openGuided } from './support/guided_page.mjs';
import { Home, MB } from './support/home.mjs';

const first = 'Overview';
const last = 'Go to Cleanup';

test('past the last control comes the first one, and before the first the last', async (t) => {
  const home = new Home(t, { layout: 'freedesktop' }).allocated('Documents/thesis.pdf', 30 * MB);
  const page = await openGuided(t, home);
  const key = (name) => page.desktop.input('key', name);
  await page.click('History');
  await page.sees('No cleanup yet');
  await page.keyTo('Tab', last);
  await key('Tab');
  await page.focuses(first);
  await key('shift+Tab');
  await page.focuses(last);
  await key('Tab');
  await page.focuses(first);
  await key('Tab');
  await page.focuses('Folders');
  await key('Return');
  await page.sees('Sizes as analyzed');
});

test('a right click offers nothing of a browser, and text fields their own', async (t) => {
  const home = new Home(t, { layout: 'freedesktop' }).allocated('Documents/thesis.pdf', 30 * MB);
  const page = await openGuided(t, home);
  await page.click('History');
  await page.sees('No cleanup yet');
  await page.desktop.input('mousemove', 700, 600, 'click', 3);
  await page.desktop.input('key', 'Tab');
  await page.focuses(first); // a menu would take the key

  await page.click('Folders');
  await page.click(/Search/);
  const before = await page.desktop.steady();
  await page.desktop.input('click', 3);
  await page.desktop.lookUntil((now) => Math.abs(now.colours - before.colours) > 3);
});

test('in the smallest window the icons of the rail all fit and take one click after another', async (t) => {
  const home = new Home(t, { layout: 'freedesktop' }).allocated('Documents/thesis.pdf', 30 * MB);
  const page = await openGuided(t, home, { size: { width: 720, height: 480 } });
  for (const [view, words] of [
    ['Velto Trash', 'Velto Trash is empty'], ['History', 'No cleanup yet'], ['Velto Trash', 'Velto Trash is empty'],
  ]) {
    await page.click(view);
    await page.sees(words);
    await page.desktop.steady(); // whatever tells the entry's name is there
  }
  await page.click(/switch to Spanish/); // the last of them is in sight
  await page.sees('La Papelera de Velto está vacía');
});
