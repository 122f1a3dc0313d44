/** The rows of the heaviest applications as they stand on the page. */
import { untrack } from 'svelte';
import { language } from '../../language/language.svelte.ts';
import { machine } from '../../state/machine.svelte.ts';
import { busiestFirst, nextProcessOrder, SteadyRows, weighs, withActivity, type ProcessColumn, type ProcessOrder, type ProcessRow } from './steadyRows.ts';

class Processes {
  rows = $state.raw<ProcessRow[]>([]);
  order = $state.raw<ProcessOrder>(busiestFirst);
  focused = $state<string | null>(null);
  pointed = $state(false);
  hasFocus = $state(false);
  readonly held: boolean = $derived(this.pointed || this.hasFocus);
  private readonly steady = new SteadyRows();

  /** Run as an effect: takes every sample in as it comes. */
  follow(): void {
    const { sample } = machine;
    untrack(() => {
      if (!sample?.procs) return;
      const groups = withActivity(sample.procs.filter(weighs), machine.activity?.procs ?? []);
      this.rows = this.steady.take(groups, this.order, language.formats.compare, this.held);
    });
  }

  /** The list goes from the screen, and with it whoever was in it. */
  leave(): void {
    this.pointed = false;
    this.hasFocus = false;
    this.steady.restart();
  }

  sortBy(column: ProcessColumn): void {
    this.order = nextProcessOrder(this.order, column);
    this.rows = this.steady.sort(this.order, language.formats.compare);
  }
}

export const processes = new Processes();
