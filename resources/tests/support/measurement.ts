/** What was measured of the made-up disk of `states.ts`, as the program would tell it. */
import { home } from './states.ts';
import type { OpenPage } from './page.ts';

export const someMeasurement = {
  disk: { total: 994.7e9, free: 312.4e9, reserved: 49.7e9, purgeable: 0 },
  home: 528.9e9,
  hidden: 12.3e9,
  volumes: [{ path: `${home}/Discos/Copia`, bytes: 1.4e12 }, { path: `${home}/nas` }],
  withheld: [],
  excluded: [`${home}/Music/Muestras`],
  unreadable: { count: 12, paths: [`${home}/Documents/Máquinas virtuales/compartido`] },
  outside: 91.4e9,
  compared: { complete: false, left: 1234, canContinue: true, running: false },
};

export async function tellMeasurement(opened: OpenPage, change: Partial<typeof someMeasurement> = {}): Promise<void> {
  await opened.tell('onHome', home);
  await opened.tell('onMeasurement', { ...someMeasurement, ...change });
}
