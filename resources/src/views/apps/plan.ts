/** What an uninstall of the chosen items will do, step by step, before it is asked for. */
import type { AppAnalysis, AppRemoval, LeftoverItem, StayReason } from '../../protocol/protocol.ts';
import { totalGb } from '../../state/operations.ts';
import { isForAllUsers, type Section } from './sections.ts';

export interface Plan {
  /** The application is running and is closed first, if anything is removed at all. */
  closes: boolean;
  /** How many services that run in the background are ended. */
  services: number;
  count: number;
  gb: number;
  /** What becomes of the application itself. */
  app: 'goes' | 'kept' | 'out of reach' | 'entry';
  /** Why the application itself cannot go; null when it can, or on a Mac. */
  because: StayReason | null;
  /** The folder of a program that goes as a single file; empty when none stays. */
  restsIn: string;
  /** Found, and left because only the name matches or because it was taken out. */
  left: number;
  /** Found, and out of reach for the program. */
  stays: number;
}

export function planOf(
  analysis: AppAnalysis,
  sections: readonly Section[],
  chosen: ReadonlySet<string>,
  removal: AppRemoval | null = null,
): Plan {
  const all = sections.flatMap(({ items }) => items);
  const selected: LeftoverItem[] = all.filter(({ path }) => chosen.has(path));
  const outOfReach = isForAllUsers(analysis.path);
  const removable = selected.filter(({ path }) => !(outOfReach && path === analysis.path));
  const keepsApp = !chosen.has(analysis.path);
  const isEntry = removal?.stays === 'entry';
  const stays = all.filter((item) => item.stays && item.stays !== 'nested').length;
  return {
    closes: analysis.running && removable.length > 0,
    services: removable.filter(({ cat }) => cat === 'agents').length,
    count: removable.length,
    gb: totalGb(removable),
    app: keepsApp ? 'kept' : isEntry ? 'entry' : outOfReach ? 'out of reach' : 'goes',
    because: removal?.stays ?? null,
    restsIn: keepsApp ? '' : (removal?.folder ?? ''),
    left: all.filter((item) => !item.stays && !chosen.has(item.path) && item.path !== analysis.path).length,
    stays,
  };
}
