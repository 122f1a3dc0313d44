import { describe, expect, it } from 'vitest';
import { categoryOf } from '../../src/views/inicio/parents.ts';
import { branches, layOut, type Box } from '../../src/views/inicio/treemap.ts';
import { bigFile, categories, fullState, home } from '../support/states.ts';

describe('the category of a big file', () => {
  it.each([
    ['descarga', `${home}/Downloads/Music/x.mp3`, 'descargas'],
    ['app', `${home}/Library/Caches/x`, 'apps'],
    ['app', `${home}/Applications/Game.app/data`, 'apps'],
    ['video', `${home}/Movies/x.mov`, 'fotos'],
    ['video', `${home}/Pictures/x.tif`, 'fotos'],
    ['video', `${home}/Music/x.flac`, 'musica'],
    ['video', `${home}/Movies/Music/clip.mp4`, 'fotos'],
    ['video', `${home}/Music/Movies/clip.mp4`, 'musica'],
    ['video', `${home}/x.mp3`, 'musica'],
    ['video', `${home}/x.mov`, 'fotos'],
    ['video', '/home/ana/Música/x.mov', 'musica'],
    ['video', '/home/ana/Vídeos/x.mp3', 'fotos'],
    ['doc', `${home}/Documents/Library/x.pdf`, 'docs'],
    ['doc', `${home}/Desktop/x`, 'docs'],
    ['doc', `${home}/Library/Application Support/MobileSync/Backup/x`, 'sistema'],
    ['doc', `${home}/Library/Documents/x`, 'sistema'],
    ['doc', `${home}/proyectos/x.bin`, 'docs'],
    ['unheard-of', `${home}/x`, 'docs'],
  ])('%s %s', (kind, path, expected) => expect(categoryOf({ kind, path })).toBe(expected));

  it('a file named like a folder does not count as one', () => {
    expect(categoryOf({ kind: 'video', path: `${home}/music` })).toBe('fotos');
  });

  it('knows a folder however its accents are written', () => {
    expect(categoryOf({ kind: 'video', path: '/home/ana/Música/x.mov'.normalize('NFD') })).toBe('musica');
  });
});

describe('what the map shows', () => {
  const cats = categories([100, 50, 0, 10, 0, 20], [1, 1, 0, 1, 0, 1]);

  it('a category is its big files and one remainder', () => {
    const files = [bigFile(`${home}/Movies/a.mov`, 60, 'video', 1), bigFile(`${home}/Movies/b.mov`, 5, 'video', 1)];
    const [photos] = branches(cats, files, 1);
    expect(photos!.children.map(({ gb }) => gb)).toEqual([60, 5, 35]);
    expect(photos!.children.at(-1)!.file).toBeNull();
  });

  it('files too small to see are part of the remainder', () => {
    const files = [bigFile(`${home}/Movies/a.mov`, 60, 'video', 1), bigFile(`${home}/Movies/b.mov`, 5, 'video', 1)];
    expect(branches(cats, files, 6)[0]!.children.map(({ gb }) => gb)).toEqual([60, 40]);
  });

  it('files too small for a cell are one cell together, when together they are large enough', () => {
    const files = Array.from({ length: 37 }, (_, index) => bigFile(`${home}/Movies/${index}.mov`, 0.25, 'video', 1));
    const photos = branches(cats, files, 6)[0]!;
    expect(photos.children.map(({ gb, count }) => [gb, count])).toEqual([[9.25, 37], [90.8, 0]]);
    expect(layOut(cats, files, 900, 360).find(({ id }) => id === 'fotos')!.together).toMatchObject({ count: 37, gb: 9.25 });
  });

  it('categories without space are left out', () => {
    expect(branches(cats, [], 1).map(({ category }) => category.id)).toEqual(['fotos', 'apps', 'descargas', 'sistema']);
  });

  it('files larger than their rounded category leave no negative remainder', () => {
    const files = [bigFile(`${home}/Downloads/a.iso`, 10.4, 'descarga', 1)];
    const downloads = branches(cats, files, 1).find(({ category }) => category.id === 'descargas')!;
    expect(downloads.children.map(({ gb }) => gb)).toEqual([10.4]);
  });
});

describe('the layout of the map', () => {
  const area = ({ width, height }: Box) => width * height;
  const state = fullState();
  const areas = layOut(state.cats, state.files, 900, 360);

  it('stays inside its frame and overlaps nowhere', () => {
    const boxes = areas.flatMap(({ files, rest }) => [...files, ...(rest ? [rest] : [])]);
    for (const box of boxes) {
      expect(box.left).toBeGreaterThanOrEqual(0);
      expect(box.top).toBeGreaterThanOrEqual(0);
      expect(box.left + box.width).toBeLessThanOrEqual(900);
      expect(box.top + box.height).toBeLessThanOrEqual(360);
    }
    for (const [index, one] of boxes.entries()) {
      for (const other of boxes.slice(index + 1)) {
        const apart =
          one.left + one.width <= other.left || other.left + other.width <= one.left ||
          one.top + one.height <= other.top || other.top + other.height <= one.top;
        expect(apart).toBe(true);
      }
    }
  });

  it('gives a category about its share of the area', () => {
    const whole = areas.reduce((sum, each) => sum + area(each), 0);
    const gb = areas.reduce((sum, each) => sum + each.gb, 0);
    for (const each of areas) expect(Math.abs(area(each) / whole - each.gb / gb)).toBeLessThan(0.03);
  });

  it('has nothing to show for an empty disk or no room', () => {
    expect(layOut(categories([], []), [], 900, 360)).toEqual([]);
    expect(layOut(state.cats, state.files, 0, 360)).toEqual([]);
  });
});
