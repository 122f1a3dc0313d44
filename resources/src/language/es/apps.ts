import type { appWords as english } from '../en/apps.ts';
import { formats } from '../formats.ts';

const { plural, fineSize: size } = formats.es;

const apps = { one: '# aplicación', many: '# de aplicaciones', other: '# aplicaciones' };
const items = { one: '# elemento', many: '# de elementos', other: '# elementos' };

export const appWords: typeof english = {
  label: 'Aplicaciones instaladas',
  help: 'Las flechas mueven, Intro abre una aplicación, la flecha derecha llega a las acciones de la fila y, desde la primera fila, la flecha arriba a los encabezados.',
  search: 'Buscar aplicaciones',
  found: (count, gb, measuring) => (measuring ? plural(count, apps) : `${plural(count, apps)} · ${size(gb)}`),
  measuringAll: 'midiendo tamaños…',
  lookAgain: 'Leer de nuevo',
  lookingAgain: 'Leyendo de nuevo…',
  columns: { icon: 'Icono', name: 'Aplicación', lastUse: 'Último uso', size: 'Tamaño', actions: 'Acciones' },
  measuring: 'Midiendo…',
  unknown: 'Se desconoce',
  running: 'En marcha',
  store: 'De la App Store',
  storeElsewhere: 'Flatpak o Snap',
  removing: 'Desinstalando…',
  version: (version) => `Versión ${version}`,
  open: 'Ver qué ha dejado',
  openNamed: (name) => `Ver qué ha dejado ${name}`,
  systemTitle: 'Del sistema',
  systemText: (count) => `${plural(count, apps)} que vienen con el sistema y se quedan con él.`,
  systemWhy: 'Es parte del sistema: Velto no la quita.',
  systemShow: 'Mostrar',
  systemHide: 'Ocultar',
  lookingTitle: 'Leyendo las aplicaciones',
  lookingText: 'Velto lee los nombres y las versiones de lo que hay instalado. No cambia nada.',
  lookingLate: 'Tarda más de lo normal. No cambia nada.',
  failedTitle: 'La lista no ha llegado',
  failedText: 'No se pudieron leer las aplicaciones. No se ha cambiado ni perdido nada.',
  failedAgain: 'Leer de nuevo no ha dado respuesta. Lo que ves es la última lista.',
  emptyTitle: 'No hay aplicaciones',
  emptyText: 'Velto busca en las carpetas de aplicaciones. No hay ninguna que pueda mostrar.',
  noMatchTitle: 'Sin coincidencias',
  noMatchText: 'Ninguna aplicación cumple la búsqueda.',
  clearSearch: 'Ver todas las aplicaciones',

  leftBehind: {
    title: 'Restos de apps que ya no están',
    text: 'Datos de aplicaciones que Velto ya no encuentra en este ordenador. Al principio no hay nada seleccionado: míralos antes, porque entre ellos puede haber ajustes y documentos.',
    help: 'Las flechas mueven, Espacio selecciona, Mayúsculas extiende, Suprimir mueve la selección a la Papelera de Velto, Intro muestra un elemento en su carpeta.',
    summary: (count, gb) => `${plural(count, items)} · ${size(gb)}`,
    changed: (ago) => `Último cambio ${ago}`,
    why: {
      flatpak: 'No hay instalado ningún Flatpak con este nombre, y nada más usa esta carpeta.',
      identifier: 'No hay instalada ninguna aplicación, paquete ni servicio con este nombre.',
      package: 'No está instalada como paquete, Flatpak, Snap ni programa.',
    },
  },

  back: 'Volver a todas las aplicaciones',
  uninstallTitle: (name) => `Desinstalar ${name}`,
  analysingTitle: (name) => `Buscando qué ha dejado ${name}`,
  analysingText: 'Velto recorre las carpetas donde las aplicaciones guardan sus archivos y mide lo que encuentra.',
  analysingLate: 'Medir carpetas grandes lleva un rato. No cambia nada.',
  analysisFailed: 'No se pudo examinar',
  analysisFailedText: 'No se ha cambiado ni perdido nada.',
  programSays: (text) => `El programa dice: ${text}`,
  team: (team) => `Firmada por el equipo ${team}`,
  sections: {
    certain: { name: 'Seguro', what: 'Lleva el identificador de la aplicación: nada más lo usa. Seleccionado de entrada.' },
    possible: { name: 'Posible: míralo antes', what: 'Solo coincide el nombre, o es un enlace, así que también puede ser de otra cosa. No se selecciona de entrada.' },
    stays: { name: 'Se queda: no se quita desde aquí', what: 'Velto no lo toca. Puedes verlo en su carpeta y quitarlo tú.' },
  },
  conf: { certain: 'Seguro', possible: 'Posible' },
  stays: {
    admin: 'Requiere un administrador',
    nested: 'Se va con la aplicación',
    protected: 'Lugar protegido',
  },
  linkTo: 'lleva a',
  linkAlone: 'Solo se elimina el enlace; su destino se queda.',
  linkTarget: 'Detrás de un enlace: se elimina su destino.',
  forAllUsers: 'Instalada para todos los usuarios: hay que llevarla a la papelera a mano',
  groups: {
    app: 'Aplicación',
    support: 'Archivos de apoyo',
    caches: 'Cachés',
    prefs: 'Preferencias',
    state: 'Estado guardado',
    containers: 'Contenedor',
    group: 'Contenedor compartido',
    web: 'Datos web',
    logs: 'Registros',
    agents: 'Servicios en segundo plano',
  },
  itemsLabel: 'Lo que pertenece a la aplicación',
  itemsHelp: 'Las flechas mueven, Espacio selecciona un elemento o una sección entera, Mayúsculas amplía, Escape quita la selección, Intro muestra un elemento en su carpeta.',
  sectionSummary: (count, gb) => `${plural(count, items)} · ${size(gb)}`,
  sectionLabel: (name, selected, count) => `${name}: ${selected} de ${plural(count, items)} seleccionados`,
  sectionStays: (name, count) => `${name}: ${plural(count, items)}`,

  planTitle: 'Qué va a pasar',
  planCloses: (name) => `${name} está en marcha: primero se cierra. Antes de seguir, guarda tu trabajo en ella.`,
  planServices: (count) =>
    plural(count, {
      one: 'Se detiene # servicio en segundo plano.',
      many: 'Se detienen # de servicios en segundo plano.',
      other: 'Se detienen # servicios en segundo plano.',
    }),
  planDeletes: (count, gb) =>
    `Se elimina definitivamente: ${plural(count, items)}, ${size(gb)}. No pasa por la Papelera de Velto.`,
  planNothing: 'No hay nada seleccionado, así que no se elimina nada.',
  planKept: 'La aplicación se queda: solo se va lo que ha dejado.',
  planOutOfReach: 'La aplicación está instalada para todos los usuarios. Velto no puede eliminarla ahí y te la muestra al final para que la lleves a la papelera a mano.',
  planLeft: (count) =>
    plural(count, {
      one: 'Se queda # elemento sin seleccionar.',
      many: 'Se quedan # de elementos sin seleccionar.',
      other: 'Se quedan # elementos sin seleccionar.',
    }),
  planStays: (count) =>
    plural(count, {
      one: 'Se queda # elemento fuera de alcance.',
      many: 'Se quedan # de elementos fuera de alcance.',
      other: 'Se quedan # elementos fuera de alcance.',
    }),
  selectedOf: (count, all) => `${count} de ${plural(all, items)} seleccionados`,
  selectionStatus: (count, gb) =>
    count ? `${plural(count, { one: '# seleccionado', other: '# seleccionados' })}, ${size(gb)}` : 'Nada seleccionado',
  forGood: 'Desinstalar elimina definitivamente: después no se puede recuperar.',
  uninstall: 'Desinstalar…',
  removeLeftovers: 'Quitar lo seleccionado…',
  busy: (name) => `Ya hay una desinstalación en marcha: ${name}. Espera a que termine.`,
  busyUnnamed: 'Ya hay una desinstalación en marcha. Espera a que termine.',
  questionTitle: (name) => `¿Desinstalar ${name}?`,
  questionTitleKept: (name) => `¿Quitar lo que ha dejado ${name}?`,
  questionText: (count, gb) =>
    `${plural(count, { one: 'Se elimina # elemento', many: 'Se eliminan # de elementos', other: 'Se eliminan # elementos' })} definitivamente. Quedan libres unos ${size(gb)}.`,
  questionNothingElse: 'Después no se puede recuperar.',
  questionConfirm: 'Desinstalar',
  questionConfirmKept: 'Eliminar definitivamente',

  runTitle: (name) => `Desinstalando ${name}`,
  runTitleUnnamed: 'Desinstalando una aplicación',
  stages: {
    stop: 'Cerrando la aplicación y sus servicios',
    files: 'Eliminando lo seleccionado',
    clean: 'Terminando',
    done: 'Hecho',
  },
  runNote: 'Mientras tanto puedes seguir con otra cosa.',
  progressLabel: 'Progreso de la desinstalación',

  doneTitle: (name) => `${name} está desinstalada`,
  doneTitleKept: (name) => `Se ha quitado lo que había dejado ${name}`,
  partTitle: (name) => `${name}: una parte sigue ahí`,
  noneTitle: 'No se ha quitado nada',
  freed: 'han quedado libres',
  removedItems: (count) =>
    plural(count, { one: '# elemento eliminado', many: '# de elementos eliminados', other: '# elementos eliminados' }),
  closedProcesses: (count) =>
    plural(count, { one: '# proceso cerrado', many: '# de procesos cerrados', other: '# procesos cerrados' }),
  noneText: 'Todo está donde estaba.',
  allGone: 'Todo lo que estaba seleccionado se ha eliminado.',
  failuresTitle: (count) =>
    plural(count, {
      one: '# elemento no se pudo quitar',
      many: '# de elementos no se pudieron quitar',
      other: '# elementos no se pudieron quitar',
    }),
  reasons: {
    admin: { what: 'Fuera de tu carpeta personal', todo: 'Solo un administrador puede quitarlo. Muéstralo en su carpeta y llévalo desde allí a la papelera.' },
    perm: { what: 'Sin permiso', todo: 'El sistema lo impidió. Mira sus permisos, o concede a Velto acceso total al disco, e inténtalo de nuevo.' },
    busy: { what: 'En uso', todo: 'Algo lo está usando todavía. Ciérralo o reinicia el ordenador e inténtalo de nuevo.' },
    gone: { what: 'Ya no estaba', todo: 'No queda nada por hacer.' },
    protected: { what: 'Lugar protegido', todo: 'Las fotos, las copias de seguridad, el correo y los mensajes nunca se quitan desde aquí. Míralo en su carpeta.' },
    other: { what: 'No se pudo eliminar', todo: 'El sistema no dio más motivo. Míralo en su carpeta e inténtalo de nuevo.' },
  },
  lookAtRest: 'Ver lo que queda',
};
