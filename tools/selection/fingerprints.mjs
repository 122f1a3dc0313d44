// What the result of a test depends on, as one line of text: the same line means that it would end as
// it did the last time.
import { execFileSync } from 'node:child_process';
import { createHash } from 'node:crypto';
import { lstatSync, readdirSync, readlinkSync, statSync } from 'node:fs';
import { release, type } from 'node:os';
import { join } from 'node:path';
import { digestOfFile } from './file_digest.mjs';

const digest = (text) => createHash('sha256').update(text).digest('hex');

/** What lies at a path: names, bytes, what may be run and where links lead. Throws where it cannot be read. */
function contentOf(path) {
  const link = lstatSync(path).isSymbolicLink() ? ` -> ${readlinkSync(path)}` : '';
  const status = statSync(path);
  if (status.isFile()) return `${(status.mode & 0o111) !== 0}${link} ${digestOfFile(path)}`;
  if (!status.isDirectory()) throw new Error(`${path} is neither a file nor a folder`);
  // A folder behind a link may hold the link.
  if (link) throw new Error(`${path} is a link to a folder`);
  return digest(readdirSync(path).sort().map((name) => `${name}\0${contentOf(join(path, name))}\n`).join(''));
}

const output = (program, ...args) => execFileSync(program, args, { stdio: ['ignore', 'pipe', 'ignore'] });

/** Every package that is installed, in the words of whatever manages them; null where nobody knows. */
function installedPackages() {
  for (const ask of [
    () => digestOfFile('/var/lib/dpkg/status'),
    () => digest(output('rpm', '-qa', '--qf', '%{NAME} %{VERSION} %{RELEASE}\n').toString().split('\n').sort().join('\n')),
    () => digest(output('sw_vers') + output('brew', 'list', '--versions') + output('pkgutil', '--pkgs')),
  ]) {
    try {
      return ask();
    } catch {
      // The next one may be there.
    }
  }
  return null;
}

/** The variables that tests, or what they start, go by. */
const isLookedAt = /^(VELTO_.*|GTEST_.*|.*SAN_OPTIONS|LANG|LANGUAGE|LC_.*|TZ|TMPDIR|HOME|PATH|XDG_.*)$/;

/** The machine that tests run on; null where what is installed cannot be told. */
export function machine() {
  const packages = installedPackages();
  if (packages === null) return null;
  const variables = Object.entries(process.env).filter(([name]) => isLookedAt.test(name)).sort();
  return digest(JSON.stringify([type(), release(), process.getuid(), process.version, packages, variables]));
}

/**
 * A function that tells the fingerprint of a test as CTest describes it (`--show-only=json-v1`), or null: then nobody
 * knows all that it depends on. A test names that, files and folders, in its property REQUIRED_FILES; the files of its
 * command are looked at anyway. Reads each file once.
 */
export function fingerprints(onMachine = machine()) {
  const known = new Map();
  const contentOnce = (path) => {
    if (!known.has(path)) known.set(path, contentOf(path));
    return known.get(path);
  };
  const isFile = (path) => path.startsWith('/') && (statSync(path, { throwIfNoEntry: false })?.isFile() ?? false);
  return ({ command, properties }) => {
    const required = properties.find(({ name }) => name === 'REQUIRED_FILES')?.value ?? [];
    if (onMachine === null || required.length === 0 || !command) return null;
    // How long a test may take, and when it begins, is nothing that its result depends on.
    const rest = properties.filter(({ name }) => !['COST', 'TIMEOUT', 'LABELS'].includes(name));
    try {
      const inputs = [...required, ...command.filter(isFile)].map((path) => [path, contentOnce(path)]);
      return digest(JSON.stringify([onMachine, command, rest, inputs]));
    } catch {
      return null;
    }
  };
}
