import type { cleanup as english } from '../en/cleanup.ts';
import { formats } from '../formats.ts';

const { plural, size } = formats.es;

const items = { one: '# elemento', many: '# de elementos', other: '# elementos' };

export const cleanup: typeof english = {
  label: 'Lo prescindible, por clases',
  help: 'Las flechas mueven, Espacio selecciona un elemento o una clase entera, Mayúsculas amplía, Escape quita la selección, Intro muestra un elemento en su carpeta.',
  found: (count, gb) => `${plural(count, items)} · ${size(gb)}`,
  lookingAgain: 'Buscando de nuevo…',
  intro: 'Ya seleccionado: cachés de más de un mes, que las apps vuelven a crear. Lo demás lo decides tú.',
  look: 'Buscar de nuevo',
  rules: {
    caches: {
      name: 'Cachés de aplicaciones',
      why: 'Archivos de trabajo que las aplicaciones guardan para no tener que crearlos dos veces.',
      after: 'Cada aplicación vuelve a crear los suyos cuando los necesita; su próximo arranque puede tardar algo más.',
    },
    xcode: {
      name: 'Restos de Xcode',
      why: 'Resultados de compilación y soporte de dispositivos sin cambios desde hace más de un año.',
      after: 'Xcode los compila o descarga de nuevo cuando los necesita.',
    },
    oldDownloads: {
      name: 'Descargas antiguas',
      why: 'Archivos de Descargas que nadie ha abierto desde hace más de un año.',
      after: 'Son tuyos y nada los vuelve a crear: míralos antes de elegir.',
    },
    installers: {
      name: 'Instaladores',
      why: 'Archivos de Descargas con los que se instalan aplicaciones.',
      after: 'Lo instalado se queda. Un instalador se suele poder descargar otra vez.',
    },
    other: {
      name: 'Otras propuestas',
      why: 'Velto las ha encontrado de otra manera.',
      after: 'Míralas antes de elegir.',
    },
  },
  certain: 'Seguro: se vuelve a crear',
  possible: 'Posible: míralo antes',
  mixed: 'Seguro y posible: mira cada uno',
  afterDoubt: 'Lo seguro lo vuelve a crear su aplicación cuando lo necesita. Mira los demás antes de elegir.',
  doubts: {
    unknown: 'Posible: nada dice que se vuelva a crear',
    keeps: 'Posible: puede guardar lo que nada vuelve a crear',
    running: 'Posible: un programa que lo usa está en marcha',
    unread: 'Posible: no se ha podido leer entero',
  },
  linked: (gb) => `${size(gb)} se quedan: esos archivos tienen otro nombre en otro sitio`,
  further: {
    where: 'Dónde:',
    how: 'Cómo:',
    beside: (names, markers) => `${names.join(', ')} junto a ${markers.join(' o ')}`,
    idle: (days) => `en un proyecto que nadie ha tocado desde hace ${plural(days, { one: '# día', many: '# de días', other: '# días' })}`,
    explainedTitle: 'Lo que quitan otros programas',
    explainedText: 'Velto solo lo mide y lo explica. Las órdenes son para un terminal: lee qué quita cada una antes de ejecutarla.',
    asking: 'Preguntando…',
    unknownSize: 'Tamaño desconocido',
    copied: 'Orden copiada',
    copy: (command) => `Copiar «${command}»`,
    parts: { Images: 'Imágenes', Containers: 'Contenedores', 'Local Volumes': 'Volúmenes', 'Build Cache': 'Caché de construcción' },
  },
  derivedData: 'Resultados de compilación (DerivedData)',
  deviceSupport: (name) => `Soporte de dispositivo ${name}`,
  changed: (age) => `Cambió ${age}`,
  opened: (age) => `Abierto ${age}`,
  groupSummary: (count, gb) => `${plural(count, items)} · ${size(gb)}`,
  groupLabel: (name, selected, count) => `${name}: ${selected} de ${plural(count, items)} en la selección`,
  remove: (count, gb) => `Mover ${plural(count, items)}, ${size(gb)}, a la Papelera de Velto`,
  nearlyFull: (free) =>
    `El disco está casi lleno: ${size(free)} libres. Lo que va a la Papelera de Velto no libera nada hasta vaciarla. Lo seguro también lo puedes eliminar definitivamente y al momento: selecciónalo tú.`,
  deleteNow: 'Eliminar definitivamente…',
  deleteTitle: (count) =>
    plural(count, { one: '¿Eliminar # elemento definitivamente?', other: '¿Eliminar # elementos definitivamente?' }),
  deleteText: 'No se queda en la Papelera de Velto ni se puede recuperar. Sus aplicaciones lo vuelven a crear cuando lo necesitan.',
  deleteFrees: (gb) => `Libera ${size(gb)} ahora.`,
  deleteConfirm: 'Eliminar definitivamente',
  selectedOf: (count, all) => `${count} de ${all} seleccionados`,
  sizeOf: (gb, all) => `${size(gb)} de ${size(all)}`,
  lookingTitle: 'Buscando lo prescindible',
  lookingText: 'Velto mide las cachés y recorre Descargas. No cambia nada.',
  lookingLate: 'Medir carpetas grandes lleva un rato. No cambia nada.',
  failedTitle: 'No ha llegado respuesta',
  failedText: 'No se pudo averiguar qué es prescindible. No se ha cambiado ni perdido nada.',
  failedAgain: 'Al buscar de nuevo no ha llegado respuesta. Lo que ves es la última.',
  emptyTitle: 'No hay nada que limpiar',
  emptyText: 'Velto no ha encontrado cachés, descargas antiguas ni instaladores de un tamaño que importe.',
  doneTitle: 'Ya está todo en la Papelera de Velto',
  doneText: 'El espacio vuelve al vaciar la papelera. Hasta entonces todo se puede recuperar.',
  toTrash: 'Ir a la Papelera de Velto',
  withoutAccess: 'Descargas queda fuera: para mirar allí hace falta el acceso total al disco.',
  grant: 'Dar acceso…',
};
