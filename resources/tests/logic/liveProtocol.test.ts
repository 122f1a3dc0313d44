import { beforeEach, describe, expect, it, vi } from 'vitest';
import { appAnalysis, appSizes, installedApps, leftoverLinks, uninstallResult } from '../../src/protocol/appGuards.ts';
import { connect, listenLater } from '../../src/protocol/connection.ts';
import { laterReaders } from '../../src/protocol/laterReaders.ts';
import { systemActivity, systemDetails, systemSample } from '../../src/protocol/systemGuards.ts';
import { analysisOf, app, someApps, someLeftovers, someResult } from '../support/apps.ts';
import { bareSample, firstSample, hostileSample, someActivity, someDetails, someSample } from '../support/system.ts';

const page = globalThis as unknown as { velto?: Record<string, (...values: unknown[]) => void> };
const again = <Value>(value: Value): unknown => JSON.parse(JSON.stringify(value));

beforeEach(() => {
  delete page.velto;
});

describe('reading applications', () => {
  it('passes complete records through unchanged', () => {
    const apps = someApps();
    expect(installedApps(again(apps))).toEqual(apps);
    const analysis = analysisOf(app('Borealis'), someLeftovers());
    expect(appAnalysis(again(analysis))).toEqual(analysis);
    expect(uninstallResult(again(someResult()))).toEqual(someResult());
  });

  it('two copies are two applications, one path is one', () => {
    const here = app('Límite');
    expect(installedApps([here, { ...here, path: '/Applications/Límite.app' }, here, { name: 'x' }, null])).toHaveLength(2);
  });

  it('an icon is only ever a picture that came along', () => {
    expect(installedApps([app('a', { icon: 'https://example.org/p.png' })])[0]).not.toHaveProperty('icon');
    expect(installedApps([app('a', { icon: 'data:text/html,x' })])[0]).not.toHaveProperty('icon');
  });

  it('sizes are numbers', () => {
    expect(appSizes({ '/a': 1.5, '/b': '2', '/c': -1, '/d': 0, '/e': null })).toEqual({ '/a': 1.5, '/d': 0 });
    expect(appSizes('x')).toEqual({});
  });

  it('what is not said to be certain is only possible', () => {
    const item = { path: '/a', conf: 'CERTAIN', gb: 1 };
    const read = appAnalysis({ path: '/x', groups: [{ key: 'caches', items: [item] }] })!;
    expect(read.groups[0]!.items[0]).toMatchObject({ conf: 'possible', admin: false, cat: 'caches' });
  });

  it('a path is offered once, and an unknown group not at all', () => {
    const groups = [
      { key: 'caches', items: [{ path: '/a' }, { path: '/a' }, { gb: 3 }] },
      { key: 'logs', items: [{ path: '/a' }] },
      { key: 'everything', items: [{ path: '/b' }] },
    ];
    expect(appAnalysis({ path: '/x', groups })!.groups.map(({ key, items }) => [key, items.length])).toEqual([['caches', 1]]);
    expect(appAnalysis({ groups })).toBeNull();
  });

  it('a link that is not said to be kept apart from its target takes it along', () => {
    const link = { path: '/a', target: '/b', kept: true };
    expect(leftoverLinks([link, { path: '/c', target: '/d', kept: 'yes' }, { path: '/e' }, 7])).toEqual([
      link,
      { path: '/c', target: '/d', kept: false },
    ]);
    expect(leftoverLinks('x')).toEqual([]);
  });

  it('a reason that nobody knows is "other"', () => {
    expect(uninstallResult({ failures: [{ name: 'a', path: '/a', reason: 'moon' }, 4] })!.failures).toEqual([
      { name: 'a', path: '/a', reason: 'other' },
    ]);
  });

  it('progress of an unknown stage is dropped, and a percentage stays one', () => {
    const onUninstallProgress = vi.fn();
    connect({});
    listenLater({ onUninstallProgress }, laterReaders);
    page.velto!.onUninstallProgress!('stop', 3);
    page.velto!.onUninstallProgress!('files', 400, 'a "quoted" name');
    page.velto!.onUninstallProgress!('explode', 5);
    expect(onUninstallProgress.mock.calls).toEqual([['stop', 3, ''], ['files', 100, 'a "quoted" name']]);
  });
});

describe('reading samples', () => {
  it('passes a complete one through unchanged', () => {
    expect(systemSample(again(someSample()))).toEqual(someSample());
  });

  it('the first one has no processor and no network, and nothing is made up for them', () => {
    const read = systemSample(again(firstSample()))!;
    expect(read.cpu).toBeUndefined();
    expect(read.net).toBeUndefined();
    expect(read.mem!.used).toBe(10.9);
  });

  it('a machine without battery, disk or known temperature is read as that', () => {
    const read = systemSample(bareSample())!;
    expect(read).toMatchObject({ battery: { avail: false }, thermal: { state: 'unknown', lowPower: false }, procs: [] });
    expect(read.disk).toBeUndefined();
  });

  it('is not put off by nonsense', () => {
    for (const value of [null, 3, 'x', []]) expect(systemSample(value)).toBeNull();
    expect(systemSample({ cpu: 4, mem: { pct: 'x' }, net: { avail: false }, procs: 'x' })).toEqual({});
    const read = systemSample(hostileSample())!;
    expect(read.battery).toEqual({ avail: true, pct: 100, cycles: 1e9 });
    expect(read.procs!.every(({ icon }) => icon === '')).toBe(true);
  });
});

describe('reading the groups by name', () => {
  it('passes complete records through unchanged, and makes nothing up', () => {
    expect(systemDetails(again(someDetails()))).toEqual(someDetails());
    expect(systemDetails(7)).toBeNull();
    expect(systemDetails({ groups: 4, unseen: ['graphics', 'the moon', 'processes'] })).toEqual({ groups: [], unseen: ['processes', 'graphics'] });
    const odd = { name: 'a', pid: 1, members: [{ pid: 'x' }, { pid: 2, cpu: -4, read: 1 }, 'y'], icon: 'javascript:1' };
    expect(systemDetails({ groups: [odd, { pid: 3 }] })!.groups).toEqual([
      { name: 'a', pid: 1, kind: 'other', procs: 1, cpu: 0, mem: 0, icon: '', canQuit: false, members: [{ pid: 2, name: '', cpu: 0, mem: 0 }] },
    ]);
  });
});

describe('reading what is told beside a sample', () => {
  it('passes complete records through unchanged', () => {
    expect(systemActivity(again(someActivity()))).toEqual(someActivity());
  });

  it('leaves out what is missing or cannot be', () => {
    expect(systemActivity({})).toEqual({ procs: [] });
    expect(systemActivity('x')).toBeNull();
    for (const celsius of [0, -273, 151, '54', null]) {
      expect(systemActivity({ temperature: { celsius, part: 'disk' } })).toEqual({ procs: [] });
    }
    expect(systemActivity({ temperature: { celsius: 40, part: 'fridge' } })!.temperature!.part).toBe('machine');
    expect(systemActivity({ disk: { read: 5 }, gpu: { pct: 400 } })).toEqual({ gpu: { pct: 100 }, procs: [] });
    expect(systemActivity({ procs: [{ pid: 7, read: 1, canQuit: 'yes' }, { pid: '8' }, 4] })!.procs).toEqual([{ pid: 7, canQuit: false }]);
  });
});
