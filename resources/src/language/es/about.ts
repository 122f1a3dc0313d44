import type { about as english } from '../en/about.ts';
import { formats } from '../formats.ts';

const { plural } = formats.es;

export const about: typeof english = {
  title: 'Acerca de Velto',
  version: 'Versión',
  license: (name) => `Software libre con licencia ${name}.`,
  guideLabel: 'La guía',
  guideHelp: 'Qué muestra cada sección, cómo funciona el mantenimiento y cómo recuperar cosas. También se abre con F1.',
  openGuide: 'Abrir la guía',
  noticesLabel: 'Avisos de licencias',
  noticesHelp: 'De quién es el trabajo que hay dentro de Velto y en qué condiciones.',
  openNotices: 'Ver los avisos',
  places: 'Dónde guarda Velto cada cosa',
  placesHelp: 'Solo en este equipo. Al quitar la aplicación, estos lugares se quedan; restablecer Velto los elimina todos menos los ajustes.',
  placeNames: {
    data: 'Datos: análisis, historial, exclusiones',
    trash: 'Lo que espera en la Papelera de Velto',
    settings: 'Ajustes',
    schedule: 'Programación del mantenimiento',
  },
  notThere: 'Ahora mismo no existe.',
  reveal: 'Mostrar',
  revealNamed: (what) => `Mostrar en el explorador de archivos: ${what}`,
  copy: 'Copiar',
  copyNamed: (what) => `Copiar la ubicación: ${what}`,
  waiting: 'Preguntando al programa…',
  contents: 'Contenido',
  toStart: 'Volver al contenido',
  reading: 'Abriendo…',
  notRead: 'No se ha podido abrir este texto. Forma parte de la instalación: al instalar Velto de nuevo, vuelve.',
  privacy: 'Privacidad',
  usesLabel: 'Recordar cuándo se usaron las aplicaciones',
  usesHelp: 'Mientras está abierto, Velto anota el último uso de cada aplicación, que aparece en la lista de aplicaciones. No sale de este equipo.',
  usesNow: (count) => (count > 0 ? `Anotado ahora: ${plural(count, { one: '# aplicación', many: '# de aplicaciones', other: '# aplicaciones' })}.` : 'Ahora no hay nada anotado.'),
  usesOff: 'No se anota nada. La lista de aplicaciones estima el último uso por sus archivos.',
  forgetTitle: '¿Dejar de recordar y olvidar?',
  forgetText: (count) =>
    `Lo anotado sobre ${plural(count, { one: '# aplicación', many: '# de aplicaciones', other: '# aplicaciones' })} se borra y no se puede recuperar. Las aplicaciones no se tocan.`,
  forget: 'Dejar de recordar y borrar',
};
