/**
 * Folders that a home always has. They are gone into, not moved as a whole: programs look for them,
 * and what is meant is always something inside.
 */
import { downloadFolders, musicFolders, pictureFolders, documentFolders } from '../inicio/parents.ts';

const others = [
  'library', 'applications', 'public', 'sites', 'templates', 'plantillas', 'público', 'publico',
  '.local', '.config', '.cache', '.var', '.ssh', '.gnupg', '.pki', 'snap',
];

const names: ReadonlySet<string> = new Set([
  ...downloadFolders, ...musicFolders, ...pictureFolders, ...documentFolders, ...others,
]);

const lower = (name: string) => name.toLowerCase().normalize('NFC');

export function isHomeFolder(path: string, home: string): boolean {
  if (!home) return false;
  if (path === home) return true;
  if (!path.startsWith(`${home}/`)) return false;
  const name = path.slice(home.length + 1);
  return !name.includes('/') && names.has(lower(name));
}

const byCategory: Record<string, readonly string[]> = {
  fotos: pictureFolders,
  docs: documentFolders,
  descargas: downloadFolders,
  musica: musicFolders,
  apps: ['library', '.var', '.local', '.config', '.cache'],
  sistema: ['library', '.local'],
};

/** The folders of the home, of `folders`, where most of a category lies; the largest first. */
export function foldersOfCategory<Folder extends { name: string; bytes: number | null }>(
  id: string,
  folders: readonly Folder[],
): Folder[] {
  const wanted = byCategory[id] ?? [];
  return folders
    .filter(({ name }) => wanted.includes(lower(name)))
    .sort((left, right) => (right.bytes ?? 0) - (left.bytes ?? 0));
}
