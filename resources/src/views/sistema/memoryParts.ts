/** What the memory holds, as shares of all of it that never add up to more than the whole. */
import type { SystemSample } from '../../protocol/protocol.ts';

export type PartName = 'app' | 'wired' | 'compressed' | 'cached' | 'free';

export interface Part {
  name: PartName;
  gb: number;
  /** 0 to 1. */
  share: number;
}

export function memoryParts(mem: NonNullable<SystemSample['mem']>): Part[] {
  const { app, wired, compressed, cached, total } = mem;
  const held = app + wired + compressed + cached;
  const free = Math.max(0, total - held);
  // Systems count some pages twice; then the parts share the whole among them.
  const whole = Math.max(total, held);
  const parts: [PartName, number][] = [
    ['app', app], ['wired', wired], ['compressed', compressed], ['cached', cached], ['free', free],
  ];
  return parts.map(([name, gb]) => ({ name, gb, share: whole > 0 ? gb / whole : 0 }));
}
