/**
 * The top of a scale without a natural one: a round figure that grows at once when a value needs the
 * room, and shrinks only when next to nothing of it is used, so that the curve does not jump about.
 */
export const smallest = 10_000;
const littleUsed = 0.3;

/** 1, 2 or 5 times a power of ten, at least as large as the value. */
export function roundUp(value: number): number {
  if (value <= smallest) return smallest;
  const power = 10 ** Math.floor(Math.log10(value));
  const step = [1, 2, 5, 10].find((factor) => factor * power >= value) ?? 10;
  return step * power;
}

export function nextTop(top: number, highest: number): number {
  if (highest > top) return roundUp(highest);
  return highest < top * littleUsed ? Math.min(top, roundUp(highest * 1.5)) : top;
}
