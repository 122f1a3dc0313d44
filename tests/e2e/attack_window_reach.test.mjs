// What leaves the window: nothing over the network, and followed links to the browser alone.
import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { join } from 'node:path';
import { test } from 'node:test';
import { setTimeout as pause } from 'node:timers/promises';
import { run } from '../../tools/desktop/children.mjs';
import { temporaryFolder } from './support/home.mjs';
import { attacked, bareHome, saysRefused, watch } from './support/hostile.mjs';
import { desktopFor, programWith, start } from './support/velto.mjs';

// Everything by which a script reaches out; the policy of the page refuses most, the engine the rest.
const reachingOut = {
  fetch: `() => refused(fetch(server + '/fetch', { mode: 'no-cors' }))`,
  request: `() => refused(new Promise((resolve, reject) => {
    const request = new XMLHttpRequest();
    request.onload = resolve;
    request.onerror = reject;
    request.open('POST', server + '/request');
    request.send('list');
  }))`,
  beacon: `() => navigator.sendBeacon?.(server + '/beacon', 'list') ?? false`,
  socket: `() => { new WebSocket(server.replace('http', 'ws')); }`,
  events: `() => { new EventSource(server + '/events'); }`,
  picture: `() => gets('img', { src: server + '/picture.png' })`,
  background: `() => { document.body.style.backgroundImage = 'url(' + server + '/background.png)'; }`,
  film: `() => { add('video', { src: server + '/film.mp4', autoplay: true }); }`,
  script: `() => gets('script', { src: server + '/script.js' })`,
  style: `() => gets('link', { rel: 'stylesheet', href: server + '/style.css' })`,
  font: `() => refused(new FontFace('x', 'url(' + server + '/font.woff2)').load())`,
  module: `() => refused(import(server + '/module.js'))`,
  worker: `() => { new Worker(URL.createObjectURL(new Blob(['fetch("' + server + '/worker")']))); }`,
  links: `() => {
    for (const rel of ['preconnect', 'dns-prefetch', 'prefetch', 'preload', 'modulepreload', 'prerender', 'icon',
      'manifest']) {
      add('link', { rel, href: server + '/' + rel, as: 'script' }, document.head);
      add('link', { rel, href: 'http://velto.invalid/' + rel }, document.head);
    }
  }`,
  ping: `() => { add('a', { href: '#here', ping: server + '/ping' }).click(); }`,
  calls: `async () => {
    if (typeof RTCPeerConnection === 'undefined') return;
    const caller = new RTCPeerConnection({ iceServers: [{ urls: server.replace('http://', 'stun:') }] });
    caller.createDataChannel('x');
    await caller.setLocalDescription(await caller.createOffer());
    await soon(500);
  }`,
  report: `() => { add('img', { src: 'http://velto.invalid/x.png' }); }`,
};

test('no script of the page reaches anybody over the network', async (t) => {
  const { found } = await attacked(t, bareHome(t), reachingOut);
  for (const name of ['fetch', 'request', 'font', 'module']) assert.equal(found[name], 'refused', name);
  for (const name of ['beacon', 'picture', 'script', 'style']) assert.equal(found[name], false, name);
});

test('neither the program nor its engine opens a socket of the internet', async (t) => {
  const trace = join(temporaryFolder(t), 'trace');
  // The program stays the child of the test, the tracer does not.
  const strace = ['strace', '-D', '-f', '-q', '-e', 'trace=socket,connect,sendto,sendmsg', '-o'];
  const trial = await run(strace[0], [...strace.slice(1), '/dev/null', 'true']).catch(() => ({}));
  if (trial.status !== 0) return t.skip('strace is missing or not permitted here');

  const { velto } = await attacked(t, bareHome(t), reachingOut, { through: [...strace, trace], limit: 240_000 });
  await velto.stop();
  const read = () => readFileSync(trace, 'utf8').split('\n').filter((one) => one !== '');
  const pids = (lines) => new Set(lines.map((one) => one.split(' ')[0])).size;
  const ends = (lines) => lines.filter((one) => /\+\+\+ (exited|killed)/.test(one)).length;
  let lines = read();
  for (let turn = 0; turn < 200 && ends(lines) < pids(lines); turn++) {
    await pause(50);
    lines = read();
  }
  assert.ok(lines.some((one) => one.includes('AF_UNIX')), 'the trace holds what it should');
  assert.deepEqual(lines.filter((one) => /AF_INET/.test(one)), []);
});

/** A browser for the home's user that notes what it is given; answers how to wait for its notes. */
async function browserIn(house) {
  const browser = house.at('browser');
  house.text('browser', '#!/bin/sh\necho "$1 ${WEBKIT_DISABLE_SANDBOX_THIS_IS_DANGEROUS-unset}' +
    ' ${WEBKIT_DISABLE_DMABUF_RENDERER-unset} ${CHOSEN-unset}" >>' + house.at('opened') + '\n');
  await run('chmod', ['755', browser]);
  const types = ['x-scheme-handler/http', 'x-scheme-handler/file', 'text/html'];
  house.text('.local/share/applications/browser.desktop',
    `[Desktop Entry]\nType=Application\nName=Browser\nExec=${browser} %u\nMimeType=${types.join(';')};\n`);
  house.text('.config/mimeapps.list',
    `[Default Applications]\n${types.map((type) => `${type}=browser.desktop\n`).join('')}`);
  return async () => {
    for (let turn = 0; turn < 600 && !house.has('opened'); turn++) await pause(50);
    return house.read('opened').trim().split('\n');
  };
}

// What the program sets for its engine unless the user has.
const userEnvironment = {
  WEBKIT_DISABLE_SANDBOX_THIS_IS_DANGEROUS: undefined,
  WEBKIT_DISABLE_DMABUF_RENDERER: undefined,
  CHOSEN: 'by the user',
};

test('a followed link opens the browser with the environment of the user, and no other address', async (t) => {
  const house = bareHome(t);
  const opened = await browserIn(house);
  const { velto } = await attacked(t, house, {
    'link to a file': `() => add('a', { href: file }).click()`,
    'link to the page': `() => add('a', { href: '/index.html' }).click()`,
    'link with a script': `() => add('a', { href: 'javascript:' + script }).click()`,
    link: `() => add('a', { href: 'http://velto.invalid/link' }).click()`,
  }, { variables: userEnvironment });
  assert.deepEqual(await opened(), ['http://velto.invalid/link unset unset by the user']);
  await saysRefused(velto, ['velto://app/index.html']);
});

test('a link that asks for a window of its own is the browser\'s too', async (t) => {
  const house = bareHome(t);
  const opened = await browserIn(house);
  const desktop = await desktopFor(t);
  const file = programWith(temporaryFolder(t), {
    'index.html': `<!doctype html><html><head><meta charset="utf-8"><script src="ready.js"></script>
<link rel="stylesheet" href="style.css"></head>
<body><a href="http://velto.invalid/window" target="_blank">link</a></body></html>`,
    'style.css': 'body { margin: 0 } a { display: block; height: 100vh; font-size: 200px }',
    'ready.js': `addEventListener('load', () =>
      window.webkit.messageHandlers.velto.postMessage({ type: 'watch', payload: 'ready' }));`,
  });
  const velto = start(t, house, desktop, { file, variables: userEnvironment });
  await velto.waitFor(watch('ready'));
  await desktop.steady();
  await desktop.click(400, 300);
  assert.deepEqual(await opened(), ['http://velto.invalid/window unset unset by the user']);
});
