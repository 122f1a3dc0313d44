/** What a listed file holds, as far as it is shown. */

export const previewReasons = [
  'gone', 'refused', 'closed', 'inCloud', 'tooLong', 'tooLarge', 'damaged', 'noKind', 'other',
] as const;
/** Why there is nothing to show. */
export type PreviewReason = (typeof previewReasons)[number];

interface PreviewFacts {
  request: number;
  path: string;
  bytes: number;
  /** Seconds since 1970; 0 when not known. */
  modified: number;
  /** In pixels; 0 for what is no picture. */
  width: number;
  height: number;
}

export type FilePreview = PreviewFacts &
  (
    | { kind: 'text'; text: string; whole: boolean }
    /** A data URL. */
    | { kind: 'picture'; source: string }
    | { kind: 'none'; reason: PreviewReason }
  );
