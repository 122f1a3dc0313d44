/**
 * The second click of a double one lands on whatever lies there by then: a folder that the first one
 * has opened has other rows in its place. It counts only where both meant the same row.
 */
export class Presses {
  private first: string | null = null;

  /** Whether a click or a double click on the row of `key` was meant for it. */
  isMeant({ type, detail }: MouseEvent, key: string): boolean {
    if (type === 'click' && detail <= 1) this.first = key;
    return this.first === key;
  }
}
