/** What Velto Trash remembers while another view is shown: the focus and how much is unfolded. */
import type { TrashItem } from '../../protocol/protocol.ts';
import { operationsOf, type Operation } from '../../state/operations.ts';
import { session } from '../../state/session.svelte.ts';

const itemsAtFirst = 5;
const itemsMore = 200;
const operationsAtOnce = 30;

/** The rows of whole operations stand among those of the items. */
const operationPrefix = 'operation:';

export function operationKey(id: string): string {
  return operationPrefix + id;
}

class VeltoTrash {
  focused = $state<string | null>(null);
  private limit = $state(operationsAtOnce);
  private unfolded = $state.raw<ReadonlyMap<string, number>>(new Map());

  readonly operations: Operation[] = $derived(operationsOf(session.trash ?? []));
  readonly shown: Operation[] = $derived(this.operations.slice(0, this.limit));
  /** The rows in the order shown. */
  readonly keys: string[] = $derived(
    this.shown.flatMap((operation) => [operationKey(operation.id), ...this.itemsOf(operation).map(({ id }) => id)]),
  );

  /** One more row is shown rather than a button that shows one more row. */
  itemsOf({ id, items }: Operation): TrashItem[] {
    const limit = this.unfolded.get(id) ?? itemsAtFirst;
    return items.length <= limit + 1 ? items : items.slice(0, limit);
  }

  showMore({ id }: Operation): void {
    this.unfolded = new Map(this.unfolded).set(id, (this.unfolded.get(id) ?? itemsAtFirst) + itemsMore);
  }

  showMoreOperations(): void {
    this.limit += operationsAtOnce;
  }

  operationAt(key: string): Operation | undefined {
    return this.operations.find(({ id }) => operationKey(id) === key);
  }

  itemAt(key: string): TrashItem | undefined {
    return session.trash?.find(({ id }) => id === key);
  }

  /** Shows an operation that another view pointed at; answers its row. */
  pointAt(id: string): string | null {
    const index = this.operations.findIndex((operation) => operation.id === id);
    if (index < 0) return null;
    this.limit = Math.max(this.limit, index + 1);
    this.focused = operationKey(id);
    return this.focused;
  }
}

export const veltoTrash = new VeltoTrash();
