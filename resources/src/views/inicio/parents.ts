/**
 * Big files carry a kind, not their category. The map needs the category, so it is worked out from
 * the kind and, where that is not enough, from the first folder of the path that tells.
 */
import type { BigFile, CategoryId } from '../../protocol/protocol.ts';

export const musicFolders = ['music', 'música', 'musique', 'musik', 'musica', 'muziek'];
export const pictureFolders = [
  'pictures', 'movies', 'videos', 'imágenes', 'vídeos', 'images', 'vidéos', 'bilder', 'immagini', 'video', 'imagens',
];
export const documentFolders = ['documents', 'desktop', 'documentos', 'escritorio', 'dokumente', 'documenti', 'bureau'];
export const downloadFolders = [
  'downloads', 'descargas', 'téléchargements', 'scaricati', 'transferências', 'baixades', 'deskargak',
];
const systemFolders = ['library', '.local', '.config', '.cache', '.var'];
const musicExtensions = ['mp3', 'm4a', 'aac', 'wav', 'flac', 'aiff', 'alac', 'ogg', 'wma', 'mid', 'aif'];

/** Of two answers, the one whose folder comes first in the path; null when no folder tells. */
function firstFolder<Answer>(path: string, answers: [readonly string[], Answer][]): Answer | null {
  for (const folder of path.toLowerCase().normalize('NFC').split('/').slice(0, -1)) {
    const found = answers.find(([names]) => names.includes(folder));
    if (found) return found[1];
  }
  return null;
}

function extension(path: string): string {
  return path.slice(path.lastIndexOf('.') + 1).toLowerCase();
}

const known = new WeakMap<object, CategoryId>();

/** Worked out once for each file: the map, the table and the list all ask. */
export function categoryOf(file: Pick<BigFile, 'kind' | 'path'>): CategoryId {
  const before = known.get(file);
  if (before) return before;
  const category = workedOut(file);
  known.set(file, category);
  return category;
}

function workedOut(file: Pick<BigFile, 'kind' | 'path'>): CategoryId {
  if (file.kind === 'descarga') return 'descargas';
  if (file.kind === 'app') return 'apps';
  if (file.kind === 'video') {
    const byFolder = firstFolder<CategoryId>(file.path, [[pictureFolders, 'fotos'], [musicFolders, 'musica']]);
    return byFolder ?? (musicExtensions.includes(extension(file.path)) ? 'musica' : 'fotos');
  }
  return firstFolder<CategoryId>(file.path, [[documentFolders, 'docs'], [systemFolders, 'sistema']]) ?? 'docs';
}
