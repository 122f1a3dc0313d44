import { frame } from './frame.ts';
import { lists } from './lists.ts';
import { overview } from './overview.ts';
import { settings } from './settings.ts';

export const es = { frame, lists, overview, settings };
