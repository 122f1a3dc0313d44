// A page for the program's bundle that plays a script of intents and reports, as intents named
// "probe" that the program writes to its log, whatever it sees: events, calls of go(), the console.

const html = `<!doctype html>
<html><head><meta charset="utf-8"><title>probe</title>
<script src="steps.js"></script><script src="probe.js"></script></head>
<body>probe</body></html>
`;

// Runs in the web view. Each step is {send} (a message as it is), then, if given, {until}: the
// name of what must be seen before the next step. {quiet} lets that many milliseconds pass, for what
// must not be seen in them. {reload} loads the page anew, which goes on with the next step.
const script = `
'use strict';
const handler = window.webkit.messageHandlers.velto;
const tell = (what, args) => {
  handler.postMessage({ type: 'probe', payload: { what, args } });
  seen(what);
};

let next = Number(sessionStorage.getItem('next') ?? 0);
let awaited = null;
function seen(what) {
  if (awaited === what) {
    awaited = null;
    play();
  }
}
function play() {
  while (awaited === null && next < steps.length) {
    const step = steps[next++];
    awaited = step.until ?? null;
    if ('send' in step) handler.postMessage(step.send);
    if ('quiet' in step) {
      awaited = 'quiet is over';
      setTimeout(() => tell('quiet is over', []), step.quiet);
    }
    if (step.reload) {
      awaited = 'nothing more on this page';
      sessionStorage.setItem('next', next);
      location.reload();
    }
  }
  if (awaited === null && next === steps.length) {
    next++;
    tell('done', []);
  }
}

tell('atStart', [window.velto ? { state: window.velto._state, stamp: window.velto._stamp,
  setState: String(window.velto.setState) } : null]);

const velto = (window.velto = window.velto || {});
for (const name of ['onScanStarted', 'onScanProgress', 'onScanFinished', 'onScanFailed',
  'onPermissions', 'toast', 'onCleanableFacts', 'onCleanables', 'onTrashState', 'onTrashChanged', 'onCloudMove',
  'onApps', 'onAppSizes', 'onAppAnalysis', 'onUninstallProgress', 'onUninstallResult', 'onSystem',
  'onExclusions', 'onAbout', 'onAppUses', 'onQuitting', 'onFolder', 'onFolderSearch', 'setState']) {
  velto[name] = (...args) => tell(name, args);
}
window.go = (name) => tell('go', [name]);
const info = console.info;
console.info = (...args) => {
  info(...args);
  // A report of a report would never end.
  if (!String(args[0]).includes(' probe')) tell('console', args);
};
`;

/** The bundle's files for a page that plays `steps` when it is told the trash (the end of boot). */
export function probePage(steps) {
  return {
    'index.html': html,
    'steps.js': `const steps = ${JSON.stringify([{ until: 'onTrashState' }, ...steps])};\n`,
    'probe.js': `${script}play();\n`,
  };
}

const prefix = 'Velto ▶ intención: probe payload: ';

/** What the page has reported so far: a list of {what, args}. */
export function reports(velto) {
  return velto.lines
    .filter((one) => one.includes(prefix))
    .map((one) => JSON.parse(one.slice(one.indexOf(prefix) + prefix.length)));
}

/** Waits until the page has played all its steps; resolves to its reports. */
export async function played(velto, limit) {
  await velto.waitFor(/intención: probe payload: .*"what":"done"/, { limit });
  return reports(velto);
}
