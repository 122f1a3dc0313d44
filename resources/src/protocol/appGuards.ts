/** Reads what arrives about installed applications, what they left behind and their removal. */
import { distinct, fieldsOf, list, number, size, text, texts } from './guards.ts';
import {
  failureReasons, leftBehindReasons, leftoverKeys, packageKeepers, packageReasons, stayReasons, uninstallStages,
} from './appRecords.ts';
import type {
  AppAnalysis, AppRemoval, FailureReason, InstalledApp, LeftBehindItem, LeftoverGroupKey, LeftoverItem, LeftoverLink,
  PackageEnd, PackagePlan, UninstallResult,
  UninstallStage,
} from './appRecords.ts';

/** An icon is a picture that came along; whatever else it says is never fetched. */
export function icon(value: unknown): string {
  return text(value).startsWith('data:image/png;base64,') ? text(value) : '';
}

export function installedApps(value: unknown): InstalledApp[] {
  const apps = list(value, (fields) =>
    text(fields.path)
      ? {
          bid: text(fields.bid), name: text(fields.name), version: text(fields.version), exec: text(fields.exec),
          path: text(fields.path), gb: size(fields.gb), last: size(fields.last),
          running: fields.running === true, apple: fields.apple === true, store: fields.store === true,
          team: text(fields.team), ...(icon(fields.icon) && { icon: icon(fields.icon) }),
        }
      : null,
  );
  return distinct(apps, ({ path }) => path);
}

/** Only what has been measured; a size that is no number stays unknown. */
export function appSizes(value: unknown): Record<string, number> {
  const entries = Object.entries(fieldsOf(value) ?? {});
  return Object.fromEntries(entries.filter((entry): entry is [string, number] => size(entry[1]) > 0 || entry[1] === 0));
}

/** What is not said to be certain is only possible: it is never preselected by mistake. */
function leftover(fields: Record<string, unknown>, cat: LeftoverGroupKey): LeftoverItem | null {
  if (!text(fields.path)) return null;
  return {
    id: text(fields.id), name: text(fields.name), path: text(fields.path), gb: size(fields.gb),
    conf: fields.conf === 'certain' ? 'certain' : 'possible',
    admin: fields.admin === true, nested: fields.nested === true, cat,
  };
}

/** What is not said to be kept counts as going with the link: better one warning too many. */
export function leftoverLinks(value: unknown): LeftoverLink[] {
  return list(value, ({ path, target, kept }) =>
    text(path) && text(target) ? { path: text(path), target: text(target), kept: kept === true } : null,
  );
}

/** Without a reason that is known nothing is offered. */
export function leftBehind(value: unknown): LeftBehindItem[] {
  const items = list(value, ({ path, identifier, why, gb, last }) => {
    const reason = leftBehindReasons.find((known) => known === why);
    return text(path) && text(identifier) && reason
      ? { path: text(path), identifier: text(identifier), why: reason, gb: size(gb), last: size(last) }
      : null;
  });
  return distinct(items, ({ path }) => path);
}

/** A plan of a keeper that is not known is none. */
export function packagePlan(value: unknown): PackagePlan | null {
  const fields = fieldsOf(value);
  const keeper = packageKeepers.find((known) => known === fields?.keeper);
  if (!fields || !keeper) return null;
  return {
    keeper,
    name: text(fields.name),
    others: [...new Set(texts(fields.others))],
    kept: text(fields.kept),
    command: text(fields.command),
  };
}

/** What is not said to be done has failed. */
export function packageEnd(value: unknown): PackageEnd {
  const fields = fieldsOf(value);
  const done = fields?.done === true;
  const reason = packageReasons.find((known) => known === fields?.reason) ?? 'failed';
  return { done, reason: done ? '' : reason, detail: text(fields?.detail) };
}

/** A reason that is not known is one all the same: the application counts as one that stays. */
export function appRemoval(value: unknown): AppRemoval {
  const fields = fieldsOf(value);
  const stays = text(fields?.stays);
  return {
    stays: stays ? (stayReasons.find((known) => known === stays) ?? 'admin') : null,
    folder: text(fields?.folder),
  };
}

export function appAnalysis(value: unknown): AppAnalysis | null {
  const fields = fieldsOf(value);
  if (!fields || !text(fields.path)) return null;
  const groups = list(fields.groups, (group) => {
    const key = leftoverKeys.find((known) => known === group.key);
    return key ? { key, items: list(group.items, (item) => leftover(item, key)) } : null;
  });
  return {
    bid: text(fields.bid), name: text(fields.name), path: text(fields.path), version: text(fields.version),
    icon: icon(fields.icon), gb: size(fields.gb), running: fields.running === true, team: text(fields.team),
    groups: onlyOnce(groups),
    total: size(fields.total), certain: size(fields.certain), possible: size(fields.possible),
    adminCount: size(fields.adminCount), possibleCount: size(fields.possibleCount), count: size(fields.count),
  };
}

/** A path may stand in one group only: it is selected, and removed, once. */
function onlyOnce(groups: AppAnalysis['groups']): AppAnalysis['groups'] {
  const seen = new Set<string>();
  return groups
    .map(({ key, items }) => ({ key, items: items.filter(({ path }) => !seen.has(path) && seen.add(path)) }))
    .filter(({ items }) => items.length > 0);
}

export function uninstallStage(value: unknown): UninstallStage | null {
  return uninstallStages.find((known) => known === value) ?? null;
}

export function percent(value: unknown): number {
  return Math.min(100, Math.max(0, number(value)));
}

export function uninstallResult(value: unknown): UninstallResult | null {
  const fields = fieldsOf(value);
  if (!fields) return null;
  return {
    name: text(fields.name), removed: size(fields.removed), freed: size(fields.freed), closed: size(fields.closed),
    failures: list(fields.failures, (failure) => ({
      name: text(failure.name), path: text(failure.path), reason: reason(failure.reason),
    })),
  };
}

function reason(value: unknown): FailureReason {
  return failureReasons.find((known) => known === value) ?? 'other';
}
