/**
 * The page fills its window, and nothing else there takes the focus: past the last control comes the
 * first one. An engine that is left to itself there may let go of the focus, and of the keys with it.
 */

const candidates = 'a[href], button, input, select, textarea, summary, [tabindex], [contenteditable]';

function takesTab(element: HTMLElement): boolean {
  if (element.tabIndex < 0 || element.matches(':disabled') || element.closest('[inert]')) return false;
  // Of the radio buttons of a group the checked one alone is reached by key.
  if (element instanceof HTMLInputElement && element.type === 'radio' && !element.checked) return false;
  return element.getClientRects().length > 0 && getComputedStyle(element).visibility === 'visible';
}

function follows(element: Node, from: Node): boolean {
  return (from.compareDocumentPosition(element) & Node.DOCUMENT_POSITION_FOLLOWING) !== 0;
}

/** Where the Tab key leads that the engine must not be left alone with; null for everywhere else. */
function target(backwards: boolean): HTMLElement | null {
  const dialogs = document.querySelectorAll('dialog[open]');
  const scope: ParentNode = dialogs[dialogs.length - 1] ?? document;
  const all = [...scope.querySelectorAll<HTMLElement>(candidates)];
  const first = all.find(takesTab) ?? null;
  const last = all.findLast(takesTab) ?? null;
  const focused = document.activeElement;
  if (focused && focused !== document.body) {
    const isAtEnd = backwards ? !first || !follows(focused, first) : !last || !follows(last, focused);
    return isAtEnd ? (backwards ? last : first) : null;
  }
  // Nobody has it: it goes on from the place that was clicked.
  const clicked = getSelection()?.anchorNode;
  if (!clicked || !scope.contains(clicked)) return backwards ? last : first;
  const reachable = all.filter(takesTab);
  if (backwards) return reachable.findLast((each) => follows(clicked, each)) ?? last;
  return reachable.find((each) => follows(each, clicked)) ?? first;
}

/** To be told of every key that is pressed. */
export function keepFocus(event: KeyboardEvent): void {
  // WebKitGTK knows no name for the key while Shift is held.
  if (event.key !== 'Tab' && event.code !== 'Tab') return;
  if (event.defaultPrevented || event.ctrlKey || event.altKey || event.metaKey) return;
  const next = target(event.shiftKey);
  if (!next) return;
  event.preventDefault();
  next.focus();
}
