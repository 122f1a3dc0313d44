import type { folders as english } from '../en/folders.ts';
import { fileSize, sizeChange } from '../measures.ts';
import { formats } from '../formats.ts';

const { plural } = formats.es;

const size = (bytes: number) => fileSize(bytes, formats.es);
const items = { one: '# elemento', many: '# de elementos', other: '# elementos' };
const files = { one: '# archivo', many: '# de archivos', other: '# archivos' };
const folderCount = { one: '# carpeta', many: '# de carpetas', other: '# carpetas' };

export const folders: typeof english = {
  home: 'Carpeta personal',
  way: 'Ubicación',
  back: 'Atrás',
  up: 'Carpeta superior',
  skipped: (names) => `Carpetas intermedias: ${names}`,
  summary: (bytes, count) => `${size(bytes)} · ${plural(count, files)}`,
  measuredOn: (when) => `Tamaños del análisis de ${when}`,
  measuredNow: 'Tamaños del análisis de ahora mismo',
  search: 'Buscar en todas las carpetas',
  clearSearch: 'Borrar la búsqueda',
  columns: {
    select: 'Selección', name: 'Nombre', size: 'Tamaño', files: 'Archivos', changed: 'Último cambio', growth: 'Variación',
    actions: 'Acciones', path: 'Ubicación',
  },
  gridLabel: (name) => `Contenido de ${name}`,
  gridHelp: 'Las flechas mueven, las letras saltan a un nombre, Intro abre una carpeta, Retroceso sube a la carpeta superior, Espacio selecciona, Mayúsculas amplía, la flecha derecha llega a las acciones de la fila y, desde la primera fila, la flecha arriba a los encabezados.',
  mapLabel: (name) => `Mapa de ${name}`,
  mapHelp: 'Las flechas mueven, Intro abre una carpeta, Retroceso sube a la carpeta superior, Espacio selecciona. La tabla tiene el mismo contenido.',
  cell: (name, bytes, share) => `${name}, ${size(bytes)}, ${share}`,
  folderCell: (name, bytes, share) => `Carpeta ${name}, ${size(bytes)}, ${share}`,
  smaller: (count) => plural(count, { one: '# más pequeño', many: '# de más pequeños', other: '# más pequeños' }),
  smallerLabel: (count, bytes) =>
    `${plural(count, { one: '# elemento más pequeño', many: '# de elementos más pequeños', other: '# elementos más pequeños' })}, ${size(bytes)}`,
  folder: 'Carpeta',
  file: 'Archivo',
  states: {
    new: 'Nueva desde el análisis', unreadable: 'No se puede leer', withheld: 'La retiene el sistema', excluded: 'Excluida',
    own: 'Aparte', otherVolume: 'Otro disco', alreadyWalked: 'Contada en otro lugar',
  },
  stateWhy: {
    new: 'Apareció después del análisis; el próximo la medirá.',
    unreadable: 'Tu cuenta no puede leerla, así que no se sabe cuánto ocupa.',
    withheld: 'Sin acceso total al disco el sistema no deja que Velto la lea.',
    excluded: 'La dejaste fuera del análisis, así que no se ha medido.',
    own: 'Datos del propio Velto o la papelera del sistema: ni se miden ni se mueven desde aquí.',
    otherVolume: 'Es un disco aparte y no cuenta en esta carpeta.',
    alreadyWalked: 'Es la misma carpeta con otro nombre; su contenido se cuenta allí.',
  },
  excludedNext: 'Excluida del próximo análisis',
  linked: 'Varios nombres',
  linkedWhy: 'Este archivo tiene varios nombres y solo se cuenta en uno de ellos. Quitar uno no libera espacio.',
  unreadableInside: (count) => plural(count, { one: '# sin leer', many: '# sin leer', other: '# sin leer' }),
  unreadableInsideWhy: (count) =>
    `${plural(count, { one: 'No se pudo leer # elemento de dentro', many: 'No se pudieron leer # de elementos de dentro', other: 'No se pudieron leer # elementos de dentro' })}; lo que ocupan no está en estas cifras.`,
  usedOf: (bytes, total) => `${size(bytes)} de ${size(total)}`,
  unknownSize: 'Sin medir',
  unknown: 'Se desconoce',
  grown: (bytes) => `${size(bytes)} más`,
  shrunk: (bytes) => `${size(-bytes)} menos`,
  change: (bytes) => sizeChange(bytes, formats.es),
  unchanged: 'Sin cambios',
  locks: {
    protected: 'Protegido: las fototecas, las copias de seguridad, el correo y los mensajes nunca se quitan desde aquí.',
    homeFolder: 'El sistema o los programas buscan esta carpeta. Ábrela para elegir algo de dentro.',
  },
  more: (count) =>
    plural(count, { one: 'No se muestra # enlace o archivo especial.', many: 'No se muestran # de enlaces y archivos especiales.', other: 'No se muestran # enlaces y archivos especiales.' }),
  include: (name) => `Volver a incluir ${name} en el análisis`,
  copyNamed: (name) => `Copiar la ubicación de ${name}`,
  removeNamed: (name) => `Mover ${name} a la Papelera de Velto`,
  copied: 'Ubicación copiada.',
  removeTitle: (count, name) =>
    count === 1 ? `¿Mover «${name}» a la Papelera de Velto?` : `¿Mover ${plural(count, items)} a la Papelera de Velto?`,
  removeAmount: (bytes, count) => `Son ${size(bytes)} en ${plural(count, files)}.`,
  removePartial: 'Una parte no se ha medido, así que puede ser más.',
  removeBack: 'Todo se puede recuperar desde la Papelera de Velto, y ahora no se borra nada.',
  removeConfirm: 'Mover a la Papelera de Velto',
  loading: 'Leyendo la carpeta…',
  unmeasuredTitle: 'El último análisis no tiene carpetas',
  unmeasuredText: 'Se hizo antes de que Velto las guardara. Un análisis nuevo muestra cuánto ocupa cada carpeta; no cambia nada.',
  emptyTitle: 'Esta carpeta está vacía',
  emptyText: 'No hay nada dentro que ocupe espacio.',
  lateTitle: 'Aún no hay respuesta',
  lateText: 'La carpeta no se ha podido leer por ahora. Puede que su disco sea lento o no esté; no se ha cambiado nada.',
  goneTitle: 'Esta carpeta ya no está',
  goneText: 'Se movió o se quitó después del análisis, o no formaba parte de él.',
  toHome: 'Ir a la carpeta personal',
  toAbove: 'Ir a la carpeta superior',
  searchLabel: 'Carpetas encontradas',
  searchHelp: 'Las flechas mueven, Intro abre la carpeta, Escape termina la búsqueda.',
  foundSome: (shown, total) =>
    shown < total ? `Las ${shown} más grandes de ${plural(total, folderCount)}` : plural(total, folderCount),
  searching: 'Buscando…',
  notFoundTitle: 'Ninguna carpeta se llama así',
  notFoundText: 'La búsqueda mira los nombres de todas las carpetas medidas.',
  searchLate: 'La búsqueda no ha tenido respuesta por ahora.',
  opened: (name, count, bytes) => `${name}: ${plural(count, items)}, ${size(bytes)}.`,
};
