import type { history as english } from '../en/history.ts';
import { formats } from '../formats.ts';

const { plural, size } = formats.es;

const items = { one: '# elemento', many: '# de elementos', other: '# elementos' };
const entries = { one: '# entrada', many: '# de entradas', other: '# entradas' };

export const history: typeof english = {
  label: 'Historial por meses',
  help: 'Las flechas mueven, Intro muestra los elementos de una entrada, la flecha derecha llega a sus acciones.',
  total: (count, gb) => `${plural(count, entries)} · ${size(gb)} en total`,
  intro: 'Qué se ha quitado y cuándo. Una limpieza deshecha sale de esta lista; lo que se devuelve elemento a elemento sigue en ella.',
  monthTotal: (count, gb) => `${plural(count, entries)} · ${size(gb)}`,
  unknownMonth: 'Fecha desconocida',
  unknownTime: 'Se desconoce',
  chartTitle: 'Retirado por mes',
  chartUnit: 'en GB',
  chartLabel: (months) => `Retirado por mes: ${months}.`,
  chartMonth: (month, gb) => `${month} ${size(gb)}`,
  chartNone: 'nada en los últimos doce meses',
  kinds: { wind: 'Limpieza', uninstall: 'Desinstalación', share: 'Espacio compartido', other: 'Limpieza' },
  allStayed: 'Todos los archivos se quedaron',
  items: (count) => plural(count, items),
  noItems: 'Sin elementos',
  moreItems: (count) => plural(count, { one: 'y # más', many: 'y # de más', other: 'y # más' }),
  show: (when) => `Ver los elementos de ${when}`,
  hide: (when) => `Ocultar los elementos de ${when}`,
  inTrash: (count, all) => (count === all ? 'En la Papelera de Velto' : `${count} de ${all} en la Papelera de Velto`),
  notInTrash: 'Ya no está en la Papelera de Velto',
  deleted: 'Eliminado definitivamente',
  openTrash: 'Ver en la Papelera de Velto',
  more: (count) =>
    plural(count, { one: 'Ver # entrada anterior', many: 'Ver # de entradas anteriores', other: 'Ver # entradas anteriores' }),
  clear: 'Vaciar historial…',
  clearTitle: '¿Vaciar el historial?',
  clearText: (count, gb) => `La lista olvida ${plural(count, entries)}, ${size(gb)}. Eso no se puede deshacer.`,
  clearKeeps: 'Solo se vacía la lista. Tus archivos y la Papelera de Velto quedan como están.',
  clearConfirm: 'Vaciar historial',
  emptyTitle: 'Aún no hay limpiezas',
  emptyText: 'Lo que quitas queda anotado aquí, con su tamaño y su fecha.',
  toCleanup: 'Ir a Limpieza',
};
