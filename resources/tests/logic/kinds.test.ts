import { describe, expect, it } from 'vitest';
import { kindOf } from '../../src/views/archivos/kinds.ts';
import { everything, filterFiles } from '../../src/views/archivos/filtering.ts';
import { bigFile, fullState, home } from '../support/states.ts';

describe('what people call a file', () => {
  it.each([
    ['Movies/Boda.MP4', 'video', 'video'],
    ['Pictures/negativos.tif', 'video', 'picture'],
    ['Documents/copia.tar.gz', 'doc', 'archive'],
    ['Documents/debian.iso', 'doc', 'diskImage'],
    ['Documents/copia.dmg', 'doc', 'diskImage'],
    ['Downloads/Programa.dmg', 'descarga', 'installer'],
    ['Downloads/programa.deb', 'descarga', 'installer'],
    ['Library/Containers/com.docker.docker/Data/vms/0/data/Disk.raw', 'app', 'virtualMachine'],
    ['Pictures/foto.raw', 'video', 'picture'],
    ['Documents/Windows 11.vmdk', 'doc', 'virtualMachine'],
    ['Documents/.zip', 'doc', 'other'],
    ['Documents/sin punto', 'doc', 'other'],
    ['a.zip/datos', 'doc', 'other'],
  ])('%s', (path, kind, expected) => expect(kindOf({ path: `${home}/${path}`, kind })).toBe(expected));
});

describe('narrowing large files', () => {
  const { files } = fullState();
  const names = (change: object) => filterFiles(files, { ...everything, ...change }).map(({ name }) => name);

  it('by the smallest size', () => {
    expect(names({ least: 20 })).toEqual(['Islandia - montaje final (4K, HDR, 60 fps).mov', 'Disk.raw']);
  });

  it('by category, as the map of the overview counts them', () => {
    expect(names({ category: 'descargas' })).toHaveLength(4);
    expect(names({ category: 'musica' })).toContain('Vinilos digitalizados.flac');
    expect(filterFiles([bigFile('/h/x.mov', 1, 'video', 1)], { ...everything, category: 'docs' })).toEqual([]);
  });
});
