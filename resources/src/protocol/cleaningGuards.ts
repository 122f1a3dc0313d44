/** Reads what arrives about cleaning, its trash and its schedule; see guards.ts. */
import { distinct, fieldsOf, list, number, size, text, texts, type Fields } from './guards.ts';
import { cacheReasons, refusalReasons, ruleIds, selectionReasons, waitReasons } from './records.ts';
import type {
  CacheFact, Cleanable, CleanableFacts, CloudMove, Holdings, MaintenanceRule, MaintenanceStatus, PutBack, Refusal, RestoreBlock, SelectionCheck, TrashItem,
  WaitingItem,
} from './records.ts';

export function trashItems(value: unknown): TrashItem[] {
  const items = list(value, (fields) =>
    text(fields.id)
      ? {
          id: text(fields.id), name: text(fields.name), gb: size(fields.gb), taken: number(fields.taken),
          path: text(fields.path), opID: text(fields.opID),
        }
      : null,
  );
  return distinct(items, ({ id }) => id);
}

export function waitingItems(value: unknown): WaitingItem[] {
  const items = list(value, (fields): WaitingItem | null =>
    text(fields.id)
      ? {
          id: text(fields.id), name: text(fields.name), gb: size(fields.gb), path: text(fields.path),
          folder: text(fields.folder), way: fields.way === 'out' ? 'out' : 'in',
          reason: waitReasons.find((known) => known === fields.reason) ?? 'unsettled', whole: fields.whole === true,
        }
      : null,
  );
  return distinct(items, ({ id }) => id);
}

export function putBack(value: unknown): PutBack[] {
  return list(value, ({ id, path }) => (text(id) && text(path) ? { id: text(id), path: text(path) } : null));
}

export function cloudMove(value: unknown): CloudMove | null {
  const fields = fieldsOf(value);
  return fields && { moved: texts(fields.moved), failed: texts(fields.failed), direction: fields.direction === 'from' ? 'from' : 'to' };
}

export function restoreBlock(value: unknown): RestoreBlock | null {
  const fields = fieldsOf(value);
  return fields && text(fields.id) ? { id: text(fields.id), path: text(fields.path) } : null;
}

/** A reason that this page does not know is told as none in particular. */
export function selectionCheck(value: unknown): SelectionCheck | null {
  const fields = fieldsOf(value);
  if (!fields) return null;
  const stays = list(fields.stays, ({ path, reason, detail }) =>
    text(path) ? { path: text(path), reason: selectionReasons.find((one) => one === reason) ?? ('other' as const), detail: text(detail) } : null,
  );
  return { request: number(fields.request), movable: [...new Set(texts(fields.movable))], stays };
}

export function refusal(value: unknown): Refusal | null {
  const fields = fieldsOf(value);
  const refused = list(fields?.refused, ({ path, reason }) => {
    const known = refusalReasons.find((one) => one === reason);
    return known ? { path: text(path), reason: known } : null;
  });
  return refused.length ? { refused, rest: [...new Set(texts(fields?.rest))] } : null;
}

/** An age that is missing counts as none at all here: only what is known to be old is preselected. */
export function cleanables(value: unknown): Cleanable[] {
  const candidates = list(value, (fields) =>
    text(fields.path)
      ? {
          ruleID: text(fields.ruleID), path: text(fields.path), gb: size(fields.gb),
          daysOld: size(fields.daysOld), label: text(fields.label),
        }
      : null,
  );
  return distinct(candidates, ({ path }) => path);
}

/** What is not said to be certain is only possible: it is never preselected by mistake. */
export function cleanableFacts(value: unknown): CleanableFacts {
  const facts = Object.entries(fieldsOf(value) ?? {}).map(([path, entry]): [string, CacheFact] => {
    const fields = fieldsOf(entry);
    const reason = cacheReasons.find((known) => known === fields?.reason) ?? 'unknown';
    return [path, { certain: fields?.certain === true && reason === 'madeAgain', reason }];
  });
  return new Map(facts);
}

/** An age that cannot be read counts as none at all: only what is known to be old is preselected. */
export function cleanableAges(value: unknown): Map<string, number> {
  return new Map(Object.entries(fieldsOf(value) ?? {}).map(([path, days]) => [path, Math.max(0, Math.trunc(number(days)))]));
}

function maintenanceRule(fields: Fields): MaintenanceRule {
  const isMeasured = typeof fields.items === 'number' && typeof fields.gb === 'number';
  return {
    places: texts(fields.places),
    needsAccess: fields.needsAccess === true,
    ...(isMeasured && { items: Math.trunc(size(fields.items)), gb: size(fields.gb) }),
  };
}

function holdings(value: unknown): Holdings {
  const fields = fieldsOf(value) ?? {};
  return {
    items: Math.trunc(size(fields.items)),
    bytes: size(fields.bytes),
    returns: list(fields.returns, ({ from, bytes }) => (number(from) > 0 ? { from: number(from), bytes: size(bytes) } : null)),
    days: new Map(Object.entries(fieldsOf(fields.days) ?? {}).map(([id, days]) => [id, size(days)])),
  };
}

export function maintenanceStatus(value: unknown): MaintenanceStatus {
  const fields = fieldsOf(value) ?? {};
  const last = fieldsOf(fields.last);
  const rules = fieldsOf(fields.rules) ?? {};
  const known = ruleIds.flatMap((id) => {
    const rule = fieldsOf(rules[id]);
    return rule ? [[id, maintenanceRule(rule)] as const] : [];
  });
  return {
    installed: fields.installed === true,
    last: last && {
      ts: number(last.ts), freed: size(last.freed), moved: Math.trunc(size(last.moved)), movedGB: size(last.movedGB),
    },
    next: typeof fields.next === 'number' && Number.isFinite(fields.next) ? fields.next : null,
    rules: Object.fromEntries(known),
    held: holdings(fields.held),
    cacheDays: typeof fields.cacheDays === 'number' ? size(fields.cacheDays) : null,
    fullDiskGB: size(fields.fullDiskGB),
    foretold: new Map(
      list(fields.foretold, ({ days, bytes }) => ({ days: size(days), bytes: size(bytes) })).map(({ days, bytes }) => [days, bytes]),
    ),
  };
}
