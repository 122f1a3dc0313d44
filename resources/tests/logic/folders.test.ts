import { describe, expect, it } from 'vitest';
import { formats } from '../../src/language/formats.ts';
import { fileSize, sizeChange } from '../../src/language/measures.ts';
import { folderContents, folderGrowth, folderSearch, homeFolders } from '../../src/protocol/folderGuards.ts';
import { crumbsOf, shortWay, stepsFor } from '../../src/views/explorar/crumbs.ts';
import { layOutFolder } from '../../src/views/explorar/folderTreemap.ts';
import { isKeptFolder, placesOfCategory } from '../../src/views/explorar/homeFolders.ts';
import {
  amountOf, canExclude, canOpen, counts, findTyped, folderAbove, isLarge, nextOrder, pathBelow, rowsOf, sortRows, totalBytes,
  type Order, type Row,
} from '../../src/views/explorar/rows.ts';
import { indicesInSight, rowsInSight, scrollToRow } from '../../src/selection/windowing.ts';
import { linuxDisk, linuxFolders, linuxHome, macDisk, macFolders } from '../support/folders.ts';
import { home } from '../support/states.ts';

const rowsAt = (path = home): Row[] => rowsOf(macDisk()[path]!, home, homeFolders(macFolders));
const rowNamed = (name: string, path = home): Row => rowsAt(path).find((row) => row.name === name)!;
const names = (rows: readonly Row[]) => rows.map(({ name }) => name);
const { compare } = formats.en;

describe('what the program tells of a folder', () => {
  const told = {
    request: 7, path: '/h/a', found: true, state: 'measured', bytes: 5000, files: 2, unreadable: 1, latest: 9, measured: 10,
    folders: [{ name: 'b', bytes: 4000, files: 1, latest: 8, state: 'measured', unreadable: 0 }],
    entries: [{ name: 'c', bytes: 1000, modified: 7, linked: true }], more: 3,
  };

  it('is read as it is', () => {
    expect(folderContents(told)).toEqual(told);
  });

  it('a name that is no single component never becomes part of a path', () => {
    const names = ['../x', '..', '.', '', 'a/b', 7, null];
    const read = folderContents({
      ...told, folders: names.map((name) => ({ ...told.folders[0], name })), entries: names.map((name) => ({ ...told.entries[0], name })),
    })!;
    expect(read.folders).toEqual([]);
    expect(read.entries).toEqual([]);
  });

  it('a name comes once, and as a folder rather than as a file', () => {
    const read = folderContents({ ...told, folders: [told.folders[0], told.folders[0]], entries: [{ ...told.entries[0], name: 'b' }] })!;
    expect(names(rowsOf(read, '/h', null))).toEqual(['b']);
  });

  it('bytes below zero and missing ones are unknown, not nothing', () => {
    const read = folderContents({ ...told, folders: [-1, undefined, 'x', Number.NaN, 0].map((bytes, index) => ({ ...told.folders[0], name: `${index}`, bytes })) })!;
    expect(read.folders.map(({ bytes }) => bytes)).toEqual([null, null, null, null, 0]);
  });

  it('a state that nobody knows is one that nothing can be done with', () => {
    const read = folderContents({ ...told, folders: [{ ...told.folders[0], state: 'splendid', bytes: 0 }] })!;
    expect(read.folders[0]!.state).toBe('unreadable');
    expect(rowsOf(read, '/h', null)[0]!.lock).toBe('notMeasured');
  });

  it('names of one file are known by its inode, where the program tells it', () => {
    const entries = [{ inode: '7', linked: true }, { inode: '0', linked: true }, { inode: '7', linked: false }, { inode: 7, linked: true }];
    const read = folderContents({ ...told, entries: entries.map((entry, index) => ({ ...told.entries[0], ...entry, name: `${index}` })) })!;
    expect(read.entries.map(({ inode }) => inode)).toEqual(['7', undefined, undefined, undefined]);
  });

  it('a path that is not absolute is no folder', () => {
    expect(folderContents({ ...told, path: 'a' })).toMatchObject({ found: false, path: '' });
    expect(folderContents([])).toBeNull();
    expect(folderContents({ request: 1, path: '', found: false, state: 'unmeasured' })).toMatchObject({ found: false, state: 'unmeasured', folders: [] });
  });

  it('of a search what is no path is left out', () => {
    const read = folderSearch({ request: 2, text: 'a', total: 'x', found: [{ path: '/h/a', bytes: 1, files: 2, latest: 3 }, { path: 'a' }, null] });
    expect(read).toEqual({ request: 2, text: 'a', total: 1, found: [{ path: '/h/a', bytes: 1, files: 2, latest: 3 }] });
  });

  it('of growth what is no number is left out', () => {
    const read = folderGrowth({ path: '/h', since: 5, folders: { a: 12, b: -3, c: '9', d: null } })!;
    expect([...read.folders]).toEqual([['a', 12], ['b', -3]]);
    expect(folderGrowth({ path: '', folders: {} })).toBeNull();
  });
});

describe('the rows of a folder', () => {
  it('hold folders and files, the largest first, what is unknown last in either direction', () => {
    const order: Order = { column: 'size', direction: 'descending' };
    const down = names(sortRows(rowsAt(), order, compare));
    expect(down.slice(0, 3)).toEqual(['Library', 'Pictures', 'Movies']);
    expect(down.indexOf('imagen de disco.img')).toBeLessThan(down.indexOf('Desktop'));
    const up = names(sortRows(rowsAt(), { ...order, direction: 'ascending' }, compare));
    const unknown = ['Compartida', 'Copia de Marta', 'Espejo', 'Proyecto nuevo', 'Respaldo'];
    expect(down.slice(-5)).toEqual(unknown);
    expect(up.slice(-5)).toEqual(unknown);
    expect(up[0]).toBe('.zsh_history');
  });

  it('sort by each column', () => {
    const first = (order: Order, growth?: Map<string, number>) => sortRows(rowsAt(), order, compare, growth)[0]!.name;
    expect(first({ column: 'name', direction: 'ascending' })).toBe('.zsh_history');
    expect(first({ column: 'files', direction: 'descending' })).toBe('Library');
    expect(first({ column: 'changed', direction: 'ascending' })).toBe('Compartida');
    expect(first({ column: 'growth', direction: 'descending' }, new Map([['Music', 5], ['Movies', 9]]))).toBe('Movies');
    expect(first({ column: 'growth', direction: 'ascending' }, new Map([['Music', 5], ['Movies', 9]]))).toBe('Music');
  });

  it('a second press on a head turns the order round', () => {
    const once = nextOrder({ column: 'size', direction: 'descending' }, 'name');
    expect(once).toEqual({ column: 'name', direction: 'ascending' });
    expect(nextOrder(once, 'name').direction).toBe('descending');
    expect(nextOrder(once, 'changed').direction).toBe('descending');
  });

  it('another disk and what was not measured count to no share', () => {
    const disk = macDisk();
    expect(totalBytes(rowsAt())).toBe(disk[home]!.bytes);
    for (const name of ['Respaldo', 'Compartida', 'Copia de Marta', 'Espejo', 'Proyecto nuevo']) expect(counts(rowNamed(name)), name).toBe(false);
    expect(rowNamed('Respaldo')).toMatchObject({ bytes: 812_000_000_000, total: 2_000_000_000_000 });
  });

  it('only what can be moved, opened or excluded offers it', () => {
    const library = `${home}/Library`;
    const facts = (row: Row) => [row.lock, canOpen(row), canExclude(row)];
    expect(facts(rowNamed('Movies'))).toEqual(['homeFolder', true, true]);
    expect(facts(rowNamed('Proyecto nuevo'))).toEqual([null, false, true]);
    expect(facts(rowNamed('Copia de Marta'))).toEqual(['notMeasured', false, false]);
    expect(facts(rowNamed('Compartida'))).toEqual(['notMeasured', false, true]);
    expect(facts(rowNamed('Respaldo'))).toEqual(['notMeasured', false, false]);
    expect(facts(rowNamed('Espejo'))).toEqual(['notMeasured', false, false]);
    expect(facts(rowNamed('Mail', library))).toEqual(['protected', false, false]);
    expect(facts(rowNamed('Velto', `${library}/Application Support`))).toEqual(['notMeasured', false, false]);
    expect(facts(rowNamed('Caches', library))).toEqual(['homeFolder', true, true]);
    expect(facts(rowNamed('sin ordenar', `${home}/Downloads`))).toEqual([null, true, true]);
    expect(facts(rowNamed('Photos Library.photoslibrary', `${home}/Pictures`))[0]).toBe('protected');
    expect(facts(rowNamed('imagen de disco.img'))).toEqual([null, false, true]);
  });

  it('what moving is about is added up, and asked about from 1 GB or 1,000 files', () => {
    const film = rowNamed('Boda Clara y Hugo.mp4', `${home}/Movies`);
    expect(amountOf([film])).toEqual({ bytes: 12_600_000_000, files: 1, isPartial: false });
    expect(isLarge({ bytes: 1_000_000_000, files: 1000, isPartial: false })).toBe(false);
    expect(isLarge({ bytes: 1_000_000_001, files: 1, isPartial: false })).toBe(true);
    expect(isLarge({ bytes: 5, files: 1001, isPartial: false })).toBe(true);
    expect(isLarge(amountOf([rowNamed('Proyecto nuevo')]))).toBe(true);
  });

  it('letters find the next name, whatever marks and capitals it has', () => {
    const rows = sortRows(rowsAt(`${home}/Documents`), { column: 'name', direction: 'ascending' }, compare);
    const from = (name: string) => names(rows).indexOf(name);
    expect(findTyped(rows, -1, 'm')!.name).toBe('Máquinas virtuales');
    expect(findTyped(rows, from('Contratos'), 'c')!.name).toBe('Copia antigua del portátil');
    expect(findTyped(rows, from('Copia antigua del portátil'), 'c')!.name).toBe('Contratos');
    expect(findTyped(rows, from('Contratos'), 'cop')!.name).toBe('Copia antigua del portátil');
    expect(findTyped(rows, 0, 'zz')).toBeNull();
    expect(findTyped([], -1, 'a')).toBeNull();
  });
});

describe('the folders of a home', () => {
  const told = homeFolders({ kept: [home, `${home}/Документы`, `${home}/Media`, `${home}/Media/Fotos`, 'x', 7], categories: { fotos: [`${home}/Media/Fotos`], docs: 'x', apps: [1] } })!;

  it('are those that the program names, at any depth', () => {
    for (const path of ['', '/Документы', '/Media', '/Media/Fotos']) expect(isKeptFolder(`${home}${path}`, home, told), path).toBe(true);
    for (const path of ['/Documents', '/Sites', '/Media/Fotos/2024']) expect(isKeptFolder(`${home}${path}`, home, told), path).toBe(false);
    expect(isKeptFolder(`${home}/Документы`, '', told)).toBe(false);
    expect(told.kept.size).toBe(4);
  });

  it('each one directly inside stays until they are named', () => {
    expect(isKeptFolder(`${home}/Sites`, home, null)).toBe(true);
    expect(isKeptFolder(`${home}/Sites/a`, home, null)).toBe(false);
    expect(homeFolders(7)).toBeNull();
    expect(homeFolders({})).toEqual({ kept: new Set(), categories: new Map() });
  });

  it('a category leads to its own', () => {
    const mac = (id: string) => placesOfCategory(id, home, macDisk()[home]!.folders, homeFolders(macFolders));
    const linux = (id: string) => placesOfCategory(id, linuxHome, linuxDisk()[linuxHome]!.folders, homeFolders(linuxFolders));
    expect(mac('descargas')).toEqual([{ path: `${home}/Downloads`, key: `${home}/Downloads` }]);
    expect(mac('fotos').map(({ key }) => key)).toEqual([`${home}/Pictures`, `${home}/Movies`]);
    expect(mac('apps')).toHaveLength(1);
    expect(linux('descargas').map(({ path }) => path)).toEqual([`${linuxHome}/Descargas`]);
    expect(linux('apps')[0]).toEqual({ path: `${linuxHome}/.local/share`, key: `${linuxHome}/.local` });
    expect(linux('sistema')).toEqual([]);
    const media = [{ name: 'Media', bytes: 5 }, { name: 'Otra', bytes: 7 }];
    expect(placesOfCategory('fotos', home, media, told)).toEqual([{ path: `${home}/Media/Fotos`, key: `${home}/Media` }]);
    expect(placesOfCategory('fotos', home, [], told)).toEqual([]);
    expect(placesOfCategory('fotos', home, media, null)).toEqual([]);
  });
});

describe('the way to a folder', () => {
  it('begins at the home, or at the root where it does not lie there', () => {
    expect(crumbsOf(`${home}/a/b`, home)).toEqual([{ path: home, name: null }, { path: `${home}/a`, name: 'a' }, { path: `${home}/a/b`, name: 'b' }]);
    expect(crumbsOf('/Users/marina2', home).map(({ path }) => path)).toEqual(['/', '/Users', '/Users/marina2']);
    expect(crumbsOf('/', home)).toEqual([{ path: '/', name: '/' }]);
  });

  it('a long one keeps its beginning and its end', () => {
    const { shown, hidden } = shortWay(crumbsOf(`${home}/a/b/c/d/e/f/g`, home), stepsFor(60));
    expect(shown.map(({ name }) => name)).toEqual([null, 'd', 'e', 'f', 'g']);
    expect(hidden.map(({ name }) => name)).toEqual(['a', 'b', 'c']);
    expect(shortWay(crumbsOf(`${home}/a/b`, home), 6).hidden).toEqual([]);
    const narrow = shortWay(crumbsOf(`${home}/a/b/c`, home), stepsFor(4));
    expect(narrow.shown.map(({ name }) => name)).toEqual([null, 'c']);
    expect(narrow.hidden.at(-1)).toEqual({ path: `${home}/a/b`, name: 'b' });
  });

  it('up and down are each other’s way back', () => {
    for (const path of ['/', '/a', '/a/b']) expect(folderAbove(pathBelow(path, 'x'))).toBe(path);
    expect(folderAbove('/')).toBeNull();
  });
});

describe('a long list', () => {
  const sight = { top: 44_000, height: 440, row: 44 };

  it('has the rows in sight and some around them', () => {
    const { first, last } = rowsInSight(sight, 10_000);
    expect([first, last]).toEqual([988, 1022]);
    expect(rowsInSight({ ...sight, top: 0 }, 3)).toEqual({ first: 0, last: 3 });
    expect(rowsInSight(sight, 0)).toEqual({ first: 0, last: 0 });
    expect(rowsInSight({ top: 0, height: 0, row: 0 }, 100).last).toBe(12);
  });

  it('never lets go of the row that holds the focus', () => {
    expect(indicesInSight(sight, 10_000, 3)[0]).toBe(3);
    expect(indicesInSight(sight, 10_000, 9_999).at(-1)).toBe(9_999);
    expect(indicesInSight(sight, 10_000, 1000).filter((index) => index === 1000)).toHaveLength(1);
    expect(indicesInSight(sight, 10_000, -1)).toHaveLength(34);
  });

  it('scrolls no further than it takes to see a row whole', () => {
    expect(scrollToRow(sight, 1003)).toBe(44_000);
    expect(scrollToRow(sight, 999)).toBe(43_956);
    expect(scrollToRow(sight, 1010)).toBe(44_044);
  });
});

describe('names of one file', () => {
  it('count once, in what is selected and in the whole', () => {
    const entry = (name: string, inode?: string) => ({ name, bytes: 4000, modified: 1, linked: inode !== undefined, ...(inode && { inode }) });
    const entries = [entry('a', '7'), entry('b', '7'), entry('c', '8'), entry('d'), entry('e')];
    const rows = rowsOf({ ...macDisk()[home]!, folders: [], entries }, home, null);
    expect(totalBytes(rows)).toBe(16_000);
    expect(amountOf(rows)).toEqual({ bytes: 16_000, files: 5, isPartial: false });
    expect(amountOf(rows.slice(1, 3)).bytes).toBe(8000);
  });
});

describe('the map of a folder', () => {
  it('has the same content as the table, each as large as its share', () => {
    const rows = rowsAt();
    const { cells, small } = layOutFolder(rows, 900, 400);
    const shown = cells.reduce((sum, { row }) => sum + row.bytes!, 0) + (small?.bytes ?? 0);
    expect(shown).toBe(totalBytes(rows));
    expect(cells.length + (small?.count ?? 0)).toBe(rows.filter((row) => counts(row) && row.bytes! > 0).length);
    const area = (name: string) => cells.filter(({ row }) => row.name === name).map(({ width, height }) => width * height)[0]!;
    expect(area('Library') / area('Movies')).toBeCloseTo(rowNamed('Library').bytes! / rowNamed('Movies').bytes!, 0);
  });

  it('of ten thousand files shows those that can be told apart', () => {
    const entries = Array.from({ length: 10_000 }, (_, index) => ({ name: `f${index}`, bytes: 1000 + index, modified: 1, linked: false }));
    const rows = rowsOf({ ...macDisk()[home]!, folders: [], entries }, home, null);
    const { cells, small } = layOutFolder(rows, 900, 400);
    expect(cells.length).toBeLessThanOrEqual(300);
    expect(cells.length + small!.count).toBe(10_000);
    expect(layOutFolder([], 900, 400)).toEqual({ cells: [], small: null });
    expect(layOutFolder(rows, 0, 400)).toEqual({ cells: [], small: null });
  });
});

describe('sizes in whole bytes', () => {
  it('have the unit that people read', () => {
    const size = (bytes: number) => fileSize(bytes, formats.en).replaceAll('\u00a0', ' ');
    expect([0, 12, 4096, 9_400_000, 94_300_000, 999_600_000, 41_700_000_000, 2e12].map(size)).toEqual([
      '0 KB', '< 1 KB', '4.1 KB', '9.4 MB', '94 MB', '1 GB', '41.7 GB', '2 TB',
    ]);
    expect(fileSize(9_400_000, formats.es)).toBe('9,4\u00a0MB');
  });

  it('a change has its sign before it', () => {
    expect(sizeChange(1.2e9, formats.en)).toBe('+1.2\u00a0GB');
    expect(sizeChange(-3e8, formats.en)).toBe('\u2212300\u00a0MB');
    expect(sizeChange(0, formats.en)).toBe('0\u00a0KB');
  });
});
