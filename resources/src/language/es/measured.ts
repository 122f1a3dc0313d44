import type { measured as english } from '../en/measured.ts';
import { formats } from '../formats.ts';

const { plural, size, number } = formats.es;

export const measured: typeof english = {
  made: 'De qué se compone',
  parts: {
    measured: 'Datos del sistema en tu carpeta personal',
    hidden: 'Archivos ocultos y las propias carpetas',
    reserved: 'Reservado por el sistema de archivos',
    outside: 'El resto del disco',
  },
  why: {
    measured: 'Ajustes y datos de los programas, medidos como las demás categorías.',
    hidden: 'Medido, pero en ninguna de las categorías.',
    reserved: 'Espacio libre que se guarda para el administrador, para que el ordenador siga funcionando con el disco lleno. No contiene nada.',
    outside: 'El sistema, los programas comunes, otros usuarios, lo que hay en la papelera y lo demás de tu carpeta personal que no se ha medido. No se mira archivo por archivo.',
  },
  whyOnMac: {
    measured: 'Ajustes y datos de las aplicaciones, medidos como las demás categorías.',
    hidden: 'Medido, pero en ninguna de las categorías.',
    reserved: 'Espacio libre que el sistema se guarda.',
    outside: 'macOS, las aplicaciones comunes, otros usuarios, las instantáneas, lo que hay en la papelera y lo demás de tu carpeta personal que no se ha medido. No se mira archivo por archivo.',
  },
  strip: (gb) => `${size(gb)}, sin medir archivo por archivo y sin dibujar a escala`,
  title: 'Lo que no se ha medido',
  note: 'Lo que estos lugares ocupan en este disco cuenta como «El resto del disco».',
  withheld: (count) =>
    plural(count, {
      one: '# lugar queda sin leer sin acceso total al disco',
      many: '# de lugares quedan sin leer sin acceso total al disco',
      other: '# lugares quedan sin leer sin acceso total al disco',
    }),
  excluded: (count) =>
    plural(count, {
      one: 'Has excluido # lugar',
      many: 'Has excluido # de lugares',
      other: 'Has excluido # lugares',
    }),
  excludedChange: 'Cambiar',
  unreadable: (count) =>
    plural(count, {
      one: 'No se pudo leer # elemento',
      many: 'No se pudieron leer # de elementos',
      other: 'No se pudieron leer # elementos',
    }),
  volume: (gb) => `otro disco, con ${size(gb)} en uso`,
  volumeUnknown: 'otro disco, o una carpeta de la red',
  compared: (left) =>
    `${plural(left, {
      one: 'Queda # archivo sin comparar',
      many: 'Quedan # de archivos sin comparar',
      other: 'Quedan # archivos sin comparar',
    })}, así que puede haber duplicados que no aparecen.`,
  comparedAgain: 'Analiza de nuevo para poder continuar.',
  compareOn: 'Comparar el resto',
  comparing: (left) =>
    left === 0
      ? 'Comparando archivos…'
      : `Comparando archivos en segundo plano; faltan ${number(left)}. Puedes seguir trabajando.`,
  stopComparing: 'Detener',
};
