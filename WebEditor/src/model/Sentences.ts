// Short texts about records. The server makes the long sentences; these are for labels, buttons and announcements.
import type { Edit, EditResult, Param, Place, Waiting } from '../protocol/Messages';
import { lastPart, shortPath } from './Paths';
import { shorten, splitQuantity } from './Quantity';

export function count(number: number, one: string, many = `${one}s`): string {
  return `${number.toLocaleString('en-US')} ${number === 1 ? one : many}`;
}

export function placeText(place: Place | undefined): string {
  if (!place) return '';
  return `${place.file.slice(place.file.lastIndexOf('/') + 1)}:${place.line}`;
}

/** A value as it is shown in a sentence. */
export function shownValue(value: string | undefined): string {
  if (value === undefined) return 'absent';
  return value === '' ? 'no value' : shorten(value, 80);
}

/** Where the value comes from, in words. */
export function originText(param: Param): string {
  const place = placeText(param.rule);
  switch (param.origin) {
    case 'user':
      return param.step ? `set by you, step ${param.step}` : 'set by you';
    case 'model':
      return 'from the model';
    case 'default':
      return place === '' ? 'default' : `default, ${place}`;
    case 'override':
      return place === '' ? 'fixed by the rules' : `fixed by the rules, ${place}`;
    case 'former override':
      return 'left by an override of the rules';
    case 'completed list':
      return 'completed by the rules';
    default:
      return '';
  }
}

/** The bounds in one line: "0 to 100 [m]", "above 0 [m]", "at most 5". */
export function boundsText(param: Param): string {
  const { lowerBound: low, upperBound: high } = param;
  if (low !== undefined && high !== undefined) {
    // "0 to 5 [m]": a unit that both have is written once.
    const [first, last] = [splitQuantity(low), splitQuantity(high)];
    const start = first.unit === last.unit ? first.number : low;
    const from = param.lowerBoundExcluded ? `above ${start}` : start;
    return param.upperBoundExcluded ? `${from} to below ${high}` : `${from} to ${high}`;
  }
  if (low !== undefined) return param.lowerBoundExcluded ? `above ${low}` : `at least ${low}`;
  if (high !== undefined) return param.upperBoundExcluded ? `below ${high}` : `at most ${high}`;
  return '';
}

export function waitingText(waiting: Waiting): string {
  switch (waiting.reason) {
    case 'not-available':
      return waiting.ruleReason ?? 'not available now';
    case 'object-not-present':
      return `${waiting.missingObject ? lastPart(waiting.missingObject) : 'its object'} is not present`;
    case 'switched-off':
      return 'switched off';
    case 'value-not-allowed':
      return 'the value is not allowed now';
    case 'overridden':
      return 'the rules fix another value';
    default:
      return 'the rules do not know it';
  }
}

/** What an edit does, as the text of a button or of a step. */
export function editText(edit: Edit, root: string): string {
  const object = shortPath(edit.path, root);
  const name = edit.name ?? '';
  switch (edit.kind) {
    case 'set-param':
      return `Set ${name} of ${object} to ${shownValue(edit.value ?? '')}`;
    case 'activate-param':
      return `Switch on ${name} of ${object}`;
    case 'deactivate-param':
      return `Switch off ${name} of ${object}`;
    case 'activate-object':
      return `Switch on ${object}`;
    case 'deactivate-object':
      return `Switch off ${object}`;
    case 'add-object':
      return `Add ${object}`;
    case 'remove-object':
      return `Remove ${object}`;
    case 'duplicate-object':
      return `Copy ${object} as ${name}`;
    case 'rename-object':
      return `Rename ${object} to ${name}`;
  }
}

/** The request behind a result, in one line. */
export function resultTitle(result: EditResult, root: string): string {
  const [first, ...others] = result.made ?? [];
  if (!first) return 'Nothing';
  const text = editText(first, root);
  return others.length === 0 ? text : `${text}, and ${count(others.length, 'other edit')}`;
}
