// Facts of proofs in words: the rest of a sentence that begins with the item.
import type { ProofNode } from '../protocol/Messages';
import { shownValue } from './Sentences';

const fixed: Record<string, string> = {
  'outside-root': 'is outside of what is edited',
  'unknown-to-the-rules': 'is not known to the rules',
  'object-absent': 'is absent: an object above it is absent',
  'not-live': 'is absent: it counts only with other choices',
  'not-available': 'is absent: not available',
  'no-allowed-value': 'is absent: there is no allowed value',
  'name-not-allowed': 'is absent: the name is not allowed',
  'not-asked-for': 'is absent: nobody has asked for it',
  'not-in-model': 'is absent: the model does not have it',
  'never-switched-on': 'is on offer, and nobody has switched it on',
  'switched-off': 'is on offer, and you have switched it off',
  'value-refused': 'waits: its value is not allowed now',
  'is-root': 'is the object that is edited',
  required: 'is required',
  'asked-for': 'is optional, and was asked for',
  'taken-from-model': 'is taken from the model as it is',
};

const aboutValue: Record<string, string> = {
  override: 'the rules fix it',
  'set-by-user': 'set by you',
  'given-by-model': 'from the model',
  'former-override': 'left by an override that was in force',
  'completed-list': 'completed by the rules',
  'conditional-default': 'the default whose condition holds',
  default: 'the default',
  'first-on-offer': 'the first value on offer',
};

const aboutAllowed: Record<string, string> = {
  'not-in-list': 'is not in the list of allowed values',
  unused: 'is used already',
  'check-fails': 'does not pass a check',
  'outside-subset': 'is allowed, but not on offer',
  'value-allowed': 'is allowed',
  'any-value-allowed': 'is allowed: any value is',
};

export function factText(node: ProofNode): string {
  const { fact } = node;
  const value = shownValue(node.value);
  if (fact === 'set-by-user' && node.step) return `is ${value}: set by you, step ${node.step}`;
  if (fact in aboutValue) return `is ${value}: ${aboutValue[fact]}`;
  if (fact === 'blank') return 'has no value: there is no default';
  if (fact in aboutAllowed) return `${value} ${aboutAllowed[fact]}`;
  if (fact === 'not-changed') return 'was not changed by the last edit';
  if (fact === 'edited-itself') return 'was changed by the last edit itself';
  if (fact === 'changed-by-rules') return 'was changed by the rules after the last edit';
  // Later versions may have more facts.
  return fixed[fact] ?? fact.replaceAll('-', ' ');
}
