import { about } from './about.ts';
import { appWords } from './apps.ts';
import { cleanup } from './cleanup.ts';
import { cloud } from './cloud.ts';
import { folders } from './folders.ts';
import { growth } from './growth.ts';
import { history } from './history.ts';
import { lists } from './lists.ts';
import { measured } from './measured.ts';
import { settings } from './settings.ts';
import { systemWords } from './system.ts';
import { trash } from './trash.ts';

/** The words that come with the second script. */
export const laterEs = { about, lists, cloud, folders, growth, measured, settings, cleanup, trash, history, apps: appWords, system: systemWords };
