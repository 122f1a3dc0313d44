/** Asks the program what of a selection can be moved, before anything is. */
import { send } from '../protocol/connection.ts';
import type { SelectionCheck } from '../protocol/protocol.ts';

class SelectionChecks {
  /** Grows whenever something turns out to be gone: what lists it looks again. */
  losses = $state(0);
  private last = 0;
  private readonly waiting = new Map<number, (check: SelectionCheck) => void>();

  check(paths: string[]): Promise<SelectionCheck> {
    this.last += 1;
    const request = this.last;
    return new Promise((settle) => {
      this.waiting.set(request, settle);
      send('checkSelection', { paths, request });
    });
  }

  receive(check: SelectionCheck): void {
    if (check.stays.some(({ reason }) => reason === 'gone')) this.losses += 1;
    this.waiting.get(check.request)?.(check);
    this.waiting.delete(check.request);
  }
}

export const selectionChecks = new SelectionChecks();
