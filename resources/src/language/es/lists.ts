import type { lists as english } from '../en/lists.ts';
import { formats } from '../formats.ts';

const { plural, size } = formats.es;

const files = { one: '# archivo', many: '# de archivos', other: '# archivos' };

export const lists: typeof english = {
  search: 'Buscar',
  searchFiles: 'Buscar por nombre o ubicación',
  clearSearch: 'Borrar la búsqueda',
  kind: 'Tipo',
  anyKind: 'Cualquier tipo',
  kinds: { video: 'Vídeo', picture: 'Imagen', archive: 'Comprimido', diskImage: 'Imagen de disco', installer: 'Instalador', virtualMachine: 'Máquina virtual', other: 'Otro' },
  smallest: 'Tamaño mínimo',
  anySize: 'Cualquier tamaño',
  fromSize: (gb) => `${size(gb)} o más`,
  category: (name) => `Categoría: ${name}`,
  categoryOff: (name) => `Categoría: ${name}. Ver archivos de todas las categorías`,
  selectShown: 'Seleccionar todos los archivos visibles',
  menu: (name) => `Qué se puede hacer con ${name}`,
  excludeFolder: 'Excluir su carpeta del análisis',
  openFolder: 'Abrir su carpeta en Carpetas',
  copied: 'Ubicación copiada',
  copiedMany: (count) => plural(count, { one: '# ubicación copiada', many: '# de ubicaciones copiadas', other: '# ubicaciones copiadas' }),
  showing: 'Abriendo su carpeta…',
  lastUse: 'Último uso',
  anyTime: 'Cualquier fecha',
  olderThan: { days30: 'Hace más de un mes', days180: 'Hace más de seis meses', days365: 'Hace más de un año' },
  columns: { select: 'Selección', name: 'Nombre', path: 'Ubicación', size: 'Tamaño', kind: 'Tipo', lastUse: 'Último uso', actions: 'Acciones' },
  shown: (count, gb) => `${plural(count, files)} · ${size(gb)}`,
  shownOf: (count, all, gb) => `${count} de ${plural(all, files)} · ${size(gb)}`,
  filesLabel: 'Archivos grandes',
  filesHelp: 'Las flechas mueven, Espacio selecciona, Mayúsculas amplía, Escape quita la selección, la flecha derecha llega a las acciones de la fila y, desde la primera fila, la flecha arriba a los encabezados.',
  filesIntro: 'Los archivos más grandes del análisis, desde 0,3 GB.',
  noLargeTitle: 'No hay archivos grandes',
  noLargeText: 'Ningún archivo llega a 0,3 GB. El espacio se reparte entre muchos pequeños.',
  noMatchTitle: 'Sin coincidencias',
  noMatchText: 'Ningún archivo cumple la búsqueda y los filtros.',
  clearFilters: 'Ver todos los archivos',
  reveal: 'Mostrar en su carpeta',
  revealNamed: (name) => `Mostrar ${name} en su carpeta`,
  exclude: 'Excluir del análisis',
  excludeNamed: (name) => `Excluir ${name} del análisis`,
  copyPaths: 'Copiar ubicación',
  selectAll: 'Seleccionar todo',
  remove: 'Mover a la Papelera de Velto',
  selected: (count) => plural(count, { one: '# seleccionado', other: '# seleccionados' }),
  hiddenBySearch: (count: number) =>
    plural(count, { one: '# seleccionado más, oculto por la búsqueda', other: '# seleccionados más, ocultos por la búsqueda' }),
  hiddenByFilter: (count: number) =>
    plural(count, { one: '# seleccionado más, oculto por el filtro', other: '# seleccionados más, ocultos por el filtro' }),
  removing: (count) =>
    plural(count, { one: 'Moviendo # elemento a la Papelera de Velto…', many: 'Moviendo # de elementos a la Papelera de Velto…', other: 'Moviendo # elementos a la Papelera de Velto…' }),
  nothingSelected: 'Nada seleccionado',
  clearSelection: 'Quitar la selección',
  trashNote: 'Mover a la Papelera de Velto aún no libera espacio; se recupera al vaciarla.',
  partial: 'Hay lugares sin medir.',
  partialMore: 'Ver por qué',
  selectionStatus: (count, gb) =>
    count ? `${plural(count, { one: '# seleccionado', other: '# seleccionados' })}, ${size(gb)}` : 'Nada seleccionado',
  duplicatesLabel: 'Grupos de archivos idénticos',
  duplicatesHelp: 'Las flechas mueven, Espacio selecciona una copia para quitarla, K conserva una copia, Escape quita la selección.',
  duplicatesIntro: 'Archivos con exactamente el mismo contenido, comparados por entero. Siempre queda una copia de cada grupo.',
  wasted: (gb) => `Unos ${size(gb)} en copias de más`,
  wastedNone: 'Menos de 0,1 GB en copias de más',
  groups: (count) => plural(count, { one: '# grupo', many: '# de grupos', other: '# grupos' }),
  copiesOf: (files, names) => {
    const copies = plural(files, { one: '# copia', many: '# de copias', other: '# copias' });
    if (files === names) return copies;
    const all = plural(names, { one: '# nombre', many: '# de nombres', other: '# nombres' });
    return files === 1 ? `Un archivo con ${all}` : `${copies} con ${all}`;
  },
  each: (gb) => `${gb > 0 ? size(gb) : `menos de ${size(0.1)}`} cada una`,
  extra: (gb) => `${gb > 0 ? size(gb) : `menos de ${size(0.1)}`} de más`,
  extraNothing: 'nada de más',
  nameOfKept: 'El mismo archivo que se queda',
  nameOfKeptWhy: 'Es otro nombre del mismo archivo: quitarlo no libera espacio.',
  nameOfExtra: (names) => `Un archivo, ${plural(names, { one: '# nombre', many: '# de nombres', other: '# nombres' })}`,
  nameOfExtraWhy: (names) =>
    `El mismo archivo con ${plural(names, { one: '# nombre', many: '# de nombres', other: '# nombres' })}: su espacio solo vuelve cuando se quitan todos.`,
  groupLabel: (name, copies, extra) => `${name}: ${copies}, ${extra}`,
  keep: 'Conservar esta',
  keepNamed: (path) => `Conservar esta: ${path}`,
  kept: 'Se queda',
  keptWhy: 'Esta es la copia que se queda. Conserva otra para poder quitarla.',
  keptTitle: 'Siempre queda una copia',
  everyCopyTitle: 'No se ha movido nada',
  everyCopyText: (name) => `Están seleccionadas todas las copias de «${name}». Deja una fuera e inténtalo de nuevo.`,
  keptProposed: 'la más reciente',
  selectExtras: 'Seleccionar todas menos las que se quedan',
  noDuplicatesTitle: 'No hay duplicados',
  clearedTitle: 'Todas las copias de más están en la Papelera de Velto.',
  clearedText: 'De cada una queda una copia en su sitio. Hasta que vacíes la papelera, las demás se pueden devolver.',
  noDuplicatesText: 'Velto no ha encontrado dos archivos de más de 1 MB con el mismo contenido.',
  protected: 'Protegido',
};
