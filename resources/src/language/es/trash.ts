import type { trash as english } from '../en/trash.ts';
import { formats } from '../formats.ts';

const { number, plural, size } = formats.es;

const items = { one: '# elemento', many: '# de elementos', other: '# elementos' };

/** The names in quotes, how many more there are, and what holds for one or for several. */
function named(names: string[], more: number, one: string, several: string): string {
  const parts = names.map((name) => `«${name}»`);
  if (more > 0) parts.push(plural(more, { one: '# más', many: '# más', other: '# más' }));
  return `${listed.format(parts)} ${parts.length === 1 ? one : several}.`;
}

const listed = new Intl.ListFormat('es', { type: 'conjunction' });

export const trash: typeof english = {
  label: 'Papelera de Velto, por limpiezas',
  help: 'Las flechas mueven, Intro devuelve a su sitio un elemento o una limpieza entera, Suprimir pregunta antes de eliminar definitivamente un elemento o una limpieza entera, la flecha derecha llega a las acciones de la fila.',
  holds: (count, gb) => `${plural(count, items)} · ${size(gb)}`,
  figureWords: 'en la Papelera de Velto',
  notFree: 'Los elementos siguen ocupando ese espacio. Solo vuelve cuando se eliminan definitivamente.',
  freeThen: (free, then) => `Libres ahora: ${size(free)}. Tras vaciarla: unos ${size(then)}.`,
  kept: (days) => `Los elementos se conservan ${days}; después, el mantenimiento automático los elimina definitivamente.`,
  keptLonger: (days) => `Los elementos se conservan ${days}. El mantenimiento automático está desactivado: se quedan aún más, hasta que los elimines.`,
  maintained: (held) => `Movidos por el mantenimiento: ${held}`,
  keptChange: 'Cambiar',
  empty: 'Vaciar la papelera…',
  emptying: 'Vaciando…',
  emptied: (done, of) => `Vaciando: ${number(done)} de ${number(of)}…`,
  moved: (when) => `Movido ${when}`,
  movedUnknown: 'Movido, fecha desconocida',
  justNow: 'ahora mismo',
  freeAgain: (gb) => `${size(gb)} libres de nuevo.`,
  staysOn: 'Sin plazo',
  cachesLeft: (left) => `Cachés: ${left.toLowerCase()}`,
  daysLeft: (days) =>
    days > 0 ? plural(days, { one: 'Queda # día', many: 'Quedan # de días', other: 'Quedan # días' }) : 'Plazo cumplido',
  keptUntil: (date) => `Se conserva hasta el ${date}`,
  putBackAll: 'Devolver todo',
  putBackAllOf: (count, when) => `Devolver todo: ${plural(count, items)}, movido ${when}`,
  putBack: 'Devolver',
  putBackNamed: (name) => `Devolver: ${name}`,
  putBackElsewhere: 'Restaurar en otra carpeta…',
  putBackElsewhereNamed: (name) => `Restaurar en otra carpeta: ${name}…`,
  blocked: (path) => `No puede volver: ${path} es ahora un enlace o ya no es una carpeta.`,
  purgeNamed: (name) => `Eliminar ${name} definitivamente…`,
  working: 'En curso…',
  more: (count) =>
    plural(count, { one: 'Ver # elemento más', many: 'Ver # de elementos más', other: 'Ver # elementos más' }),
  groupLabel: (moved, summary, left) => `${moved}: ${summary}, ${left}`,
  purgeTitle: (name) => `¿Eliminar «${name}» definitivamente?`,
  purgeText: (gb) => (gb > 0 ? `Se liberan ${size(gb)}.` : 'Apenas ocupa espacio.'),
  noWayBack: 'Después ya no se puede recuperar.',
  purgeAll: 'Eliminar definitivamente esta limpieza…',
  purgeAllOf: (count, when) => `Eliminar definitivamente esta limpieza: ${plural(count, items)}, ${when}…`,
  purgeAllTitle: (count) => `¿Eliminar ${plural(count, items)} definitivamente?`,
  noWayBackAll: 'Después no se podrá restaurar nada de ella.',
  purgeConfirm: 'Eliminar definitivamente',
  emptyTitle: '¿Vaciar la Papelera de Velto?',
  emptyText: (count, gb) =>
    `${plural(count, { one: 'Se elimina # elemento', many: 'Se eliminan # de elementos', other: 'Se eliminan # elementos' })} definitivamente. Se liberan ${size(gb)}.`,
  emptyConfirm: 'Vaciar la Papelera de Velto',
  waitingForDisk: 'A la espera de un disco',
  waitingForDiskText: 'El paso de estos elementos de un disco a otro quedó interrumpido. No se ha perdido nada, y vaciar la papelera no los toca.',
  waits: {
    in: {
      absent: 'Viene de un disco que no está conectado. Conéctalo y terminará de moverse solo.',
      refused: 'No se puede llegar a la carpeta de la que viene. Cuando se pueda, terminará de moverse solo.',
      unsettled: 'Todavía no ha podido terminar de moverse. Se intenta de nuevo cada vez que vuelves a esta ventana.',
    },
    out: {
      absent: 'Va a un disco que no está conectado. Conéctalo y terminará de moverse solo.',
      refused: 'No se puede llegar a la carpeta a la que va. Cuando se pueda, terminará de moverse solo.',
      unsettled: 'Todavía no ha podido terminar de moverse. Se intenta de nuevo cada vez que vuelves a esta ventana.',
    },
  },
  giveUp: 'Dejar de esperar…',
  giveUpNamed: (name) => `Dejar de esperar: ${name}…`,
  giveUpTitle: (name) => `¿Dejar de esperar al disco de «${name}»?`,
  giveUpWhole: 'Se queda entero en la Papelera de Velto, y se puede devolver a su sitio.',
  giveUpPart: 'Lo que hay aquí se queda en la Papelera de Velto con «(copia sin terminar)» en el nombre: sin el disco no se puede saber si está entero.',
  giveUpIn: 'El original sigue en su disco. Cuando vuelvas a conectarlo, lo encontrarás en su sitio.',
  giveUpOut: 'Si ya había llegado al otro disco, también está allí.',
  giveUpSafe: 'No se borra nada.',
  giveUpConfirm: 'Dejar de esperar',
  emptyStateTitle: 'La Papelera de Velto está vacía',
  emptyStateText: 'Lo que quitas viene primero aquí, y desde aquí se puede devolver a su sitio.',
  toCleanup: 'Ir a Limpieza',
  waitingTitle: 'Leyendo la Papelera de Velto…',
  lateTitle: 'La lista no ha llegado',
  lateText: 'Lo que hay en la Papelera de Velto sigue allí. La lista llega con el próximo cambio.',
  putBackDone: 'De vuelta en su sitio',
  putBackOne: (name, folder) => `«${name}» está de nuevo en ${folder}.`,
  putBackOneAs: (name, now, folder) => `En ${folder} hay otro «${name}», así que ahí está de nuevo como «${now}».`,
  putBackRenamed: (count, first) =>
    plural(count, {
      one: `Uno tiene ahora otro nombre, «${first}»: en su sitio hay otra cosa.`,
      other: `# tienen ahora otros nombres, como «${first}»: en sus sitios hay otras cosas.`,
    }),
  putBackMany: (count, gb) => `${plural(count, items)}, ${size(gb)}, de nuevo en sus carpetas.`,
  nothingToUndo: 'No hay nada que deshacer',
  nothingToUndoText: 'La Papelera de Velto está vacía.',
  nothingMoved: 'No se ha movido nada: todo sigue donde estaba.',
  nothingDeleted: 'No se ha eliminado nada: todo sigue donde estaba.',
  notPutBack: 'Lo que no ha vuelto a su sitio sigue en la Papelera de Velto.',
  notDeleted: 'Lo que no se ha eliminado sigue en la Papelera de Velto.',
  refused: {
    link: (names, more) => named(names, more, 'es un enlace o está detrás de uno', 'son enlaces o están detrás de uno'),
    outside: (names, more) => named(names, more, 'está fuera de tu carpeta de usuario', 'están fuera de tu carpeta de usuario'),
    protected: (names, more) =>
      named(names, more, 'está protegido: las fotos, el correo y las copias de seguridad no se mueven', 'están protegidos: las fotos, el correo y las copias de seguridad no se mueven'),
    gone: (names, more) => named(names, more, 'ya no está ahí', 'ya no están ahí'),
    trash: (names, more) => named(names, more, 'es parte de la Papelera de Velto', 'son parte de la Papelera de Velto'),
  },
  staysWhy: {
    closed: (names, more) =>
      named(names, more, 'está en una carpeta que no se puede cambiar', 'están en carpetas que no se pueden cambiar'),
    readOnly: (names, more) => named(names, more, 'está en un disco de solo lectura', 'están en un disco de solo lectura'),
    mounted: (names, more) =>
      named(names, more, 'tiene otro disco o carpeta montados dentro', 'tienen otro disco o carpeta montados dentro'),
    other: (names, more) => named(names, more, 'no se puede mover', 'no se pueden mover'),
  },
  staysTitle: (count, all) =>
    count === all ? plural(all, { one: 'No se puede mover', other: 'No se puede mover nada' })
      : plural(count, { one: `# de ${all} elementos no se puede mover`, other: `# de ${all} elementos no se pueden mover` }),
  staysText: 'Todavía no se ha movido nada.',
  staysMore: (count) => plural(count, { one: 'Y # más.', other: 'Y # más.' }),
  refusedUnnamed: {
    link: 'Hay un enlace en el camino.',
    outside: 'Su sitio está fuera de tu carpeta de usuario.',
    protected: 'Su sitio está protegido.',
    gone: 'Ya no está en la Papelera de Velto.',
    trash: 'Su sitio es de Velto.',
  },
  moveRest: (count) => plural(count, { one: 'Mover el otro', many: 'Mover los otros # de elementos', other: 'Mover los otros #' }),
};
