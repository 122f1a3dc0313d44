/** What the further rules have found, beside what cleaning proposes; looked for after that. */
import { hasGoneWith } from '../names/gone.ts';
import { send } from '../protocol/connection.ts';
import type { FurtherCleanables, FurtherGroup } from '../protocol/protocol.ts';

/** After this long nothing is on its way any more; what is there stays. */
const tooLate = 180_000;

class Further {
  /** Null until the program has answered. */
  groups = $state.raw<FurtherGroup[] | null>(null);
  looking = $state(false);
  private timer: ReturnType<typeof setTimeout> | undefined;

  look(): void {
    if (this.looking) return;
    this.looking = true;
    this.timer = setTimeout(() => (this.looking = false), tooLate);
    send('scanFurther');
  }

  receive({ groups, asking }: FurtherCleanables): void {
    this.groups = groups;
    if (asking) return;
    clearTimeout(this.timer);
    this.looking = false;
  }

  /** Takes out what lies in Velto Trash now. */
  forget(paths: readonly string[]): void {
    if (!this.groups) return;
    const gone = new Set(paths);
    this.groups = this.groups.map((group) => ({ ...group, items: group.items.filter(({ path }) => !hasGoneWith(path, gone)) }));
  }
}

export const further = new Further();
