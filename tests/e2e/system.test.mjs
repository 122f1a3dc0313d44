// The live view of the machine, with programs that weigh on it; figures as the page shows them.
import assert from 'node:assert/strict';
import { readdirSync, readFileSync } from 'node:fs';
import { test } from 'node:test';
import { setTimeout as delay } from 'node:timers/promises';
import { openGuided } from './support/guided_page.mjs';
import { Home, MB, temporaryFolder } from './support/home.mjs';
import { install, received, run } from './support/load.mjs';
import { played, probePage } from './support/probe_page.mjs';
import { desktopFor, line, programWith, start } from './support/velto.mjs';

const on = { type: 'systemWatch', payload: { on: true } };
const off = { type: 'systemWatch', payload: { on: false } };

/** More megabytes than all processes of any other name have, which are one row of the view. */
function moreThanAnyOther() {
  const kilobytes = new Map();
  for (const process of readdirSync('/proc').filter((name) => /^\d+$/.test(name))) {
    try {
      const status = readFileSync(`/proc/${process}/status`, 'utf8');
      const name = status.match(/Name:\s+(.*)/)[1];
      const held = Number(status.match(/RssAnon:\s+(\d+)/)?.[1] ?? 0);
      kilobytes.set(name, (kilobytes.get(name) ?? 0) + held);
    } catch {
      // It has ended.
    }
  }
  return Math.round((Math.max(...kilobytes.values()) * 1.024 * 1.5) / 1000) + 300;
}

const nameOf = ({ cells }) => cells[1];
/** A share or a size as the page writes it, in percent or megabytes. */
const figure = (text) => parseFloat(text.replace(',', '')) * (text.includes('GB') ? 1000 : 1);

test('what weighs most heads the list, by processor and by memory, under its name and icon', async (t) => {
  const home = new Home(t, { layout: 'freedesktop' });
  const composer = install(home, 'composer', 'Composer', '#2563EB');
  const keeper = install(home, 'keeper', 'Archive Keeper', '#E88F0C');
  const page = await openGuided(t, home);
  await page.click('System');
  await page.sees('Live, every two seconds');
  // Started while the view is shown: they come with the next look at the processes.
  const megabytes = moreThanAnyOther();
  await run(t, keeper, 'hold', megabytes);
  const processes = 5;
  await run(t, composer, 'busy', processes);

  const [busiest] = await page.lists('the busy application first', (rows) =>
    rows.length > 1 && nameOf(rows[0]) === 'Composer' && figure(rows[0].cells[3]) > 0 && rows);
  assert.ok(busiest.hasPicture, 'its icon');
  assert.equal(busiest.cells[2], String(processes), 'its processes are one row');
  await page.sees(/Processor (?!0%)\d+%/);

  await page.click('Memory');
  const [largest] = await page.lists('the large application first', (rows) =>
    rows.length > 1 && nameOf(rows[0]) === 'Archive Keeper' && rows);
  assert.ok(largest.hasPicture, 'its icon');
  const shown = figure(largest.cells[4]);
  assert.ok(Math.abs(shown - megabytes) < 0.1 * megabytes, `${shown} MB are shown of ${megabytes}`);
});

test('what the machine sends to itself is work of a program, and no traffic of the network', async (t) => {
  const home = new Home(t, { layout: 'freedesktop' });
  const talker = install(home, 'talker', 'Talker', '#7C3AED');
  await run(t, talker, 'talk');
  const page = await openGuided(t, home);
  await page.click('System');
  const before = received('lo');
  await page.lists('who talks', (rows) =>
    rows.some((row) => nameOf(row) === 'Talker' && figure(row.cells[3]) > 0));
  await page.sees(/Receiving [\d.,]+ .?B\/s/);
  const through = received('lo') - before;
  assert.ok(through > 100 * MB, `only ${through} bytes went through the loopback interface`);
  assert.doesNotMatch(page.text(), /mostly through lo\b/);
  assert.doesNotMatch(page.text(), /Receiving [\d.,]+ GB\/s/);
});

/** Rows move as weights change, and a click may miss one: then it is made again, and never waited for without end. */
async function until(ended, act) {
  for (let attempt = 0; attempt < 3; ++attempt) {
    await act();
    if (await Promise.race([ended.then(() => true), delay(20_000, false, { ref: false })])) return;
  }
  assert.fail('it goes on running');
}

test('an application is quit from the list, and one that stays open is ended only after a question', async (t) => {
  const home = new Home(t, { layout: 'freedesktop' });
  const keeper = install(home, 'keeper', 'Archive Keeper', '#E88F0C');
  const clinger = install(home, 'clinger', 'Clinger', '#7C3AED');
  const megabytes = moreThanAnyOther();
  const willing = await run(t, keeper, 'hold', megabytes);
  const stubborn = await run(t, clinger, 'stubborn', megabytes);
  const hasEnded = ({ exitCode, signalCode }) => exitCode !== null || signalCode !== null;
  const page = await openGuided(t, home);
  await page.click('System');
  await page.sees('What weighs most');
  // The rows come into sight, whatever else weighs much meanwhile.
  await page.desktop.scrollDown(600, 400, 30);

  await until(willing.ended, () => page.click('Quit Archive Keeper'));
  await page.lists('the row of what has quit without a button', () => !page.has('Quit Archive Keeper'));
  assert.equal(page.intents('endApplication'), 0);

  await page.click('Quit Clinger');
  await page.sees('“Clinger” is still open.');
  assert.ok(!hasEnded(stubborn));
  await page.click('End Clinger…');
  await page.sees('End “Clinger”?');
  assert.ok(!hasEnded(stubborn));
  await until(stubborn.ended, () => page.click('End'));
  assert.equal(page.intents('endApplication'), 1);
});

test('samples are asked for by the view that shows them, and stopped when it is left', async (t) => {
  const page = await openGuided(t, new Home(t, { layout: 'freedesktop' }));
  const told = (payload) => page.velto.waitFor(line.intent('systemWatch') + JSON.stringify(payload));
  assert.equal(page.intents('systemWatch'), 0);
  await page.click('System');
  await told({ on: true });
  await page.sees('Battery None The system reports no battery.');
  await page.click('Overview');
  await told({ on: false });
  assert.equal(page.intents('systemWatch'), 2);
});

/** What a page without any views hears, step by step. */
async function heard(t, steps) {
  const home = new Home(t, { layout: 'freedesktop' });
  const desktop = await desktopFor(t);
  const velto = start(t, home, desktop, { file: programWith(temporaryFolder(t), probePage(steps)) });
  return (await played(velto)).map(({ what, args }) => (what === 'onSystem' ? args[0] : what));
}

const isSample = (one) => typeof one === 'object';

test('the first sample has no rates, the second has them, and after "off" nothing comes', async (t) => {
  const all = await heard(t, [
    { send: on, until: 'onSystem' },
    { until: 'onSystem' },
    { send: off },
    // One that was on its way may still come.
    { quiet: 300 },
    { quiet: 5000 },
    { send: on, until: 'onSystem' },
  ]);
  const samples = all.filter(isSample);
  // The log of the program puts the keys in alphabetical order.
  assert.deepEqual(Object.keys(samples[0]), ['battery', 'disk', 'mem', 'procs', 'thermal']);
  assert.deepEqual(Object.keys(samples[1]), ['battery', 'cpu', 'disk', 'mem', 'net', 'procs', 'thermal']);
  assert.ok(samples[0].procs.every(({ cpu, mem }) => cpu === 0 && mem >= 0));
  assert.ok(samples[1].procs.length <= 16);
  const [first, second] = all.flatMap((one, index) => (one === 'quiet is over' ? [index] : []));
  assert.deepEqual(all.slice(first + 1, second), [], 'two periods and a half without a sample');
});

test('samples go on when the page is loaded anew, until it wants no more', async (t) => {
  const all = await heard(t, [
    { send: on, until: 'onSystem' },
    { reload: true },
    // Nobody has asked again.
    { until: 'onSystem' },
    { until: 'onSystem' },
    { send: off },
    { quiet: 300 },
    { quiet: 5000 },
  ]);
  assert.ok(all.filter(isSample).length >= 3);
  const [first, second] = all.flatMap((one, index) => (one === 'quiet is over' ? [index] : []));
  assert.deepEqual(all.slice(first + 1, second), []);
});
