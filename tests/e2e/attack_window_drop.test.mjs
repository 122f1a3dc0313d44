// What other programs hand to the window, by the pointer and by the clipboard.
import assert from 'node:assert/strict';
import { test } from 'node:test';
import { drag } from './support/drag.mjs';
import { openGuided } from './support/guided_page.mjs';
import { furnishedHome, temporaryFolder } from './support/home.mjs';
import { bareHome, heard, hostileFile, waitingServer, watch } from './support/hostile.mjs';
import { desktopFor, programWith, start } from './support/velto.mjs';

// Tells what it sees of a drag, and that it is still there.
const watchingPage = (body) => ({
  'index.html': `<!doctype html><html><head><meta charset="utf-8"><script src="watch.js"></script>
<link rel="stylesheet" href="style.css"></head><body>${body}</body></html>`,
  'style.css': 'body { margin: 0 } textarea { display: block; width: 100%; height: 100vh }',
  'watch.js': `
    const tell = (what) => window.webkit.messageHandlers.velto.postMessage({ type: 'watch', payload: what });
    for (const name of ['dragenter', 'dragover', 'drop', 'paste', 'input']) addEventListener(name, () => tell(name), true);
    addEventListener('mousedown', () => tell('still here'), true);
    addEventListener('load', () => tell('ready'));
  `,
});

for (const kind of ['file', 'link', 'text']) {
  test(`a ${kind} dropped on the window changes nothing and is shown to no script`, async (t) => {
    const server = await waitingServer(t);
    const what = { file: () => hostileFile(t), link: () => `${server.address}/dropped`, text: () => 'words' };
    const desktop = await desktopFor(t, { width: 1320, height: 760 });
    const page = watchingPage(kind === 'text' ? '<textarea></textarea>' : 'page');
    const velto = start(t, bareHome(t), desktop, { file: programWith(temporaryFolder(t), page) });
    await velto.waitFor(watch('ready'));
    const end = await drag(t, desktop, kind, what[kind](), 500, 400);
    assert.equal(heard(velto), 0);
    assert.deepEqual(server.visits, []);
    await desktop.click(500, 400);
    await velto.waitFor(watch('still here'), { limit: 20_000 });
    for (const name of ['dragenter', 'dragover', 'drop', 'paste', 'input']) assert.equal(velto.count(watch(name)), 0, name);
    assert.equal(end, 'refused');
  });
}

test('the page still puts on the clipboard what the user asks it to', async (t) => {
  const house = furnishedHome(t);
  const page = await openGuided(t, house);
  await page.click('Large files');
  await page.lists('all large files', (rows) => rows.length > 1);
  await page.tick(house.at('Music/concert.wav'));
  await page.click('Copy location');
  await page.click('Search names and locations');
  await page.desktop.input('key', 'ctrl+v');
  const [row] = await page.lists('the copied location alone', (rows) => rows.length === 1 && rows);
  assert.ok(row.cells.some((cell) => cell.includes('concert.wav')));
});
