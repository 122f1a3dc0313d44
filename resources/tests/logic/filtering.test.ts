import { describe, expect, it } from 'vitest';
import { formats } from '../../src/language/formats.ts';
import { everything, filterFiles, largestFirst, nextOrder, sortFiles } from '../../src/views/archivos/filtering.ts';
import { bigFile } from '../support/states.ts';

const files = [
  bigFile('/home/ana/Downloads/ñandú.zip', 2, 'descarga', 10),
  bigFile('/home/ana/Documents/Información/árbol.pdf', 1, 'doc', 200),
  bigFile('/home/ana/Movies/zeta.mov', 3, 'video', 400),
  bigFile('/home/ana/Documents/nadie.pdf', 1, 'doc', 739_000),
];
const { compare } = formats.es;
const names = (list: typeof files) => list.map(({ name }) => name);
const sorted = (column: Parameters<typeof nextOrder>[1], direction: 'ascending' | 'descending') =>
  names(sortFiles(files, { column, direction }, compare, (file) => file.kind));

describe('finding large files', () => {
  it('searches names and folders, without minding accents and capitals', () => {
    expect(names(filterFiles(files, { ...everything, search: 'INFORMACION' }))).toEqual(['árbol.pdf']);
    expect(names(filterFiles(files, { ...everything, search: '  documents pdf ' }))).toEqual(['árbol.pdf', 'nadie.pdf']);
    expect(filterFiles(files, { ...everything, search: 'nada' })).toEqual([]);
    expect(filterFiles(files, { ...everything, search: '   ' })).toHaveLength(4);
  });

  it('filters by kind', () => {
    expect(names(filterFiles(files, { ...everything, kind: 'archive' }))).toEqual(['ñandú.zip']);
  });

  it('an age filter never counts an unknown date as old', () => {
    expect(names(filterFiles(files, { ...everything, age: 'days180' }))).toEqual(['árbol.pdf', 'zeta.mov']);
    expect(names(filterFiles(files, { ...everything, age: 'days365' }))).toEqual(['zeta.mov']);
  });
});

describe('sorting large files', () => {
  it('by size, equal sizes by path', () => {
    expect(names(sortFiles(files, largestFirst, compare, ({ kind }) => kind))).toEqual([
      'zeta.mov', 'ñandú.zip', 'árbol.pdf', 'nadie.pdf',
    ]);
  });

  it('by name as the language does', () => {
    expect(sorted('name', 'ascending')).toEqual(['árbol.pdf', 'nadie.pdf', 'ñandú.zip', 'zeta.mov']);
    expect(sorted('name', 'descending')).toEqual(['zeta.mov', 'ñandú.zip', 'nadie.pdf', 'árbol.pdf']);
  });

  it('by last use and by location', () => {
    expect(sorted('lastUse', 'ascending')[0]).toBe('ñandú.zip');
    expect(sorted('path', 'ascending')[0]).toBe('árbol.pdf');
  });

  it('leaves the list it was given as it was', () => {
    const before = names(files);
    sortFiles(files, largestFirst, compare, ({ kind }) => kind);
    expect(names(files)).toEqual(before);
  });

  it('a second press on a column turns it round', () => {
    expect(nextOrder(largestFirst, 'size').direction).toBe('ascending');
    expect(nextOrder(largestFirst, 'name')).toEqual({ column: 'name', direction: 'ascending' });
    expect(nextOrder({ column: 'name', direction: 'ascending' }, 'lastUse').direction).toBe('descending');
  });
});
