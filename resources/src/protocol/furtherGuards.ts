/** Reads what arrives of the further rules; see guards.ts. */
import { furtherReasons, type FurtherCleanables, type FurtherGroup, type FurtherItem, type FurtherRule } from './furtherRecords.ts';
import { distinct, fieldsOf, list, size, text, texts, type Fields } from './guards.ts';

function bothTexts(value: unknown, otherwise: string): FurtherRule['name'] {
  const fields = fieldsOf(value);
  const en = text(fields?.en) || otherwise;
  return { en, es: text(fields?.es) || en };
}

function rule(value: unknown): FurtherRule | null {
  const fields = fieldsOf(value);
  if (!fields || !text(fields.id)) return null;
  return {
    id: text(fields.id), group: text(fields.group), name: bothTexts(fields.name, text(fields.id)), again: bothTexts(fields.again, ''),
    where: texts(fields.where), names: texts(fields.names), markers: texts(fields.markers), command: text(fields.command),
    explained: fields.way !== 'moved', idleDays: Math.trunc(size(fields.idleDays)),
  };
}

/** What is not said to be certain is only possible: it is never taken for more by mistake. */
function item(fields: Fields): FurtherItem | null {
  const reason = furtherReasons.find((known) => known === fields.reason) ?? 'unknown';
  return text(fields.path)
    ? {
        path: text(fields.path), bytes: size(fields.bytes), linked: size(fields.linked), days: Math.trunc(size(fields.days)),
        certain: fields.certain === true && reason === 'madeAgain', reason,
      }
    : null;
}

export function furtherCleanables(value: unknown): FurtherCleanables | null {
  const fields = fieldsOf(value);
  if (!fields) return null;
  const groups = list(fields.groups, (group): FurtherGroup | null => {
    const known = rule(group.rule);
    return known && {
      rule: known,
      items: known.explained ? [] : distinct(list(group.items, item), ({ path }) => path),
      bytes: typeof group.bytes === 'number' ? size(group.bytes) : null,
      parts: list(group.parts, (part) => (text(part.name) ? { name: text(part.name), bytes: size(part.bytes), command: text(part.command) } : null)),
    };
  });
  return { groups: distinct(groups, ({ rule: { id } }) => id), asking: fields.asking === true };
}
