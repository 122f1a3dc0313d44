// What an attacker would put before the window: a document that sends intents, a server that waits
// for visitors, and a page in the bundle that tries to get there.
import { mkdirSync, symlinkSync, writeFileSync } from 'node:fs';
import { createServer } from 'node:http';
import { once } from 'node:events';
import { join } from 'node:path';
import { Home, atEnd, temporaryFolder } from './home.mjs';
import { bundleName, desktopFor, programWith, start } from './velto.mjs';

/** Sent by every hostile document, and by nobody else. */
const mark = 'sent by a hostile document';

const script = `
try {
  const velto = window.webkit.messageHandlers.velto;
  velto.postMessage({ type: 'purgeTrash', payload: '${mark}' });
  velto.postMessage({ type: 'uninstall', payload: { path: '/', paths: [], mark: '${mark}' } });
} catch {}
`;

const document = `<!doctype html><meta charset=utf-8><title>hostile</title><script>${script}</script>hostile`;

/** A server on this machine; `visits` counts the connections, whatever they ask for. */
export async function waitingServer(t) {
  const visits = [];
  const server = createServer((request, response) => {
    visits.push(request.url);
    response.writeHead(200, { 'content-type': 'text/html', 'access-control-allow-origin': '*' });
    response.end(document);
  });
  server.on('connection', () => visits.push('a connection'));
  server.listen(0, '127.0.0.1');
  await once(server, 'listening');
  atEnd(t, () => {
    server.closeAllConnections();
    server.close();
  });
  return { visits, address: `http://127.0.0.1:${server.address().port}` };
}

/** The hostile document as a file, in a folder of its own. */
export function hostileFile(t) {
  const file = join(temporaryFolder(t, 'velto-hostile-'), 'holiday photos.html');
  writeFileSync(file, document);
  return file;
}

// Runs in the web view, after the attacks. Each one gets a moment for what it starts, then the page
// tells what it has found. An attack that replaces the page takes the rest with it.
const runner = `
'use strict';
const report = (what, found) =>
  window.webkit.messageHandlers.velto.postMessage({ type: 'attack', payload: { what, found } });
const soon = (time) => new Promise((resolve) => setTimeout(resolve, time));
const add = (name, properties, parent = document.body) => {
  const element = Object.assign(document.createElement(name), properties);
  parent.append(element);
  return element;
};
/** Whether an element that loads something gets it. */
const gets = (name, properties) => new Promise((resolve) => {
  add(name, { onload: () => resolve(true), onerror: () => resolve(false), ...properties },
    document.head);
});
const refused = (promise) => promise.then(() => 'allowed', () => 'refused');
addEventListener('load', async () => {
  const own = location.href;
  if (sessionStorage.getItem('reloaded')) return report('reloaded', document.documentElement.dataset.platform);
  for (const [name, attack] of Object.entries(attacks)) {
    report('begin', name);
    let found;
    try {
      found = await attack();
    } catch (error) {
      found = 'threw ' + error.name;
    }
    await soon(100);
    report(name, found ?? null);
  }
  history.replaceState(null, '', own);
  sessionStorage.setItem('reloaded', 'yes');
  location.reload();
});
`;

const page = `<!doctype html><html><head><meta charset="utf-8"><title>attacks</title>
<script src="attacks.js"></script><script src="runner.js"></script></head><body>attacks</body></html>`;

const prefix = 'Velto ▶ intención: attack payload: ';

/**
 * Starts the program with a page that makes `attacks` (name to source of a function without
 * arguments, which finds `server` and `file`), one after the other, and then loads itself anew.
 * Resolves, when it has, to what each one found. Fails when the page goes, when anybody visits the
 * server, and when a hostile document was heard. `through` is a command that runs the program as the
 * rest of its arguments.
 */
export async function attacked(t, home, attacks, { variables, through = [], limit = 120_000 } = {}) {
  const server = await waitingServer(t);
  const file = hostileFile(t);
  const values = { server: server.address, file: `file://${encodeURI(file)}`, script };
  const constants = Object.entries(values).map(([name, value]) =>
    `const ${name} = ${JSON.stringify(value)};`);
  const functions = Object.entries(attacks).map(([name, source]) =>
    `${JSON.stringify(name)}: ${source},`);
  const folder = temporaryFolder(t);
  const copy = programWith(folder, {
    'index.html': page,
    'attacks.js': `${constants.join('\n')}\nconst attacks = {\n${functions.join('\n')}\n};\n`,
    'runner.js': runner,
    'evil.html': document.replace(`<script>${script}`, '<script src="evil.js">'),
    'evil.js': script,
  });
  // What no address of the page may reach.
  const secret = "document.documentElement.dataset.secret = 'read';";
  writeFileSync(join(folder, 'secret.js'), secret);
  mkdirSync(join(folder, bundleName, 'inside'));
  writeFileSync(join(folder, bundleName, 'inside', 'secret.js'), secret);
  symlinkSync('../secret.js', join(folder, bundleName, 'link.js'));

  const [program, ...args] = [...through, copy];
  const velto = start(t, home, await desktopFor(t), { file: program, args, variables });
  const reports = () => velto.lines.filter((one) => one.includes(prefix))
    .map((one) => JSON.parse(one.slice(one.indexOf(prefix) + prefix.length)));
  await velto.waitFor(/attack payload: .*"what":"reloaded"/, { limit }).catch((error) => {
    const last = reports().findLast(({ what }) => what === 'begin');
    throw new Error(`the page did not stand "${last?.found}"; heard: ${heard(velto)}; ` +
      `visits: ${server.visits}; ${error.message}`);
  });
  if (heard(velto) > 0) throw new Error(`a hostile document was heard:\n${velto.lines.join('\n')}`);
  if (server.visits.length > 0) throw new Error(`the server was visited: ${server.visits.join(', ')}`);
  const found = Object.fromEntries(reports().map((one) => [one.what, one.found]));
  return { velto, found, server, file };
}

/** How many intents of hostile documents the program has heard. */
export const heard = (velto) => velto.lines
  .filter((one) => one.includes('Velto ▶ intención: ') && one.includes(mark)).length;

/** A home with nothing in it. */
export const bareHome = (t) => new Home(t, { layout: 'freedesktop' });

/** The program's line for what a page tells as an intent named "watch". */
export const watch = (what) => `Velto ▶ intención: watch payload: "${what}"`;

/** Waits until the program has said that it has refused to go to each of these addresses. */
export async function saysRefused(velto, addresses) {
  for (const address of addresses) {
    await velto.waitFor(`Velto ▶ navegación rechazada: ${address}`, { limit: 10_000 });
  }
}
