import { describe, expect, it } from 'vitest';
import { laterEn as en } from '../../src/language/en/later.ts';
import { laterEs as es } from '../../src/language/es/later.ts';
import { shortInMiddle } from '../../src/names/middle.ts';
import { cleanableFacts, cleanables, trashItems } from '../../src/protocol/cleaningGuards.ts';
import { cleanables as proposed } from '../../src/state/cleanables.svelte.ts';
import { leftBehind } from '../../src/state/leftBehind.svelte.ts';
import { daysLeft, operationsOf } from '../../src/state/operations.ts';
import { groupLosingAll } from '../../src/state/removal.ts';
import { chartOf, monthsOf } from '../../src/views/historial/months.ts';
import { groupsOf, nameOf, preselected } from '../../src/views/limpieza/candidates.ts';
import { cleanable, cleanableFacts as factsOf, historyEntry, someCleanables, trashItem } from '../support/cleaning.ts';
import { duplicateGroup, home } from '../support/states.ts';

describe('what lies in a folder that has moved', () => {
  const moved = [`${home}/Library/Caches`];

  it('is no candidate any more', () => {
    const inside = cleanable('caches', 'Library/Caches/org.example.Render', 1, 50);
    const beside = cleanable('caches', 'Library/Caches2/x', 1, 50);
    proposed.receive([inside, beside]);
    proposed.forget(moved);
    expect(proposed.list).toEqual([beside]);
    proposed.forget([beside.path]);
    expect([proposed.list, proposed.emptied]).toEqual([[], true]);
  });

  it('is not left behind any more', () => {
    const item = (path: string) => ({ path, identifier: 'x', why: 'flatpak' as const, gb: 1, last: 0 });
    leftBehind.receive([item(`${home}/Library/Caches/x`), item(`${home}/.var/app/x`)]);
    leftBehind.forget(moved);
    expect(leftBehind.items.map(({ path }) => path)).toEqual([`${home}/.var/app/x`]);
  });
});

describe('cleaning candidates', () => {
  it('stand by rule, in the order of the rules, largest first', () => {
    const groups = groupsOf([...someCleanables(), cleanable('new rule', 'x', 1, 1)]);
    expect(groups.map(({ rule, items }) => [rule, items.length])).toEqual([
      ['caches', 5], ['xcode', 2], ['oldDownloads', 3], ['installers', 2], ['other', 1],
    ]);
    for (const { items } of groups) expect(items.map(({ gb }) => gb)).toEqual(items.map(({ gb }) => gb).sort((a, b) => b - a));
  });

  it('nothing younger than a month is preselected, nor anything of the user’s own, nor a protected path', () => {
    expect([...preselected(groupsOf(someCleanables()))].map((path) => path.split('/').at(-1))).toEqual([
      'org.example.Render', 'com.example.music-player.ShipIt', 'DerivedData', 'iPhone14,2 17.4 (21E219)',
    ]);
    const edge = [cleanable('caches', 'a', 1, 30), cleanable('caches', 'b', 1, 31)];
    expect([...preselected(groupsOf(edge))]).toEqual([`${home}/b`]);
  });

  it('what is only possible is never preselected, however old', () => {
    const facts = cleanableFacts(factsOf({
      'org.example.Render': 'unknown', 'com.example.music-player.ShipIt': 'running', 'com.example.MailClient': 'keeps',
      'com.example.Browser': 'madeAgain',
    }));
    const groups = groupsOf(someCleanables(), facts);
    expect([...preselected(groups)].map((path) => path.split('/').at(-1))).toEqual([
      'DerivedData', 'iPhone14,2 17.4 (21E219)',
    ]);
    expect(groups[0]!.items.map(({ certain, doubt }) => [certain, doubt])).toEqual([
      [false, 'unknown'], [true, null], [false, 'keeps'], [false, 'running'], [true, null],
    ]);
    expect(groups.map(({ certainty }) => certainty)).toEqual(['mixed', 'certain', 'possible', 'possible']);
    expect(groupsOf([cleanable('caches', 'Library/Caches/x', 1, 90)], cleanableFacts(factsOf({ x: 'keeps' })))[0]!.certainty).toBe('possible');
  });

  it('a fact that is malformed makes nothing certain', () => {
    const facts = cleanableFacts({
      '/a': { certain: true, reason: 'madeAgain' }, '/b': { certain: true, reason: 'new' }, '/c': { certain: 'true', reason: 'madeAgain' },
      '/d': null, '/e': { certain: true, reason: 'running' }, '/f': {},
    });
    expect([...facts].filter(([, { certain }]) => certain).map(([path]) => path)).toEqual(['/a']);
    expect(facts.size).toBe(6);
    expect(cleanableFacts('x').size).toBe(0);
  });

  it('an age that is missing is not an old one', () => {
    const read = cleanables([{ ruleID: 'caches', path: '/a', gb: 1 }, { ruleID: 'caches', path: '/b', gb: 1, daysOld: 'many' }]);
    expect(preselected(groupsOf(read)).size).toBe(0);
  });

  it('are named by rule and path, whatever the label says', () => {
    const name = (ruleID: string, path: string, words = en.cleanup) =>
      nameOf({ ...cleanable(ruleID, path, 1, 1), label: 'Otra cosa.' }, words);
    expect(name('caches', 'Library/Caches/com.example.App')).toBe('com.example.App');
    expect(name('xcode', 'Library/Developer/Xcode/DerivedData')).toBe('Build results (DerivedData)');
    expect(name('xcode', 'x/iOS DeviceSupport/17.4')).toBe('Device support 17.4');
    expect(name('xcode', 'x/iOS DeviceSupport/17.4', es.cleanup)).toBe('Soporte de dispositivo 17.4');
  });

  it('that are malformed or there twice are left out', () => {
    const one = cleanable('caches', 'a', 1, 1);
    expect(cleanables([one, null, { gb: 2 }, { ...one, gb: 9 }, 'x'])).toEqual([one]);
    expect(cleanables({})).toEqual([]);
  });
});

describe('Velto Trash by operation', () => {
  it('the newest is first; of equal times the one that arrived later', () => {
    const items = [trashItem('a', 'x', 1, 10), trashItem('b', 'y', 1, 30), trashItem('c', 'z', 1, 30), trashItem('a', 'w', 3, 11)];
    const operations = operationsOf(items);
    expect(operations.map(({ id }) => id)).toEqual(['c', 'b', 'a']);
    expect(operations[2]).toMatchObject({ gb: 4, taken: 11 });
    expect(operations[2]!.items.map(({ name }) => name)).toEqual(['w', 'x']);
  });

  it('counts the days that remain in whole days, down to none', () => {
    const day = 86_400;
    expect(daysLeft(0, 30, 0)).toBe(30);
    expect(daysLeft(5, 30, 0)).toBe(30);
    expect(daysLeft(0, 30, 1)).toBe(30);
    expect(daysLeft(0, 30, 29 * day + 1)).toBe(1);
    expect(daysLeft(0, 30, 30 * day)).toBe(0);
    expect(daysLeft(0, 30, 99 * day)).toBe(0);
  });

  it('an item that is told twice is one item', () => {
    const item = trashItem('a', 'x', 1, 10);
    expect(trashItems([item, item])).toEqual([item]);
  });
});

describe('removing copies', () => {
  const pair = duplicateGroup('1.0', 0, '/h/a', '/h/b');

  it('finds the group that would lose its last copy', () => {
    expect(groupLosingAll([pair], new Set(['/h/a', '/x']))).toBeNull();
    expect(groupLosingAll([pair], new Set(['/h/b', '/h/a']))).toBe(pair);
  });
});

describe('the history by month', () => {
  const at = (text: string) => new Date(text).getTime() / 1000;
  const history = [
    historyEntry('1', at('2026-03-31T23:50'), 'wind', ['a', 2]),
    historyEntry('2', at('2026-03-01T00:10'), 'wind', ['b', 1]),
    historyEntry('3', at('2025-12-24T12:00'), 'uninstall', ['c', 4]),
    historyEntry('4', 0, 'wind', ['d', 8]),
  ];

  it('is in the months of the calendar here, newest first, what has no date last', () => {
    const months = monthsOf([...history].reverse());
    expect(months.map(({ gb, entries }) => [gb, entries.map(({ id }) => id)])).toEqual([
      [3, ['1', '2']], [4, ['3']], [8, ['4']],
    ]);
    expect(new Date(months[0]!.stamp * 1000).getMonth()).toBe(2);
  });

  it('has a chart of the last twelve months with gaps where nothing was removed', () => {
    const bars = chartOf(monthsOf(history), at('2026-03-31T23:59'));
    expect(bars).toHaveLength(12);
    expect(bars.map(({ gb }) => gb)).toEqual([0, 0, 0, 0, 0, 0, 0, 0, 4, 0, 0, 3]);
    expect(bars[8]!.share).toBe(1);
    expect(bars[11]!.share).toBeCloseTo(0.75);
    expect(chartOf([], 0).every(({ share }) => share === 0)).toBe(true);
  });
});

describe('names in sentences', () => {
  it('are shortened in the middle, by visible characters', () => {
    expect(shortInMiddle('short.txt', 20)).toBe('short.txt');
    expect(shortInMiddle('a very long name indeed.txt', 13)).toBe('a very…ed.txt');
    const family = '👩‍👩‍👧‍👦';
    expect(shortInMiddle(family.repeat(9), 5)).toBe(`${family.repeat(2)}…${family.repeat(2)}`);
  });
});
