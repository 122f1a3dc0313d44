/** What has grown since an earlier analysis: asked once there is an analysis, and told anew after each one. */
import { untrack } from 'svelte';
import { send } from '../protocol/connection.ts';
import type { Growth, GrowthSince } from '../protocol/protocol.ts';
import { folders } from './folders.svelte.ts';
import { session } from './session.svelte.ts';

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

  /** Asks as soon as there is something to ask about. */
  start(): void {
    $effect.root(() => {
      $effect(() => {
        if (session.analysed) untrack(() => this.ask());
      });
    });
  }

  private ask(): void {
    send('growth', { since: folders.since });
  }

  choose(since: GrowthSince): void {
    if (since === folders.since) return;
    folders.since = since;
    this.ask();
  }

  receive(growth: Growth): void {
    this.told = growth;
    // What is kept of an analysis comes after its folders: they were compared without it.
    folders.askGrowth();
    if (growth.available.length === 0) this.open = false;
  }
}

export const growth = new GrowthState();
