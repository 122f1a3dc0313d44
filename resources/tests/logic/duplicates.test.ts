import { describe, expect, it } from 'vitest';
import {
  copySize, extraPaths, filesOf, isRemovable, keptPath, linkOf, mostWastefulFirst, removablePaths, selectedSize,
  totalWasted, wastedBy,
} from '../../src/views/duplicados/duplicates.ts';
import { duplicateGroup } from '../support/states.ts';

const small = duplicateGroup('0.0', 0, '/h/a.pdf', '/h/b.pdf');
const pair = duplicateGroup('4.9', 1, '/h/c.zip', '/h/d.zip');
const many = duplicateGroup('2.1', 2, '/h/e.mp4', '/h/f.mp4', '/h/g.mp4', '/h/h.mp4');
const locked = duplicateGroup('1.0', 0, '/h/i.wav', '/h/Library/Mail/i.wav', '/h/j.wav');
const groups = [small, pair, many, locked];
const none = new Map<string, string>();
const compare = (left: string, right: string) => left.localeCompare(right);

describe('what duplicates waste', () => {
  it('is every copy but one', () => {
    expect(wastedBy(pair)).toBeCloseTo(4.9);
    expect(wastedBy(many)).toBeCloseTo(6.3);
    expect(totalWasted(groups)).toBeCloseTo(13.2);
  });

  it('a size that cannot be read counts nothing', () => {
    expect(copySize({ ...pair, pairs: [] })).toBe(0);
    expect(copySize({ ...pair, pairs: [[['x', 'mucho']]] })).toBe(0);
    expect(copySize({ ...pair, pairs: [[['x', '-3.0']]] })).toBe(0);
  });

  it('puts the most wasteful group first and keeps equal ones steady', () => {
    expect(mostWastefulFirst(groups, compare)).toEqual([many, pair, locked, small]);
    const twins = [duplicateGroup('1.0', 0, '/h/y', '/i/y'), duplicateGroup('1.0', 0, '/h/x', '/i/x')];
    expect(mostWastefulFirst(twins, compare).map(({ name }) => name)).toEqual(['x', 'y']);
  });
});

describe('the copy that stays', () => {
  it('is the proposed one until another is chosen', () => {
    expect(keptPath(many, none)).toBe('/h/g.mp4');
    expect(keptPath(many, new Map([[many.id, '/h/e.mp4']]))).toBe('/h/e.mp4');
  });

  it('is the proposed one again when the chosen one is gone', () => {
    expect(keptPath(many, new Map([[many.id, '/h/gone.mp4']]))).toBe('/h/g.mp4');
  });

  it('can never be removed, nor can a protected copy', () => {
    expect(isRemovable(pair, '/h/d.zip', none)).toBe(false);
    expect(isRemovable(pair, '/h/c.zip', none)).toBe(true);
    expect(isRemovable(locked, '/h/Library/Mail/i.wav', none)).toBe(false);
  });

  it('leaves at least one copy of every group, whatever is kept', () => {
    for (const keeps of [none, ...many.paths.map((path) => new Map([[many.id, path]]))]) {
      const removable = new Set(removablePaths(groups, keeps));
      for (const group of groups) expect(group.paths.every((path) => removable.has(path))).toBe(false);
    }
  });
});

describe('the size of a selection', () => {
  it('counts each selected copy once', () => {
    expect(selectedSize(groups, new Set(['/h/e.mp4', '/h/f.mp4', '/h/c.zip']))).toBeCloseTo(9.1);
    expect(selectedSize(groups, new Set())).toBe(0);
    expect(selectedSize(groups, new Set(['/elsewhere']))).toBe(0);
  });
});

describe('sizes known to the byte', () => {
  const facts = { sizes: new Map([['/h/b.pdf', 9_000_000]]) };

  it('take the place of the rounded ones', () => {
    expect(copySize(small)).toBe(0);
    expect(copySize(small, facts)).toBe(0.009);
    expect(totalWasted([small], facts)).toBe(0.009);
    expect(selectedSize([small], new Set(['/h/b.pdf']), facts)).toBe(0.009);
  });
});

describe('names of one file', () => {
  // Kept is g; f is another name of it. e and h are one file too.
  const facts = { linked: new Map([[many.id, [['/h/f.mp4', '/h/g.mp4'], ['/h/e.mp4', '/h/h.mp4']]]]) };

  it('are one file each', () => {
    expect(filesOf(many, facts)).toEqual([['/h/e.mp4', '/h/h.mp4'], ['/h/f.mp4', '/h/g.mp4']]);
    expect(filesOf(pair, facts)).toEqual([['/h/c.zip'], ['/h/d.zip']]);
  });

  it('waste nothing besides the file', () => {
    expect(wastedBy(many, facts)).toBeCloseTo(2.1);
    const all = { linked: new Map([[many.id, [many.paths]]]) };
    expect(wastedBy(many, all)).toBe(0);
    expect(extraPaths([many], none, all)).toEqual([]);
  });

  it('are no extra copies when the file stays, and go together when it does not', () => {
    expect(extraPaths([many], none, facts)).toEqual(['/h/e.mp4', '/h/h.mp4']);
    expect(extraPaths([many], new Map([[many.id, '/h/h.mp4']]), facts)).toEqual(['/h/f.mp4', '/h/g.mp4']);
  });

  it('free its space only when all of them go', () => {
    expect(selectedSize([many], new Set(['/h/f.mp4']), facts)).toBe(0);
    expect(selectedSize([many], new Set(['/h/e.mp4']), facts)).toBe(0);
    expect(selectedSize([many], new Set(['/h/e.mp4', '/h/h.mp4']), facts)).toBeCloseTo(2.1);
  });

  it('stay when one of them is protected', () => {
    const mixed = duplicateGroup('1.0', 0, '/h/k.wav', '/h/Library/Mail/l.wav', '/h/m.wav');
    const linked = new Map([[mixed.id, [['/h/Library/Mail/l.wav', '/h/m.wav']]]]);
    expect(extraPaths([mixed], none)).toEqual(['/h/m.wav']);
    expect(extraPaths([mixed], none, { linked })).toEqual([]);
  });

  it('are said to be so', () => {
    expect(linkOf(many, '/h/f.mp4', none, facts)).toEqual({ ofKept: true, names: 2 });
    expect(linkOf(many, '/h/e.mp4', none, facts)).toEqual({ ofKept: false, names: 2 });
    expect(linkOf(pair, '/h/c.zip', none, facts)).toBeNull();
  });
});
