import { describe, expect, it } from 'vitest';
import { fromHome } from '../../src/names/home.ts';
import { exactSizes, linkedCopies, measurement } from '../../src/protocol/measurementGuards.ts';
import { exactly } from '../../src/state/exactly.ts';
import { hasGaps, hasUnmeasured, partsOf } from '../../src/views/inicio/measured/parts.ts';
import { unmeasuredIn, withoutUnmeasured } from '../../src/views/inicio/treemap.ts';
import { categories } from '../support/states.ts';

describe('sizes to the byte', () => {
  it('come by part, and what is no size is left out', () => {
    const read = exactSizes({ files: { '/h/a': 9_000_000, '/h/b': -1, '/h/c': 'x' }, trash: 7 });
    expect(read).toEqual({ files: new Map([['/h/a', 9_000_000]]) });
    expect(exactSizes(null)).toEqual({});
  });

  it('take the place of rounded ones, and leave the others', () => {
    const items = [{ path: '/h/a', gb: 0 }, { path: '/h/b', gb: 0.3 }];
    expect(exactly(items, new Map([['/h/a', 9_000_000]]), ({ path }) => path)).toEqual([
      { path: '/h/a', gb: 0.009 }, { path: '/h/b', gb: 0.3 },
    ]);
    expect(exactly(items, undefined, ({ path }) => path)).toBe(items);
  });
});

describe('names of one file', () => {
  it('are lists of two and more', () => {
    expect(linkedCopies({ g: [['/a', '/b'], ['/c'], 'x', [1, 2]] })).toEqual(new Map([['g', [['/a', '/b']]]]));
    expect(linkedCopies([])).toEqual(new Map());
  });
});

describe('what was measured', () => {
  it('is read with neutral values for what is missing', () => {
    const read = measurement({ disk: { total: 10, free: 4 }, home: 3, outside: 3, volumes: [{ path: '/h/nas' }, {}] });
    expect(read?.disk).toEqual({ total: 10, free: 4, reserved: 0, purgeable: 0 });
    expect(read?.hidden).toBeNull();
    expect(read?.volumes).toEqual([{ path: '/h/nas', bytes: null }]);
    expect(read?.compared).toEqual({ complete: true, left: 0, canContinue: false, running: false });
  });

  it('is dropped when it is none', () => {
    expect(measurement(7)).toBeNull();
    expect(measurement({})).toBeNull();
  });
});

describe('paths', () => {
  it('begin with ~ inside the home, and nowhere else', () => {
    expect(fromHome('/home/ana/Movies/a.mov', '/home/ana')).toBe('~/Movies/a.mov');
    expect(fromHome('/home/ana', '/home/ana')).toBe('~');
    expect(fromHome('/home/anabel/a', '/home/ana')).toBe('/home/anabel/a');
    expect(fromHome('/mnt/a', '/home/ana')).toBe('/mnt/a');
  });

  it('stay whole while the home is unknown, or is the root', () => {
    expect(fromHome('/home/ana/a', null)).toBe('/home/ana/a');
    expect(fromHome('/a', '/')).toBe('/a');
  });
});

describe('everything else', () => {
  // 494 GB, 53 free, 30 kept for the system, 350 in the categories.
  const told = measurement({
    disk: { total: 494e9, free: 53e9, reserved: 30e9 }, home: 350e9, hidden: 11e9, outside: 50e9,
  })!;
  const cats = categories([100, 100, 50, 50, 20, 121], []);

  it('is what was measured of it, and what was not', () => {
    expect(unmeasuredIn(cats, told)).toBe(91);
    expect(partsOf(cats[5]!, told)).toEqual([
      { name: 'measured', gb: 30 }, { name: 'hidden', gb: 11 }, { name: 'reserved', gb: 30 }, { name: 'outside', gb: 50 },
    ]);
  });

  it('names no part that is empty', () => {
    const plain = { ...told, hidden: null, disk: { ...told.disk, reserved: 0 } };
    expect(partsOf(cats[5]!, plain).map(({ name }) => name)).toEqual(['measured', 'outside']);
  });

  it('leaves the map to what was measured', () => {
    expect(withoutUnmeasured(cats, 91).map(({ gb }) => gb)).toEqual([100, 100, 50, 50, 20, 30]);
    expect(withoutUnmeasured(cats, 0)).toEqual(cats);
    expect(unmeasuredIn(categories([1, 1, 1, 1, 1, 5], []), told)).toBe(5);
  });
});

describe('gaps', () => {
  const whole = measurement({ disk: { total: 1 }, compared: { complete: true } })!;

  it('are places, and files that were not compared', () => {
    expect(hasGaps(whole)).toBe(false);
    expect(hasUnmeasured({ ...whole, excluded: ['/h/x'] })).toBe(true);
    const late = { ...whole, compared: { ...whole.compared, complete: false } };
    expect(hasGaps(late)).toBe(true);
    expect(hasUnmeasured(late)).toBe(false);
  });
});
