/** Made-up folders of a home, on both systems, and the program's answers about them. */
import type { FileEntry, FolderContents, FolderState, SubFolder } from '../../src/protocol/protocol.ts';
import { pathBelow } from '../../src/views/explorar/rows.ts';
import type { OpenPage } from './page.ts';
import { home, hostileNames } from './states.ts';

export const linuxHome = '/home/marina';
/** The analysis was made this morning. */
export const measured = Math.trunc(Date.now() / 1000) - 3 * 3600;
const day = 86_400;
const megabyte = 1_000_000;

/** A folder of the disk: what lies in it, and what is special about it. */
interface Made extends Partial<Pick<SubFolder, 'state' | 'unreadable' | 'total'>> {
  /** Megabytes by name; a list gives the age in days too, and whether it has several names. */
  files?: Record<string, number | [mb: number, days: number, linked?: boolean]>;
  folders?: Record<string, Made>;
  /** Megabytes, of one whose inside is not made. */
  mb?: number;
  count?: number;
  days?: number;
  more?: number;
}

/** What the program says of the two homes. */
export const macFolders = {
  kept: [
    '', '/Desktop', '/Documents', '/Downloads', '/Library', '/Library/Application Support', '/Library/Caches', '/Library/Containers',
    '/Movies', '/Music', '/Pictures',
  ].map((path) => `${home}${path}`),
  categories: {
    fotos: [`${home}/Pictures`, `${home}/Movies`], musica: [`${home}/Music`], descargas: [`${home}/Downloads`],
    docs: [`${home}/Documents`, `${home}/Desktop`], apps: [`${home}/Library`, `${home}/Applications`], sistema: [`${home}/Library`],
  },
};
export const linuxFolders = {
  kept: [
    '', '/.cache', '/.config', '/.local', '/.local/share', '/.var', '/Descargas', '/Documentos', '/Escritorio', '/Imágenes', '/Música', '/Vídeos',
  ].map((path) => `${linuxHome}${path}`),
  categories: {
    fotos: [`${linuxHome}/Imágenes`, `${linuxHome}/Vídeos`], musica: [`${linuxHome}/Música`], descargas: [`${linuxHome}/Descargas`],
    docs: [`${linuxHome}/Documentos`, `${linuxHome}/Escritorio`],
    apps: ['.cache', '.config', '.local/share', '.var/app', 'Applications'].map((path) => `${linuxHome}/${path}`),
  },
};

export type Disk = Record<string, FolderContents>;

interface Sum {
  bytes: number;
  files: number;
  latest: number;
  unreadable: number;
}

function entryOf(name: string, value: number | [number, number, boolean?]): FileEntry {
  const [mb, days = 30, linked = false] = Array.isArray(value) ? value : [value];
  return { name, bytes: Math.round(mb * megabyte), modified: measured - days * day, linked };
}

function fill(disk: Disk, path: string, made: Made): Sum {
  const entries = Object.entries(made.files ?? {}).map(([name, value]) => entryOf(name, value));
  const folders = Object.entries(made.folders ?? {}).map(([name, inner]): SubFolder => {
    const sum = fill(disk, pathBelow(path, name), inner);
    const state: FolderState = inner.state ?? 'measured';
    const hasFigures = state === 'measured' || state === 'otherVolume' || (state === 'unreadable' && sum.bytes > 0);
    return {
      name, state, ...sum, bytes: state === 'new' ? -1 : hasFigures ? sum.bytes : 0,
      ...(inner.total && { total: inner.total * megabyte }),
    };
  });
  const inside = folders.filter(({ state }) => state === 'measured');
  const add = (of: (folder: SubFolder) => number) => inside.reduce((sum, folder) => sum + of(folder), 0);
  const sum: Sum = {
    bytes: (made.mb ?? 0) * megabyte + add(({ bytes }) => bytes ?? 0) + entries.reduce((all, { bytes }) => all + bytes, 0),
    files: (made.count ?? 0) + add(({ files }) => files) + entries.length,
    latest: Math.max(measured - (made.days ?? 400) * day, ...inside.map(({ latest }) => latest), ...entries.map(({ modified }) => modified)),
    unreadable: (made.unreadable ?? 0) + add(({ unreadable }) => unreadable),
  };
  const found = (made.state ?? 'measured') === 'measured';
  disk[path] = {
    request: 0, path, found, state: made.state ?? 'measured', ...sum, measured,
    folders: found ? folders : [], entries: found ? entries : [], more: made.more ?? 0,
  };
  return sum;
}

const documents: Made = {
  folders: {
    'Copia antigua del portátil': { mb: 21_400, count: 48_210, days: 1240 },
    'Máquinas virtuales': { files: { 'Contabilidad Windows 11.vmdk': [11_800, 61] } },
    Facturas: { mb: 2450, count: 3921, days: 2 },
    'Tesis - versión definitiva corregida por el tribunal, con anexos y bibliografía completa (2)': { mb: 312, count: 88, days: 820 },
    Contratos: { mb: 18.4, count: 41, days: 140 },
    Vacía: { days: 900 },
  },
  files: { 'presupuesto 2026.ods': [0.041, 1], 'notas.txt': [0.004, 0], 'declaración.pdf': [2.2, 210], 'enlazado.bin': [64, 33, true] },
  more: 3,
};

const movies: Made = {
  folders: {
    'Viaje a Islandia': { files: { 'Islandia - montaje final (4K, HDR, 60 fps).mov': [41_700, 12], 'tomas descartadas.mov': [9_100, 80] } },
    Entrevistas: { files: { 'entrevista_cam_B_sin_cortes.mov': [6_200, 300] } },
  },
  files: { 'Boda Clara y Hugo.mp4': [12_600, 930] },
};

const downloads: Made = {
  files: {
    'macOS 27 beta installer.dmg': [14_300, 402], 'dataset-traffic-2024.tar.gz': [8_800, 388],
    'Curso de fotografía completo.zip': [4_900, 700], 'Presentación junta.key': [1_100, 1], 'billete.pdf': [0.2, 0],
  },
  folders: { 'sin ordenar': { mb: 910, count: 310, days: 33 } },
};

export function macDisk(): Disk {
  const disk: Disk = {};
  fill(disk, home, {
    folders: {
      Library: {
        folders: {
          Containers: { mb: 61_200, count: 210_400, days: 0, unreadable: 12 }, Caches: { mb: 14_800, count: 91_002, days: 0 },
          'Application Support': { mb: 38_100, count: 120_334, days: 1, folders: { Velto: { state: 'own' } } },
          Mail: { state: 'withheld' }, Messages: { state: 'withheld' },
        },
      },
      Movies: movies, Documents: documents, Downloads: downloads,
      Pictures: { folders: { 'Photos Library.photoslibrary': { mb: 88_900, count: 48_211, days: 3 } } },
      Music: { mb: 24_700, count: 6034, days: 19 },
      Desktop: { mb: 1310, count: 96, days: 0 },
      'Copia de Marta': { state: 'excluded' }, Respaldo: { state: 'otherVolume', mb: 812_000, total: 2_000_000, count: 0 },
      Compartida: { state: 'unreadable' }, 'Proyecto nuevo': { state: 'new' }, Espejo: { state: 'alreadyWalked' },
    },
    files: { '.zsh_history': [0.3, 0], 'imagen de disco.img': [4_200, 55] },
    more: 1, unreadable: 2,
  });
  return disk;
}

export function linuxDisk(): Disk {
  const disk: Disk = {};
  fill(disk, linuxHome, {
    folders: {
      '.cache': { mb: 18_200, count: 143_908, days: 0 }, '.config': { mb: 940, count: 8120, days: 0 },
      '.local': { folders: { share: { mb: 52_300, count: 88_011, days: 0, folders: { Velto: { state: 'own' } } }, state: { mb: 88, count: 301 } } },
      '.var': { mb: 31_100, count: 64_002, days: 2 }, Vídeos: movies, Documentos: documents, Descargas: downloads,
      Imágenes: { mb: 77_400, count: 38_219, days: 5 }, Música: { mb: 24_700, count: 6034, days: 19 },
      Escritorio: { mb: 12, count: 9, days: 1 }, disco: { state: 'otherVolume', mb: 301_000, total: 500_000 },
    },
    files: { '.bash_history': [0.1, 0] },
    more: 2,
  });
  return disk;
}

/** A folder with very many files beside the others of the home. */
export function crowdedDisk(count: number): Disk {
  const disk = macDisk();
  const files = Object.fromEntries(
    Array.from({ length: count }, (_, index) => [`IMG_${String(index + 1).padStart(5, '0')}.heic`, [((index * 7919) % 4000) / 100 + 0.004, index % 900] as [number, number]]),
  );
  fill(disk, home, { folders: { Fotos: { files } } });
  return disk;
}

/** Names that try to be something else, as folders of every state and as files. */
export function hostileDisk(): Disk {
  const disk: Disk = {};
  const states: FolderState[] = ['measured', 'new', 'unreadable', 'withheld', 'excluded', 'own', 'otherVolume', 'alreadyWalked'];
  const names = hostileNames.filter((name) => !name.includes('/'));
  const inner = Object.fromEntries(names.map((name, index): [string, Made] =>
    [`${name}.d`, { mb: 9000 - index * 700, count: 1_234_567, state: states[index % states.length]!, total: 9_000_000, unreadable: index * 1000 }]));
  const deep = names.reduceRight<Made>((below, name) => ({ folders: { ...inner, [name]: below } }), {
    folders: inner, files: Object.fromEntries(names.map((name, index) => [name, [50 - index, index, true] as [number, number, boolean]])), more: 1234,
  });
  fill(disk, home, deep);
  return disk;
}

export interface Served {
  disk: Disk;
  growth?: Record<string, Record<string, number>>;
  /** Questions that get no answer. */
  silent?: boolean;
}

/** From here on the page is answered as the program would, out of `disk`. */
export async function serveFolders({ page }: OpenPage, served: Served): Promise<void> {
  await page.evaluate((given) => {
    interface Stub {
      velto: Record<string, (value: unknown) => void>;
      webkit: { messageHandlers: { velto: { postMessage(message: { type: string; payload?: unknown }): void } } };
      __served?: Served;
    }
    const host = window as unknown as Stub;
    const isFirst = !host.__served;
    host.__served = given;
    if (!isFirst) return;
    const channel = host.webkit.messageHandlers.velto;
    const record = channel.postMessage.bind(channel);
    const fold = (text: string) => text.normalize('NFD').replace(/\p{Mn}/gu, '').toLowerCase();
    const homeOf = (disk: Disk) => Object.keys(disk).reduce((left, right) => (right.length < left.length ? right : left));

    function folder({ path, request }: { path: string; request: number }, { disk }: Served) {
      const missing = { request, path, found: false, state: 'unmeasured' };
      const home = Object.keys(disk).length ? homeOf(disk) : null;
      if (home === null) return missing;
      const found = disk[path || home];
      if (found) return { ...found, request };
      const above = Object.values(disk).filter((folder) => path.startsWith(`${folder.path}/`));
      const nearest = above.reduce((left, right) => (right.path.length > left.path.length ? right : left), disk[home]!);
      return { ...missing, measured: disk[home]!.measured, state: nearest.found ? 'gone' : 'unmeasured' };
    }

    function search({ text, request }: { text: string; request: number }, { disk }: Served) {
      const named = Object.values(disk).filter(({ path }) => fold(path.slice(path.lastIndexOf('/') + 1)).includes(fold(text)));
      const found = named.filter(({ found: isFound }) => isFound).sort((left, right) => right.bytes - left.bytes);
      return { request, text, total: found.length, found: found.slice(0, 200) };
    }

    function answer(type: string, payload: never): void {
      const now = host.__served!;
      if (now.silent) return;
      if (type === 'folder') host.velto.onFolder!(folder(payload, now));
      if (type === 'searchFolders') host.velto.onFolderSearch!(search(payload, now));
      if (type !== 'folderGrowth') return;
      const { path } = payload as { path: string };
      const grown = now.growth?.[path];
      if (grown) host.velto.onFolderGrowth!({ path, since: 1_771_000_000, folders: grown });
    }

    channel.postMessage = (message) => {
      record(message);
      setTimeout(() => answer(message.type, message.payload as never));
    };
  }, served);
}
