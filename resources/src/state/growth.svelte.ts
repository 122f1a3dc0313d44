/** What has grown since an earlier analysis: asked once the page is there, and told anew after each analysis. */
import { send } from '../protocol/connection.ts';
import type { Growth, GrowthSince } from '../protocol/protocol.ts';
import { folders } from './folders.svelte.ts';

class GrowthState {
  /** Null until the program has answered. */
  told = $state.raw<Growth | null>(null);
  /** The list of what has changed is unfolded. */
  open = $state(false);

  /** What is compared with; the folders count their growth from the same moment. */
  get choice(): GrowthSince {
    return folders.since;
  }

  /** Another answer is on its way. */
  get asking(): boolean {
    return this.told !== null && this.told.asked !== folders.since;
  }

  ask(): void {
    send('growth', { since: folders.since });
  }

  choose(since: GrowthSince): void {
    if (since === folders.since) return;
    folders.since = since;
    this.ask();
  }

  receive(growth: Growth): void {
    this.told = growth;
    if (growth.available.length === 0) this.open = false;
  }
}

export const growth = new GrowthState();
