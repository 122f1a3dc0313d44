// The unattended pass of the real program.
import assert from 'node:assert/strict';
import { existsSync, readdirSync, utimesSync } from 'node:fs';
import { join } from 'node:path';
import { test } from 'node:test';
import { run, startChild } from '../../tools/desktop/children.mjs';
import { openGuided } from './support/guided_page.mjs';
import { furnishedHome, Home, MB } from './support/home.mjs';
import { notificationsFor } from './support/notifications.mjs';
import { program, runHeadless } from './support/velto.mjs';

const withUserManager = new URL('support/with_user_manager.sh', import.meta.url).pathname;

const day = 86400;
const now = () => Date.now() / 1000;

/** Sets both times of a file to that many days ago. */
function age(home, path, days) {
  const time = now() - days * day;
  utimesSync(home.at(path), time, time);
}

/** Something that an earlier cleanup has put into the program's own trash. */
function inVeltoTrash(home, name, days) {
  const id = `it0000000${name.length}`;
  const item = {
    id, opID: 'op-old', originalPath: home.at(`Documents/${name}`), name, gb: 1.5, taken: now() - days * day,
  };
  const manifest = {
    items: [item],
    operations: [{ id: 'op-old', ts: item.taken, gb: 1.5, items: [item], kind: 'wind' }],
  };
  home
    .text(home.data(`Trash/op-old/${id}-${name}`), 'old content'.repeat(1000))
    .text(home.data('Trash/manifest.json'), JSON.stringify(manifest));
}

const manifestOf = (home) => JSON.parse(home.read(home.data('Trash/manifest.json')));
const settingsOf = (home, values) => home.text('.config/velto/settings.json', JSON.stringify(values));

/** Every item that the manifest lists, with the file that it stands for. */
function listed(home) {
  return manifestOf(home).items.map((item) => ({
    ...item,
    file: home.at(home.data(`Trash/${item.opID}/${item.id}-${item.name}`)),
  }));
}

function furnishedMac(t) {
  const home = new Home(t).withAccess();
  home
    .allocated('.Trash/old.iso', 60 * MB)
    .allocated('.Trash/new.iso', 60 * MB)
    .allocated('Downloads/film.mkv', 60 * MB)
    .allocated('Downloads/seen.mkv', 60 * MB)
    .allocated('Library/Caches/com.example.App/blob', 60 * MB)
    .allocated('Library/Caches/com.apple.Safari/blob', 60 * MB)
    .text('Documents/letter.txt', 'Dear reader');
  age(home, '.Trash/old.iso', 40);
  age(home, '.Trash/new.iso', 20);
  age(home, 'Downloads/film.mkv', 400);
  age(home, 'Downloads/seen.mkv', 100);
  return home;
}

test("a pass over a Mac's home: files, manifest, settings, log, notification, status", async (t) => {
  const home = furnishedMac(t);
  inVeltoTrash(home, 'expired.bin', 8);
  settingsOf(home, { 'velto.retentionDays': 7, 'velto.language': 'es', 'velto.rule.duplicates': true });
  home.alike(['Downloads/copy.bin', 'Documents/long name.bin'], (path) =>
    home.content(path, 'same', 2 * MB));
  const desktop = await notificationsFor(t);
  const before = now();
  const { status, stderr } = await runHeadless(home, ['--maintenance'], { variables: desktop.variables });
  assert.equal(status, 0, stderr);

  const moved = listed(home);
  assert.deepEqual(
    moved.map((item) => item.originalPath).sort(),
    [
      home.at('.Trash/old.iso'),
      home.at('Documents/long name.bin'),
      home.at('Downloads/film.mkv'),
      home.at('Library/Caches/com.example.App'),
    ].sort(),
  );
  for (const item of moved) {
    assert.ok(existsSync(item.file), item.file);
    assert.equal(existsSync(item.originalPath), false);
  }
  assert.equal(manifestOf(home).operations.length, 1, 'one step, so that one undo takes it back');
  for (const kept of ['.Trash/new.iso', 'Downloads/seen.mkv', 'Downloads/copy.bin', 'Documents/letter.txt']) {
    assert.ok(home.has(kept), kept);
  }
  assert.ok(home.has('Library/Caches/com.apple.Safari/blob'));
  assert.deepEqual(readdirSync(home.at(home.data('Trash'))).sort(), ['manifest.json', moved[0].opID].sort());

  const settings = JSON.parse(home.read('.config/velto/settings.json'));
  assert.ok(settings['velto.duplicatesRound'] >= before);
  assert.match(stderr, /Velto ▶ purga: 1 elementos, 0\.0 GB liberados/);
  assert.match(stderr, /Velto ▶ Papelera de Velto: 4 elementos, /);
  assert.equal(desktop.received.length, 1);
  assert.equal(desktop.received[0].title, 'Mantenimiento de Velto completado');
  assert.equal(
    desktop.received[0].body,
    'Se han liberado 0.0 GB y 4 elementos esperan en la Papelera de Velto.',
  );
});

test('a pass over a freedesktop home', async (t) => {
  const home = new Home(t, { layout: 'freedesktop' });
  home
    .allocated('.cache/mozilla/blob', 60 * MB)
    .allocated('.cache/some.app/blob', 60 * MB)
    .allocated('.cache/rclone/vfs/remote/report.odt', 60 * MB)
    .allocated('.local/share/Trash/files/old.iso', 60 * MB)
    .text('.local/share/Trash/info/old.iso.trashinfo', '[Trash Info]\nPath=/x\nDeletionDate=2001-01-01T10:00:00\n')
    .allocated('.local/share/Trash/files/fresh.iso', 60 * MB)
    .allocated('Downloads/film.mkv', 60 * MB);
  const date = new Date(Date.now() - 10 * day * 1000).toISOString().slice(0, 19);
  home.text('.local/share/Trash/info/fresh.iso.trashinfo', `[Trash Info]\nPath=/y\nDeletionDate=${date}\n`);
  age(home, '.local/share/Trash/files/fresh.iso', 400); // when it was thrown away decides
  age(home, 'Downloads/film.mkv', 400);
  const desktop = await notificationsFor(t);
  const { status, stderr } = await runHeadless(home, ['--maintenance'], { variables: desktop.variables });
  assert.equal(status, 0, stderr);
  assert.deepEqual(
    listed(home).map((item) => item.originalPath).sort(),
    ['.cache/mozilla', '.local/share/Trash/files/old.iso', 'Downloads/film.mkv'].map((path) => home.at(path)).sort(),
  );
  assert.ok(home.has('.cache/some.app/blob'), 'nobody knows whether it is made again');
  assert.ok(home.has('.cache/rclone/vfs/remote/report.odt'), 'it may not have been uploaded yet');
  assert.equal(home.has('.local/share/Trash/info/old.iso.trashinfo'), false);
  assert.ok(home.has('.local/share/Trash/files/fresh.iso'));
  assert.ok(home.has('.local/share/Trash/info/fresh.iso.trashinfo'));
  assert.equal(desktop.received[0]?.body, '3 items wait in Velto Trash.');
  assert.equal(desktop.received[0]?.title, 'Velto maintenance complete');
});

test('a pass that finds nothing tells nobody; one without a desktop says so in the log', async (t) => {
  const empty = new Home(t);
  const desktop = await notificationsFor(t);
  const quiet = await runHeadless(empty, ['--maintenance'], { variables: desktop.variables });
  assert.equal(quiet.status, 0);
  assert.deepEqual(desktop.received, []);

  const home = new Home(t).allocated('Library/Caches/com.example.App/blob', 60 * MB);
  const alone = await runHeadless(home, ['--maintenance']);
  assert.equal(alone.status, 0);
  assert.match(alone.stderr, /Velto ▶ no se pudo entregar la notificación: /);
  assert.equal(listed(home).length, 1);
});

test('two passes at the same time: one works, the other ends at once', async (t) => {
  const home = new Home(t);
  for (let index = 0; index < 40; ++index) {
    home.sparse(`Library/Caches/com.example.App${index}/blob`, 50 * MB);
  }
  const both = await Promise.all([1, 2].map(() => runHeadless(home, ['--maintenance'])));
  for (const { status } of both) assert.equal(status, 0);
  assert.equal(listed(home).length, 40);
  assert.equal(manifestOf(home).operations.length, 1);
});

test('a pass that is killed at any moment loses nothing, and the next one finishes', async (t) => {
  const home = new Home(t);
  const environment = { ...process.env, ...home.variables };
  for (const [name, value] of Object.entries(environment)) if (value === undefined) delete environment[name];
  delete environment.DISPLAY;
  delete environment.DBUS_SESSION_BUS_ADDRESS;
  const journal = home.at(home.data('Trash.journal'));
  const root = home.at(home.data('Trash'));

  const seed = Number(process.env.VELTO_SEED ?? 1);
  let state = seed;
  const random = () => (state = (state * 48271) % 2147483647) / 2147483647;
  const names = [];
  for (let round = 0; round < 20; ++round) {
    for (let index = 0; index < 8; ++index) {
      names.push(`com.example.App${round}-${index}`);
      home.sparse(`Library/Caches/${names.at(-1)}/blob`, 50 * MB);
    }
    const pass = startChild(program, ['--maintenance'], { env: environment, stdio: 'ignore' });
    let hasEnded = false;
    pass.ended.then(() => (hasEnded = true));
    // From the moment at which it begins to move things, up to a few milliseconds later.
    while (!hasEnded && !existsSync(journal)) await new Promise(setImmediate);
    const end = performance.now() + random() * 4;
    while (!hasEnded && performance.now() < end) await new Promise(setImmediate);
    pass.kill('SIGKILL');
    await pass.ended;
    // Each file is in full in one place: where it was, or below the trash.
    const stored = existsSync(root)
      ? readdirSync(root, { recursive: true }).filter((path) => path.endsWith('/blob'))
      : [];
    for (const name of names) {
      const atHome = home.has(`Library/Caches/${name}/blob`) ? 1 : 0;
      const inTrash = stored.filter((path) => path.endsWith(`-${name}/blob`)).length;
      assert.equal(atHome + inTrash, 1, `${name} after round ${round} (seed ${seed})`);
    }
  }
  const { status } = await runHeadless(home, ['--maintenance']);
  assert.equal(status, 0);
  const items = listed(home);
  assert.equal(items.length, names.length);
  for (const item of items) assert.ok(existsSync(join(item.file, 'blob')));
  assert.equal(existsSync(journal), false, 'nothing is left unsettled');
});

test('in the window: switching maintenance on installs the timer, switching it off removes it', async (t) => {
  const home = new Home(t, { layout: 'freedesktop' }).text('Documents/letter.txt', 'Dear reader');
  const through = [withUserManager, home.runtime];
  const { status } = await run(through[0], [through[1], 'true'], { env: { ...process.env, HOME: home.path } });
  if (status === 77) return t.skip('no user manager can be started here');
  const units = '.config/systemd/user';
  const all = ['app.velto.maintenance.timer', 'app.velto.maintenance.service',
    'timers.target.wants/app.velto.maintenance.timer'];

  const page = await openGuided(t, home, { through });
  await page.click('Settings');
  await page.sees('Maintenance has not run yet.');
  await page.click('Run maintenance automatically');
  await page.sees('How long should caches be kept?');
  await page.click('Keep caches for 3 days');
  await page.sees('The next run is due on');
  for (const unit of all) assert.ok(home.has(`${units}/${unit}`), unit);
  assert.match(home.read(`${units}/${all[0]}`), /OnCalendar=daily/);
  await page.switched('Run maintenance automatically', true);

  await page.click('Run maintenance automatically');
  await page.seesNot('The next run is due on');
  for (const unit of all) assert.equal(home.has(`${units}/${unit}`), false, unit);
});

test('in the window: what cannot be installed is told, and the switch goes back', async (t) => {
  const home = furnishedHome(t).withAccess();
  if (existsSync('/bin/launchctl')) return t.skip('this machine has launch agents');
  const page = await openGuided(t, home);
  await page.click('Settings');
  await page.click('Run maintenance automatically');
  await page.sees("Automatic maintenance couldn't be set up");
  await page.switched('Run maintenance automatically', false);
  assert.equal(home.has('Library/LaunchAgents/app.velto.maintenance.plist'), false);
});

test('a pass beside an open window: the window shows what has gone when it comes to the front', async (t) => {
  const home = furnishedHome(t).withAccess();
  const page = await openGuided(t, home);
  await page.click('Velto Trash');
  await page.sees('Velto Trash is empty');
  const { status } = await runHeadless(home, ['--maintenance']);
  assert.equal(status, 0);
  assert.equal(listed(home).length, 1);
  // Without a window manager the focus is moved by hand: away (1 is the X server's name for no
  // window of its own), and back.
  const { stdout } = await run('xdotool', ['search', '--onlyvisible', '--name', '^Velto$'], {
    env: { ...process.env, DISPLAY: page.desktop.display },
  });
  const [window] = stdout.trim().split('\n');
  await page.desktop.input('windowfocus', '1');
  await page.desktop.input('windowfocus', window);
  await page.sees('com.example.app');
  await page.click('Put back: com.example.app');
  await page.sees('Velto Trash is empty');
  assert.ok(home.has('Library/Caches/com.example.app/blob'));
});
