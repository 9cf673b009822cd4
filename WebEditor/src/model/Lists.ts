// List values: items that are divided by commas.

/** A list with more items is edited as one text. */
export const mostItemBoxes = 12;

/** The items of a list value. */
export function listItems(value: string | undefined): string[] {
  return (value ?? '')
    .split(',')
    .map((one) => one.trim())
    .filter((one) => one !== '');
}

/** The value of a list with these items. Empty ones are left out. */
export function listValue(items: readonly string[]): string {
  return listItems(items.join(',')).join(', ');
}

/** The texts of the items while they are typed: as they are, with the empty ones. A blank after a comma is no part. */
export function draftItems(text: string): string[] {
  return text.split(',').map((one, i) => (i > 0 && one.startsWith(' ') ? one.slice(1) : one));
}

/** The text with one more item before the one at `at`. */
export function withItem(items: readonly string[], at: number, added: string): string {
  return [...items.slice(0, at), added, ...items.slice(at)].join(',');
}

export function withoutItem(items: readonly string[], at: number): string {
  return items.filter((_, i) => i !== at).join(',');
}
