// Questions and answers that need the whole attention. The browser's own dialog keeps the focus inside, closes with
// Esc, and gives the focus back.
import type { ComponentChildren } from 'preact';
import { useEffect, useId, useRef, useState } from 'preact/hooks';
import { editText } from '../model/Sentences';
import type { DocumentStore } from '../store/DocumentStore';
import type { Editor } from '../store/Editor';
import { EffectList } from './EffectList';

export function Dialog({
  title,
  onClose,
  children,
}: {
  title: string;
  onClose: () => void;
  children: ComponentChildren;
}) {
  const dialog = useRef<HTMLDialogElement>(null);
  const id = useId();
  useEffect(() => {
    const box = dialog.current;
    const before = document.activeElement;
    box?.showModal();
    return () => {
      box?.close();
      if (before instanceof HTMLElement && before.isConnected) before.focus();
    };
  }, []);
  return (
    <dialog
      ref={dialog}
      aria-labelledby={id}
      onCancel={(event) => {
        event.preventDefault();
        onClose();
      }}
      onClick={(event) => {
        if (event.target === dialog.current) onClose();
      }}
      onKeyDown={(event) => event.stopPropagation()}
    >
      <div class="dialog-body">
        <h2 id={id}>{title}</h2>
        {children}
      </div>
    </dialog>
  );
}

/** Asks for one text. `onDone` returns why it was not taken, or null. */
export function NameDialog({
  title,
  label,
  button,
  initial,
  option,
  names,
  onClose,
  onDone,
}: {
  title: string;
  label: string;
  button: string;
  initial: string;
  /** A choice that is on at first. */
  option: string | null;
  /** The only texts that are possible. */
  names?: string[];
  onClose: () => void;
  onDone: (text: string, option: boolean) => Promise<string | null>;
}) {
  const [text, setText] = useState(names?.[0] ?? initial);
  const [isOn, setOn] = useState(true);
  const [problem, setProblem] = useState('');
  const [isBusy, setBusy] = useState(false);
  const id = useId();
  const input = useRef<HTMLInputElement>(null);
  useEffect(() => input.current?.select(), []);
  const done = async () => {
    if (isBusy) return;
    setBusy(true);
    const sentence = await onDone(text.trim(), isOn);
    setBusy(false);
    if (sentence === null) onClose();
    else setProblem(sentence);
  };
  return (
    <Dialog title={title} onClose={onClose}>
      <form
        onSubmit={(event) => {
          event.preventDefault();
          void done();
        }}
      >
        <label for={id}>{label}</label>
        {names ? (
          <select id={id} value={text} onChange={(event) => setText(event.currentTarget.value)}>
            {names.map((name) => (
              <option key={name}>{name}</option>
            ))}
          </select>
        ) : (
          <input
            ref={input}
            id={id}
            type="text"
            autocomplete="off"
            spellcheck={false}
            value={text}
            aria-describedby={`${id}-problem`}
            aria-invalid={problem !== '' || undefined}
            onInput={(event) => {
              setText(event.currentTarget.value);
              setProblem('');
            }}
          />
        )}
        <p class="problem" id={`${id}-problem`} role="alert">
          {problem}
        </p>
        {option !== null && (
          <label class="check">
            <input type="checkbox" checked={isOn} onChange={(event) => setOn(event.currentTarget.checked)} />
            {option}
          </label>
        )}
        <div class="buttons">
          <button type="button" onClick={onClose}>
            Cancel
          </button>
          <button type="submit" class="primary">
            {button}
          </button>
        </div>
      </form>
    </Dialog>
  );
}

/** What edits would do, before they are made. */
export function PreviewDialog({ store }: { store: DocumentStore }) {
  const preview = store.preview.value;
  if (!preview) return null;
  const { edits, result, decide } = preview;
  const close = () => {
    if (decide) decide(false);
    else store.preview.value = null;
  };
  const [first] = edits;
  const title = first ? editText(first, store.root) : 'Nothing';
  return (
    <Dialog title={`${title}?`} onClose={close}>
      {!result && <p class="soft">Trying …</p>}
      {result?.refused && <p class="problem">{result.refused.sentence}</p>}
      {result?.effect && (
        <>
          <p class="soft">Nothing has changed yet. This would happen:</p>
          <div class="preview-effect">
            <EffectList store={store} effect={result.effect} />
            {(result.findingsGained?.length ?? 0) > 0 && (
              <>
                <h4>Findings that would come</h4>
                <ul>
                  {result.findingsGained?.map((one) => (
                    <li key={one.message} class="bad-text">
                      {one.message}
                    </li>
                  ))}
                </ul>
              </>
            )}
            {(result.findingsLost?.length ?? 0) > 0 && (
              <>
                <h4>Findings that would go</h4>
                <ul>
                  {result.findingsLost?.map((one) => (
                    <li key={one.message}>{one.message}</li>
                  ))}
                </ul>
              </>
            )}
          </div>
        </>
      )}
      <div class="buttons">
        <button type="button" onClick={close}>
          Leave it as it is
        </button>
        {result?.applied && decide && (
          <button type="button" class="primary" onClick={() => decide(true)}>
            {edits.length === 1 && first?.kind === 'remove-object' ? 'Remove' : 'Do it'}
          </button>
        )}
      </div>
    </Dialog>
  );
}

const keys: [string, string][] = [
  ['/', 'search'],
  ['F6', 'next pane'],
  ['Enter', 'set what was typed; in the tree: show the object'],
  ['Esc', 'take back what was typed'],
  ['w', 'why: of the row, outside of a text box'],
  ['t', 'try: what would change'],
  ['Ctrl+S', 'save'],
  ['Ctrl+Z', 'undo, outside of a text that is being typed'],
  ['Ctrl+Shift+Z', 'redo'],
  ['?', 'these keys'],
];

export function HelpDialog({ editor }: { editor: Editor }) {
  if (!editor.helpIsOpen.value) return null;
  const close = () => {
    editor.helpIsOpen.value = false;
  };
  return (
    <Dialog title="Keys" onClose={close}>
      <dl class="keys">
        {keys.map(([key, meaning]) => (
          <div key={key}>
            <dt>
              <kbd>{key}</kbd>
            </dt>
            <dd>{meaning}</dd>
          </div>
        ))}
      </dl>
      <p class="soft">Search words: @set, @changed, @waiting, @finding, @unavailable, @advanced.</p>
      <div class="buttons">
        <button type="button" class="primary" onClick={close}>
          Close
        </button>
      </div>
    </Dialog>
  );
}

/** The file was changed by someone else. The buttons name what happens. */
export function SaveConflictDialog({ editor, store }: { editor: Editor; store: DocumentStore }) {
  const sentence = store.saveConflict.value;
  const [isNaming, setNaming] = useState(false);
  if (sentence === null) return null;
  const close = () => {
    store.saveConflict.value = null;
  };
  const { file, steps } = store.state.value;
  const load = async () => {
    close();
    await store.connection.call('close', { document: store.document, discard: true });
    if (file !== undefined) await editor.openFile(file);
  };
  if (isNaming) {
    return (
      <NameDialog
        title="Save as"
        label="File"
        button="Save"
        initial={file ?? ''}
        option={null}
        onClose={close}
        onDone={(name) => store.save({ file: name })}
      />
    );
  }
  return (
    <Dialog title="The file was changed by someone else" onClose={close}>
      <p>{sentence}</p>
      <div class="buttons column">
        <button type="button" onClick={() => void store.save({ overwrite: true })}>
          Keep mine, write over the file
        </button>
        <button type="button" onClick={() => void load()}>
          {`Load the file, drop my ${steps} ${steps === 1 ? 'edit' : 'edits'}`}
        </button>
        <button type="button" onClick={() => setNaming(true)}>
          Save as another file
        </button>
        <button type="button" class="primary" onClick={close}>
          Do nothing now
        </button>
      </div>
    </Dialog>
  );
}
