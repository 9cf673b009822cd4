// The edits that a finding suggests. Only what the finding itself names: nothing is invented.
import type { Edit, Finding } from '../protocol/Messages';
import { shownValue } from './Sentences';

export type Fix = { label: string; edit: Edit };

const mostValues = 4;

export function fixesOf(finding: Finding): Fix[] {
  const { code, path, name, expected, type, wrong } = finding;
  const fixes: Fix[] = [];
  const add = (label: string, edit: Edit) => {
    if (!fixes.some((one) => JSON.stringify(one.edit) === JSON.stringify(edit))) fixes.push({ label, edit });
  };
  if (name === undefined) {
    if (code === 'missing-object' && type !== undefined && (wrong?.length ?? 0) === 0) {
      add(`Add ${type}`, { kind: 'activate-object', path: `${path}/${type}` });
    }
    for (const missing of code === 'missing-object' && type !== undefined ? (wrong ?? []) : []) {
      add(`Add ${type}:${missing}`, { kind: 'activate-object', path: `${path}/${type}:${missing}` });
    }
    return fixes;
  }
  const set = (value: string) => add(`Set ${shownValue(value)}`, { kind: 'set-param', path, name, value });
  if (expected?.remedy !== undefined) set(expected.remedy);
  // The nearest name of an unknown parameter is no value.
  if (expected?.nearMatch !== undefined && code === 'value-not-allowed' && (wrong?.length ?? 0) === 0)
    set(expected.nearMatch);
  const { allowed } = expected ?? {};
  if (allowed && allowed.length <= mostValues && expected?.allowedCount === undefined && (wrong?.length ?? 0) === 0) {
    for (const value of allowed) set(value);
  }
  if (code === 'below-lower-bound' && expected?.lowerBound !== undefined && !expected.lowerBoundExcluded)
    set(expected.lowerBound);
  if (code === 'above-upper-bound' && expected?.upperBound !== undefined && !expected.upperBoundExcluded)
    set(expected.upperBound);
  return fixes;
}
