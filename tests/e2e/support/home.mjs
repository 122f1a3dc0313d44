// Made homes for the real program.
import { execFileSync } from 'node:child_process';
import { createHash } from 'node:crypto';
import {
  closeSync,
  existsSync,
  fsyncSync,
  mkdirSync,
  mkdtempSync,
  openSync,
  readFileSync,
  realpathSync,
  renameSync,
  rmSync,
  statSync,
  truncateSync,
  writeFileSync,
} from 'node:fs';
import { tmpdir } from 'node:os';
import { dirname, join } from 'node:path';
import { homeVariables } from '../../../tools/desktop/program.mjs';

export const MB = 1_000_000;

const undone = new WeakMap();

/** Undoes something when the test ends: the last thing made is the first to go. */
export function atEnd(test, undo) {
  if (!undone.has(test)) {
    const list = [];
    undone.set(test, list);
    test.after(async () => {
      while (list.length > 0) await list.pop()();
    });
  }
  undone.get(test).push(undo);
}

/** A temporary folder that goes when the test ends. */
export function temporaryFolder(test, name = 'velto-e2e-') {
  const folder = realpathSync(mkdtempSync(join(tmpdir(), name)));
  // The web engine's helpers may write for a moment after the program has ended.
  atEnd(test, () => rmSync(folder, { recursive: true, force: true, maxRetries: 20, retryDelay: 50 }));
  return folder;
}

/** Bytes that look random and are the same for the same seed. */
function noise(seed, size) {
  const block = createHash('sha512').update(seed).digest();
  const bytes = Buffer.alloc(size, block);
  bytes.write(seed);
  return bytes;
}

export class Home {
  /** `layout`: "mac" (has a Library) or "freedesktop". `onDisk`: below the Users of a Mac's disk. */
  constructor(test, { layout = 'mac', onDisk = false } = {}) {
    this.path = join(temporaryFolder(test, 'velto-home-'), onDisk ? 'Users/ana' : '');
    this.layout = layout;
    // Outside the home: the folder that a login session would have.
    this.runtime = temporaryFolder(test, 'velto-run-');
    if (layout === 'mac') this.folder('Library/Application Support');
  }

  at(path) {
    return join(this.path, path);
  }

  folder(path) {
    mkdirSync(this.at(path), { recursive: true });
    return this;
  }

  text(path, text) {
    mkdirSync(dirname(this.at(path)), { recursive: true });
    writeFileSync(this.at(path), text);
    return this;
  }

  /** A file of `bytes` allocated bytes that nobody had to write. */
  allocated(path, bytes) {
    mkdirSync(dirname(this.at(path)), { recursive: true });
    execFileSync('fallocate', ['-l', String(bytes), this.at(path)]);
    return this.synced(path);
  }

  /** A file of that length that takes no space: enough where the length counts, as in a folder. */
  sparse(path, bytes) {
    this.text(path, '');
    truncateSync(this.at(path), bytes);
    return this;
  }

  /** A file whose content depends on `seed` and `bytes` alone. */
  content(path, seed, bytes) {
    return this.text(path, noise(seed, bytes)).synced(path);
  }

  /** Only a synced file takes, on all file systems, the space that it will take. */
  synced(path) {
    const file = openSync(this.at(path), 'r');
    fsyncSync(file);
    closeSync(file);
    return this;
  }

  /**
   * Files at `paths` that `make(path)` makes, all taking the same space. Where the disk's free space
   * is in pieces, a file may take a block more than its like to note its own pieces, and only files
   * of one size are compared; so more are made until enough are alike.
   */
  alike(paths, make) {
    const made = [];
    for (let count = 1; count <= 20 * paths.length; count++) {
      const spare = `.spare/${count}`;
      make(spare);
      made.push({ spare, blocks: statSync(this.at(spare)).blocks });
      const same = made.filter(({ blocks }) => blocks === made.at(-1).blocks);
      if (same.length < paths.length) continue;
      paths.forEach((path, index) => {
        mkdirSync(dirname(this.at(path)), { recursive: true });
        renameSync(this.at(same[index].spare), this.at(path));
      });
      rmSync(this.at('.spare'), { recursive: true });
      return this;
    }
    throw new Error(`no ${paths.length} files of one size: ${made.map(({ blocks }) => blocks)}`);
  }

  has(path) {
    return existsSync(this.at(path));
  }

  read(path) {
    return readFileSync(this.at(path), 'utf8');
  }

  /** The folder that is only readable with full access to the disk. */
  withAccess() {
    return this.folder('Library/Application Support/com.apple.TCC');
  }

  get dataFolder() {
    return this.layout === 'mac' ? 'Library/Application Support/Velto' : '.local/share/Velto';
  }

  data(name) {
    return join(this.dataFolder, name);
  }

  /** The saved analysis: {ts, state}. */
  saved() {
    return JSON.parse(this.read(this.data('lastScan.json')));
  }

  /** The environment of a program that lives in this home; nothing of the caller's leaks in. */
  get variables() {
    return {
      ...homeVariables(this.path, this.runtime),
      XDG_CONFIG_DIRS: undefined,
      WAYLAND_DISPLAY: undefined,
      LANG: 'C.UTF-8',
      LC_ALL: undefined,
      LANGUAGE: undefined,
    };
  }
}

/** A home with something in every category, a group of three duplicates and four large files. */
export function furnishedHome(test, options) {
  const home = new Home(test, options);
  home
    .allocated('Pictures/2019/holiday.mov', 450 * MB)
    .alike(['Pictures/2019/beach.raw', 'Pictures/beach copy.raw', 'beach again.raw'], (path) =>
      home.content(path, 'beach', 2.5 * MB))
    .content('Pictures/2019/other.raw', 'other', 2.5 * MB)
    .allocated('Music/concert.wav', 350 * MB)
    .allocated('Library/Caches/com.example.app/blob', 320 * MB)
    .text('Library/Logs/system.log', 'a line\n')
    .allocated('Desktop/archive.zip', 600 * MB)
    .text('Documents/letter.txt', 'Dear reader\n')
    .text('Downloads/notes.pdf', 'not really a pdf\n')
    .text('song.mp3', 'la la la\n')
    .text('.hidden/secret.mp4', 'never counted\n');
  return home;
}
