import { afterEach, beforeEach, describe, expect, it, vi } from 'vitest';
import { formats } from '../../src/language/formats.ts';
import { connect, isHosted, listenLater, publish, release, send } from '../../src/protocol/connection.ts';
import { trashItems, waitingItems } from '../../src/protocol/cleaningGuards.ts';
import { diskState, permissions, texts } from '../../src/protocol/guards.ts';
import { laterReaders } from '../../src/protocol/laterReaders.ts';
import { fullState } from '../support/states.ts';

const page = globalThis as unknown as {
  velto?: Record<string, unknown>;
  webkit?: unknown;
  go?: (name: unknown) => void;
};
const call = (name: string, ...values: unknown[]) => (page.velto![name] as (...values: unknown[]) => void)(...values);

beforeEach(() => {
  delete page.velto;
  delete page.webkit;
});

afterEach(() => {
  vi.restoreAllMocks();
});

describe('sending', () => {
  it('posts the name and, where there is one, the payload', () => {
    const postMessage = vi.fn();
    page.webkit = { messageHandlers: { velto: { postMessage } } };
    send('scan');
    send('revealPath', '/a b');
    send('deleteFiles', { paths: ['/a'], kind: 'wind' });
    expect(postMessage.mock.calls).toEqual([
      [{ type: 'scan' }],
      [{ type: 'revealPath', payload: '/a b' }],
      [{ type: 'deleteFiles', payload: { paths: ['/a'], kind: 'wind' } }],
    ]);
    expect(isHosted()).toBe(true);
  });

  it('without a program nothing happens and nothing breaks', () => {
    expect(isHosted()).toBe(false);
    expect(() => send('scan')).not.toThrow();
    page.webkit = { messageHandlers: {} };
    expect(() => send('scan')).not.toThrow();
  });
});

describe('connecting', () => {
  it('takes over what the program left in the page', () => {
    const provisional = vi.fn();
    page.velto = { _state: fullState(), _stamp: 1_700_000_000.5, setState: provisional };
    const setState = vi.fn();
    const saved = connect({ setState });
    expect(saved!.state.cats).toHaveLength(6);
    expect(saved!.stamp).toBe(1_700_000_000.5);
    call('setState', fullState({ free: 1 }), 1_700_000_100);
    release();
    expect(provisional).not.toHaveBeenCalled();
    expect(setState.mock.calls[0]![0].free).toBe(1);
    expect(setState.mock.calls[0]![1]).toBe(1_700_000_100);
  });

  it('holds events back while a saved state is painted, and loses none of them', () => {
    page.velto = { _state: fullState() };
    const told: string[] = [];
    connect({ onScanStarted: () => told.push('started') });
    listenLater({ toast: (title) => told.push(title) }, laterReaders);
    call('onScanStarted');
    call('toast', 'first');
    expect(told).toEqual([]);
    release();
    expect(told).toEqual(['started', 'first']);
    call('toast', 'second');
    release();
    expect(told).toEqual(['started', 'first', 'second']);
  });

  it('what comes before its listener does waits for it, in its order', () => {
    const told: string[] = [];
    connect({ onScanStarted: () => told.push('started') });
    call('toast', 'first');
    call('onScanStarted');
    call('toast', 'second');
    expect(told).toEqual(['started']);
    listenLater({ toast: (title) => told.push(title) }, laterReaders);
    expect(told).toEqual(['started', 'first', 'second']);
  });

  it('a listener that comes while the saved state is painted hears nothing until it is', () => {
    page.velto = { _state: fullState() };
    const told: string[] = [];
    connect({});
    call('toast', 'first');
    listenLater({ toast: (title) => told.push(title) }, laterReaders);
    expect(told).toEqual([]);
    release();
    expect(told).toEqual(['first']);
  });

  it('keeps the latest state and stamp where the program looks for them', () => {
    connect({ setState: () => {} });
    call('setState', fullState({ free: 2 }), 1_700_000_000);
    call('setState', fullState({ free: 3 }));
    expect((page.velto!._state as { free: number }).free).toBe(3);
    expect(page.velto!._stamp).toBe(1_700_000_000);
  });

  it('has nothing to show when nothing was left', () => {
    expect(connect({})).toBeNull();
    page.velto = { _state: null, _stamp: null };
    expect(connect({})).toBeNull();
  });

  it('does not install callbacks that nobody listens to', () => {
    connect({ onScanStarted: () => {} });
    expect(page.velto!.onScanFinished).toBeUndefined();
  });

  it('a listener that throws never reaches the program', () => {
    const error = vi.spyOn(console, 'error').mockImplementation(() => {});
    connect({
      onScanStarted: () => {
        throw new Error('broken');
      },
    });
    expect(() => call('onScanStarted')).not.toThrow();
    expect(error).toHaveBeenCalledOnce();
  });

  it('reads arguments of the wrong kind as nothing', () => {
    const toast = vi.fn();
    const onScanProgress = vi.fn();
    const setState = vi.fn();
    const onPermissions = vi.fn();
    connect({ onScanProgress, setState, onPermissions });
    listenLater({ toast }, laterReaders);
    call('toast', 7);
    call('onScanProgress', 'many', Number.NaN);
    call('setState', 'no state');
    call('onPermissions', { fda: 'yes' });
    expect(toast).toHaveBeenCalledWith('', '');
    expect(onScanProgress).toHaveBeenCalledWith(0, 0);
    expect(setState).not.toHaveBeenCalled();
    expect(onPermissions).toHaveBeenCalledWith({ fda: false });
  });

  it('publishes a function for the menu', () => {
    const action = vi.fn();
    publish('go', action);
    page.go!('apps');
    expect(action).toHaveBeenCalledWith('apps');
  });
});

describe('reading a state', () => {
  it('passes a complete one through unchanged', () => {
    const state = fullState();
    expect(diskState(JSON.parse(JSON.stringify(state)))).toEqual(state);
  });

  it('is not put off by missing or mistyped fields', () => {
    const state = diskState({ total: '12', cats: [{ id: 'fotos' }, { name: 'no id' }, null, 3], files: {}, settings: [] })!;
    expect(state.total).toBe(0);
    expect(state.cats).toHaveLength(1);
    expect(state.cats[0]).toMatchObject({ id: 'fotos', gb: 0, files: 0, sub: [] });
    expect(state.files).toEqual([]);
    expect(state.settings).toEqual({ retention: 30, autoMaintenance: false, frequency: 'daily', language: 'en' });
    expect(state.protected).toBeUndefined();
  });

  it('refuses what is no state at all', () => {
    for (const value of [null, undefined, 'x', 4, []]) expect(diskState(value)).toBeNull();
  });

  it('drops groups that are no duplicates and mends an index that points nowhere', () => {
    const group = { id: 'h', name: 'x', pairs: [], paths: ['/a', '/b'], recommended: 9 };
    const state = diskState({ dupGroups: [group, { ...group, id: 'i', paths: ['/a'] }, { ...group, id: 'j', recommended: -1 }] })!;
    expect(state.dupGroups.map(({ recommended }) => recommended)).toEqual([0, 0]);
  });

  it('shows a path once, so that no list breaks over two that read alike', () => {
    const file = { path: '/a/\uFFFD.bin', gb: 2 };
    const group = { id: 'h', name: 'x', pairs: [], paths: ['/a', '/b'], recommended: 0 };
    const state = diskState({
      files: [file, { path: '/b', gb: 1 }, { ...file, gb: 1 }],
      dupGroups: [group, { ...group, name: 'again' }, { ...group, id: 'i', paths: ['/c', '/c'] }],
    })!;
    expect(state.files.map(({ path, gb }) => [path, gb])).toEqual([['/a/\uFFFD.bin', 2], ['/b', 1]]);
    expect(state.dupGroups.map(({ name }) => name)).toEqual(['x']);
  });

  it('normalises settings as the program does', () => {
    const settings = (value: object) => diskState({ settings: value })!.settings;
    expect(settings({ retention: -5 }).retention).toBe(30);
    expect(settings({ frequency: 'hourly' }).frequency).toBe('daily');
    expect(settings({ language: 'es-MX' }).language).toBe('es');
    expect(settings({ language: 'fr' }).language).toBe('en');
    expect(settings({ rules: { caches: false, unknown: true, duplicates: 'yes' } }).rules).toEqual({ caches: false });
  });

  it('a negative size is no size, and a missing age is not today', () => {
    const files = [{ path: '/a', gb: -1 }, { path: '/b', lastN: -3 }];
    const [first, second] = diskState({ files })!.files;
    expect(first!.gb).toBe(0);
    expect(formats.en.age(first!.lastN)).toBeNull();
    expect(second!.lastN).toBe(0);
  });
});

describe('reading the smaller records', () => {
  it('permissions are granted only by true', () => {
    expect(permissions({ fda: true })).toEqual({ fda: true });
    expect(permissions(null)).toEqual({ fda: false });
  });

  it('lists hold only what belongs in them', () => {
    expect(texts(['/a', 3, null, '/b'])).toEqual(['/a', '/b']);
    expect(texts('x')).toEqual([]);
    expect(trashItems([{ id: 'it1', name: 'a', gb: 1.2, taken: 5, path: '/a', opID: 'op1' }, {}])).toEqual([
      { id: 'it1', name: 'a', gb: 1.2, taken: 5, path: '/a', opID: 'op1' },
    ]);
  });

  it('of what waits nothing is promised that was not said', () => {
    const whole = { id: 'it1', name: 'a', gb: 1.2, path: '/d/a', folder: '/d', way: 'out', reason: 'absent', whole: true };
    expect(waitingItems([whole, { ...whole, name: 'again' }, { name: 'b' }, 7])).toEqual([whole]);
    expect(waitingItems([{ id: 'it2', reason: 'x', way: 'x', whole: 'yes' }])).toEqual([
      { id: 'it2', name: '', gb: 0, path: '', folder: '', way: 'in', reason: 'unsettled', whole: false },
    ]);
  });
});
