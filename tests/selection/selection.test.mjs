// Which suites ./dev test leaves out, in a made folder of tests: none that a change could have broken.
import assert from 'node:assert/strict';
import { execFileSync, spawnSync } from 'node:child_process';
import { chmodSync, mkdirSync, mkdtempSync, readFileSync, rmSync, symlinkSync, unlinkSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { test } from 'node:test';
import { fileURLToPath } from 'node:url';

const tools = fileURLToPath(new URL('../../tools', import.meta.url));

/** What ./dev does, but for the packages and the builds. */
const dev = `
set -euo pipefail
root=$1 logs=$1/logs
shift
. "${tools}/common.sh"
. "${tools}/test.sh"
setup_build() { :; }
need_packages() { :; }
build_page() { :; }
compile_all() { :; }
attach_second_volume() { :; }
combine_tests() { :; }
cd "$root"
run_tests "$@"
`;

/** Notes who ran; fails where one of the files that follow says so, and does to them what `act` says. */
const suite = `#!/bin/sh
name=$1
shift
echo "$name" >>ran
[ ! -x act ] || ./act
! grep -rqx fail "$@"
`;

/** Two suites that tell what they depend on ("both" is shared), and one that does not. */
class World {
  constructor(t) {
    this.root = mkdtempSync(join(tmpdir(), 'velto-selection-'));
    t.after(() => rmSync(this.root, { recursive: true, force: true }));
    for (const folder of ['build/test', 'logs', 'both']) mkdirSync(join(this.root, folder), { recursive: true });
    this.write('suite', suite, 0o755);
    for (const file of ['one', 'two', 'both/first', 'unknown']) this.write(file, 'good\n');
    this.tests(['first', ['one', 'both']], ['second', ['two', 'both']], ['always', []]);
  }
  at(path) {
    return join(this.root, path);
  }
  write(path, text, mode = 0o644) {
    writeFileSync(this.at(path), text);
    chmodSync(this.at(path), mode);
  }
  tests(...tests) {
    this.write('build/test/CTestTestfile.cmake', tests.map(([name, needs, also = '']) => {
      const files = needs.map((file) => this.at(file));
      const list = [this.at('suite'), name, ...(files.length > 0 ? files : [this.at('unknown')])];
      const properties = `WORKING_DIRECTORY "${this.root}" ${files.length > 0 ? `REQUIRED_FILES "${files.join(';')}"` : ''} ${also}`;
      return `add_test([[${name}]] ${list.map((one) => `"${one}"`).join(' ')})\nset_tests_properties([[${name}]] PROPERTIES ${properties})\n`;
    }).join(''));
  }
  /** Runs `./dev test`; resolves to its status, what it says and the names of the suites that ran. */
  run(args = [], variables = {}) {
    this.write('ran', '');
    const env = { ...process.env, ...variables };
    if (!('CI' in variables)) delete env.CI;
    const { status, stdout, stderr } = spawnSync('bash', ['-c', dev, 'dev', this.root, ...args], { env, encoding: 'utf8' });
    const ran = readFileSync(this.at('ran'), 'utf8').split('\n').filter(Boolean).sort();
    return { status, said: stdout + stderr, ran };
  }
}

const all = ['always', 'first', 'second'];

test('what has passed is left out until something that it depends on changes, and this is said', (t) => {
  const world = new World(t);
  const first = world.run();
  assert.deepEqual(first.ran, all);
  assert.equal(first.status, 0);
  assert.doesNotMatch(first.said, /left out/);
  assert.match(first.said, /100% tests passed, 0 tests failed out of 3/);
  const second = world.run();
  assert.deepEqual(second.ran, ['always']);
  assert.match(second.said, /2 test suites are left out.*--all/);
  world.write('one', 'better\n');
  assert.deepEqual(world.run().ran, ['always', 'first']);
  assert.deepEqual(world.run().ran, ['always']);
});

test('a suite that failed runs until it passes, and its failure is that of the run', (t) => {
  const world = new World(t);
  world.run();
  world.write('two', 'fail\n');
  const failed = world.run();
  assert.notEqual(failed.status, 0);
  assert.match(failed.said, /second/);
  assert.deepEqual(world.run().ran, ['always', 'second']);
  world.write('two', 'good\n');
  // With this it had passed, but it has failed since.
  assert.deepEqual(world.run().ran, ['always', 'second']);
  assert.deepEqual(world.run().ran, ['always']);
});

test('--all runs everything, and so does CI', (t) => {
  const world = new World(t);
  world.run();
  assert.deepEqual(world.run(['--all']).ran, all);
  assert.deepEqual(world.run([], { CI: 'true' }).ran, all);
  assert.deepEqual(world.run().ran, ['always']);
  const unknown = world.run(['--some']);
  assert.notEqual(unknown.status, 0);
  assert.deepEqual(unknown.ran, []);
});

test('every change of a folder counts: a new file, one that goes, one that may be run, another link', (t) => {
  const world = new World(t);
  world.run();
  const changes = [
    () => world.write('both/second', ''),
    () => world.write('both/second', '', 0o755),
    () => unlinkSync(world.at('both/second')),
    () => symlinkSync('first', world.at('both/link')),
    () => {
      unlinkSync(world.at('both/link'));
      symlinkSync('../one', world.at('both/link'));
    },
    // What a link leads to is looked at as well.
    () => world.write('one', 'other\n'),
  ];
  for (const [index, change] of changes.entries()) {
    change();
    assert.deepEqual(world.run().ran, all, `change ${index}`);
    assert.deepEqual(world.run().ran, ['always']);
  }
});

test('of a program counts what is in it, and not from which lines it was made', (t) => {
  const world = new World(t);
  const compile = (source) => {
    world.write('source.c', source);
    execFileSync('cc', ['-g', '-Wl,--build-id', world.at('source.c'), '-o', world.at('one')]);
    return readFileSync(world.at('one'));
  };
  const before = compile('int main(void) { return 0; }\n');
  world.run();
  const moved = compile('\n\n/* A word. */ int main(void) { return 0; }\n');
  assert.ok(!moved.equals(before));
  assert.deepEqual(world.run().ran, ['always']);
  for (const source of ['int main(void) { return 7; }\n', 'int kept = 3; int main(void) { return 7; }\n', 'int other; int main(void) { return 7; }\n']) {
    compile(source);
    assert.deepEqual(world.run().ran, ['always', 'first'], source);
  }
  // Of what only begins as one all counts.
  writeFileSync(world.at('one'), before.subarray(0, 100));
  assert.deepEqual(world.run().ran, ['always', 'first']);
  writeFileSync(world.at('one'), Buffer.concat([before.subarray(0, 99), Buffer.from('?')]));
  assert.deepEqual(world.run().ran, ['always', 'first']);
});

test('the command, its script and the variables of the tests count', (t) => {
  const world = new World(t);
  world.run();
  world.tests(['first', ['one', 'both'], 'ENVIRONMENT "A=b"'], ['second', ['two', 'both'], 'TIMEOUT 60'], ['always', []]);
  assert.deepEqual(world.run().ran, ['always', 'first'], 'how long a suite may take is no reason');
  world.write('suite', `${suite}# longer\n`, 0o755);
  assert.deepEqual(world.run().ran, all);
  assert.deepEqual(world.run([], { VELTO_SEED: '7' }).ran, all);
  assert.deepEqual(world.run([], { VELTO_SEED: '7' }).ran, ['always']);
});

test('what was changed while it ran has not passed', (t) => {
  const world = new World(t);
  world.write('act', '#!/bin/sh\necho late >>two\n', 0o755);
  assert.deepEqual(world.run().ran, all);
  world.write('act', '', 0o644);
  // As it was when the tests were chosen; but what ran may have been the other.
  world.write('two', 'good\n');
  assert.deepEqual(world.run().ran, ['always', 'second']);
  assert.deepEqual(world.run().ran, ['always']);
});

test('a run that was broken off leaves what it had chosen to the next one', (t) => {
  const world = new World(t);
  world.run();
  world.write('one', 'fail\n');
  execFileSync('node', [join(tools, 'selection/select.mjs'), 'choose', world.at('build/test'), 'all']);
  world.write('one', 'good\n');
  assert.deepEqual(world.run().ran, all);
});

test('a suite whose files are not all there is never left out', (t) => {
  const world = new World(t);
  world.run();
  unlinkSync(world.at('two'));
  for (let time = 0; time < 2; time += 1) {
    const { status, said } = world.run();
    assert.notEqual(status, 0);
    assert.match(said, /second/);
  }
});

test('two suites of one name both run each time', (t) => {
  const world = new World(t);
  mkdirSync(world.at('build/test/more'));
  world.run();
  const list = readFileSync(world.at('build/test/CTestTestfile.cmake'), 'utf8');
  world.write('build/test/more/CTestTestfile.cmake', list);
  world.write('build/test/CTestTestfile.cmake', `subdirs("${world.at('build/test/more')}")\n${list}`);
  assert.deepEqual(world.run().ran, [...all, ...all].sort());
  assert.deepEqual(world.run().ran, [...all, ...all].sort());
});

test('where everything has passed nothing runs', (t) => {
  const world = new World(t);
  world.tests(['first', ['one']], ['second', ['two']]);
  world.run();
  const { status, said, ran } = world.run();
  assert.deepEqual([status, ran], [0, []]);
  assert.match(said, /2 test suites are left out/);
});
