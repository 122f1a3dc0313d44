/** What could not be removed, by reason, so that what to do is said once. */
import { failureReasons } from '../../protocol/appRecords.ts';
import type { FailureReason, UninstallResult } from '../../protocol/protocol.ts';

/** What is still there; something that was gone already needs nothing more. */
export function stillThere(failures: UninstallResult['failures']): number {
  return failures.filter(({ reason }) => reason !== 'gone').length;
}

export interface FailureGroup {
  reason: FailureReason;
  failures: UninstallResult['failures'];
}

/** What the user can do something about comes first. */
const order: readonly FailureReason[] = ['admin', 'perm', 'busy', 'other', 'protected', 'gone'];

export function failureGroups(failures: UninstallResult['failures']): FailureGroup[] {
  return [...failureReasons]
    .sort((left, right) => order.indexOf(left) - order.indexOf(right))
    .map((reason) => ({ reason, failures: failures.filter((failure) => failure.reason === reason) }))
    .filter((group) => group.failures.length > 0);
}
