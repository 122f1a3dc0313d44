// Nothing takes the page's place, speaks in its name or reads its files: real drops, and everything
// that a script inside the page could try, in the real program.
import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { join } from 'node:path';
import { test } from 'node:test';
import { setTimeout as pause } from 'node:timers/promises';
import { run } from '../../tools/desktop/children.mjs';
import { drag } from './support/drag.mjs';
import { Home, temporaryFolder } from './support/home.mjs';
import { attacked, heard, hostileFile, waitingServer } from './support/hostile.mjs';
import { desktopFor, line, programWith, start } from './support/velto.mjs';

const home = (t) => new Home(t, { layout: 'freedesktop' });
const refusal = 'Velto ▶ navegación rechazada: ';

const watch = (what) => `Velto ▶ intención: watch payload: "${what}"`;

/** Waits until the program has said that each of these was refused. */
async function saidOf(velto, addresses) {
  for (const address of addresses) await velto.waitFor(refusal + address, { limit: 10_000 });
}

test('no script leads the window to another document, and the page can be loaded anew', async (t) => {
  const { velto, found, server } = await attacked(t, home(t), {
    location: `() => { location = server + '/location'; }`,
    'location of a file': `() => { location.href = file; }`,
    replace: `() => { location.replace('data:text/html,<script>' + script + '</script>'); }`,
    blob: `() => {
      location = URL.createObjectURL(new Blob(['<script>' + script + '</script>'], { type: 'text/html' }));
    }`,
    javascript: `() => { location = 'javascript:' + script; }`,
    blank: `() => { location = 'about:blank'; }`,
    refresh: `() => {
      add('meta', { httpEquiv: 'refresh', content: '0; url=' + server + '/refresh' }, document.head);
    }`,
    'form get': `() => add('form', { action: server + '/get' }).submit()`,
    'form post': `() => add('form', { action: server + '/post', method: 'post' }).submit()`,
    'form to itself': `() => add('form', { method: 'post' }).submit()`,
    'form in a window': `() => add('form', { action: server + '/window', target: '_blank' }).submit()`,
    base: `() => {
      add('base', { href: server + '/' }, document.head);
      location = 'base';
      return document.baseURI;
    }`,
    'the bundle': `() => { location = '/evil.html'; }`,
    query: `() => { location = '/index.html?evil'; }`,
    'a script as a document': `() => { location = '/evil.js'; }`,
    history: `async () => {
      history.pushState(null, '', '/evil.html');
      location.reload();
      await soon(200);
      history.back();
      await soon(200);
      history.forward();
    }`,
  });
  assert.equal(found.reloaded, 'linux', 'the page has its scripts again');
  assert.equal(found.base, 'velto://app/index.html');
  const { address } = server;
  await saidOf(velto, [
    `${address}/location`, 'blob:',
    `${address}/refresh`, 'velto://app/base', 'velto://app/evil.html', 'velto://app/index.html?evil',
    'velto://app/evil.js',
  ]);
  assert.equal(velto.count(line.booted), 2, 'loaded at the start and at its own wish');
});

test('no window, frame or object opens beside the page or inside it', async (t) => {
  const open = (target) => `() => {
    const opened = window.open(server + '/open', ${JSON.stringify(target)});
    return opened === null || opened === window ? 'none' : 'a window';
  }`;
  const frame = (property, value) => `() => {
    const frame = add('iframe', { ${property}: ${value} });
    return new Promise((resolve) => {
      frame.onload = () => {
        let inside = 'another origin';
        try {
          inside = frame.contentDocument?.title ?? 'another origin';
        } catch {}
        resolve(inside);
      };
      setTimeout(() => resolve('nothing'), 300);
    });
  }`;
  const { found } = await attacked(t, home(t), {
    blank: open('_blank'),
    self: open('_self'),
    top: open('_top'),
    parent: open('_parent'),
    named: open('other'),
    'the page in a window': `() => String(window.open('/index.html'))`,
    'frame of the network': frame('src', `server + '/frame'`),
    'frame of a file': frame('src', 'file'),
    'frame of data': frame('src', `'data:text/html,<script>' + script + '</script>'`),
    'frame with a source': frame('srcdoc', `'<title>in</title><script>parent.' + script + '</script>'`),
    'frame of the bundle': frame('src', `'/evil.html'`),
    'frame of the page': frame('src', `'/index.html'`),
    object: `() => { add('object', { data: server + '/object', type: 'text/html' }); }`,
    embed: `() => { add('embed', { src: server + '/embed', type: 'text/html' }); }`,
  });
  for (const name of ['blank', 'self', 'top', 'parent', 'named']) {
    assert.equal(found[name], 'none', name);
  }
  assert.equal(found['the page in a window'], 'null');
  for (const [name, title] of Object.entries(found)) {
    if (name.startsWith('frame')) assert.ok(!['attacks', 'hostile'].includes(title), `${name}: ${title}`);
  }
});

test('the addresses of the page lead to the files of its bundle and nowhere else', async (t) => {
  const script = (address) => `() => gets('script', { src: ${address} })`;
  const { found } = await attacked(t, home(t), {
    'a file of the bundle': script(`'/attacks.js'`),
    above: script(`'../secret.js'`),
    'above, escaped': script(`'%2e%2e/secret.js'`),
    'above, all escaped': script(`'..%2fsecret.js'`),
    'above, past a file': script(`'attacks.js/../../secret.js'`),
    'above, with backslashes': script(`'..\\\\secret.js'`),
    below: script(`'inside/secret.js'`),
    'below, escaped': script(`'inside%2fsecret.js'`),
    'a link': script(`'link.js'`),
    query: script(`'attacks.js?x'`),
    'another host': script(`'velto://other/attacks.js'`),
    'an absolute path': script(`'velto://app//etc/passwd'`),
    'the disk': script(`file.replace(/[^/]*$/, 'secret.js')`),
    fetch: `() => refused(fetch('../../../../etc/passwd').then((answer) => answer.text()))`,
    'fetch of the disk': `() => refused(fetch('file:///etc/passwd').then((answer) => answer.text()))`,
    'fetch of itself': `() => refused(fetch('/index.html').then((answer) => answer.text()))`,
    request: `() => refused(new Promise((resolve, reject) => {
      const request = new XMLHttpRequest();
      request.onload = () => resolve(request.responseText);
      request.onerror = reject;
      request.open('GET', 'file:///etc/passwd');
      request.send();
    }))`,
    picture: `() => gets('img', { src: 'file:///usr/share/pixmaps/debian-logo.png' })`,
    style: `() => gets('link', { rel: 'stylesheet', href: 'file:///usr/share/x.css' })`,
    'script in the page': `() => { add('script', { textContent: 'document.documentElement.dataset.secret = 1' }); }`,
    'script from text': `() => refused(Promise.resolve().then(() => new Function('return 1')()))`,
    secret: `() => document.documentElement.dataset.secret ?? 'unread'`,
    keeps: `() => { localStorage.setItem('kept', 'yes'); return localStorage.getItem('kept'); }`,
    secure: `() => [isSecureContext, origin]`,
  });
  const { reloaded, ...rest } = found;
  assert.equal(reloaded, 'linux');
  assert.equal(rest['a file of the bundle'], true);
  assert.equal(rest.secret, 'unread');
  assert.equal(rest.keeps, 'yes', 'the page keeps its choices');
  assert.deepEqual(rest.secure, [true, 'velto://app']);
  for (const [name, answer] of Object.entries(rest)) {
    if (['a file of the bundle', 'secret', 'keeps', 'secure', 'script in the page', 'begin'].includes(name)) continue;
    assert.ok(answer === false || answer === 'refused', `${name}: ${answer}`);
  }
});

test('what a page can ask of a browser is answered with no, and nothing waits for an answer', async (t) => {
  const { found } = await attacked(t, home(t), {
    dialogs: `() => {
      for (let count = 0; count < 50; count++) alert(count);
      return [confirm('sure?'), prompt('name?')];
    }`,
    leaving: `() => { addEventListener('beforeunload', (event) => event.preventDefault()); }`,
    notification: `() => 'Notification' in window && Notification.requestPermission()`,
    place: `() => 'geolocation' in navigator && refused(new Promise((resolve, reject) =>
      navigator.geolocation.getCurrentPosition(resolve, reject)))`,
    camera: `() => 'mediaDevices' in navigator && navigator.mediaDevices !== undefined &&
      refused(navigator.mediaDevices.getUserMedia({ video: true }))`,
    clipboard: `() => 'clipboard' in navigator && refused(navigator.clipboard.readText())`,
    print: `() => { print(); }`,
    'full screen': `() => 'requestFullscreen' in document.body && refused(document.body.requestFullscreen())`,
    workers: `() => 'serviceWorker' in navigator && navigator.serviceWorker !== undefined &&
      refused(navigator.serviceWorker.register('/evil.js'))`,
    storage: `() => typeof indexedDB !== 'undefined' && indexedDB !== null`,
    file: `() => { add('input', { type: 'file' }).click(); }`,
    download: `() => add('a', { href: URL.createObjectURL(new Blob(['x'])), download: 'x.bin' }).click()`,
    close: `() => { window.close(); }`,
  });
  assert.deepEqual(found.dialogs, [false, null]);
  for (const name of ['notification', 'place', 'camera', 'clipboard', 'full screen', 'workers', 'storage']) {
    assert.ok([false, 'refused', 'denied'].includes(found[name]), `${name}: ${found[name]}`);
  }
  assert.equal(found.reloaded, 'linux');
});

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
  const { found } = await attacked(t, home(t), reachingOut);
  for (const name of ['fetch', 'request', 'font', 'module']) assert.equal(found[name], 'refused', name);
  for (const name of ['beacon', 'picture', 'script', 'style']) assert.equal(found[name], false, name);
});

test('neither the program nor its engine opens a socket of the internet', async (t) => {
  const trace = join(temporaryFolder(t), 'trace');
  // The program stays the child of the test, the tracer does not.
  const strace = ['strace', '-D', '-f', '-q', '-e', 'trace=socket,connect,sendto,sendmsg', '-o'];
  const trial = await run(strace[0], [...strace.slice(1), '/dev/null', 'true']).catch(() => ({}));
  if (trial.status !== 0) return t.skip('strace is missing or not permitted here');

  const { velto } = await attacked(t, home(t), reachingOut, { through: [...strace, trace], limit: 240_000 });
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
  const house = home(t);
  const opened = await browserIn(house);
  const { velto } = await attacked(t, house, {
    'link to a file': `() => add('a', { href: file }).click()`,
    'link to the page': `() => add('a', { href: '/index.html' }).click()`,
    'link with a script': `() => add('a', { href: 'javascript:' + script }).click()`,
    link: `() => add('a', { href: 'http://velto.invalid/link' }).click()`,
  }, { variables: userEnvironment });
  assert.deepEqual(await opened(), ['http://velto.invalid/link unset unset by the user']);
  await saidOf(velto, ['velto://app/index.html']);
});

test('a link that asks for a window of its own is the browser\'s too', async (t) => {
  const house = home(t);
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

// Tells what it sees of a drag, and that it is still there.
const watchingPage = {
  'index.html': `<!doctype html><html><head><meta charset="utf-8"><script src="watch.js"></script>
<link rel="stylesheet" href="style.css"></head><body><textarea></textarea></body></html>`,
  'style.css': 'body { margin: 0 } textarea { display: block; width: 100%; height: 100vh }',
  'watch.js': `
    const tell = (what) => window.webkit.messageHandlers.velto.postMessage({ type: 'watch', payload: what });
    for (const name of ['dragenter', 'dragover', 'drop', 'paste', 'input']) addEventListener(name, () => tell(name), true);
    addEventListener('mousedown', () => tell('still here'), true);
    addEventListener('load', () => tell('ready'));
  `,
};
for (const kind of ['file', 'link', 'text']) {
  test(`a ${kind} dropped on the window changes nothing and is shown to no script`, async (t) => {
    const server = await waitingServer(t);
    const what = { file: () => hostileFile(t), link: () => `${server.address}/dropped`, text: () => 'words' };
    const desktop = await desktopFor(t, { width: 1320, height: 760 });
    const velto = start(t, home(t), desktop, { file: programWith(temporaryFolder(t), watchingPage) });
    await velto.waitFor(watch('ready'));
    assert.equal(await drag(t, desktop, kind, what[kind](), 500, 400), 'refused');
    await desktop.click(500, 400);
    await velto.waitFor(watch('still here'));
    assert.equal(heard(velto), 0);
    assert.deepEqual(server.visits, []);
    for (const name of ['dragenter', 'dragover', 'drop', 'paste', 'input']) assert.equal(velto.count(watch(name)), 0, name);
  });
}
