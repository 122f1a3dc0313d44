/** Made-up disks, as the program would describe them. */
import type { BigFile, DiskState, DuplicateGroup, Settings } from '../../src/protocol/protocol.ts';

export const home = '/Users/marina';

export const defaultSettings: Settings = {
  retention: 30,
  autoMaintenance: false,
  frequency: 'daily',
  language: 'en',
  rules: { systemTrash: true, oldDownloads: true, caches: true, duplicates: false },
};

const categoryRows: [id: string, name: string, icon: string, col: string, eq: string][] = [
  ['fotos', 'Fotos y vídeo', 'photo', '#E8355A', 'aprox. 150.000 fotos o un año de vídeos caseros'],
  ['apps', 'Aplicaciones', 'apps', '#2563EB', 'como 40 juegos grandes'],
  ['docs', 'Documentos', 'doc', '#E88F0C', 'como 8.000 libros digitales'],
  ['descargas', 'Descargas', 'tray', '#0BA5D6', 'como 190 películas en HD'],
  ['musica', 'Música y audio', 'music', '#7C3AED', 'como 6.500 canciones'],
  ['sistema', 'macOS y Datos del sistema', 'cpu', '#8B919C', 'el espacio esencial para que tu Mac funcione'],
];

export function categories(gb: number[], files: number[]): DiskState['cats'] {
  return categoryRows.map(([id, name, icon, col, eq], index) => ({
    id, name, icon, col, eq, gb: gb[index] ?? 0, files: files[index] ?? 0, sub: [],
  }));
}

/** The Spanish text the program sends; the page computes its own. */
function relative(days: number): string {
  if (days < 1) return 'hoy';
  if (days < 30) return `hace ${Math.trunc(days)} días`;
  return `hace ${Math.trunc(days / 30)} meses`;
}

export function bigFile(path: string, gb: number, kind: string, lastN: number, isProtected = false): BigFile {
  return { name: path.slice(path.lastIndexOf('/') + 1), gb, kind, last: relative(lastN), lastN, path, isProtected };
}

const someFiles: BigFile[] = [
  bigFile(`${home}/Movies/Viaje a Islandia/Islandia - montaje final (4K, HDR, 60 fps).mov`, 41.7, 'video', 12),
  bigFile(`${home}/Library/Containers/com.example.desktop/Data/vms/0/data/Disk.raw`, 34.2, 'app', 0),
  bigFile(`${home}/Pictures/Photos Library.photoslibrary/originals/A/A0F1C2D3.mov`, 18.9, 'video', 210, true),
  bigFile(`${home}/Downloads/macOS 27 beta installer.dmg`, 14.3, 'descarga', 402),
  bigFile(`${home}/Movies/Boda Clara y Hugo.mp4`, 12.6, 'video', 930),
  bigFile(`${home}/Documents/Máquinas virtuales/Contabilidad Windows 11.vmdk`, 11.8, 'doc', 61),
  bigFile(`${home}/Library/Application Support/MobileSync/Backup/00008110-001A2D3C/Manifest.db`, 9.4, 'doc', 33, true),
  bigFile(`${home}/Downloads/dataset-traffic-2024.tar.gz`, 8.8, 'descarga', 388),
  bigFile(`${home}/Music/Logic/Sesiones/Concierto Teatro Real - multipista.logicx.zip`, 7.6, 'video', 140),
  bigFile(`${home}/Documents/Copia antigua del portátil/usuarios-y-documentos.zip`, 6.9, 'doc', 1240),
  bigFile(`${home}/Movies/Entrevistas/entrevista_cam_B_sin_cortes.mov`, 6.2, 'video', 300),
  bigFile(`${home}/Library/Application Support/Steam/steamapps/common/Terra/data.pak`, 5.7, 'app', 25),
  bigFile(`${home}/Downloads/Curso de fotografía completo.zip`, 4.9, 'descarga', 700),
  bigFile(`${home}/Pictures/Escaneos/negativos-1987-2003.tif`, 3.8, 'video', 80),
  bigFile(`${home}/Music/Discos/Vinilos digitalizados.flac`, 3.1, 'video', 45),
  bigFile(`${home}/Documents/Facturas/archivo-facturas-2015-2022.7z`, 2.2, 'doc', 95),
  bigFile(`${home}/Downloads/Presentación junta.key`, 1.1, 'descarga', 1),
  bigFile(`${home}/Library/Caches/org.example.Render/frames.cache`, 0.9, 'app', 3),
  bigFile(`${home}/Music/Podcast/episodio-114-sin-editar.wav`, 0.8, 'video', 19),
  bigFile(`${home}/Documents/Tesis/anexos.pdf`, 0.3, 'doc', 739_000),
];

let nextHash = 1;

export function duplicateGroup(gb: string, recommended: number, ...paths: string[]): DuplicateGroup {
  const name = (path: string) => path.slice(path.lastIndexOf('/') + 1);
  return {
    id: (nextHash++).toString(16).padStart(64, '0'),
    name: name(paths[0]!),
    pairs: paths.map((path) => [[name(path), gb]]),
    paths,
    recommended,
  };
}

function someDuplicates(): DuplicateGroup[] {
  return [
    duplicateGroup('0.0', 0, `${home}/Documents/Contratos/alquiler.pdf`, `${home}/Downloads/alquiler (1).pdf`),
    duplicateGroup(
      '4.9', 1,
      `${home}/Downloads/Curso de fotografía completo.zip`,
      `${home}/Documents/Cursos/Curso de fotografía completo.zip`,
    ),
    duplicateGroup(
      '2.1', 2,
      `${home}/Movies/Verano/playa.mp4`,
      `${home}/Desktop/para enviar a la abuela/playa.mp4`,
      `${home}/Documents/Copia antigua del portátil/Escritorio/Vídeos sin ordenar/2019/Verano/playa copia.mp4`,
      `${home}/Downloads/playa (2).mp4`,
    ),
    duplicateGroup(
      '0.6', 0,
      `${home}/Music/Discos/maqueta.wav`,
      `${home}/Library/Mail/V10/Attachments/maqueta.wav`,
      `${home}/Desktop/maqueta.wav`,
    ),
  ];
}

export function fullState(change: Partial<DiskState> = {}): DiskState {
  return {
    total: 994.7, free: 312.4, ser: 71,
    cats: categories([188.4, 142.6, 86.9, 61.3, 24.7, 178.2], [48_211, 391_004, 27_450, 1912, 6034, 512_877]),
    files: someFiles,
    dupGroups: someDuplicates(),
    history: [],
    settings: defaultSettings,
    protected: [],
    ...change,
  };
}

export function withoutAccess(): DiskState {
  return fullState({
    protected: [
      'desktop', 'documents', 'downloads', 'photos', 'icloud', 'mail',
      'messages', 'safari', 'calendars', 'contacts', 'iphone',
    ],
  });
}

/** What the program pushes when nothing was ever analysed. */
export function emptyState(change: Partial<DiskState> = {}): DiskState {
  return fullState({ cats: [], files: [], dupGroups: [], ...change });
}

/** The same state in the other language. */
export function inSpanish(state: DiskState): DiskState {
  return { ...state, settings: { ...state.settings, language: 'es' } };
}

/** An analysis of a disk with nothing large and nothing double on it. */
export function bareState(): DiskState {
  return fullState({ files: [], dupGroups: [], cats: categories([0, 0.2, 0, 0, 0, 14.1], [0, 310, 0, 0, 0, 88_100]) });
}

export function manyFiles(count: number): DiskState {
  const kinds = ['video', 'descarga', 'app', 'doc'];
  const folders = ['Movies', 'Downloads', 'Library/Application Support/Example', 'Documents/Proyectos'];
  const files = Array.from({ length: count }, (_, index) => {
    const which = index % kinds.length;
    const gb = Math.round((60 / (1 + index * 0.2) + 0.3) * 10) / 10;
    return bigFile(`${home}/${folders[which]}/grabación ${String(index + 1).padStart(3, '0')}.bin`, gb, kinds[which]!, (index * 37) % 1500);
  });
  return fullState({ files });
}

export function manyDuplicates(count: number): DiskState {
  const groups = Array.from({ length: count }, (_, index) =>
    duplicateGroup('1.4', 0, `${home}/Documents/a/copia ${index}.bin`, `${home}/Downloads/copia ${index}.bin`),
  );
  return fullState({ dupGroups: groups });
}

export const hostileNames = [
  '<img src=x onerror="document.title=1">.mov',
  '<script>document.title=2<!-- .mp4',
  'factura\u202Efdp.exe.mov',
  'línea uno\nlínea dos\ttab\u0007.bin',
  '&lt;b&gt;no soy negrita&lt;&sol;b&gt;.zip',
  '{@html "x"} ${7*7} {{7*7}}.dmg',
  'صور العائلة 2024 النهائية.mov',
  '👩‍👩‍👧‍👦'.repeat(40) + '.mov',
  'a'.repeat(240) + '.iso',
  '"comillas" \'simples\' `acentos` \\barra.bin',
];

export function hostileState(): DiskState {
  const files = hostileNames.map((name, index) => bigFile(`${home}/Movies/${name}`, 20 - index, 'video', index * 20));
  const groups = hostileNames.map((name, index) =>
    duplicateGroup((5 - index / 4).toFixed(1), 0, `${home}/Movies/${name}`, `${home}/Desktop/${name}`),
  );
  return fullState({ files, dupGroups: groups, protected: ['<b>desktop</b>'] });
}
