/** Duplicates that share their space: what it would bring, and how far it is. */
import { language } from '../language/language.svelte.ts';
import { send } from '../protocol/connection.ts';
import type { Sharable, SharingCopy, SharingEnd, SharingGroup, SharingProgress, SharingReason } from '../protocol/protocol.ts';
import { toasts } from './toasts.svelte.ts';

class Sharing {
  private known = $state.raw<Sharable['groups']>(new Map());
  private request = 0;
  private asked: readonly SharingGroup[] = [];
  /** Whose answer still holds, by id. */
  private readonly fresh = new Set<string>();
  /** While it runs. */
  progress = $state.raw<SharingProgress | null>(null);
  /** Asked to stop, and not stopped yet. */
  stopping = $state(false);

  /** Copies that share their space with the kept one already: their removal brings nothing. */
  readonly one: ReadonlySet<string> = $derived(
    new Set([...this.known.values()].flatMap(({ copies }) => copies.flatMap(({ path, reason }) => (reason === 'one' ? [path] : [])))),
  );

  /** The groups of which some copy can share. */
  readonly able: ReadonlyMap<string, { bytes: number; exact: boolean; copies: number }> = $derived(
    new Map(
      [...this.known].flatMap(([id, { copies }]) => {
        const can = copies.filter(({ reason, bytes }) => reason === undefined && bytes > 0);
        if (!can.length) return [];
        const bytes = can.reduce((sum, copy) => sum + copy.bytes, 0);
        return [[id, { bytes, exact: can.every(({ exact }) => exact), copies: can.length }] as const];
      }),
    ),
  );

  /**
   * Asks what it would bring, of the groups whose answer is not known: each costs the disk a look at every copy. The
   * answer to an earlier question does not count any more.
   */
  foretell(groups: readonly SharingGroup[]): void {
    const missing = groups.filter(({ id, kept }) => !this.fresh.has(id) || this.known.get(id)?.kept !== kept);
    if (!missing.length) return;
    this.asked = missing;
    this.request += 1;
    send('foretellSharing', { request: this.request, groups: missing });
  }

  /** What was told may not hold any more; it stays until there is another answer. */
  doubt(): void {
    this.fresh.clear();
  }

  receive(told: Sharable): void {
    if (told.request !== this.request) return;
    const known = new Map(this.known);
    for (const { id, kept } of this.asked) {
      known.set(id, told.groups.get(id) ?? { kept: kept ?? '', copies: [] });
      this.fresh.add(id);
    }
    this.known = known;
  }

  /** Groups that were asked about and answered. */
  knows(id: string): boolean {
    return this.known.has(id);
  }

  share(groups: SharingGroup[]): void {
    if (this.progress || !groups.length) return;
    toasts.dismissActions();
    this.stopping = false;
    send('shareSpace', { groups });
  }

  stop(): void {
    this.stopping = true;
    send('stopSharing');
  }

  receiveProgress(progress: SharingProgress): void {
    this.progress = progress;
  }

  finish(end: SharingEnd): void {
    this.progress = null;
    this.stopping = false;
    this.doubt();
    const words = language.words.lists;
    const { title, text } = end.files || end.bytes
      ? { title: words.sharedTitle, text: words.sharedText(end.files, end.bytes / 1e9, end.exact) }
      : { title: end.stopped ? words.sharingStopped : words.sharedNone, text: words.sharedNothingLost };
    toasts.show(title, [text, ...reasonSentences(end.stays)].join(' '));
  }
}

/** What stays as it is, a sentence for each reason. */
function reasonSentences(stays: readonly SharingCopy[]): string[] {
  const counts = new Map<SharingReason, number>();
  for (const { reason } of stays) if (reason && reason !== 'one') counts.set(reason, (counts.get(reason) ?? 0) + 1);
  return [...counts].map(([reason, count]) => language.words.lists.staysUnshared[reason](count));
}

export const sharing = new Sharing();
