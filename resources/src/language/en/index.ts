import { frame } from './frame.ts';
import { overview } from './overview.ts';

/** The words of the first frame. */
export const en = { frame, overview };
