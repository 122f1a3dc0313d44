// The program's own files and folders, damaged or planted by somebody: it starts, works and ends all
// the same, or says plainly why it does not start.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import {
  chmodSync, chownSync, existsSync, lstatSync, mkdirSync, readdirSync, readFileSync, rmSync,
  symlinkSync, truncateSync, writeFileSync,
} from 'node:fs';
import { dirname } from 'node:path';
import { test } from 'node:test';
import { Home, temporaryFolder } from './support/home.mjs';
import { played, probePage } from './support/probe_page.mjs';
import { desktopFor, program, programWith, runHeadless, start } from './support/velto.mjs';

// Of a Linux home. The locks and the journal stand beside what they belong to.
const stateFiles = [
  'lastScan.json', 'exclusions.json', 'history.json', 'history.json.lock', 'cloud.json',
  'app-usage.json', 'maintenance.json', 'notification.json', 'Trash.journal', 'Trash.lock',
  'Trash/manifest.json', 'WebView/appearance',
];
const otherFiles = ['.config/velto/settings.json', '.config/user-dirs.dirs'];

const everyFile = (home) => [
  ...stateFiles.map((name) => home.at(home.data(name))), ...otherFiles.map((name) => home.at(name)),
  home.at('.local/share/applications/example.desktop'),
  home.at('.local/share/Trash/info/old.txt.trashinfo'),
];

const deep = '['.repeat(500_000) + ']'.repeat(500_000);
const huge = (path) => {
  writeFileSync(path, '');
  truncateSync(path, 1e12);
};

// What a save does not replace is left as it is.
const damages = {
  'a file of a terabyte': { make: huge },
  'a pipe that nobody writes': { make: (path) => execFileSync('mkfifo', [path]) },
  'a link to a device without end': { make: (path) => symlinkSync('/dev/zero', path) },
  'a folder': {
    make: (path) => {
      mkdirSync(path);
      writeFileSync(`${path}/inside`, 'kept');
    },
    stays: true,
  },
  'a link to itself': { make: (path) => symlinkSync(path, path) },
  'a value nested half a million deep': { make: (path) => writeFileSync(path, deep) },
  'an object with a value as deep': {
    make: (path) => writeFileSync(path, `{"velto.language": ${deep}}`),
  },
  'bytes that mean nothing': {
    make: (path) => writeFileSync(path, Buffer.from(Array.from({ length: 5000 }, (_, i) => i * 37))),
  },
  'nothing at all': { make: (path) => writeFileSync(path, '') },
};
if (process.getuid() === 0) {
  damages["another user's file"] = {
    make: (path) => {
      writeFileSync(path, '["/planted"]');
      chownSync(path, 65534, 65534);
    },
  };
}

function place(path, make) {
  mkdirSync(dirname(path), { recursive: true });
  make(path);
}

function linuxHome(t) {
  const home = new Home(t, { layout: 'freedesktop' });
  return home.text('Documents/letter.txt', 'Dear reader\n');
}

const until = (what) => ({ until: what });
const modeOf = (path) => lstatSync(path).mode & 0o777;

/** Plays `steps` on a page of the program, and ends it as a user does. */
async function playIn(t, home, desktop, steps) {
  const file = programWith(temporaryFolder(t), probePage(steps));
  const velto = start(t, home, desktop, { file });
  const seen = await played(velto);
  velto.child.kill('SIGTERM');
  assert.deepEqual(await velto.ended(), { status: 0, signal: null });
  return { velto, seen };
}

const emptied = (home) => {
  const trash = home.at(home.data('Trash'));
  return readdirSync(trash).filter((name) => name.startsWith('op')).length === 0;
};

/** One cleanup, taken back: the whole way through manifest, journal, lock and history. */
const cleanupAndBack = (home) => [
  { send: { type: 'addExclusion', payload: '/elsewhere' }, ...until('toast') },
  {
    send: { type: 'deleteFiles', payload: { paths: [home.at('Documents/letter.txt')] } },
    ...until('onTrashChanged'),
  },
  { send: { type: 'undoLast' }, ...until('onTrashChanged') },
  { send: { type: 'setTheme', payload: { theme: 'dark' } } },
  { send: { type: 'settings', payload: { retention: 7, language: 'es', rules: {} } } },
  { send: { type: 'removeExclusion', payload: '/elsewhere' }, ...until('onExclusions') },
];

for (const [what, { make, stays }] of Object.entries(damages)) {
  test(`with ${what} in every file's place the program starts, works and ends`, async (t) => {
    const home = linuxHome(t);
    const desktop = await desktopFor(t);
    for (const path of everyFile(home)) place(path, make);
    const { velto, seen } = await playIn(t, home, desktop, cleanupAndBack(home));
    assert.ok(seen.some((one) => one.what === 'setState'), 'the page was shown its state');
    assert.equal(home.read('Documents/letter.txt'), 'Dear reader\n');
    assert.equal(velto.count('Velto ▶ Papelera de Velto: 1 elementos, '), 1, velto.lines.join('\n'));
    assert.ok(emptied(home));
    for (const name of ['exclusions.json', 'Trash/manifest.json', 'history.json']) {
      const path = home.at(home.data(name));
      if (stays && name !== 'Trash/manifest.json') assert.equal(readFileSync(`${path}/inside`, 'utf8'), 'kept');
      else assert.ok(lstatSync(path).isFile() && lstatSync(path).size < 1000, name);
    }
    if (!stays) {
      const settings = JSON.parse(home.read('.config/velto/settings.json'));
      assert.equal(settings['velto.language'], 'es');
      assert.deepEqual(JSON.parse(home.read(home.data('exclusions.json'))), []);
    }

    const pass = await runHeadless(home, ['--maintenance']);
    assert.equal(pass.status, 0, pass.stderr);
  });
}

test('the unattended pass lives with every damage before a window has mended it', async (t) => {
  for (const [what, { make }] of Object.entries(damages)) {
    const home = linuxHome(t);
    for (const path of everyFile(home)) place(path, make);
    const { status, signal, stderr } = await runHeadless(home, ['--maintenance']);
    assert.equal(status, 0, `${what}: ${signal} ${stderr}`);
  }
});

// The folders

for (const umask of ['000', '002', '077']) {
  test(`under umask ${umask} everything made is for the user alone`, async (t) => {
    const home = linuxHome(t);
    const desktop = await desktopFor(t);
    const folder = temporaryFolder(t);
    const real = programWith(folder, probePage(cleanupAndBack(home)));
    const velto = start(t, home, desktop, {
      file: '/bin/sh', args: ['-c', `umask ${umask}; exec "$0" "$@"`, real],
    });
    await played(velto);
    await velto.stop();
    const data = home.at(home.dataFolder);
    assert.equal(modeOf(data), 0o700);
    assert.equal(modeOf(`${data}/WebView`), 0o700);
    assert.equal(modeOf(`${data}/Trash`), 0o700);
    assert.equal(modeOf(home.at('.config/velto')), 0o700);
    assert.equal(modeOf(home.at('.config/velto/settings.json')), 0o600);
    for (const entry of readdirSync(data, { withFileTypes: true })) {
      if (entry.isFile()) assert.equal(modeOf(`${data}/${entry.name}`), 0o600, entry.name);
    }
    assert.equal(modeOf(`${data}/Trash/manifest.json`), 0o600);
  });
}

test('what is made again after a reset from the page is for the user alone too', async (t) => {
  const home = linuxHome(t);
  const steps = [
    { send: { type: 'resetVelto' }, ...until('toast') },
    { quiet: 1000 },
    { send: { type: 'addExclusion', payload: '/elsewhere' }, ...until('toast') },
  ];
  const velto = start(t, home, await desktopFor(t), {
    file: '/bin/sh',
    args: ['-c', 'umask 000; exec "$0" "$@"', programWith(temporaryFolder(t), probePage(steps))],
  });
  await played(velto);
  await velto.stop();
  assert.equal(modeOf(home.at(home.dataFolder)), 0o700);
  assert.equal(modeOf(home.at(home.data('exclusions.json'))), 0o600);
});

test('folders that others could write are closed at every kind of start', async (t) => {
  const home = linuxHome(t);
  home.text(home.data('history.json'), '[]').text('.config/velto/settings.json', '{}');
  const open = () => {
    for (const path of [home.dataFolder, '.config/velto']) chmodSync(home.at(path), 0o777);
    chmodSync(home.at(home.data('history.json')), 0o666);
  };
  const expectClosed = (stderr) => {
    for (const path of [home.dataFolder, '.config/velto']) {
      assert.equal(modeOf(home.at(path)), 0o700);
      assert.ok(stderr.includes(`Velto ▶ carpeta cerrada a otros usuarios: ${home.at(path)}`), stderr);
    }
    assert.equal(modeOf(home.at(home.data('history.json'))), 0o600);
  };
  open();
  expectClosed((await runHeadless(home, ['--maintenance'])).stderr);
  open();
  const { velto } = await playIn(t, home, await desktopFor(t), []);
  expectClosed(velto.lines.join('\n'));
});

test('a data folder that is a link is refused with what to do, and nothing is lost', async (t) => {
  const home = linuxHome(t);
  const target = temporaryFolder(t);
  writeFileSync(`${target}/exclusions.json`, '["/mine"]');
  mkdirSync(dirname(home.at(home.dataFolder)), { recursive: true });
  symlinkSync(target, home.at(home.dataFolder));
  const before = readdirSync(target);
  for (const [language, words] of [['es_ES.UTF-8', 'quita el enlace'], ['en', 'remove the link']]) {
    for (const args of [[], ['--maintenance']]) {
      const { status, stderr } = await runHeadless(home, args, { variables: { LANG: language } });
      assert.equal(status, 1);
      for (const text of [words, home.at(home.dataFolder), target]) {
        assert.ok(stderr.includes(text), `"${text}" is missing: ${stderr}`);
      }
    }
  }
  assert.deepEqual(readdirSync(target), before);
  assert.ok(lstatSync(home.at(home.dataFolder)).isSymbolicLink());

  const reset = await runHeadless(home, ['--reset']);
  assert.equal(reset.status, 0);
  assert.ok(!existsSync(home.at(home.dataFolder)), 'the link is what goes');
  assert.equal(readFileSync(`${target}/exclusions.json`, 'utf8'), '["/mine"]');
  assert.doesNotMatch(reset.stderr, /reset completo/);
  assert.ok(reset.stderr.includes(`los datos siguen en ${target}`), reset.stderr);
});

test("another user's data folder is refused with a clear text", { skip: process.getuid() !== 0 }, async (t) => {
  const home = linuxHome(t);
  home.text(home.data('exclusions.json'), '[]');
  chownSync(home.at(home.dataFolder), 65534, 65534);
  const { status, stderr } = await runHeadless(home, ['--maintenance'], { variables: { LANG: 'en' } });
  assert.equal(status, 1);
  assert.ok(stderr.includes('belongs to another user'), stderr);
});

test('the folder of the web engine is the program\'s own, and no link is followed from there', async (t) => {
  const home = linuxHome(t);
  const target = temporaryFolder(t);
  home.folder(home.dataFolder);
  symlinkSync(target, home.at(home.data('WebView')));
  await playIn(t, home, await desktopFor(t), []);
  assert.ok(lstatSync(home.at(home.data('WebView'))).isDirectory());
  assert.deepEqual(readdirSync(target), []);
});

// Leftovers

test('what killed saves have left goes at the next start, and only that', async (t) => {
  const home = linuxHome(t);
  const left = '.velto-0123456789abcdef';
  const kept = ['.velto-0123456789ABCDEF', '.velto-itA1B2C3D4', 'notes'];
  const folders = [home.dataFolder, home.data('Trash'), home.data('WebView'), '.config/velto'];
  for (const folder of folders) {
    for (const name of [left, ...kept]) home.text(`${folder}/${name}`, 'half');
  }
  home.text(`Documents/${left}`, 'of the user');
  await playIn(t, home, await desktopFor(t), []);
  for (const folder of folders) {
    assert.ok(!home.has(`${folder}/${left}`), folder);
    for (const name of kept) assert.ok(home.has(`${folder}/${name}`), `${folder}/${name}`);
  }
  assert.ok(home.has(`Documents/${left}`));
});

test('a reset that cannot remove everything says so and is no failure', { skip: process.getuid() !== 0 }, async (t) => {
  const home = linuxHome(t);
  home.text(home.data('history.json'), '[]').folder(home.data('Trash'));
  const mount = home.at(home.data('Trash'));
  // A volume inside is not entered, nor can it be removed.
  const script = `mount -t tmpfs none '${mount}' && exec "$0" --reset`;
  const { status, stderr } = await runHeadless(home, ['-m', 'sh', '-c', script, program], { file: 'unshare' });
  assert.equal(status, 0, stderr);
  assert.doesNotMatch(stderr, /reset completo/);
  assert.ok(stderr.includes(`reset incompleto: quedan datos en ${home.at(home.dataFolder)}`), stderr);
  rmSync(home.at(home.dataFolder), { recursive: true, force: true });
});
