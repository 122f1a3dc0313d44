// Nothing takes the page's place, opens beside it or reads its files: everything that a script inside
// the page could try, in the real program.
import assert from 'node:assert/strict';
import { test } from 'node:test';
import { attacked, bareHome, saysRefused } from './support/hostile.mjs';
import { line } from './support/velto.mjs';

test('no script leads the window to another document, and the page can be loaded anew', async (t) => {
  const { velto, found, server } = await attacked(t, bareHome(t), {
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
  await saysRefused(velto, [
    `${address}/location`, 'blob:',
    `${address}/refresh`, 'velto://app/base', 'velto://app/evil.html', 'velto://app/index.html?evil',
    'velto://app/evil.js',
  ]);
  // Loaded at the start, and again at its own wish.
  const first = velto.lines.findIndex((one) => one.includes(line.booted));
  await velto.waitFor(line.booted, { from: first + 1 });
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
  const { found } = await attacked(t, bareHome(t), {
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
  const { found } = await attacked(t, bareHome(t), {
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
  const { found } = await attacked(t, bareHome(t), {
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
