/** What Velto Trash remembers while another view is shown: the focus and how much is unfolded. */
import type { TrashItem } from '../../protocol/protocol.ts';
import { operationsOf, type Operation } from '../../state/operations.ts';
import { session } from '../../state/session.svelte.ts';

const itemsAtFirst = 5;
const itemsMore = 200;

/** The rows of whole operations stand among those of the items. */
const operationPrefix = 'operation:';

export function operationKey(id: string): string {
  return operationPrefix + id;
}

class VeltoTrash {
  focused = $state<string | null>(null);
  private unfolded = $state.raw<ReadonlyMap<string, number>>(new Map());

  readonly operations: Operation[] = $derived(operationsOf(session.trash ?? []));
  /** The rows in the order shown. */
  readonly keys: string[] = $derived(
    this.operations.flatMap((operation) => [operationKey(operation.id), ...this.itemsOf(operation).map(({ id }) => id)]),
  );

  private readonly operationByKey = $derived(new Map(this.operations.map((operation) => [operationKey(operation.id), operation])));
  private readonly itemById = $derived(new Map((session.trash ?? []).map((item) => [item.id, item])));

  /** One more row is shown rather than a button that shows one more row. */
  itemsOf({ id, items }: Operation): TrashItem[] {
    const limit = this.unfolded.get(id) ?? itemsAtFirst;
    return items.length <= limit + 1 ? items : items.slice(0, limit);
  }

  showMore({ id }: Operation): void {
    this.unfolded = new Map(this.unfolded).set(id, (this.unfolded.get(id) ?? itemsAtFirst) + itemsMore);
  }

  operationAt(key: string): Operation | undefined {
    return this.operationByKey.get(key);
  }

  itemAt(key: string): TrashItem | undefined {
    return this.itemById.get(key);
  }

  /** The operation whose card holds the row. */
  cardOf(key: string): string | null {
    return this.operationAt(key)?.id ?? this.itemAt(key)?.opID ?? null;
  }

  /** Shows an operation that another view pointed at; answers its row. */
  pointAt(id: string): string | null {
    if (!this.operationAt(operationKey(id))) return null;
    this.focused = operationKey(id);
    return this.focused;
  }
}

export const veltoTrash = new VeltoTrash();
