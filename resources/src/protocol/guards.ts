/**
 * Reads what arrives from outside into the records of the protocol. A missing or mistyped field
 * becomes its neutral value and a malformed entry of a list is left out, so that one bad value
 * never takes the whole page with it.
 */
import { frequencies, ruleIds } from './records.ts';
import type {
  BigFile, Category, DiskState, DuplicateGroup, HistoryEntry, Permissions, RuleId, Settings,
} from './records.ts';

export type Fields = Record<string, unknown>;

export function fieldsOf(value: unknown): Fields | null {
  return typeof value === 'object' && value !== null && !Array.isArray(value) ? (value as Fields) : null;
}

export function text(value: unknown): string {
  return typeof value === 'string' ? value : '';
}

export function number(value: unknown): number {
  return typeof value === 'number' && Number.isFinite(value) ? value : 0;
}

export function size(value: unknown): number {
  return Math.max(0, number(value));
}

/** An age that is missing is unknown, and an unknown age is a very large one. */
function age(value: unknown): number {
  return typeof value === 'number' && Number.isFinite(value) ? Math.max(0, value) : Number.MAX_SAFE_INTEGER;
}

export function texts(value: unknown): string[] {
  return Array.isArray(value) ? value.filter((entry): entry is string => typeof entry === 'string') : [];
}

export function list<Entry>(value: unknown, read: (fields: Fields) => Entry | null): Entry[] {
  if (!Array.isArray(value)) return [];
  const entries: Entry[] = [];
  // A plain loop: this reads hundreds of entries before the first frame.
  for (const entry of value) {
    const fields = fieldsOf(entry);
    const record = fields && read(fields);
    if (record) entries.push(record);
  }
  return entries;
}

/**
 * Lists are shown and selected by path or id, so each may appear once.
 */
export function distinct<Entry>(entries: Entry[], key: (entry: Entry) => string): Entry[] {
  const seen = new Set<string>();
  return entries.filter((entry) => !seen.has(key(entry)) && seen.add(key(entry)));
}

function category(fields: Fields): Category | null {
  if (!text(fields.id)) return null;
  return {
    id: text(fields.id), name: text(fields.name), gb: size(fields.gb), icon: text(fields.icon),
    col: text(fields.col), eq: text(fields.eq),
    sub: Array.isArray(fields.sub) ? fields.sub.map(texts) : [],
    files: size(fields.files),
  };
}

function bigFile(fields: Fields): BigFile | null {
  if (!text(fields.path)) return null;
  return {
    name: text(fields.name), gb: size(fields.gb), kind: text(fields.kind), last: text(fields.last),
    lastN: age(fields.lastN), path: text(fields.path), isProtected: fields.isProtected === true,
  };
}

function duplicateGroup(fields: Fields): DuplicateGroup | null {
  const paths = texts(fields.paths);
  if (new Set(paths).size !== paths.length) return null;
  if (paths.length < 2 || !text(fields.id)) return null;
  const recommended = Math.trunc(number(fields.recommended));
  return {
    id: text(fields.id), name: text(fields.name), paths,
    pairs: Array.isArray(fields.pairs)
      ? fields.pairs.map((entry) => (Array.isArray(entry) ? entry.map(texts) : []))
      : [],
    recommended: recommended >= 0 && recommended < paths.length ? recommended : 0,
  };
}

function historyEntry(fields: Fields): HistoryEntry | null {
  return {
    id: text(fields.id), ts: number(fields.ts), gb: size(fields.gb), kind: text(fields.kind),
    items: list(fields.items, (item) => ({ name: text(item.name), gb: size(item.gb) })),
  };
}

function settings(value: unknown): Settings {
  const fields = fieldsOf(value) ?? {};
  const rules = fieldsOf(fields.rules);
  const retention = Math.trunc(number(fields.retention));
  return {
    retention: retention > 0 ? retention : 30,
    autoMaintenance: fields.autoMaintenance === true,
    frequency: frequencies.find((known) => known === fields.frequency) ?? 'daily',
    language: text(fields.language).startsWith('es') ? 'es' : 'en',
    ...(rules && { rules: readRules(rules) }),
  };
}

function readRules(fields: Fields): Partial<Record<RuleId, boolean>> {
  const known = ruleIds.filter((id) => typeof fields[id] === 'boolean');
  return Object.fromEntries(known.map((id) => [id, fields[id]]));
}

export function diskState(value: unknown): DiskState | null {
  const fields = fieldsOf(value);
  if (!fields) return null;
  return {
    total: size(fields.total), free: size(fields.free), ser: number(fields.ser),
    cats: distinct(list(fields.cats, category), ({ id }) => id),
    files: distinct(list(fields.files, bigFile), ({ path }) => path),
    dupGroups: distinct(list(fields.dupGroups, duplicateGroup), ({ id }) => id),
    history: list(fields.history, historyEntry),
    settings: settings(fields.settings),
    ...(Array.isArray(fields.protected) && { protected: texts(fields.protected) }),
  };
}

export function permissions(value: unknown): Permissions {
  return { fda: fieldsOf(value)?.fda === true };
}
