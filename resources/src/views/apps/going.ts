/** Back from one application to the list, with the focus on the row it was opened from. */
import { tick } from 'svelte';
import { rowWithKey } from '../../selection/gridKeys.ts';
import { leftovers } from '../../state/leftovers.svelte.ts';
import { uninstalling } from '../../state/uninstalling.svelte.ts';
import { navigation } from '../../state/navigation.svelte.ts';
import { choice } from './state.svelte.ts';

export function backToList(): void {
  const path = leftovers.app?.path ?? '';
  if (uninstalling.outcome?.path === path) uninstalling.forgetOutcome();
  leftovers.close();
  choice.forget();
  void tick().then(() => {
    const row = rowWithKey(document.querySelector('[data-region="list"]'), path);
    if (row) row.focus();
    else navigation.arrive('apps');
  });
}
