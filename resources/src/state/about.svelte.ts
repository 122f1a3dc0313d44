/** What the program has said of itself. */
import type { About, AppUses } from '../protocol/protocol.ts';

class AboutProgram {
  /** Null until the program has answered. */
  program = $state.raw<About | null>(null);
  /** Null until the program has answered. */
  uses = $state.raw<AppUses | null>(null);
}

export const about = new AboutProgram();
