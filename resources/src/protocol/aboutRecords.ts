/** What the program says of itself. */
export const placeRoles = ['data', 'trash', 'settings', 'schedule'] as const;
export type PlaceRole = (typeof placeRoles)[number];

/** Where the program keeps something of its own. */
export interface OwnPlace {
  role: PlaceRole;
  path: string;
  /** Something stands there. */
  there: boolean;
}

export interface About {
  version: string;
  /** SPDX identifier. */
  license: string;
  places: OwnPlace[];
}

/** The record of when applications were last used. */
export interface AppUses {
  recording: boolean;
  /** Of how many a use is recorded. */
  applications: number;
}
