/** The periods offered; another one that is already set stays in the list. */
const offered = [7, 15, 30, 60, 90];

export function retentionChoices(current: number): number[] {
  return [...new Set([...offered, current])].sort((left, right) => left - right);
}
