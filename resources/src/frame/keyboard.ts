/** Keys that work everywhere. Cmd/Ctrl+R belongs to the program's menu and is left alone. */
import { undoLastCleanup } from '../state/putBack.ts';
import { navigation } from '../state/navigation.svelte.ts';
import { shortcuts } from '../state/shortcuts.svelte.ts';
import { views } from '../views/registry.ts';

const regions = ['rail', 'list', 'actions', 'offer'];

function isTextField(target: EventTarget | null): boolean {
  return target instanceof HTMLElement && target.matches('input, textarea, [contenteditable]');
}

/** What a region wants focused when it is reached by key. */
function entryOf(region: Element): HTMLElement | null {
  const wanted = ['[aria-current="page"]', '[tabindex="0"]', 'button:not([tabindex="-1"])'];
  // What keeps its place without being shown takes no focus.
  const isShown = (element: HTMLElement) => getComputedStyle(element).visibility === 'visible';
  return wanted.map((selector) => [...region.querySelectorAll<HTMLElement>(selector)].find(isShown)).find(Boolean) ?? null;
}

/** From rail to list to action bar to what a message offers, and round again; regions that are not there are passed over. */
export function focusNextRegion(backwards: boolean): void {
  const present = regions.flatMap((name) => {
    const region = document.querySelector(`[data-region="${name}"]`);
    const entry = region && entryOf(region);
    return region && entry ? [{ region, entry }] : [];
  });
  if (!present.length) return;
  const current = present.findIndex(({ region }) => region.contains(document.activeElement));
  const step = backwards ? -1 : 1;
  const next = current < 0 ? 0 : (current + step + present.length) % present.length;
  // Some engines show no ring for a focus that a script has moved, whatever key it was moved by.
  document.documentElement.dataset.ring = '';
  present[next]!.entry.focus();
}

export function handleKey(event: KeyboardEvent): void {
  if (document.querySelector('dialog[open]')) return;
  const command = (event.metaKey || event.ctrlKey) && !event.altKey && !event.shiftKey;
  if (event.key === 'F6') {
    event.preventDefault();
    focusNextRegion(event.shiftKey);
  } else if (event.key === 'F1') {
    event.preventDefault();
    navigation.arrive('guia');
  } else if (command && event.key.toLowerCase() === 'f') {
    const search = document.querySelector<HTMLInputElement>('[data-search]');
    if (!search) return;
    event.preventDefault();
    search.focus();
    search.select();
  } else if (command && /^[1-9]$/.test(event.key)) {
    const view = views[Number(event.key) - 1];
    if (!view) return;
    event.preventDefault();
    navigation.arrive(view.name);
  } else if (event.key === '?' && !event.ctrlKey && !event.metaKey && !event.altKey && !isTextField(event.target)) {
    event.preventDefault();
    shortcuts.open = true;
  } else if (command && event.key.toLowerCase() === 'z' && !isTextField(event.target)) {
    event.preventDefault();
    void undoLastCleanup();
  }
}
