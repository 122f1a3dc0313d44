import { describe, expect, it } from 'vitest';
import {
  foldersOfCopies, foundGroups, keepsOf, keptByRule, orderedGroups, selectInFolder, type Choices,
} from '../../src/views/duplicados/choices.ts';
import { extraPaths, removablePaths, selectedSize, wastedBy } from '../../src/views/duplicados/duplicates.ts';
import { monthsOf } from '../../src/views/historial/months.ts';
import { sharable, sharingEnd } from '../../src/protocol/sharingGuards.ts';
import { duplicateGroup } from '../support/states.ts';

const film = duplicateGroup('2.0', 1, '/h/Pictures/Summer/film.mp4', '/h/Downloads/film.mp4', '/h/Downloads/old/film (1).mp4');
const song = duplicateGroup('0.5', 0, '/h/Music/song.wav', '/h/Downloads/song.wav');
const twins = duplicateGroup('1.0', 0, '/h/Downloads/a.zip', '/h/Downloads/b.zip');
const groups = [film, song, twins];
const dates = new Map([
  ['/h/Pictures/Summer/film.mp4', 100], ['/h/Downloads/film.mp4', 300], ['/h/Downloads/old/film (1).mp4', 200],
  ['/h/Music/song.wav', 900], ['/h/Downloads/song.wav', 800],
]);
const compare = (left: string, right: string) => left.localeCompare(right);
const plain: Choices = { byHand: new Map(), reference: null, rule: 'newest' };
const keptOf = (choices: Partial<Choices>) => [...keepsOf(groups, { ...plain, ...choices }, dates).values()];

describe('which copy stays', () => {
  it('follows the rule, for all groups', () => {
    expect(keptOf({ rule: 'newest' })).toEqual(['/h/Downloads/film.mp4', '/h/Music/song.wav', '/h/Downloads/a.zip']);
    expect(keptOf({ rule: 'oldest' })).toEqual(['/h/Pictures/Summer/film.mp4', '/h/Downloads/song.wav', '/h/Downloads/a.zip']);
    expect(keptOf({ rule: 'shortest' })).toEqual(['/h/Downloads/film.mp4', '/h/Music/song.wav', '/h/Downloads/a.zip']);
  });

  it('is the proposed one where dates are not known', () => {
    expect(keptByRule(film, film.paths, 'oldest', new Map())).toBe('/h/Downloads/film.mp4');
    expect(keptByRule(film, film.paths, 'oldest', new Map([['/h/Downloads/film.mp4', 1]]))).toBe('/h/Downloads/film.mp4');
  });

  it('lies in the reference folder where a group has a copy there, whatever the rule says', () => {
    expect(keptOf({ reference: '/h/Pictures' })[0]).toBe('/h/Pictures/Summer/film.mp4');
    expect(keptOf({ reference: '/h/Pictures' })[1]).toBe('/h/Music/song.wav');
    expect(keptOf({ reference: '/h/Downloads', rule: 'oldest' })[0]).toBe('/h/Downloads/old/film (1).mp4');
  });

  it('is what was chosen by hand before all else', () => {
    const byHand = new Map([[film.id, '/h/Downloads/old/film (1).mp4'], [song.id, '/h/gone.wav']]);
    expect(keptOf({ byHand, reference: '/h/Pictures' }).slice(0, 2)).toEqual(['/h/Downloads/old/film (1).mp4', '/h/Music/song.wav']);
  });
});

describe('a reference folder', () => {
  it('keeps all of its copies, also those besides the one that stays', () => {
    const reference = '/h/Downloads';
    const keeps = keepsOf(groups, { ...plain, reference }, dates);
    expect(removablePaths(groups, keeps, { reference })).toEqual(['/h/Pictures/Summer/film.mp4', '/h/Music/song.wav']);
    expect(extraPaths(groups, keeps, { reference })).toEqual(['/h/Pictures/Summer/film.mp4', '/h/Music/song.wav']);
  });

  it('is no folder whose name only begins alike', () => {
    const reference = '/h/Down';
    const keeps = keepsOf(groups, { ...plain, reference }, dates);
    expect(removablePaths(groups, keeps, { reference })).toHaveLength(4);
  });
});

describe('selecting all copies in a folder', () => {
  const inFolder = (folder: string, choices: Partial<Choices> = {}) => {
    const keeps = keepsOf(groups, { ...plain, ...choices }, dates);
    return selectInFolder(groups, folder, keeps, 'newest', dates);
  };

  it('lets a copy elsewhere stay where there is one', () => {
    const { keeps, paths } = inFolder('/h/Downloads');
    expect(keeps.get(film.id)).toBe('/h/Pictures/Summer/film.mp4');
    expect(keeps.has(song.id)).toBe(false);
    expect(paths).toEqual(['/h/Downloads/film.mp4', '/h/Downloads/old/film (1).mp4', '/h/Downloads/song.wav', '/h/Downloads/b.zip']);
  });

  it('never takes the last copy of a group', () => {
    for (const folder of ['/h', '/h/Downloads', '/h/Music', '/h/Pictures/Summer', '/h/none']) {
      const { paths } = inFolder(folder);
      for (const group of groups) expect(group.paths.every((path) => paths.includes(path))).toBe(false);
    }
  });
});

describe('folders to choose from', () => {
  it('are those that tell copies apart, with the most groups first', () => {
    expect(foldersOfCopies(groups, '/h', 10)).toEqual(['/h/Downloads', '/h/Music', '/h/Pictures', '/h/Downloads/old', '/h/Pictures/Summer']);
    expect(foldersOfCopies(groups, '/h', 2)).toHaveLength(2);
    expect(foldersOfCopies([twins], '/h', 10)).toEqual([]);
  });
});

describe('the list of groups', () => {
  it('is ordered by space, name or number of copies', () => {
    const names = (order: 'space' | 'name' | 'copies') => orderedGroups(groups, order, compare, {}).map(({ name }) => name);
    expect(names('space')).toEqual(['film.mp4', 'a.zip', 'song.wav']);
    expect(names('name')).toEqual(['a.zip', 'film.mp4', 'song.wav']);
    expect(names('copies')[0]).toBe('film.mp4');
  });

  it('is searched by the place of any copy', () => {
    expect(foundGroups(groups, (text) => text.includes('Music')).map(({ name }) => name)).toEqual(['song.wav']);
    expect(foundGroups(groups, (text) => text.includes('old')).map(({ name }) => name)).toEqual(['film.mp4']);
  });
});

describe('copies that share their space', () => {
  const one = new Set(['/h/Downloads/film.mp4']);

  it('are no waste, and their removal brings nothing', () => {
    expect(wastedBy(film, { one })).toBeCloseTo(2);
    expect(selectedSize(groups, new Set(['/h/Downloads/film.mp4', '/h/Downloads/song.wav']), { one })).toBeCloseTo(0.5);
    const keeps = new Map([[film.id, '/h/Pictures/Summer/film.mp4']]);
    expect(extraPaths([film], keeps, { one })).toEqual(['/h/Downloads/old/film (1).mp4']);
  });
});

describe('what is told of sharing', () => {
  it('is read, and what cannot be is left out', () => {
    const told = sharable({
      request: 4,
      groups: {
        a: { kept: '/h/a', copies: [{ path: '/h/b', bytes: 12, exact: false }, { bytes: 3 }, { path: '/h/c', reason: 'new one' }] },
        b: 'x',
      },
    });
    expect(told).toEqual({
      request: 4,
      groups: new Map([['a', { kept: '/h/a', copies: [
        { path: '/h/b', bytes: 12, exact: false }, { path: '/h/c', bytes: 0, exact: true, reason: 'other' },
      ] }]]),
    });
    expect(sharable(null)).toBeNull();
    expect(sharingEnd({ files: 2, bytes: -1, stays: null })).toEqual({ files: 2, bytes: 0, exact: true, stopped: false, stays: [] });
  });
});

describe('the history', () => {
  it('counts as removed only what was removed', () => {
    const entry = (kind: string, gb: number) => ({ id: kind, ts: 1_700_000_000, gb, kind, items: [] });
    expect(monthsOf([entry('share', 5), entry('wind', 2)])).toMatchObject([{ gb: 2, entries: [{ kind: 'share' }, { kind: 'wind' }] }]);
  });
});
