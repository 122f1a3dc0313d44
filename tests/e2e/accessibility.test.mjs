// The page as a screen reader is told it, in the real window: every view, its lists and dialogs, and
// what is said without being asked for.
import assert from 'node:assert/strict';
import { test } from 'node:test';
import { Home, MB } from './support/home.mjs';
import { install } from './support/load.mjs';
import { accessibleSession, every, screenReader } from './support/screen_reader.mjs';
import { desktopFor, line, start } from './support/velto.mjs';

const film = 'Lanzarote in the summer of 2019, uncut.mkv'; // too long for one piece
const folder = 'Films-that-nobody-has-cut-to-length';

function believableHome(t) {
  const home = new Home(t, { layout: 'freedesktop' });
  home
    .allocated(`Videos/${folder}/${film}`, 420 * MB)
    .allocated('Downloads/debian-12.7.0-amd64-netinst.iso', 350 * MB)
    .alike(['Pictures/beach at sunset, second take.raw', 'beach at sunset, second take (copy).raw'], (path) =>
      home.content(path, 'beach', 2.5 * MB))
    .allocated('.cache/pip/http/wheel', 120 * MB)
    .text('Documents/letter.txt', 'Dear reader\n');
  install(home, 'easel', 'Easel and Paint', 'teal');
  return home;
}

const roleOfControls = ['button', 'toggle button', 'check box', 'radio button', 'combo box', 'entry', 'link', 'heading', 'table row'];
const words = (text) => (text ?? '').replaceAll('\ufffc', ' ').replace(/\s+/g, ' ').trim();
/** What is said of an object: its name, else what stands in it. */
const said = (object) => words(object.name) || words(object.text) || words(object.children.map(said).join(' '));
const short = (object) => `${object.role} "${said(object)}" (${object.attributes.tag})`;
const named = (tree, role, name) => every(tree).find((one) => one.role === role && (name instanceof RegExp ? name.test(one.name) : one.name === name));

/** What a screen reader user would miss. */
function faults(tree) {
  const found = [];
  for (const one of every(tree)) {
    const canBeFocused = one.states.includes('focusable') && !['document web', 'scroll pane', 'dialog'].includes(one.role);
    if (canBeFocused && !roleOfControls.includes(one.role)) found.push(`no role: ${short(one)}`);
    // A row is read by its cells.
    if (canBeFocused && !(one.role === 'table row' ? said(one) : one.name)) found.push(`no name: ${short(one)}`);
    if (one.role === 'combo box' && every(one).filter(({ role }) => role === 'menu item').length < 2) found.push(`no choices: ${short(one)}`);
    if (['ul', 'ol'].includes(one.attributes.tag) && one.role !== 'list') found.push(`no list: ${short(one)}`);
    if (one.role === 'image' && !one.name) found.push(`no words for a picture: ${short(one)}`);
    if (one.role === 'table') found.push(...faultsOfTable(one));
  }
  return found;
}

function faultsOfTable(table) {
  const found = [];
  const rows = every(table).filter(({ role }) => role === 'table row');
  const heads = every(table).filter(({ role }) => role === 'column header');
  if (!table.name) found.push(`no name: ${short(table)}`);
  if (table.nRows < 1 || table.nRows !== rows.length) found.push(`${table.nRows} rows told, ${rows.length} there: ${table.name}`);
  if (heads.length > 0 && heads.length !== table.nColumns) found.push(`${heads.length} heads of ${table.nColumns} columns: ${table.name}`);
  for (const head of heads) if (!said(head)) found.push(`no name: a column of ${table.name}`);
  return found;
}

const focused = (tree) => every(tree).findLast(({ states }) => states.includes('focused'));

test('a screen reader finds its way through every view, and is told what happens', async (t) => {
  const home = believableHome(t);
  const desktop = await desktopFor(t);
  const session = await accessibleSession(t, home);
  const reader = await screenReader(t, { ...home.variables, ...desktop.variables, ...session });
  if (reader.failed) return t.skip(`no accessibility bus can run here: ${reader.failed}`);
  const velto = start(t, home, desktop, { variables: session });
  await velto.waitFor(line.finished);
  await velto.waitFor(line.intent('webReady'));

  let tree;
  /** Reads the page again until `good` holds. */
  async function until(what, good, limit = 30_000) {
    for (const end = Date.now() + limit; ;) {
      tree = await reader.tree();
      const answer = tree && good(tree);
      if (answer) return answer;
      if (Date.now() > end) throw new Error(`never ${what}; the page says: ${tree && every(tree).map(short).join('\n')}`);
    }
  }
  const key = (name) => desktop.input('key', name);
  /** What is missing for longer than a moment: a page that changes while it is read is told in part before and in part after. */
  async function hasNoFaults(what) {
    const left = () => faults(tree);
    if (left().length > 0) await until(what, () => left().length === 0, 10_000).catch(() => {});
    assert.deepEqual(left(), [], what);
  }
  /** A view by its entry of the rail, once it is there with its heading and whatever else `good` wants. */
  async function opens(view, good = () => true) {
    await reader.press(named(tree, 'button', view));
    await until(`the view ${view}, its entry the current one`, (now) =>
      named(now, 'heading', view)?.attributes.level === '1' && named(now, 'button', view).states.includes('active') && good(now));
    await hasNoFaults(view);
  }
  const table = (name) => (now) => named(now, 'table', name)?.nRows > 1;

  /** A dialog over the page: its name, the focus in it, and of a question its words and the safe answer. */
  async function asks(title, safe) {
    const dialog = await until(`the focus in ${title}`, (now) => every(now).find((one) =>
      one.role === 'dialog' && title.test(one.name) && every(one).some(({ path }) => path === focused(now)?.path)));
    await hasNoFaults(dialog.name);
    assert.ok(dialog.states.includes('modal'), 'what lies behind it is out of reach');
    if (safe) {
      assert.equal(focused(tree).name, safe);
      assert.ok(dialog.description, 'its words are read with it');
    }
    await key('Escape');
    await until('its end', (now) => !every(now).some(({ role }) => role === 'dialog'));
  }

  await until('the overview', (now) => named(now, 'heading', 'Overview') && table('By category')(now));
  await hasNoFaults('Overview');

  await opens('Folders', table(/./));
  await opens('Duplicates', table('Groups of identical files'));
  await opens('Cleanup', (now) => every(now).some(({ role }) => role === 'table'));
  await opens('Applications', table(/./));
  assert.ok(every(tree).some((one) => said(one).includes('Easel and Paint')));
  await opens('System', table('Heaviest applications'));
  await opens('Large files', table('Large files'));
  const whole = `~/Videos/${folder}`;
  for (const text of [film, whole]) {
    assert.ok(every(tree).some((one) => one.role === 'table cell' && said(one) === text), `in one piece: ${text}`);
  }

  // The keyboard moves what is focused, and that is told.
  const quiet = reader.heard.length;
  await key('F6');
  await until('the focus in the list', (now) => focused(now)?.role === 'table row');
  assert.match(said(focused(tree)), new RegExp(film));
  await reader.hears('of the focus', ({ event, path, values }) =>
    event === 'StateChanged' && path === focused(tree).path && /'focused', 1/.test(values), { from: quiet });
  await key('p');
  await asks(new RegExp(film));
  await until('the focus back in the list', (now) => focused(now)?.role === 'table row');
  await key('space');
  await until('the row selected', (now) => focused(now)?.states.includes('selected'));
  await key('Delete');
  const message = await until('the message', (now) =>
    every(now).find((one) => one.attributes.live === 'polite' && every(one).some((each) => said(each) === 'Removed') &&
      /0.4 GB in Velto Trash/.test(every(one).map(said).join(' '))));
  assert.equal(message.role, 'status bar');
  await reader.hears('the message', ({ event, path }) =>
    ['ChildrenChanged', 'TextChanged'].includes(event) && every(message).some((one) => one.path === path), { from: quiet });

  await opens('Velto Trash', table(/./));
  assert.ok(every(tree).some((one) => said(one) === film));
  await reader.press(named(tree, 'button', /^Empty/));
  await asks(/^Empty Velto Trash/, 'Cancel');
  await opens('History', table(/./));
  await opens('Settings');
  await reader.press(named(tree, 'button', 'Reset Velto…'));
  await asks(/^Reset Velto/, 'Cancel');
  await key('question');
  await asks(/^Keys/);
  assert.equal(velto.count('el proceso de la página terminó'), 0, 'no question has ended the engine');
});
