// The real page, and beside it a script that only looks: it tells through the program's log where
// on the window each control is and which words can be read. Clicks are made with the pointer.
import { readdirSync, readFileSync } from 'node:fs';
import { dirname, join } from 'node:path';
import { bundleName, desktopFor, line, program, programWith, start } from './velto.mjs';
import { atEnd, temporaryFolder } from './home.mjs';

// Runs in the web view. Reports when two looks in a row see the same, and it is something new.
const guide = `
'use strict';
let seen = '';
let told = '';
let moves = 0;
for (const event of ['focusin', 'focusout']) document.addEventListener(event, () => { moves += 1; });
const clean = (text) => text.replace(/\\s+/g, ' ').trim();
function look() {
  const controls = [];
  for (const element of document.querySelectorAll('button, select, [data-search], [role="row"][data-key] > .tick')) {
    const { left, top, width, height } = element.getBoundingClientRect();
    const [x, y] = [left + width / 2, top + height / 2];
    const hit = document.elementFromPoint(x, y);
    if (!hit || !(element.contains(hit) || hit.contains(element))) continue;
    const row = element.closest('[role="row"]');
    const label = document.getElementById(element.getAttribute('aria-labelledby'));
    const name = element.matches('button, select, [data-search]')
      ? clean(element.getAttribute('aria-label') ?? (label ?? element).textContent)
      : 'tick ' + row.dataset.key;
    controls.push({ name, x, y, value: element.selectedOptions?.[0].text ?? element.value, off: element.ariaDisabled === 'true' || element.disabled === true,
      on: row?.ariaSelected === 'true' || element.ariaChecked === 'true' });
  }
  const rows = [...document.querySelectorAll('[role="row"][data-key]')].map((row) => ({
    cells: [...row.querySelectorAll('[role="gridcell"]')].map((cell) => clean(cell.innerText)),
    hasPicture: row.querySelector('img')?.naturalWidth > 0,
  }));
  const at = document.activeElement;
  const label = document.getElementById(at.getAttribute('aria-labelledby'));
  const focus = at === document.body ? '' : at.dataset.key ?? clean(at.getAttribute('aria-label') ?? (label ?? at.labels?.[0] ?? at).textContent);
  const page = JSON.stringify({ controls, rows, focus, moves, text: clean(document.body.innerText) });
  if (page === seen && page !== told) {
    told = page;
    window.webkit.messageHandlers.velto.postMessage({ type: 'guide', payload: page });
  }
  seen = page;
  setTimeout(look, 60);
}
setTimeout(look, 60);
`;

const prefix = 'Velto ▶ intención: guide payload: ';

/** The bundle's own files with the guide among them. */
function guidedBundle() {
  const folder = join(dirname(program), bundleName);
  const files = Object.fromEntries(
    readdirSync(folder).map((name) => [name, readFileSync(join(folder, name), 'utf8')]),
  );
  const script = '<script defer src="guide.js"></script></head>';
  return { ...files, 'index.html': files['index.html'].replace('</head>', script), 'guide.js': guide };
}

/**
 * Starts the program in `home` with the page open on a finished analysis. `through` is a command
 * that runs the program as the rest of its arguments.
 */
export async function openGuided(
  t, home, { size = { width: 1180, height: 760 }, desktop, variables, through = [] } = {},
) {
  desktop ??= await desktopFor(t, size);
  const copy = programWith(temporaryFolder(t), guidedBundle());
  const [file, ...args] = [...through, copy];
  const velto = start(t, home, desktop, { file, args, variables });
  await velto.waitFor(line.intent('webReady'));
  if (velto.count(line.noSaved) > 0) await velto.waitFor(line.finished);

  const latest = () => {
    const told = velto.lines.findLast((one) => one.includes(prefix));
    return told ? JSON.parse(JSON.parse(told.slice(told.indexOf(prefix) + prefix.length))) : null;
  };

  /** Waits until what the page shows satisfies `good`; resolves to what `good` answers. */
  async function shows(what, good, limit = 30_000) {
    const end = Date.now() + limit;
    for (;;) {
      const now = latest();
      const answer = now && good(now);
      if (answer) return answer;
      if (Date.now() > end) {
        const names = now?.controls.map(({ name, off }) => (off ? `(${name})` : name)).join(' | ');
        const log = velto.lines.filter((one) => !one.includes(prefix)).slice(-15).join('\n');
        throw new Error(
          `the page never came to show ${what}\ncontrols: ${names}\ntext: ${now?.text}\nlog:\n${log}`,
        );
      }
      await velto.waitFor(prefix, { from: velto.lines.length, limit: 500 }).catch(() => {});
    }
  }

  const matches = (text, wanted) => (wanted instanceof RegExp ? wanted.test(text) : text === wanted);
  const reads = (text, wanted) => (wanted instanceof RegExp ? wanted.test(text) : text.includes(wanted));

  const page = {
    velto,
    desktop,
    intents: (name) => velto.count(line.intent(name)),
    sees: (words) => shows(`"${words}"`, ({ text }) => reads(text, words)),
    seesNot: (words) => shows(`the end of "${words}"`, ({ text }) => !reads(text, words)),
    /** Waits until the rows of the lists that are shown satisfy `good`: {cells, hasPicture} each. */
    lists: (what, good) => shows(what, ({ rows }) => good(rows)),
    text: () => latest().text,
    /** Clicks the control of this name once it is there and can be used. */
    async click(name) {
      const control = await shows(`the control "${name}"`, ({ controls }) =>
        controls.find((one) => matches(one.name, name) && !one.off));
      // The page fills the window, and the window stands in the display's corner.
      await desktop.click(Math.round(control.x), Math.round(control.y));
    },
    /** Opens the menu of the row of a path with the pointer's other button. */
    async openMenu(path) {
      const { x, y } = await shows(`the row of ${path}`, ({ controls }) =>
        controls.find(({ name }) => name === `tick ${path}`));
      await desktop.input('mousemove', Math.round(x), Math.round(y), 'click', 3);
    },
    /** Waits until the list of choices or the field of this name stands at `value`. */
    holds: (name, value) =>
      shows(`"${name}" at "${value}"`, ({ controls }) =>
        controls.some((one) => matches(one.name, name) && matches(one.value, value))),
    /** Types a key until the focus is at a control of this name, or at the row of this path. */
    async keyTo(key, name, most = 40) {
      for (let count = 0; count < most; count++) {
        const before = latest()?.moves;
        await desktop.input('key', key);
        // Typed again only where the key was lost: while the page is slow to tell, a second one would go past the control.
        await shows('another focus', ({ moves }) => moves !== before, 10_000).catch(() => {});
        if (matches(latest()?.focus ?? '', name)) return;
      }
      throw new Error(`${key} never came to "${name}"; the focus is at "${latest().focus}"`);
    },
    /** Waits until the focus is at the control of this name, or at the row of this path. */
    focuses: (name) => shows(`the focus at "${name}"`, ({ focus }) => matches(focus, name)),
    /** Selects the row of a path, and waits until it is. */
    async tick(path) {
      await page.click(`tick ${path}`);
      await shows(`${path} selected`, ({ controls }) =>
        controls.some(({ name, on }) => on && name === `tick ${path}`));
    },
    /** Waits until the switch of this name stands like that. */
    switched: (name, on) =>
      shows(`"${name}" ${on ? 'on' : 'off'}`, ({ controls }) =>
        controls.some((one) => matches(one.name, name) && one.on === on)),
    has: (name) => latest().controls.some((one) => matches(one.name, name)),
    stop: () => velto.stop(),
  };
  atEnd(t, () => velto.stop());
  return page;
}
