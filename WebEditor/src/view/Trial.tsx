// What a choice would do, in a few lines, before it is made.
import { useEffect, useState } from 'preact/hooks';
import { effectGroups } from '../model/EffectGroups';
import { keyOf, shortPath } from '../model/Paths';
import { count, shownValue } from '../model/Sentences';
import type { Edit, EditResult } from '../protocol/Messages';
import type { DocumentStore } from '../store/DocumentStore';

const mostLines = 4;

/** The result of a trial, some time after the edits stay the same. */
export function useTrial(store: DocumentStore, edits: Edit[] | null, delay: number): EditResult | null {
  const [result, setResult] = useState<{ key: string; result: EditResult | null } | null>(null);
  // What edits would do depends on what the model is.
  const key = edits === null ? '' : `${store.state.value.revision} ${JSON.stringify(edits)}`;
  useEffect(() => {
    if (key === '') return;
    let isCurrent = true;
    const timer = setTimeout(async () => {
      const tried = await store.tryEdits(JSON.parse(key.slice(key.indexOf(' '))) as Edit[]);
      if (isCurrent) setResult({ key, result: tried });
    }, delay);
    return () => {
      isCurrent = false;
      clearTimeout(timer);
    };
  }, [store, key, delay]);
  return result?.key === key ? result.result : null;
}

/** One line for each of the most important consequences, and how many there are beside them. */
export function trialLines(result: EditResult, self: string, root: string): { text: string; more: number }[] {
  if (result.refused) return [{ text: result.refused.sentence, more: 0 }];
  if (!result.effect) return [];
  return effectGroups(result.effect).flatMap((group) => {
    const lines = group.lines.filter((line) => keyOf(line.item) !== self || group.key === 'waiting');
    const total = group.total - (group.lines.length - lines.length);
    if (total === 0) return [];
    const names = lines.slice(0, 3).map((line) => {
      const name = line.item.name ?? shortPath(line.item.path, root);
      if (group.key === 'changed' || group.key === 'defaults') return `${name} → ${shownValue(line.after)}`;
      return name;
    });
    return [{ text: `${group.title}: ${names.join(', ')}`, more: total - names.length }];
  });
}

export function TrialText({ result, self, root }: { result: EditResult | null; self: string; root: string }) {
  if (!result) return <p class="trial soft">…</p>;
  const lines = trialLines(result, self, root);
  if (lines.length === 0) return <p class="trial soft">Nothing else would change.</p>;
  return (
    <ul class={`trial${result.refused ? ' bad' : ''}`}>
      {lines.slice(0, mostLines).map(({ text, more }) => (
        <li key={text}>
          {text}
          {more > 0 && ` and ${more.toLocaleString('en-US')} more`}
        </li>
      ))}
      {lines.length > mostLines && <li>{`and ${count(lines.length - mostLines, 'other kind')} of changes`}</li>}
    </ul>
  );
}
