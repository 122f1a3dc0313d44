import { appWords } from './apps.ts';
import { cleanup } from './cleanup.ts';
import { frame } from './frame.ts';
import { history } from './history.ts';
import { lists } from './lists.ts';
import { overview } from './overview.ts';
import { settings } from './settings.ts';
import { systemWords } from './system.ts';
import { trash } from './trash.ts';

export const es = { frame, lists, overview, settings, cleanup, trash, history, apps: appWords, system: systemWords };
