/** What an application left behind, by how certain it is that it belongs to it, then by kind. */
import { isProtectedPath } from '../../names/protectedPaths.ts';
import type { AppAnalysis, AppRemoval, InstalledApp, LeftoverGroupKey, LeftoverItem, LeftoverLink } from '../../protocol/protocol.ts';
import { totalGb } from '../../state/operations.ts';

export type SectionName = 'certain' | 'possible' | 'stays';
export type StaysBecause = 'admin' | 'nested' | 'protected' | 'system' | 'shared';

export interface SectionItem extends LeftoverItem {
  /** The first of its kind within the section. */
  leads: boolean;
  stays: StaysBecause | null;
  link: LeftoverLink | null;
}

export interface Section {
  name: SectionName;
  gb: number;
  items: SectionItem[];
}

const names: readonly SectionName[] = ['certain', 'possible', 'stays'];

/** Why the program would not remove it; null when it would. */
export function staysBecause({ admin, nested, path }: LeftoverItem): StaysBecause | null {
  if (admin) return 'admin';
  if (nested) return 'nested';
  return isProtectedPath(path) ? 'protected' : null;
}

/** What is a link, or lies behind one, is never certain, whatever its name: it leads somewhere else. */
function sectionOf({ stays, link, conf }: Omit<SectionItem, 'leads'>): SectionName {
  if (stays) return 'stays';
  return link ? 'possible' : conf;
}

/** The application itself, when it was said that it cannot go; its entry in the menu can. */
function appStays(removal: AppRemoval | null): StaysBecause | null {
  return removal?.stays === 'entry' ? null : (removal?.stays ?? null);
}

export function sectionsOf(
  { groups, path: app }: AppAnalysis,
  links: ReadonlyMap<string, LeftoverLink> = new Map(),
  removal: AppRemoval | null = null,
): Section[] {
  const items = groups.flatMap((group) => group.items);
  return names.flatMap((name) => {
    const own = items
      .map((item) => ({ ...item, stays: (item.path === app && appStays(removal)) || staysBecause(item), link: links.get(item.path) ?? null }))
      .filter((item) => sectionOf(item) === name);
    const leading = new Set<LeftoverGroupKey>();
    const marked = own.map((item) => {
      const leads = !leading.has(item.cat);
      leading.add(item.cat);
      return { ...item, leads };
    });
    return marked.length ? [{ name, gb: totalGb(marked), items: marked }] : [];
  });
}

/**
 * What belongs to the application for certain, the application itself included. Of one that stays nothing: it goes on
 * using what it has.
 */
export function preselectedOf(sections: readonly Section[], removal: AppRemoval | null = null): Set<string> {
  if (removal?.stays) return new Set();
  const certain = sections.find(({ name }) => name === 'certain');
  return new Set(certain?.items.map(({ path }) => path));
}

const sharedPlaces = ['/Applications/', '/Library/', '/System/', '/usr/', '/opt/', '/var/', '/snap/'];

/** The program deletes in the home folder only: an application for all users stays for the user to remove. */
export function isForAllUsers(path: string): boolean {
  return sharedPlaces.some((place) => path.startsWith(place));
}

/** A Mac's application, on whatever system its home is looked at: its store is the App Store. */
export function isBundle({ path }: InstalledApp): boolean {
  return path.endsWith('.app');
}

/** Only the desktop entry is known: its size is not that of the application. */
export function isEntryAlone({ path }: InstalledApp): boolean {
  return path.endsWith('.desktop');
}
