/** Puts the sizes that are known to the byte in the place of those that the program has rounded. */
export function exactly<Item extends { gb: number }>(
  items: Item[],
  sizes: ReadonlyMap<string, number> | undefined,
  keyOf: (item: Item) => string,
): Item[] {
  if (!sizes?.size) return items;
  return items.map((item) => {
    const bytes = sizes.get(keyOf(item));
    return bytes === undefined ? item : { ...item, gb: bytes / 1e9 };
  });
}
