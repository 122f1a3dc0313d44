/**
 * The second script: every view that is not on screen at the start. Whatever the first script
 * imports as well stands there once and is shared.
 */
import type { Component } from 'svelte';
import type { ViewName } from '../protocol/protocol.ts';
import Ajustes from './ajustes/Ajustes.svelte';
import Archivos from './archivos/Archivos.svelte';
import Duplicados from './duplicados/Duplicados.svelte';
import Historial from './historial/Historial.svelte';
import Limpieza from './limpieza/Limpieza.svelte';
import NotYet from './NotYet.svelte';
import Papelera from './papelera/Papelera.svelte';

const contents: Partial<Record<ViewName, Component>> = {
  archivos: Archivos,
  duplicados: Duplicados,
  limpieza: Limpieza,
  papelera: Papelera,
  historial: Historial,
  ajustes: Ajustes,
};

export function contentOf(name: ViewName): Component {
  return contents[name] ?? NotYet;
}
