/** What a category is called in the language of the page. */
import type { Dictionary } from '../../language/language.svelte.ts';
import type { Category, CategoryId } from '../../protocol/protocol.ts';

function isKnown(words: Dictionary['overview'], id: string): id is CategoryId {
  return Object.hasOwn(words.categories, id);
}

/** The system category is named after macOS only where there is one. */
function isElsewhere(id: string, onMac: boolean): boolean {
  return id === 'sistema' && !onMac;
}

export function categoryName(category: Category, words: Dictionary['overview'], onMac: boolean): string {
  if (isElsewhere(category.id, onMac)) return words.systemElsewhere;
  return isKnown(words, category.id) ? words.categories[category.id] : category.name;
}

export function placeNames(identifiers: readonly string[], words: Dictionary['overview']): string[] {
  const places: Record<string, string> = words.places;
  return identifiers.map((identifier) => places[identifier] ?? identifier);
}
