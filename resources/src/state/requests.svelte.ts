/**
 * What the page has asked of Velto Trash and has not heard of yet. The program answers in the order
 * of the requests. How a removal went is in the title of its toast; that something is back in its
 * place shows in the trash no longer holding it.
 */
import type { TrashItem } from '../protocol/protocol.ts';

export type RequestKind = 'remove' | 'undo' | 'restore' | 'purge' | 'empty' | 'deleteNow';
/** "unclear": the trash has changed, but not in the way that was expected. */
export type Outcome = 'done' | 'failed' | 'unclear';

interface Request {
  kind: RequestKind;
  /** The paths, or the ids of the trash items, that the request is about. */
  keys: readonly string[];
  settle: (outcome: Outcome) => void;
}

export interface Answer {
  kind: RequestKind;
  outcome: Outcome;
}

/** The titles of the program's toasts, in both of its languages. */
const titles: Record<RequestKind, { done: readonly string[]; failed: readonly string[] }> = {
  remove: { done: ['Eliminado', 'Removed'], failed: ['No se pudo eliminar', "Couldn't remove"] },
  undo: { done: [], failed: ['No se pudo deshacer', "Couldn't undo"] },
  restore: { done: [], failed: ['No se pudo restaurar', "Couldn't restore"] },
  purge: { done: ['Eliminado', 'Deleted'], failed: ['No se pudo eliminar', "Couldn't delete"] },
  // What was deleted in part has all left its place.
  deleteNow: {
    done: ['Eliminado definitivamente', 'Deleted for good', 'Eliminado en parte', 'Deleted in part'],
    failed: ['No se pudo eliminar ahora', "Couldn't delete now"],
  },
  empty: { done: ['Papelera vaciada', 'Trash emptied'], failed: ['No se pudo vaciar', "Couldn't empty Trash"] },
};

class Requests {
  private waiting = $state.raw<readonly Request[]>([]);
  private held = $state.raw<readonly (readonly string[])[]>([]);

  /** Paths and ids that something is being done with; a path begins with a slash and an id never does. */
  readonly busy: ReadonlySet<string> = $derived(
    new Set([...this.waiting.map(({ keys }) => keys), ...this.held].flat()),
  );
  /** How many items are on their way to Velto Trash. */
  readonly moving: number = $derived(
    this.waiting.reduce((sum, { kind, keys }) => sum + (kind === 'remove' ? keys.length : 0), 0),
  );
  readonly deleting: boolean = $derived(this.waiting.some(({ kind }) => kind === 'deleteNow'));
  readonly emptying: boolean = $derived(this.waiting.some(({ kind }) => kind === 'empty'));

  /** How far the emptying is; null while nobody has said, or it would say nothing. */
  emptied = $state.raw<{ done: number; of: number } | null>(null);

  emptyingIs(done: number, of: number): void {
    if (this.emptying && of > 1) this.emptied = { done, of };
  }

  ask(kind: RequestKind, keys: readonly string[]): Promise<Outcome> {
    return new Promise((settle) => {
      this.waiting = [...this.waiting, { kind, keys, settle }];
    });
  }

  /** Keeps the keys busy while several requests about them follow one another. */
  hold(keys: readonly string[]): () => void {
    this.held = [...this.held, keys];
    return () => (this.held = this.held.filter((other) => other !== keys));
  }

  /** Takes the oldest request that a toast of this title answers; null when it answers none. */
  answer(title: string): Answer | null {
    for (const request of this.waiting) {
      const { done, failed } = titles[request.kind];
      const outcome = done.includes(title) ? 'done' : failed.includes(title) ? 'failed' : null;
      if (!outcome) continue;
      this.finish(request, outcome);
      return { kind: request.kind, outcome };
    }
    return null;
  }

  trashHolds(items: readonly TrashItem[]): void {
    const ids = new Set(items.map(({ id }) => id));
    for (const request of this.waiting) {
      if (request.kind !== 'undo' && request.kind !== 'restore') continue;
      const left = request.keys.filter((id) => ids.has(id)).length;
      if (left === 0) this.finish(request, 'done');
      // The program undoes what it knows as the last cleanup, which may be newer than the page knew.
      else if (request.kind === 'undo' && left === request.keys.length && this.waiting[0] === request) {
        this.finish(request, 'unclear');
      }
    }
  }

  private finish(request: Request, outcome: Outcome): void {
    this.waiting = this.waiting.filter((other) => other !== request);
    if (!this.emptying) this.emptied = null;
    request.settle(outcome);
  }
}

export const requests = new Requests();
