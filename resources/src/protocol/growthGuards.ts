/** Reads what arrives about growth. */
import type { GrowthSince } from './folderRecords.ts';
import { growthKinds, type Growth, type GrowthChange } from './growthRecords.ts';
import { distinct, fieldsOf, list, number, size, text, type Fields } from './guards.ts';

function whole(value: unknown): number {
  return Math.trunc(number(value));
}

function path(value: unknown): string {
  return text(value).startsWith('/') ? text(value) : '';
}

/** A change in the direction of its list, or none. */
function change(fields: Fields, direction: 1 | -1): GrowthChange | null {
  const kind = growthKinds.find((known) => known === fields.kind);
  const fits = direction > 0 ? kind === 'grown' || kind === 'new' : kind === 'shrunk' || kind === 'gone';
  const bytes = whole(fields.bytes);
  return kind && fits && path(fields.path) && bytes * direction > 0 ? { path: path(fields.path), bytes, kind } : null;
}

function since(value: unknown): GrowthSince {
  if (value === 'week' || value === 'month') return value;
  return number(value) > 0 ? number(value) : 'last';
}

export function growth(value: unknown): Growth | null {
  const fields = fieldsOf(value);
  if (!fields) return null;
  const changes = (entries: unknown, direction: 1 | -1) =>
    distinct(list(entries, (entry) => change(entry, direction)), (entry) => entry.path);
  const moments = Array.isArray(fields.available) ? fields.available.filter((moment) => number(moment) > 0) : [];
  return {
    asked: since(fields.asked), since: size(fields.since), until: size(fields.until),
    available: [...new Set(moments)],
    home: path(fields.home), bytes: whole(fields.bytes),
    grown: changes(fields.grown, 1), shrunk: changes(fields.shrunk, -1),
    renamed: distinct(
      list(fields.renamed, ({ from, to, bytes }) =>
        path(from) && path(to) ? { from: path(from), to: path(to), bytes: Math.max(0, whole(bytes)) } : null),
      ({ to }) => to,
    ),
  };
}
