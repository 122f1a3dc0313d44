// Made applications: bundles with property lists in both forms and real icon files, programs that
// really run from inside them, and programs of a Linux home with their desktop entries.
import { chmodSync, copyFileSync, mkdirSync } from 'node:fs';
import { basename, dirname } from 'node:path';
import { startChild } from '../../../tools/desktop/children.mjs';
import { atEnd } from './home.mjs';
import { colours, pngOf } from './pictures.mjs';

const escaped = (text) => text.replaceAll('&', '&amp;').replaceAll('<', '&lt;');

/** A dictionary of texts as an XML property list. */
export function xmlPropertyList(texts) {
  const entries = Object.entries(texts).map(
    ([key, value]) => `\t<key>${escaped(key)}</key>\n\t<string>${escaped(value)}</string>\n`,
  );
  return `<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
${entries.join('')}</dict>
</plist>
`;
}

/** The same in binary form: at most 14 texts, each of ASCII characters. */
export function binaryPropertyList(texts) {
  const entries = Object.entries(texts);
  const string = (text) => {
    const short = text.length < 15;
    const head = short ? [0x50 | text.length] : [0x5f, 0x10, text.length];
    return Buffer.concat([Buffer.from(head), Buffer.from(text, 'latin1')]);
  };
  const keys = entries.map((_, index) => 1 + index);
  const values = entries.map((_, index) => 1 + entries.length + index);
  const objects = [
    Buffer.from([0xd0 | entries.length, ...keys, ...values]),
    ...entries.map(([key]) => string(key)),
    ...entries.map(([, value]) => string(value)),
  ];
  const start = Buffer.from('bplist00', 'latin1');
  const offsets = [];
  let at = start.length;
  for (const object of objects) {
    offsets.push(at >> 8, at & 0xff);
    at += object.length;
  }
  const trailer = Buffer.alloc(32);
  trailer[6] = 2; // bytes of an offset
  trailer[7] = 1; // bytes of a reference
  trailer.writeBigUInt64BE(BigInt(objects.length), 8);
  trailer.writeBigUInt64BE(BigInt(at), 24);
  return Buffer.concat([start, ...objects, Buffer.from(offsets), trailer]);
}

/** A PNG file: a rounded square that shades from one colour to another ([red, green, blue]). */
export function png(pixels, from, to) {
  const corner = pixels * 0.22;
  const edge = pixels * 0.08;
  const row = 1 + pixels * 4;
  const bytes = Buffer.alloc(row * pixels);
  for (let y = 0; y < pixels; ++y) {
    for (let x = 0; x < pixels; ++x) {
      const beyond = (at) =>
        Math.max(edge + corner - at - 0.5, at + 0.5 - (pixels - edge - corner), 0);
      const distance = Math.hypot(beyond(x), beyond(y));
      const alpha = Math.min(1, Math.max(0, corner - distance + 0.5));
      const share = (x + y) / (2 * pixels);
      const at = row * y + 1 + 4 * x;
      for (const sample of [0, 1, 2]) {
        bytes[at + sample] = Math.round(from[sample] * (1 - share) + to[sample] * share);
      }
      bytes[at + 3] = Math.round(255 * alpha);
    }
  }
  return pngOf(pixels, pixels, colours.withAlpha, bytes);
}

/** An Apple icon file that holds one picture of 128 pixels. */
export function icns(from, to) {
  const picture = png(128, from, to);
  const file = Buffer.alloc(16);
  file.write('icns', 0, 'latin1');
  file.writeUInt32BE(picture.length + 16, 4);
  file.write('ic07', 8, 'latin1');
  file.writeUInt32BE(picture.length + 8, 12);
  return Buffer.concat([file, picture]);
}

/**
 * A bundle in `home` at `path` ("Applications/Name.app"). Its information is XML unless `binary`;
 * `icon` is a pair of colours, `bytes` what it takes up besides.
 */
export function bundle(home, path, { id, version, name, binary = false, icon, bytes = 0, store = false } = {}) {
  const own = basename(path, '.app');
  const texts = { CFBundleIdentifier: id, CFBundleName: name ?? own, CFBundleExecutable: own };
  if (version) texts.CFBundleShortVersionString = version;
  if (icon) {
    texts.CFBundleIconFile = 'Icon';
    home.text(`${path}/Contents/Resources/Icon.icns`, icns(...icon));
  }
  home.text(`${path}/Contents/Info.plist`, (binary ? binaryPropertyList : xmlPropertyList)(texts));
  if (bytes) home.allocated(`${path}/Contents/Resources/data`, bytes);
  if (store) home.text(`${path}/Contents/_MASReceipt/receipt`, 'a receipt');
  return home;
}

/**
 * A program that runs from `path` of the home until it is ended: a copy of the shell that waits for
 * a line; a `stubborn` one ignores the request to end. Resolves, once it runs, to its child process.
 */
export async function runFrom(test, home, path, { stubborn = false } = {}) {
  const file = home.at(path);
  mkdirSync(dirname(file), { recursive: true });
  copyFileSync('/bin/sh', file);
  chmodSync(file, 0o755);
  const command = `${stubborn ? "trap '' TERM; " : ''}echo ready; read -r line`;
  const child = startChild(file, ['-c', command], { stdio: ['pipe', 'pipe', 'ignore'] });
  atEnd(test, () => child.kill('SIGKILL'));
  await new Promise((resolve, reject) => {
    child.stdout.once('data', resolve);
    child.ended.then(() => reject(new Error(`${file} did not run`)));
  });
  return child;
}

/** The desktop entry `id` of the home, which starts the file `path` of the home. */
export function desktopEntry(home, id, path, { name, icon, more = '' }) {
  const lines = ['[Desktop Entry]', 'Type=Application', `Name=${name}`, `Exec="${home.at(path)}" %U`];
  if (icon) lines.push(`Icon=${id}`);
  home.text(`.local/share/applications/${id}.desktop`, `${lines.join('\n')}\n${more}`);
  if (icon) home.text(`.local/share/icons/hicolor/128x128/apps/${id}.png`, png(128, ...icon));
  return home;
}
