/** What applications have left behind that are not installed any more. Nothing waits for it: it comes, or it does not. */
import { hasGoneWith } from '../names/gone.ts';
import { send } from '../protocol/connection.ts';
import type { LeftBehindItem } from '../protocol/protocol.ts';
import { onMac } from './platform.ts';

/** What is older is looked for again when the view is shown. */
const fresh = 60_000;

class LeftBehind {
  items = $state.raw<LeftBehindItem[]>([]);
  /** Something was put back since: the list may lack it. */
  outdated = $state(false);
  hasAnswered = false;
  private askedAt = 0;

  /** A Mac's applications say for themselves what belongs to them. */
  lookIfNeeded(): void {
    if (onMac() || (!this.outdated && Date.now() - this.askedAt < fresh)) return;
    this.outdated = false;
    this.askedAt = Date.now();
    send('leftBehind');
  }

  receive(items: LeftBehindItem[]): void {
    this.hasAnswered = true;
    this.items = items;
  }

  /** Takes out what lies in Velto Trash now, with a folder all that is in it. */
  forget(paths: readonly string[]): void {
    const gone = new Set(paths);
    const left = this.items.filter(({ path }) => !hasGoneWith(path, gone));
    if (left.length < this.items.length) this.items = left;
  }
}

export const leftBehind = new LeftBehind();
