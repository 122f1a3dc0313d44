import { untrack } from 'svelte';

/**
 * Tells of every change of a list, for choices that must not outlive their rows: were such a row only left out
 * while it is away, an undo would bring the old choice back with it. For what lives as long as the page.
 */
export function onListChange(keys: () => readonly string[], change: (keys: readonly string[]) => void): void {
  $effect.root(() => {
    $effect(() => {
      const listed = keys();
      untrack(() => change(listed));
    });
  });
}
