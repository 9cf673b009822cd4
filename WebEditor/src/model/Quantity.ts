// Numbers and units, as users type them. Nothing is guessed: a number that is read wrongly is worse than a question.

export type Quantity = { number: string; unit: string };

const trailingUnit = /^(.*?)\s*\[([^[\]]*)\]\s*$/s;
const plainNumber = /^[+-]?(\d+\.?\d*|\.\d+)([eEdD][+-]?\d+)?$/;
const wholeNumber = /^[+-]?\d+$/;
const numberThenWord = /^([+-]?(?:\d+\.?\d*|\.\d+)(?:[eEdD][+-]?\d+)?)\s*([^\d\s.,;+-].*)$/s;

/** "2.5 [m]" is the number "2.5" and the unit "m". A text without a unit has the unit "". */
export function splitQuantity(value: string): Quantity {
  const match = trailingUnit.exec(value);
  return match
    ? { number: (match[1] ?? '').trim(), unit: (match[2] ?? '').trim() }
    : { number: value.trim(), unit: '' };
}

export function joinQuantity({ number, unit }: Quantity): string {
  return unit === '' ? number : `${number} [${unit}]`;
}

export type Judged = { value: string; unit: string } | { problem: string; suggestion?: string };

/**
 * Reads one number with its units, typed as "2.5", "2.5 mm" or "2.5 [mm]". `units` are the listed ones and `unit` is
 * the chosen one, which is taken when none is typed. Other units are left to the server, which converts them or
 * refuses them.
 */
export function judgeNumber(typed: string, isInteger: boolean, units: readonly string[], unit: string): Judged {
  const text = typed.trim();
  if (text === '') return { problem: 'Type a number.' };
  const bracketed = splitQuantity(text);
  let number = bracketed.number;
  let chosen = bracketed.unit;
  const worded = chosen === '' && !plainNumber.test(number) ? numberThenWord.exec(number) : null;
  if (worded) {
    number = worded[1] ?? '';
    chosen = (worded[2] ?? '').trim();
  }
  const hasOwnUnit = chosen !== '';
  if (!hasOwnUnit) chosen = unit;
  const end = hasOwnUnit ? ` [${chosen}]` : '';

  if (/^[+-]?\d+,\d+([eE][+-]?\d+)?$/.test(number)) {
    const suggestion = number.replace(',', '.') + end;
    return { problem: `Write decimals with a dot: ${suggestion}`, suggestion };
  }
  if (!plainNumber.test(number)) return { problem: `“${shorten(number)}” is not a number.` };
  if (isInteger && !wholeNumber.test(number)) return { problem: `“${number}” is not a whole number.` };
  if (hasOwnUnit && units.length === 0)
    return { problem: `This number has no units; type ${number}`, suggestion: number };
  if (hasOwnUnit && !units.includes(chosen)) {
    // Case matters: "mm" is not "Mm". Only the spelling of a listed unit is offered.
    const near = units.find((one) => one.toLowerCase() === chosen.toLowerCase());
    if (near !== undefined) {
      return {
        problem: `“${chosen}” is not “${near}”. Upper and lower case matter.`,
        suggestion: `${number} [${near}]`,
      };
    }
  }
  return { value: joinQuantity({ number, unit: chosen }), unit: chosen };
}

const bidiMarks = /[\u061C\u200E\u200F\u202A-\u202E\u2066-\u2069]/g;

/** Shows marks that change the direction of text as their code, so that no name or value looks like another one. */
export function withShownMarks(text: string): string {
  return text.replace(bidiMarks, (mark) => `⟨${(mark.codePointAt(0) ?? 0).toString(16).toUpperCase()}⟩`);
}

/** Cuts a long text in the middle of nowhere, and says so with "…". Surrogate pairs stay whole. */
export function shorten(whole: string, most = 60): string {
  const text = withShownMarks(whole.length <= most ? whole : whole.slice(0, most * 2));
  if (text.length <= most) return text;
  const begin = Array.from(text);
  if (begin.length <= most && whole.length <= most * 2) return text;
  return `${begin.slice(0, most - 1).join('')}…`;
}
