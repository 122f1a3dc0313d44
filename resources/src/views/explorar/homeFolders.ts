/** Which folders this home has for what; the program says so, their names are a matter of system and language. */
import type { HomeFolders } from '../../protocol/protocol.ts';
import { folderAbove, pathBelow } from './paths.ts';

/**
 * Gone into, not moved as a whole: programs look for it, and what is meant is always something inside.
 * As long as the program has not said which those are, it is each folder of the home.
 */
export function isKeptFolder(path: string, home: string, told: HomeFolders | null): boolean {
  if (!home) return false;
  return path === home || (told ? told.kept.has(path) : folderAbove(path) === home);
}

interface Named {
  name: string;
  bytes: number | null;
}

export interface CategoryPlace {
  path: string;
  /** The row of the home that it is, or lies in. */
  key: string;
}

/** The folders of a category that this home has, of `folders` those that lie in it; the largest first. */
export function placesOfCategory(
  id: string,
  home: string,
  folders: readonly Named[],
  told: HomeFolders | null,
): CategoryPlace[] {
  const bytes = new Map(folders.map((folder) => [pathBelow(home, folder.name), folder.bytes ?? 0]));
  return (told?.categories.get(id) ?? [])
    .map((path) => ({ path, key: pathBelow(home, path.slice(home.length + 1).split('/')[0]!) }))
    .filter(({ path, key }) => path.startsWith(`${home}/`) && bytes.has(key))
    .sort((left, right) => bytes.get(right.key)! - bytes.get(left.key)!);
}
