import assert from 'node:assert/strict';
import { existsSync, readdirSync } from 'node:fs';
import { test } from 'node:test';
import { Home, temporaryFolder } from './support/home.mjs';
import { desktopFor, line, programWith, runHeadless, start } from './support/velto.mjs';

const agent = 'Library/LaunchAgents/app.velto.maintenance.plist';

test('--version and --help print, and leave nothing behind', async (t) => {
  const home = new Home(t);
  home.text('Documents/letter.txt', 'Dear reader\n');
  const before = readdirSync(home.path, { recursive: true });
  const version = await runHeadless(home, ['--reset', '--version']);
  assert.equal(version.status, 0);
  assert.match(version.stdout, /^Velto \d+\.\d+\.\d+\n$/);
  assert.equal(version.stderr, '');
  const help = await runHeadless(home, ['--maintenance', '--help']);
  assert.equal(help.status, 0);
  assert.match(help.stdout, /^ {2}--maintenance /m);
  assert.deepEqual(readdirSync(home.path, { recursive: true }), before);
});

const clearLine = (stderr) => stderr.split('\n').filter((one) => one.trim() !== '');

test('--reset removes all local data and the maintenance agent, and nothing else', async (t) => {
  const settings = '{"velto.retentionDays": 7, "velto.settingsConfigured": true}';
  const home = new Home(t);
  home
    .text(home.data('lastScan.json'), '{}')
    .text(home.data('Trash/manifest.json'), '{}')
    .text(agent, '<plist/>')
    .text('Library/LaunchAgents/other.plist', '<plist/>')
    .text('Documents/letter.txt', 'Dear reader\n')
    .text('.config/velto/settings.json', settings);
  const { status, stderr } = await runHeadless(home, ['--reset']);
  assert.equal(status, 0);
  assert.match(stderr, /Velto ▶ reset completo: LaunchAgent y datos eliminados/);
  assert.equal(home.has(home.dataFolder), false);
  assert.equal(home.has(agent), false);
  assert.ok(home.has('Library/LaunchAgents/other.plist'));
  assert.ok(home.has('Documents/letter.txt'));
  assert.equal(home.read('.config/velto/settings.json'), settings);
});

test('--reset on a home without any data is no fault', async (t) => {
  const { status, stderr } = await runHeadless(new Home(t), ['--reset']);
  assert.equal(status, 0);
  assert.match(stderr, /Velto ▶ reset completo/);
});

test('--maintenance wins over --reset: no data is lost', async (t) => {
  const home = new Home(t);
  home.text(home.data('exclusions.json'), '[]');
  const { status, stderr } = await runHeadless(home, ['--reset', '--maintenance']);
  assert.equal(status, 0);
  assert.ok(home.has(home.data('exclusions.json')));
  assert.doesNotMatch(stderr, /reset completo/);
});

test('an argument that only looks like a mode opens the window', async (t) => {
  const home = new Home(t);
  home.text(home.data('exclusions.json'), '[]');
  const velto = start(t, home, await desktopFor(t), { args: ['--Reset'] });
  await velto.waitFor(line.booted);
  assert.ok(home.has(home.data('exclusions.json')));
});

test('without its resource bundle the program says so and ends', async (t) => {
  const home = new Home(t);
  const lonely = programWith(temporaryFolder(t), null);
  const velto = start(t, home, await desktopFor(t), { file: lonely });
  const end = await velto.ended();
  assert.notEqual(end.status, 0);
  assert.equal(velto.count('unable to find bundle named Velto_velto_app'), 1);
});

test('without a display the program says so in one line and ends', async (t) => {
  const { status, stderr } = await runHeadless(new Home(t), []);
  assert.ok(status > 0, `status ${status}`);
  const said = clearLine(stderr).filter((one) => !one.startsWith('Velto ▶ '));
  assert.equal(said.length, 1, stderr);
  assert.match(said[0], /display/i);
});

test('a home that does not exist is a fault with a clear line', async (t) => {
  const home = new Home(t);
  const nowhere = home.at('does/not/exist');
  const { status, signal, stderr } = await runHeadless(home, [], { variables: { HOME: nowhere } });
  assert.ok(status !== 0 || signal, 'the program must not go on');
  assert.ok(clearLine(stderr).some((one) => one.includes(nowhere)), stderr);
  assert.equal(existsSync(nowhere), false, 'nothing is made in its place');
});
