/** When a disk is so full that waiting for Velto Trash to be emptied may be too long; the program has the same limits. */
const fewGigabytes = 5;
const smallShare = 0.05;

export function isNearlyFull(space: { total: number; free: number } | null): boolean {
  return space !== null && space.total > 0 && space.free < fewGigabytes && space.free < space.total * smallShare;
}
