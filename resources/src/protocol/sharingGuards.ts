/** Reads what arrives about shared space; see guards.ts. */
import { fieldsOf, list, number, size, text } from './guards.ts';
import { sharingReasons, type Sharable, type SharingCopy, type SharingEnd, type SharingProgress } from './sharingRecords.ts';

function copies(value: unknown): SharingCopy[] {
  return list(value, (copy) => {
    const path = text(copy.path);
    if (!path) return null;
    const known = sharingReasons.find((reason) => reason === copy.reason);
    const reason = known ?? (copy.reason === undefined ? undefined : 'other');
    return { path, bytes: size(copy.bytes), exact: copy.exact !== false, ...(reason && { reason }) };
  });
}

export function sharable(value: unknown): Sharable | null {
  const fields = fieldsOf(value);
  if (!fields) return null;
  const groups = Object.entries(fieldsOf(fields.groups) ?? {}).flatMap(([id, group]) => {
    const read = fieldsOf(group);
    return read ? [[id, { kept: text(read.kept), copies: copies(read.copies) }] as const] : [];
  });
  return { request: number(fields.request), groups: new Map(groups) };
}

export function sharingProgress(value: unknown): SharingProgress | null {
  const fields = fieldsOf(value);
  return fields && { done: size(fields.done), of: size(fields.of), bytes: size(fields.bytes) };
}

export function sharingEnd(value: unknown): SharingEnd | null {
  const fields = fieldsOf(value);
  return (
    fields && {
      files: Math.trunc(size(fields.files)),
      bytes: size(fields.bytes),
      exact: fields.exact !== false,
      stopped: fields.stopped === true,
      stays: copies(fields.stays),
    }
  );
}
