// One program, one window: second starts, closing, and what stays behind.
import assert from 'node:assert/strict';
import { test } from 'node:test';
import { furnishedHome } from './support/home.mjs';
import { desktopFor, line, start } from './support/velto.mjs';

const agent = 'Library/LaunchAgents/app.velto.maintenance.plist';
const closeWindow = ['search', '--sync', '--onlyvisible', '--name', 'Velto', 'windowclose'];

test('a second start hands over to the first and ends', async (t) => {
  const home = furnishedHome(t);
  const desktop = await desktopFor(t);
  const first = start(t, home, desktop);
  await first.waitFor(line.finished);
  const second = start(t, home, desktop);
  assert.deepEqual(await second.ended(), { status: 0, signal: null });
  assert.equal(second.count(line.booted), 0);
  assert.equal(first.count(line.booted), 1, 'the window that is open is not loaded again');
});
