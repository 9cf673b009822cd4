// Paths of objects: "/Case/Domain:sink". The root of a model is "".
import type { Item } from '../protocol/Messages';

export function parentOf(path: string): string {
  return path.slice(0, Math.max(0, path.lastIndexOf('/')));
}

/** The last part: "Domain:sink". */
export function lastPart(path: string): string {
  return path.slice(path.lastIndexOf('/') + 1);
}

/** The type and the name of the last part. An object without a name has the name "". */
export function typeAndName(path: string): { type: string; name: string } {
  const part = lastPart(path);
  const colon = part.indexOf(':');
  return colon < 0 ? { type: part, name: '' } : { type: part.slice(0, colon), name: part.slice(colon + 1) };
}

/** The path itself and all above it down from `root`, the highest first. */
export function ancestors(path: string, root: string): string[] {
  const list: string[] = [];
  for (let at = path; at.length > root.length; at = parentOf(at)) list.unshift(at);
  return [root, ...list];
}

export function isAtOrBelow(path: string, above: string): boolean {
  return path === above || path.startsWith(`${above}/`);
}

/** One text for an item, for maps. */
export function keyOf(item: Item): string {
  return item.name === undefined ? item.path : `${item.path}\n${item.name}`;
}

/** The path in the text of an item. */
export function pathOf(key: string): string {
  const end = key.indexOf('\n');
  return end < 0 ? key : key.slice(0, end);
}

/** The name in the text of a parameter. */
export function nameOf(key: string): string {
  return key.slice(key.indexOf('\n') + 1);
}

/** The path as people read it, without what all paths of the document begin with. */
export function shortPath(path: string, root: string): string {
  if (path === root) return lastPart(path) || 'Model';
  return isAtOrBelow(path, root) ? path.slice(root.length + 1) : path;
}
