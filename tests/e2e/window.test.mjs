// One program, one window: second starts, closing, what stays behind, and the desktop's colours.
import assert from 'node:assert/strict';
import { test } from 'node:test';
import { run } from '../../tools/desktop/children.mjs';
import { furnishedHome } from './support/home.mjs';
import { openGuided } from './support/guided_page.mjs';
import { desktopFor, line, start } from './support/velto.mjs';

const agent = 'Library/LaunchAgents/app.velto.maintenance.plist';
const size = { width: 1180, height: 760 };
const closeButton = [size.width - 30, 31]; // the window fills the display

test('a second start hands over to the first and ends', async (t) => {
  const home = furnishedHome(t);
  const desktop = await desktopFor(t);
  const first = start(t, home, desktop);
  await first.waitFor(line.finished);
  const second = start(t, home, desktop);
  assert.deepEqual(await second.ended(), { status: 0, signal: null });
  assert.equal(second.count(line.booted), 0);
  assert.equal(first.count(line.booted), 1, 'the window that is open is not loaded again');
  // What joins a window with the program's desktop entry; xdotool fails where it finds none.
  await desktop.input('search', '--onlyvisible', '--class', '^app\\.velto$');
  const asked = start(t, home, desktop, { args: ['--trash'] });
  assert.deepEqual(await asked.ended(), { status: 0, signal: null });
  await first.waitFor(`${line.intent('goView')}"papelera"`);
});

/** Opens the window and closes it with its own button; resolves once it is gone. */
async function closed(t, home) {
  const desktop = await desktopFor(t, size);
  const velto = start(t, home, desktop);
  await velto.waitFor(line.finished);
  await desktop.steady();
  await desktop.click(...closeButton);
  await desktop.lookUntil(({ colours }) => colours < 16); // the bare display
  return { desktop, velto };
}

test('closing the window ends the program where no maintenance is installed', async (t) => {
  const { velto } = await closed(t, furnishedHome(t));
  assert.deepEqual(await velto.ended(), { status: 0, signal: null });
});

test('closing the window leaves the program running while maintenance is installed', async (t) => {
  const home = furnishedHome(t).text(agent, '<plist/>');
  const { desktop, velto } = await closed(t, home);
  // A second start finds it and hands over: the window comes back in the process that was left.
  const from = velto.lines.length;
  const second = start(t, home, desktop, { args: ['--applications'] });
  assert.deepEqual(await second.ended(), { status: 0, signal: null });
  assert.equal(second.count(line.booted), 0, 'the first one has answered');
  await velto.waitFor(line.intent('webReady'), { from });
  await velto.waitFor(`${line.intent('goView')}"apps"`, { from });
  await desktop.steady();
});

/** The settings of a desktop without a settings service: a file that is watched. */
const setScheme = (home, scheme) =>
  home.text('.config/glib-2.0/settings/keyfile', `[org/gnome/desktop/interface]\ncolor-scheme='${scheme}'\n`);

const withKeyfile = { GSETTINGS_BACKEND: 'keyfile' };

/** Waits until the display as a whole is dark or light. */
async function becomes(desktop, look, limit = 30_000) {
  const end = Date.now() + limit;
  for (;;) {
    const { stdout } = await run('import', ['-window', 'root', '-format', '%[fx:mean]', 'info:-'], {
      env: { ...process.env, DISPLAY: desktop.display },
    });
    const light = Number(stdout);
    if (look === 'dark' ? light < 0.3 : light > 0.7) return;
    if (Date.now() > end) throw new Error(`the window never became ${look}: ${light}`);
    await new Promise((resolve) => setTimeout(resolve, 100));
  }
}

/** The setting is as old as GNOME 42. */
async function knowsSchemes() {
  const { stdout } = await run('gsettings', ['list-keys', 'org.gnome.desktop.interface']);
  return stdout.includes('color-scheme');
}

test('the window follows the colours of the desktop until one is chosen', async (t) => {
  if (!(await knowsSchemes())) return t.skip('this machine does not know the setting');
  const home = furnishedHome(t);
  setScheme(home, 'prefer-dark');
  const desktop = await desktopFor(t, size);
  const velto = start(t, home, desktop, { variables: withKeyfile });
  await velto.waitFor(line.finished);
  await becomes(desktop, 'dark');
  setScheme(home, 'prefer-light');
  await becomes(desktop, 'light');
  setScheme(home, 'prefer-dark');
  await becomes(desktop, 'dark');
  assert.equal(velto.count(line.intent('setTheme')), 0, 'nothing was chosen');

  await desktop.click(100, size.height - 66); // the page's own choice of a theme
  await velto.waitFor(line.intent('setTheme'));
  await becomes(desktop, 'light');
  setScheme(home, 'prefer-light');
  setScheme(home, 'prefer-dark');
  for (let look = 0; look < 20; ++look) await becomes(desktop, 'light', 0); // what was chosen stays
});

test('a theme that is the desktop\'s own stays when it is chosen, until the desktop\'s is wanted again', async (t) => {
  if (!(await knowsSchemes())) return t.skip('this machine does not know the setting');
  const home = furnishedHome(t);
  setScheme(home, 'prefer-light');
  const page = await openGuided(t, home, { variables: withKeyfile });
  const { desktop } = page;
  await page.click('Settings');
  await page.keyTo('Tab', /As the system/);
  await desktop.input('key', 'Right'); // light, as it is
  await page.velto.waitFor(line.intent('setTheme'));
  setScheme(home, 'prefer-dark');
  for (let look = 0; look < 20; ++look) await becomes(desktop, 'light', 0);

  await desktop.input('key', 'Left');
  await page.velto.waitFor(line.intent('followSystemTheme'));
  await becomes(desktop, 'dark');
  setScheme(home, 'prefer-light');
  await becomes(desktop, 'light');
});

test('the window fits half of a small screen', async (t) => {
  const small = { width: 720, height: 480 };
  const desktop = await desktopFor(t, small);
  const velto = start(t, furnishedHome(t), desktop);
  await velto.waitFor(line.finished);
  await desktop.steady();
  await desktop.click(small.width - 30, 31); // its close button is on the screen
  assert.deepEqual(await velto.ended(), { status: 0, signal: null });
});
