/** What maintenance holds in Velto Trash, in words. */
import { language } from '../../language/language.svelte.ts';
import type { Holdings } from '../../protocol/protocol.ts';

const shown = 3;

/** The first days on which something comes back; the last one shown stands for the rest. */
export function soonest(returns: Holdings['returns']): Holdings['returns'] {
  const rest = returns.slice(shown - 1);
  const first = rest[0];
  if (!first || rest.length === 1) return returns;
  return [...returns.slice(0, shown - 1), { from: first.from, bytes: rest.reduce((sum, { bytes }) => sum + bytes, 0) }];
}

/** `goesByItself`: maintenance is on, so that something comes back at all. */
export function heldWords({ items, bytes, returns }: Holdings, goesByItself: boolean): string {
  const words = language.words.settings;
  if (items === 0) return words.heldNothing;
  return goesByItself ? words.heldSome(bytes, soonest(returns)) : words.heldStays(bytes);
}
