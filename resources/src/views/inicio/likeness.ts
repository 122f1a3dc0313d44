/** What a size is like, in things that people know: as many as fit, or nothing where that says nothing. */
import type { Dictionary } from '../../language/language.svelte.ts';
import type { Category } from '../../protocol/protocol.ts';

type Thing = keyof Dictionary['overview']['likenesses'];

/** The size of one in megabytes (the words name it), and how many there have to be to picture them. */
const things: Record<Thing, { megabytes: number; least: number }> = {
  fotos: { megabytes: 4, least: 25 },
  docs: { megabytes: 2, least: 50 },
  descargas: { megabytes: 5000, least: 2 },
  musica: { megabytes: 5, least: 20 },
};

/** Nobody pictures more. */
const most = 1_000_000;

function isThing(id: string): id is Thing {
  return Object.hasOwn(things, id);
}

/** Two digits: sizes are known to a tenth of a gigabyte, and the things are only like the real ones. */
function round(count: number): number {
  const unit = 10 ** Math.max(0, Math.floor(Math.log10(count)) - 1);
  return Math.round(count / unit) * unit;
}

export function likeness({ id, gb }: Pick<Category, 'id' | 'gb'>, words: Dictionary['overview']): string {
  if (!isThing(id)) return '';
  const { megabytes, least } = things[id];
  const count = (gb * 1000) / megabytes;
  return count >= least && count <= most ? words.likenesses[id](round(count)) : '';
}
