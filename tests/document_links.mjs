// Every relative link in the project's documents leads to a file, and every anchor to a heading of it.
//   node tests/document_links.mjs [FOLDER]     (the folder is for the test of this script alone)
import { execFileSync } from 'node:child_process';
import { existsSync, readFileSync } from 'node:fs';
import { dirname, join, relative, resolve } from 'node:path';

const root = resolve(process.argv[2] ?? join(import.meta.dirname, '..'));

/** As the usual viewers make an anchor of a heading; repeated ones get a number. */
function anchorsOf(text) {
  const anchors = new Set();
  for (const [, heading] of withoutCode(text).matchAll(/^#{1,6} +(.+?) *#*$/gm)) {
    const words = heading
      .replace(/\[([^\]]*)\]\([^)]*\)/g, '$1')
      .toLowerCase()
      .replace(/[^\p{L}\p{N} _-]/gu, '')
      .replaceAll(' ', '-');
    let anchor = words;
    for (let again = 1; anchors.has(anchor); again += 1) anchor = `${words}-${again}`;
    anchors.add(anchor);
  }
  for (const [, name] of text.matchAll(/<a (?:id|name)="([^"]+)"/g)) anchors.add(name);
  return anchors;
}

function withoutCode(text) {
  return text.replace(/^( *)(```|~~~)[^]*?^\1\2.*$/gm, '');
}

function* linksOf(text) {
  const prose = withoutCode(text).replace(/`[^`\n]*`/g, '');
  for (const [, target] of prose.matchAll(/\]\(<?([^)\s>]+)>?(?: "[^"]*")?\)/g)) yield target;
  for (const [, target] of prose.matchAll(/^\[[^\]]+\]: +(\S+)/gm)) yield target;
  for (const [, target] of prose.matchAll(/<(?:a href|img src)="([^"]+)"/g)) yield target;
}

const documents = execFileSync(
  'find',
  [root, '(', '-name', 'node_modules', '-o', '-name', 'build', '-o', '-name', 'dist', '-o', '-name', '.git', ')', '-prune', '-o', '-name', '*.md', '-print'],
  { encoding: 'utf8' },
)
  .split('\n')
  .filter(Boolean);

let links = 0;
let broken = 0;
for (const document of documents) {
  const text = readFileSync(document, 'utf8');
  for (const link of linksOf(text)) {
    if (/^[a-z][a-z0-9+.-]*:/i.test(link)) continue;
    links += 1;
    const [path, anchor] = link.split('#');
    const target = path === '' ? document : resolve(dirname(document), decodeURIComponent(path));
    let fault = '';
    if (!existsSync(target)) fault = 'no such file';
    else if (anchor && target.endsWith('.md') && !anchorsOf(readFileSync(target, 'utf8')).has(decodeURIComponent(anchor)))
      fault = 'no such heading';
    if (!fault) continue;
    broken += 1;
    console.error(`${relative(root, document)}: ${link}: ${fault}`);
  }
}
console.log(`${links} links in ${documents.length} documents`);
process.exit(broken > 0 || documents.length === 0 ? 1 : 0);
