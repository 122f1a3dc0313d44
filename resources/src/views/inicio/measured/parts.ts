/** Of what the space in use outside the categories is made, in GB. */
import type { Category, Measurement } from '../../../protocol/protocol.ts';
import { unmeasuredIn } from '../treemap.ts';

export interface Part {
  name: 'measured' | 'hidden' | 'reserved' | 'outside';
  gb: number;
}

const gigabyte = 1e9;

/** The parts of the category that holds everything else; their sum is the category's. */
export function partsOf(category: Category, measurement: Measurement): Part[] {
  const { disk, hidden, outside } = measurement;
  const measured = category.gb - unmeasuredIn([category], measurement);
  const parts: Part[] = [
    // Of a figure with one decimal.
    { name: 'measured', gb: Math.round(measured * 10) / 10 },
    { name: 'hidden', gb: (hidden ?? 0) / gigabyte },
    { name: 'reserved', gb: disk.reserved / gigabyte },
    { name: 'outside', gb: outside / gigabyte },
  ];
  return parts.filter(({ gb }) => gb > 0);
}

/** Places that the figures leave out. */
export function hasUnmeasured({ volumes, withheld, excluded, unreadable }: Measurement): boolean {
  return volumes.length > 0 || withheld.length > 0 || excluded.length > 0 || unreadable.count > 0;
}

export function hasGaps(measurement: Measurement): boolean {
  return hasUnmeasured(measurement) || !measurement.compared.complete;
}
