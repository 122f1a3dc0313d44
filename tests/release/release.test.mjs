// What a release is made of besides its packages, and what its workflows may do.
import assert from 'node:assert/strict';
import { readdirSync, readFileSync } from 'node:fs';
import { test } from 'node:test';
import { notesOf } from '../../tools/release/notes.mjs';
import { libraries, packagesIn, sbomOf } from '../../tools/release/sbom.mjs';

const root = new URL('../../', import.meta.url);
const read = (path) => readFileSync(new URL(path, root), 'utf8');

const changelog = `# Changelog

All of it.

## Unreleased

### Added

- Not yet.

## [1.2.0] - 2026-11-01

### Added

- A thing that goes on
  over two lines, and
  a third.
- Another.

### Fixed

- A fault.

## 1.1.0

Nothing here.

## 1.2.0-beta

- The beta.
`;

test('a release says what its own section says, whole and no other, with wrapped lines put together', () => {
  assert.equal(
    notesOf(changelog, '1.2.0'),
    '### Added\n\n- A thing that goes on over two lines, and a third.\n- Another.\n\n### Fixed\n\n- A fault.\n',
  );
  assert.equal(notesOf(changelog, '1.2.0-beta'), '- The beta.\n');
  assert.equal(notesOf(changelog, 'Unreleased'), '### Added\n\n- Not yet.\n');
});

test('nothing is released without words, or with those of another version', () => {
  for (const version of ['1.1.0', '1.2', '', '.*', '1x2.0']) assert.throws(() => notesOf(changelog, version), /CHANGELOG/);
});

test('the real changelog can be read', () => {
  assert.match(notesOf(read('CHANGELOG.md'), 'Unreleased'), /^### Added\n\n- /);
});

const npm = {
  specVersion: '1.5',
  components: [
    { 'bom-ref': 'inside@1.0.0', name: 'inside', version: '1.0.0', scope: 'optional' },
    { 'bom-ref': 'tool@2.0.0', name: 'tool', version: '2.0.0', scope: 'optional' },
  ],
};
const native = [{ name: 'fmt', version: '9.1.0', license: 'MIT', isInside: true }];

test('the bill of materials tells what is inside from what has only built it', () => {
  const sbom = sbomOf({ npm, inPage: ['inside@1.0.0'], native, version: '3.0.0', moment: 0 });
  assert.deepEqual(
    sbom.components.map(({ name, scope, properties }) => [name, scope, properties[0].value]),
    [['fmt', 'required', 'compiled in'], ['inside', 'required', 'in the page'], ['tool', 'excluded', 'builds or tests the page']],
  );
  assert.deepEqual(sbom.dependencies, [{ ref: 'velto@3.0.0', dependsOn: ['fmt@9.1.0', 'inside@1.0.0'] }]);
  assert.equal(sbom.metadata.timestamp, '1970-01-01T00:00:00.000Z');
});

test('a page that holds what nobody has locked has no bill of materials', () => {
  assert.throws(() => sbomOf({ npm, inPage: ['other@1.0.0'], native, version: '3', moment: 0 }), /other@1\.0\.0/);
  assert.throws(() => sbomOf({ npm, inPage: [], native, version: '3', moment: 0 }));
});

test('the notices say what is in the page', () => {
  const line = '-'.repeat(72);
  const notices = `Velto\n\nMIT\n\n${line}\n\nfmt (MIT)\n\ntext\n\n${line}\n\n@a/b 1.48.0 (ISC)\n\ntext 1.0 (x)\n\n${line}\n\nc 2.1.1 (MIT OR Apache-2.0)\n`;
  assert.deepEqual(packagesIn(notices), ['@a/b@1.48.0', 'c@2.1.1']);
});

test('every library that CMake asks the system for is in the bill of materials', () => {
  const files = ['platform/CMakeLists.txt', 'app/CMakeLists.txt'].map(read).join('\n');
  const asked = [...files.matchAll(/velto_system_package\(\w+ ([^)]+)\)/g)].flatMap(([, names]) => names.split(/\s+/));
  const covered = { 'icu-i18n': 'icu-uc' }; // of one library
  const known = new Set(libraries.map(({ name }) => name));
  assert.ok(asked.length >= 7);
  assert.deepEqual(asked.filter((name) => !known.has(covered[name] ?? name)), []);
});

const folder = new URL('.github/workflows/', root);
const workflows = readdirSync(folder).map((name) => [name, readFileSync(new URL(name, folder), 'utf8')]);

test('every action is pinned to a commit that says its version, and one action to one commit', () => {
  const pins = new Map();
  for (const [name, text] of workflows) {
    for (const [, use] of text.matchAll(/uses:\s*(.*)/g)) {
      assert.match(use, /^[\w./-]+@[0-9a-f]{40} # v\d+\.\d+\.\d+$/, `${name}: ${use}`);
      const [action, pin] = use.split('@');
      assert.equal(pins.get(action) ?? pin, pin, `${name}: ${action}`);
      pins.set(action, pin);
    }
  }
  assert.ok(pins.size > 0);
});

test('a workflow begins with no more than reading, and keeps no credentials in the checkout', () => {
  for (const [name, text] of workflows) {
    assert.match(text, /^permissions:\n {2}contents: read\n(?! )/m, name);
    const checkouts = text.match(/uses: actions\/checkout@.*/g) ?? [];
    const without = text.match(/uses: actions\/checkout@.*\n\s+with:\n(?:\s+[\w-]+: .*\n)*?\s+persist-credentials: false/g) ?? [];
    assert.equal(without.length, checkouts.length, name);
    assert.doesNotMatch(text, /pull_request_target/, name);
    // What others can write (names of branches, titles) reaches a script as a variable, never as its text.
    assert.doesNotMatch(text, /\$\{\{\s*github\.(event\.|head_ref)/, name);
  }
});
