/** Reads what arrives about what a file holds; see guards.ts. */
import { fieldsOf, number, size, text } from './guards.ts';
import { previewReasons, type FilePreview } from './previewRecords.ts';

/** Nothing but the bytes of a picture of these kinds becomes the source of one. */
const source = /^data:image\/(?:png|jpeg|gif|webp);base64,[A-Za-z0-9+/]+={0,2}$/;

export function filePreview(value: unknown): FilePreview | null {
  const fields = fieldsOf(value);
  if (!fields || !text(fields.path)) return null;
  const facts = {
    request: number(fields.request),
    path: text(fields.path),
    bytes: size(fields.bytes),
    modified: size(fields.modified),
    width: Math.trunc(size(fields.width)),
    height: Math.trunc(size(fields.height)),
  };
  if (fields.kind === 'text') return { ...facts, kind: 'text', text: text(fields.text), whole: fields.whole !== false };
  if (fields.kind === 'picture' && source.test(text(fields.source))) return { ...facts, kind: 'picture', source: text(fields.source) };
  return { ...facts, kind: 'none', reason: previewReasons.find((reason) => reason === fields.reason) ?? 'other' };
}
