// The folders of a home of every kind in the real program, beside what du says of them.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { chmodSync, closeSync, linkSync, openSync, readFileSync, statSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { test } from 'node:test';
import { atEnd, Home, temporaryFolder } from './support/home.mjs';
import { played, probePage } from './support/probe_page.mjs';
import { desktopFor, line, programWith, start } from './support/velto.mjs';

/** Runs a program among mounts of its own, without an administrator's rights over closed folders. */
const launcher = `#!/bin/sh
set -e
mount -t tmpfs -o size=1m none "$HOME_UNDER_TEST/projects/disk"
mount --bind "$HOME_UNDER_TEST/projects/real" "$HOME_UNDER_TEST/projects/bound"
[ "$(id -u)" != 0 ] || [ "$1" = true ] ||
  exec setpriv --bounding-set=-dac_override,-dac_read_search "$@"
exec "$@"
`;

const isAdministrator = process.getuid() === 0;
const privately = isAdministrator ? ['-m'] : ['-Urm'];

function launcherFor(t, home) {
  const file = join(temporaryFolder(t), 'launch');
  writeFileSync(file, launcher, { mode: 0o755 });
  const env = { ...process.env, HOME_UNDER_TEST: home.path };
  try {
    execFileSync('unshare', [...privately, file, 'true'], { env, stdio: 'pipe' });
  } catch {
    return null;
  }
  return file;
}

function manyFiles(home, folder, count) {
  home.folder(folder);
  for (let index = 0; index < count; index++) closeSync(openSync(home.at(`${folder}/file ${index}.txt`), 'w'));
  home.text(`${folder}/the one that holds something`, 'x'.repeat(5000));
}

/** Everything that du and a naive sum disagree about. */
function homeOfEveryKind(t) {
  const home = new Home(t, { layout: 'freedesktop' });
  home
    .allocated('.cargo/registry/index/a', 3_000_000)
    .text('.cargo/.crates.toml', 'x')
    .allocated('projects/plain/film', 2_000_000)
    .text('projects/plain/.hidden/deep/b', 'x'.repeat(9000))
    .sparse('projects/plain/hole', 1_000_000_000)
    .allocated('projects/first/file', 1_000_000)
    .text('projects/real/c', 'x'.repeat(6000))
    .text('projects/closed/secret', 'x')
    .text('projects/kept out/d', 'x')
    .folder('projects/bound')
    .folder('projects/disk')
    .folder('projects/second');
  linkSync(home.at('projects/first/file'), home.at('projects/second/same file'));
  linkSync(home.at('projects/first/file'), home.at('projects/first/again'));
  manyFiles(home, 'many', 10_000);
  home.text(home.data('exclusions.json'), JSON.stringify([home.at('projects/kept out')]));
  chmodSync(home.at('projects/closed'), 0);
  atEnd(t, () => chmodSync(home.at('projects/closed'), 0o700));
  return home;
}

/** What du says of a folder as the program of that process sees it. */
function du(velto, ...args) {
  const command = ['-t', String(velto.child.pid), '-m', ...(isAdministrator ? [] : ['-U']), 'du', '-x', '-s', '--block-size=1', ...args];
  return Number(execFileSync('nsenter', command, { encoding: 'utf8', stdio: ['ignore', 'pipe', 'ignore'] }).split('\t')[0]);
}

const named = (list, name) => list.find((one) => one.name === name);

test('each folder takes what du says of it, and what was left out says why', async (t) => {
  const home = homeOfEveryKind(t);
  const launch = launcherFor(t, home);
  if (!launch) return t.skip('mounting is not allowed here');
  const asked = ['', 'projects', 'projects/plain', 'projects/first', 'projects/second', '.cargo', 'many', 'projects/closed', 'projects/bound',
    'projects/disk', 'projects/kept out', '.local/share/Velto'];
  const file = programWith(temporaryFolder(t), probePage([
    { until: 'onScanFinished' },
    ...asked.map((path, request) => ({
      send: { type: 'folder', payload: { path: path && home.at(path), request } }, until: 'onFolder',
    })),
    { send: { type: 'searchFolders', payload: { text: 'REGÍSTRY', request: 99 } }, until: 'onFolderSearch' },
  ]));
  const velto = start(t, home, await desktopFor(t), {
    file: 'unshare', args: [...privately, launch, file], variables: { HOME_UNDER_TEST: home.path },
  });
  await velto.waitFor(line.finished);
  const seen = await played(velto);
  const told = Object.fromEntries(asked.map((path, request) =>
    [path, seen.findLast(({ what, args }) => what === 'onFolder' && args[0].request === request).args[0]]));

  for (const path of ['projects/plain', '.cargo', 'many']) {
    assert.equal(told[path].found, true, path);
    assert.equal(told[path].bytes, du(velto, home.at(path)), path);
  }
  const withoutOthers = ['bound', 'disk', 'kept out', 'closed/secret'].map((name) => `--exclude=${home.at('projects')}/${name}`);
  assert.equal(told.projects.bytes, du(velto, ...withoutOthers, home.at('projects')));
  assert.ok(named(told['projects/plain'].entries, 'hole').bytes < 1_000_000, 'a hole takes nothing');
  assert.equal(named(told.projects.folders, 'first').bytes, du(velto, home.at('projects/first')));
  assert.equal(named(told.projects.folders, 'second').bytes, statSync(home.at('projects/second')).blocks * 512,
    'its only file counts for the first of its names');
  assert.ok(named(told['projects/second'].entries, 'same file').linked);

  assert.equal(told.many.entries.length, 10_001);
  assert.equal(told.many.files, 10_001);
  assert.equal(named(told[''].folders, 'many').files, 10_001);
  assert.equal(told[''].bytes, told[''].folders.filter(({ bytes }) => bytes > 0).reduce((sum, { bytes }) => sum + bytes, 0) +
    told[''].entries.reduce((sum, { bytes }) => sum + bytes, 0) + statSync(home.path).blocks * 512);

  const states = Object.fromEntries(told.projects.folders.map(({ name, state }) => [name, state]));
  assert.deepEqual(states, {
    bound: 'alreadyWalked', closed: 'unreadable', disk: 'otherVolume', first: 'measured', 'kept out': 'excluded',
    plain: 'measured', real: 'measured', second: 'measured',
  });
  assert.equal(named(told.projects.folders, 'disk').total, 1_048_576);
  assert.equal(named(told.projects.folders, 'closed').bytes, statSync(home.at('projects/closed')).blocks * 512);
  assert.equal(told.projects.unreadable, 1);
  for (const [path, state] of Object.entries({
    'projects/closed': 'unreadable', 'projects/bound': 'alreadyWalked', 'projects/disk': 'otherVolume',
    'projects/kept out': 'excluded', '.local/share/Velto': 'own',
  })) {
    assert.deepEqual([told[path].found, told[path].state], [false, state], path);
  }
  const search = seen.findLast(({ what }) => what === 'onFolderSearch').args[0];
  assert.deepEqual(search.found.map(({ path }) => path), [home.at('.cargo/registry')]);
});

test('the folders are there at the next start, and a damaged file of them is replaced', async (t) => {
  const home = new Home(t, { layout: 'freedesktop' }).allocated('projects/film', 2_000_000);
  const desktop = await desktopFor(t);
  const ask = { send: { type: 'folder', payload: { path: home.at('projects'), request: 1 } }, until: 'onFolder' };
  const answer = async (steps) => {
    const velto = start(t, home, desktop, { file: programWith(temporaryFolder(t), probePage(steps)) });
    const { args } = (await played(velto)).findLast(({ what }) => what === 'onFolder');
    await velto.stop();
    return args[0];
  };
  const first = await answer([{ until: 'onScanFinished' }, ask]);
  assert.equal(first.state, 'measured');
  assert.deepEqual(await answer([ask]), first);

  const saved = readFileSync(home.at(home.data('folders.bin')));
  home.text(home.data('folders.bin'), saved.subarray(0, saved.length - 1));
  assert.equal((await answer([ask])).state, 'unmeasured');
  assert.equal((await answer([{ send: { type: 'scan' }, until: 'onScanFinished' }, ask])).state, 'measured');
  assert.equal((await answer([ask])).state, 'measured');
});
