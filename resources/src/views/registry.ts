/**
 * The views of the rail. Adding one is a folder beside this file, a row here and one in `later.ts`:
 * only what is on screen at the start is part of the first script.
 */
import Activity from '@lucide/svelte/icons/activity';
import AppWindow from '@lucide/svelte/icons/app-window';
import BrushCleaning from '@lucide/svelte/icons/brush-cleaning';
import Copy from '@lucide/svelte/icons/copy';
import FileStack from '@lucide/svelte/icons/file-stack';
import FolderTree from '@lucide/svelte/icons/folder-tree';
import History from '@lucide/svelte/icons/history';
import LayoutDashboard from '@lucide/svelte/icons/layout-dashboard';
import Settings from '@lucide/svelte/icons/settings';
import Trash2 from '@lucide/svelte/icons/trash-2';
import type { Component } from 'svelte';
import type { ViewName } from '../protocol/protocol.ts';
import Inicio from './inicio/Inicio.svelte';

export interface View {
  name: ViewName;
  icon: Component<Record<string, unknown>>;
  /** Only of the view at the start; the others are in `later.ts`. */
  content?: Component;
}

export const views: readonly View[] = [
  { name: 'inicio', icon: LayoutDashboard, content: Inicio },
  { name: 'explorar', icon: FolderTree },
  { name: 'archivos', icon: FileStack },
  { name: 'duplicados', icon: Copy },
  { name: 'limpieza', icon: BrushCleaning },
  { name: 'papelera', icon: Trash2 },
  { name: 'historial', icon: History },
  { name: 'apps', icon: AppWindow },
  { name: 'sistema', icon: Activity },
  { name: 'ajustes', icon: Settings },
];
