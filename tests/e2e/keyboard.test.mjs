// The keyboard in the real window: where the page's controls end it goes on with them.
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
