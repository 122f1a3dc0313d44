/** The list of keys, which the question mark opens. */
class Shortcuts {
  open = $state(false);
}

export const shortcuts = new Shortcuts();
