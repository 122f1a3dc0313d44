/** Which view is shown, and what it was asked to point at. */
import { publish } from '../protocol/connection.ts';
import type { ViewName } from '../protocol/protocol.ts';

export const viewNames: readonly ViewName[] = [
  'inicio', 'explorar', 'archivos', 'duplicados', 'limpieza', 'papelera', 'historial', 'apps', 'sistema', 'ajustes', 'guia', 'avisos',
];

/** Read for a moment, and left for the view before. */
const papers: readonly ViewName[] = ['guia', 'avisos'];

class Navigation {
  view = $state<ViewName>('inicio');
  /** Where the way back from the guide and the notices leads. */
  before = $state<ViewName>('ajustes');
  /** The path that the list of large files should show and focus; taken by the list. */
  wantedFile = $state<string | null>(null);
  /** The category whose large files should be listed; taken by their view. */
  wantedFilesOf = $state<string | null>(null);
  /** The folder that the view of the folders should open (the home has ""); taken by the view. */
  wantedFolder = $state<string | null>(null);
  /** The category whose folder it should look for in the home; taken by the view. */
  wantedCategory = $state<string | null>(null);
  /** The cleanup that Velto Trash should show and focus; taken by its list. */
  wantedOperation = $state<string | null>(null);
  /** The change came from elsewhere than the rail: the focus should follow it to the view. */
  private arrived = $state(false);

  show(view: ViewName): void {
    this.view = view;
  }

  arrive(view: ViewName): void {
    if (papers.includes(view) && !papers.includes(this.view)) this.before = this.view;
    this.view = view;
    this.arrived = true;
  }

  /** True once after each arrival. */
  takeArrival(): boolean {
    const arrived = this.arrived;
    if (arrived) this.arrived = false;
    return arrived;
  }

  openFile(path: string): void {
    this.wantedFile = path;
    this.view = 'archivos';
  }

  openFilesOf(category: string): void {
    this.wantedFilesOf = category;
    this.arrive('archivos');
  }

  openFolder(path: string): void {
    this.wantedCategory = null;
    this.wantedFolder = path;
    this.arrive('explorar');
  }

  openCategory(id: string): void {
    this.wantedFolder = '';
    this.wantedCategory = id;
    this.arrive('explorar');
  }

  openOperation(id: string): void {
    this.wantedOperation = id;
    this.view = 'papelera';
  }
}

export const navigation = new Navigation();

/** The program's menu calls `go` with a view's name; an unknown name changes nothing. */
export function publishGo(): void {
  publish('go', (name) => {
    const view = viewNames.find((known) => known === name);
    if (view) navigation.arrive(view);
  });
}
