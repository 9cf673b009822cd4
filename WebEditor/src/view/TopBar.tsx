import { useEffect, useRef, useState } from 'preact/hooks';
import { lastPart } from '../model/Paths';
import { shorten } from '../model/Quantity';
import { type Filter, parseQuery, toggleFilter } from '../model/Search';
import type { DocumentStore } from '../store/DocumentStore';
import type { Editor } from '../store/Editor';
import { NameDialog } from './Dialogs';
import { Icon } from './Icon';
import { Menu, type MenuItem } from './Menu';

const searchPause = 120;

export function TopBar({
  editor,
  store,
  isReadOnly,
  onSave,
}: {
  editor: Editor;
  store: DocumentStore;
  isReadOnly: boolean;
  onSave: () => void;
}) {
  const { file, unsaved, steps, undoneSteps } = store.state.value;
  const query = store.query.value;
  const input = useRef<HTMLInputElement>(null);
  const timer = useRef<ReturnType<typeof setTimeout> | undefined>(undefined);
  const [dialog, setDialog] = useState<'open' | 'save-as' | null>(null);
  const name = file === undefined ? 'New model' : lastPart(file);
  const documents = editor.documents.value;

  // A chip changes the search from outside; typing does not come back from there.
  useEffect(() => {
    if (input.current && input.current.value !== query) input.current.value = query;
  }, [query]);
  const search = (text: string, pause: number) => {
    clearTimeout(timer.current);
    timer.current = setTimeout(() => {
      void store.search(text).catch(() => {});
      if (text.trim() !== '') editor.pane.value = 'tree';
    }, pause);
  };

  const items = (): MenuItem[] => {
    const list: MenuItem[] = documents
      .filter(({ document }) => document !== store.document)
      .map((state) => ({
        label: `Go to ${state.file ? lastPart(state.file) : 'new model'}`,
        run: () => void editor.show(state),
      }));
    list.push({ label: 'Open a file', run: () => setDialog('open') });
    list.push({ label: 'Save as', run: () => setDialog('save-as') });
    list.push({
      label: 'What has changed?',
      run: () => {
        store.side.value = 'changes';
        editor.pane.value = 'side';
        void store.loadDifferences().catch(() => {});
      },
    });
    list.push({
      label: 'Keys',
      hint: '?',
      run: () => {
        editor.helpIsOpen.value = true;
      },
    });
    return list;
  };

  return (
    <header class="top">
      <div class="document-name" title={file}>
        <h1>{shorten(name, 120)}</h1>
        {unsaved && (
          <span class="unsaved">
            <span class="unsaved-dot" aria-hidden="true" />
            <span>not saved</span>
          </span>
        )}
      </div>
      <search class="search">
        <Icon name="search" />
        <input
          ref={input}
          id="search"
          type="search"
          aria-label="Search names"
          placeholder="Search"
          autocomplete="off"
          spellcheck={false}
          onInput={(event) => search(event.currentTarget.value, searchPause)}
          onKeyDown={(event) => {
            if (event.key === 'Escape' && event.currentTarget.value !== '') {
              event.currentTarget.value = '';
              search('', 0);
            } else if (event.key === 'Enter') {
              event.preventDefault();
              clearTimeout(timer.current);
              void store.search(event.currentTarget.value).then(
                () => {
                  const best = store.hits.peek()?.list[0];
                  if (!best) return;
                  void store.select(best.item.path, best.item.name);
                  if (best.item.name === undefined) document.getElementById('form-title')?.focus();
                  store.onLink();
                },
                () => {},
              );
            } else if (event.key === 'ArrowDown') {
              event.preventDefault();
              clearTimeout(timer.current);
              // The rows of the hits are rendered some frames after the hits have come.
              let frames = 60;
              const first = () => {
                const hit = document.querySelector<HTMLElement>('[role=tree][aria-label=Hits] [tabindex="0"]');
                frames -= 1;
                if (hit) hit.focus();
                else if (frames > 0) requestAnimationFrame(first);
              };
              void store.search(event.currentTarget.value).then(
                () => requestAnimationFrame(first),
                () => {},
              );
            }
          }}
        />
        <kbd>/</kbd>
      </search>
      <Chips store={store} editor={editor} />
      <div class="actions">
        <button
          type="button"
          class="quiet"
          disabled={steps === 0 || isReadOnly}
          title="Undo (Ctrl+Z)"
          onClick={() => void store.undo()}
        >
          <Icon name="undo" />
          <span class="wide">Undo</span>
        </button>
        <button
          type="button"
          class="quiet"
          disabled={undoneSteps === 0 || isReadOnly}
          title="Redo (Ctrl+Shift+Z)"
          onClick={() => void store.redo()}
        >
          <Icon name="redo" />
          <span class="wide">Redo</span>
        </button>
        <button
          type="button"
          class={unsaved ? 'primary' : ''}
          disabled={isReadOnly}
          title="Save (Ctrl+S)"
          onClick={onSave}
        >
          Save
        </button>
        <Menu label="More" items={items} />
      </div>
      {dialog === 'open' && (
        <NameDialog
          title="Open a file"
          label="File, in the folders of the server"
          button="Open"
          initial={file ?? ''}
          option={null}
          onClose={() => setDialog(null)}
          onDone={(text) => editor.openFile(text)}
        />
      )}
      {dialog === 'save-as' && (
        <NameDialog
          title="Save as"
          label="File, in the folders of the server"
          button="Save"
          initial={file ?? ''}
          option={null}
          onClose={() => setDialog(null)}
          onDone={(text) => store.save({ file: text })}
        />
      )}
    </header>
  );
}

function Chips({ store, editor }: { store: DocumentStore; editor: Editor }) {
  const chosen = parseQuery(store.query.value).filters;
  const review = store.review.value;
  const chips: { filter: Filter; label: string; number: number }[] = [
    { filter: 'set', label: 'Set', number: store.own.value.total },
    { filter: 'waiting', label: 'Waiting', number: store.waiting.value.total },
    { filter: 'finding', label: 'Findings', number: review ? review.errors + review.warnings : 0 },
    { filter: 'changed', label: 'Changed', number: 0 },
  ];
  return (
    // biome-ignore lint/a11y/useSemanticElements: a toolbar of switches is no set of fields
    <div class="chips" role="group" aria-label="Filters">
      {chips.map(({ filter, label, number }) => (
        <button
          key={filter}
          type="button"
          class="chip"
          aria-pressed={chosen.includes(filter)}
          onClick={() => {
            void store.search(toggleFilter(store.query.peek(), filter)).catch(() => {});
            editor.pane.value = 'tree';
          }}
        >
          {label}
          {number > 0 && <span class="chip-number">{number > 999 ? '999+' : number}</span>}
        </button>
      ))}
    </div>
  );
}
