// A proof that unfolds: the fact, the rules that decided, and what they read. Each value leads to its place.
import { useState } from 'preact/hooks';
import { parentOf } from '../model/Paths';
import { factText } from '../model/ProofText';
import { placeText, shownValue } from '../model/Sentences';
import type { Explanation, Proof, ProofNode, ProofRule, Read } from '../protocol/Messages';
import type { DocumentStore } from '../store/DocumentStore';
import { Icon } from './Icon';
import { ItemLink } from './ItemLink';

export function ProofView({ store, proof }: { store: DocumentStore; proof: Proof }) {
  const [answer] = proof.nodes;
  if (!answer) return null;
  return (
    <div class="proof">
      <Node store={store} proof={proof} node={answer} depth={0} />
      {(proof.hidden ?? 0) > 0 && <p class="soft">Ask why at a value to go further.</p>}
    </div>
  );
}

function itemOf(node: { path: string; name?: string }) {
  return node.name === undefined ? { path: node.path } : { path: node.path, name: node.name };
}

/** The object whose parameters decide whether the item counts. */
function holderOf({ path, name }: ProofNode): string {
  return name === undefined ? parentOf(path) : path;
}

function Node({ store, proof, node, depth }: { store: DocumentStore; proof: Proof; node: ProofNode; depth: number }) {
  const explained = new Set((node.rules ?? []).flatMap((rule) => readsOf(rule).flatMap((read) => read.node ?? [])));
  const others = (node.children ?? []).filter((index) => !explained.has(index));
  return (
    <div class="proof-node">
      <p class="fact">
        <ItemLink store={store} item={itemOf(node)} />
        {node.contextParam === undefined ? (
          <span>{` ${factText(node)}`}</span>
        ) : (
          <span>
            {' is absent: it needs '}
            <ItemLink store={store} item={{ path: holderOf(node), name: node.contextParam }} />
            {` to be ${node.needed?.slice(0, 12).join(' or ')}; it is ${shownValue(node.value)}`}
          </span>
        )}
        {node.place && <span class="place">{placeText(node.place)}</span>}
      </p>
      {node.reason && <p class="rule-reason">{node.reason}</p>}
      {node.isOutdated && <p class="soft">A rule has changed its mind since; it is asked again at the next edit.</p>}
      {(node.before !== undefined || node.after !== undefined) && (
        <p class="change">{`${shownValue(node.before)} → ${shownValue(node.after)}`}</p>
      )}
      {node.contextParam === undefined && (node.needed?.length ?? 0) > 0 && (
        <p class="soft">{`Possible: ${node.needed?.slice(0, 12).join(', ')}`}</p>
      )}
      {(node.rules ?? []).map((rule) => (
        <Rule key={`${rule.attribute}${placeText(rule.place)}`} store={store} proof={proof} rule={rule} depth={depth} />
      ))}
      {others.map((index) => {
        const child = proof.nodes[index];
        return child && <Fold key={index} store={store} proof={proof} node={child} depth={depth} />;
      })}
    </div>
  );
}

function Fold({ store, proof, node, depth }: { store: DocumentStore; proof: Proof; node: ProofNode; depth: number }) {
  const [isOpen, setOpen] = useState(depth < 1);
  return (
    <div class="proof-fold">
      <button type="button" class="fold" aria-expanded={isOpen} onClick={() => setOpen(!isOpen)}>
        <Icon name="chevron" />
        <span>{`${node.name ?? node.path} ${factText(node)}`}</span>
      </button>
      {isOpen && <Node store={store} proof={proof} node={node} depth={depth + 1} />}
    </div>
  );
}

function Rule({ store, proof, rule, depth }: { store: DocumentStore; proof: Proof; rule: ProofRule; depth: number }) {
  const reads = uniqueReads(readsOf(rule));
  return (
    <div class="proof-rule">
      {rule.text !== undefined && rule.text !== '' && (
        <p class="rule-text">
          <span class="attribute">{rule.attribute}</span>
          <code>{rule.text}</code>
          <span class="place">{placeText(rule.place)}</span>
        </p>
      )}
      {rule.explanation && (rule.explanation.parts?.length ?? 0) > 0 && (
        <Parts explanation={rule.explanation} whole={rule.text ?? ''} />
      )}
      <ul class="reads">
        {reads.map((read) => (
          <ReadView key={readKey(read)} store={store} proof={proof} read={read} depth={depth} />
        ))}
      </ul>
    </div>
  );
}

/** The parts of a condition that decided, with their values. */
function Parts({ explanation, whole }: { explanation: Explanation; whole: string }) {
  const leaves: { text: string; value: string }[] = [];
  const open: Explanation[] = [explanation];
  for (let part = open.shift(); part !== undefined && leaves.length < 12; part = open.shift()) {
    if (!part) continue;
    const conditions = (part.parts ?? []).filter((one) => one && typeof one.value === 'boolean');
    if (conditions.length > 0) open.unshift(...conditions);
    else if (typeof part.value === 'boolean' && part.text !== whole)
      leaves.push({ text: part.text, value: part.value ? 'true' : 'false' });
  }
  if (leaves.length === 0) return null;
  return (
    <ul class="parts">
      {leaves.map(({ text, value }) => (
        <li key={text}>
          <code>{text}</code>
          <span>{` is ${value}`}</span>
        </li>
      ))}
    </ul>
  );
}

function ReadView({ store, proof, read, depth }: { store: DocumentStore; proof: Proof; read: Read; depth: number }) {
  const [isOpen, setOpen] = useState(false);
  const node = read.node === undefined ? undefined : proof.nodes[read.node];
  return (
    <li>
      <span class="read-line">
        {node && (
          <button
            type="button"
            class={`twist-button${isOpen ? ' open' : ''}`}
            aria-expanded={isOpen}
            onClick={() => setOpen(!isOpen)}
          >
            <Icon name="chevron" />
            <span class="hidden-text">Why {read.name ?? read.path}</span>
          </button>
        )}
        <ItemLink store={store} item={itemOf(read)} />
        <span>{` ${readText(read)}`}</span>
        {read.origin && <span class="soft">{originOf(read)}</span>}
      </span>
      {isOpen && node && <Node store={store} proof={proof} node={node} depth={depth + 1} />}
    </li>
  );
}

function readsOf(rule: ProofRule): Read[] {
  return rule.reads;
}

function readKey(read: Read): string {
  return `${read.path}\n${read.name ?? ''}\n${read.childrenOfType ?? ''}`;
}

function uniqueReads(reads: readonly Read[]): Read[] {
  return [...new Map(reads.map((read) => [readKey(read), read])).values()];
}

function readText(read: Read): string {
  const old = read.isOld ? ` then; now ${read.valueNow === undefined ? 'absent' : shownValue(read.valueNow)}` : '';
  if (read.childrenOfType !== undefined || read.children) {
    const total = read.itemCount ?? read.items?.length ?? 0;
    return `has ${total} ${read.childrenOfType ?? 'children'}${old}`;
  }
  if (!read.isPresent) return `is absent${old}`;
  if (read.items) return `= ${read.items.slice(0, 8).join(', ')}${read.items.length > 8 ? ' …' : ''}${old}`;
  return read.value === undefined ? `is present${old}` : `= ${shownValue(read.value)}${old}`;
}

function originOf(read: Read): string {
  switch (read.origin) {
    case 'user':
      return read.step ? ` set by you, step ${read.step}` : ' set by you';
    case 'model':
      return ' from the model';
    case 'none':
      return '';
    default:
      return ` ${read.origin}${read.place ? `, ${placeText(read.place)}` : ''}`;
  }
}
