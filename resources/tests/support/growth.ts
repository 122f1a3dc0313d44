/** What has grown on a made-up disk, as the program would tell it. */
import type { Growth } from '../../src/protocol/protocol.ts';
import { home } from './states.ts';

const day = 86_400;

/** Noon of a day, so that no time zone makes another one of it. */
export function noon(daysAgo: number): number {
  const date = new Date();
  date.setHours(12, 0, 0, 0);
  return Math.floor(date.getTime() / 1000) - daysAgo * day;
}

export function someGrowth(changes: Partial<Growth> = {}): Growth {
  return {
    asked: 'last', since: noon(40), until: noon(0), available: [noon(40), noon(75), noon(200)], home,
    bytes: 18_300_000_000,
    grown: [
      { path: `${home}/Movies/Lanzarote`, bytes: 14_100_000_000, kind: 'new' },
      { path: `${home}/Library/Caches`, bytes: 3_000_000_000, kind: 'grown' },
      { path: `${home}/Documents/Máquinas virtuales/Contabilidad`, bytes: 2_200_000_000, kind: 'grown' },
      { path: home, bytes: 600_000_000, kind: 'grown' },
    ],
    shrunk: [
      { path: `${home}/Downloads`, bytes: -900_000_000, kind: 'shrunk' },
      { path: `${home}/Library/Developer/Xcode/DerivedData/Tesela-abcdefghijklmnopqrstuvwxyz`, bytes: -700_000_000, kind: 'gone' },
    ],
    renamed: [{ from: `${home}/Movies/Boda`, to: `${home}/Movies/Archivo/Boda Clara y Hugo`, bytes: 12_600_000_000 }],
    ...changes,
  };
}
