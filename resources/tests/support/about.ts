import type { About, AppUses } from '../../src/protocol/protocol.ts';
import type { OpenPage } from './page.ts';
import { home } from './states.ts';

export function someAbout(): About {
  return {
    version: '1.2.3',
    license: 'MIT',
    places: [
      { role: 'data', path: `${home}/Library/Application Support/Velto`, there: true },
      { role: 'trash', path: `${home}/Library/Application Support/Velto/Trash`, there: true },
      { role: 'settings', path: `${home}/Library/Preferences/app.velto.plist`, there: true },
      { role: 'schedule', path: `${home}/Library/LaunchAgents/app.velto.maintenance.plist`, there: false },
    ],
  };
}

export async function tellAbout(opened: OpenPage, uses: AppUses = { recording: true, applications: 12 }): Promise<void> {
  await opened.tell('onHome', home);
  await opened.tell('onAbout', someAbout());
  await opened.tell('onAppUses', uses);
}
