// Files with names that are no text, in the real program: every byte of them is kept on the way to
// the page, on the disk, and back. And what another program finds on the clipboard.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { existsSync, renameSync } from 'node:fs';
import { test } from 'node:test';
import { openGuided } from './support/guided_page.mjs';
import { furnishedHome, MB } from './support/home.mjs';
import { line } from './support/velto.mjs';

const clipboardReader = process.env.CLIPBOARD_TEXT ?? 'build/release/tests/clipboard_text';

/** The home of others with one more film, whose name ends in a byte that is no UTF-8. */
function homeWithStrayByte(t) {
  const home = furnishedHome(t).withAccess().allocated('Movies/plain', 400 * MB);
  const bytes = Buffer.concat([Buffer.from(home.at('Movies/caf')), Buffer.from([0xe9])]);
  renameSync(home.at('Movies/plain'), bytes);
  return { home, bytes, path: `${home.at('Movies/caf')}\0e9` };
}

const clipboard = (desktop) =>
  execFileSync(clipboardReader, { env: { ...process.env, ...desktop.variables }, encoding: 'utf8', timeout: 20_000 });

async function analyse(page) {
  const from = page.velto.lines.length;
  await page.click('Overview');
  await page.click(/^Analyze/);
  await page.velto.waitFor(line.finished, { from });
  await page.click('Large files');
}

/** Asks until the clipboard holds it: the page fills it after the click. */
async function holds(desktop, wanted) {
  const end = Date.now() + 15_000;
  let text;
  do {
    try {
      text = clipboard(desktop);
    } catch {
      text = undefined; // nobody has put a text there yet
    }
  } while (text !== wanted && Date.now() < end);
  assert.equal(text, wanted);
}

test('a file whose name is no text is listed, removed, restored, kept through a restart and excluded', async (t) => {
  const { home, bytes, path } = homeWithStrayByte(t);
  const page = await openGuided(t, home);
  await page.click('Large files');
  await page.sees('caf\ufffd');
  await page.tick(path);
  await page.tick(home.at('Music/concert.wav'));
  await page.click('Move to Velto Trash');
  await page.sees(/Removed 0\.[78] GB in Velto Trash/);
  assert.ok(!existsSync(bytes));
  assert.ok(!home.has('Music/concert.wav'), 'the others of the selection go with it');
  await page.stop();

  const again = await openGuided(t, home, { desktop: page.desktop });
  await again.click('Velto Trash');
  await again.click('Put back: caf\ufffd');
  await again.sees('“caf\ufffd” is back in');
  assert.ok(existsSync(bytes), 'byte for byte');
  await analyse(again);
  await again.click('Exclude caf\ufffd from the analysis');
  await again.sees('Excluded from the analysis');
  assert.deepEqual(JSON.parse(home.read(home.data('exclusions.json'))), [path]);
  await again.stop();

  const last = await openGuided(t, home, { desktop: page.desktop });
  await last.click('Settings');
  await last.sees('caf\ufffd');
  await analyse(last);
  await last.sees('3 files'); // the overview names what is excluded
  assert.ok(!last.text().includes('caf\ufffd'), 'what is excluded is not listed');
});

test('"Copy location" puts whole paths on the clipboard, also of a name that is no text', async (t) => {
  const { home, path } = homeWithStrayByte(t);
  const page = await openGuided(t, home);
  await page.click('Large files');
  await page.tick(home.at('Desktop/archive.zip'));
  await page.click('Copy location');
  await holds(page.desktop, home.at('Desktop/archive.zip'));
  await page.tick(path);
  await page.click('Copy location');
  await holds(page.desktop, `${home.at('Desktop/archive.zip')}\nfile://${home.at('Movies/caf')}%E9`);
  await page.click(`tick ${home.at('Desktop/archive.zip')}`); // not selected any more
  await page.desktop.input('key', 'ctrl+c');
  await holds(page.desktop, `file://${home.at('Movies/caf')}%E9`);
});
