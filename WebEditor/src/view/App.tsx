import { useEffect, useRef } from 'preact/hooks';
import { lastPart } from '../model/Paths';
import { shorten } from '../model/Quantity';
import { count } from '../model/Sentences';
import type { DocumentStore } from '../store/DocumentStore';
import { type Editor, pathOfAddress } from '../store/Editor';
import { Banners } from './Banners';
import { HelpDialog, PreviewDialog, SaveConflictDialog } from './Dialogs';
import { showTrial } from './Field';
import { FormView } from './FormView';
import { Results } from './Results';
import { SidePanel } from './SidePanel';
import { TopBar } from './TopBar';
import { TreeView } from './TreeView';

const panes = ['.tree-pane', '.form-pane', '.side-pane', '.top'] as const;

export function App({ editor }: { editor: Editor }) {
  const store = editor.open.value;
  if (!store) {
    return (
      <div class="app">
        <Banners editor={editor} />
        <NoDocument editor={editor} />
      </div>
    );
  }
  return <Workbench key="workbench" editor={editor} store={store} />;
}

function NoDocument({ editor }: { editor: Editor }) {
  const link = editor.connection.link.value;
  if (link.kind === 'connecting') return <main class="start">Connecting …</main>;
  const documents = editor.documents.value;
  return (
    <main class="start">
      <h1>No model is open</h1>
      {documents.map((state) => (
        <button key={state.document} type="button" onClick={() => void editor.show(state)}>
          {state.file ? lastPart(state.file) : 'New model'}
        </button>
      ))}
      <OpenForm editor={editor} />
      <p class="soft">
        Or start the server with one: <code>zev serve --rules RULES --http 8080 MODEL</code>
      </p>
    </main>
  );
}

function OpenForm({ editor }: { editor: Editor }) {
  const problem = useRef<HTMLParagraphElement>(null);
  return (
    <form
      class="open-form"
      onSubmit={async (event) => {
        event.preventDefault();
        const file = new FormData(event.currentTarget).get('file');
        const sentence = await editor.openFile(String(file));
        if (problem.current) problem.current.textContent = sentence ?? '';
      }}
    >
      <label for="open-file">File, in the folders of the server</label>
      <div class="control-line">
        <input id="open-file" name="file" type="text" autocomplete="off" spellcheck={false} />
        <button type="submit" class="primary">
          Open
        </button>
      </div>
      <p class="problem" ref={problem} role="alert" />
    </form>
  );
}

/** Whether the element takes letters, so that they are no commands. */
function takesText(element: EventTarget | null): boolean {
  return element instanceof HTMLElement && (element.matches('input, textarea, select') || element.isContentEditable);
}

function paramOf(element: Element | null): string | undefined {
  return element?.closest<HTMLElement>('[data-param]')?.dataset.param;
}

/** A text that was refused, or that waits for a decision, is easily forgotten in an object that is not shown. */
function unsetText(places: string[]): string {
  if (places.length === 0) return '';
  const shown = places.slice(0, 3).map((place) => shorten(place, 100));
  const more = places.length > 3 ? ` and ${count(places.length - 3, 'other field')}` : '';
  return `Saved, but not what is typed in ${shown.join(', ')}${more}: it is not in the model.`;
}

function Workbench({ editor, store }: { editor: Editor; store: DocumentStore }) {
  const isReadOnly = editor.connection.link.value.kind !== 'online';
  const pane = editor.pane.value;
  const { file, unsaved } = store.state.value;

  const save = async () => {
    // The field that is being typed in comes first. Its edit is in the queue before the saving.
    const active = document.activeElement;
    if (active instanceof HTMLElement && takesText(active)) {
      active.blur();
      active.focus({ preventScroll: true });
    }
    const sentence = await store.save();
    // An older notice may say that something is not saved.
    editor.notice.value = store.saveConflict.value === null ? (sentence ?? unsetText(store.unsetDrafts())) : '';
  };

  useEffect(() => {
    document.title = `${unsaved ? '• ' : ''}${file ? lastPart(file) : 'New model'}`;
  }, [file, unsaved]);

  useEffect(() => {
    store.onLink = () => {
      editor.pane.value = 'form';
    };
    const onKey = (event: KeyboardEvent) => {
      const isCommand = event.ctrlKey || event.metaKey;
      const key = event.key.toLowerCase();
      const field = paramOf(document.activeElement);
      const item = field === undefined ? undefined : { path: store.selected.peek(), name: field };
      if (isCommand && key === 's') {
        event.preventDefault();
        void save();
      } else if (isCommand && (key === 'z' || key === 'y')) {
        // A text that is being typed has an undo of its own. One that is on its way to the server is an edit already.
        const draft = item && store.draft(item).peek();
        if (takesText(event.target) && (item === undefined || (draft && !draft.isSent))) return;
        event.preventDefault();
        if (key === 'y' || event.shiftKey) void store.redo();
        else void store.undo();
      } else if (event.key === 'F6') {
        event.preventDefault();
        nextPane(event.shiftKey ? -1 : 1);
      } else if (!isCommand && !event.altKey && !takesText(event.target)) {
        if (event.key === '/') {
          event.preventDefault();
          const search = document.getElementById('search');
          if (search instanceof HTMLInputElement) search.select();
        } else if (event.key === '?') {
          editor.helpIsOpen.value = true;
        } else if (key === 'w') {
          const target = item ?? { path: store.selected.peek() };
          const param = item && store.record(item.path, item.name).peek();
          void store.askWhy(target, param?.present ? 'value' : 'presence');
          editor.pane.value = 'side';
        } else if (key === 't' && item) {
          const param = store.record(item.path, item.name).peek();
          if (!param?.available) return;
          const edit = param.present
            ? ({ kind: 'set-param', ...item, value: param.value ?? '' } as const)
            : ({ kind: 'activate-param', ...item } as const);
          void showTrial(store, [edit]);
        }
      }
    };
    document.addEventListener('keydown', onKey);
    return () => document.removeEventListener('keydown', onKey);
  }, [store]);

  // The address names the object, so that the browser's own way back works.
  const selected = store.selected.value;
  useEffect(() => {
    if (pathOfAddress() !== selected) history.pushState(null, '', `#${encodeURI(selected)}`);
  }, [selected]);
  useEffect(() => {
    const onBack = () => {
      const path = pathOfAddress();
      if (path !== undefined && path !== store.selected.peek()) void store.select(path);
    };
    addEventListener('popstate', onBack);
    return () => removeEventListener('popstate', onBack);
  }, [store]);

  const hasDrafts = store.draftCount.value > 0;
  useEffect(() => {
    if (!hasDrafts && !unsaved) return;
    const warn = (event: BeforeUnloadEvent) => event.preventDefault();
    addEventListener('beforeunload', warn);
    return () => removeEventListener('beforeunload', warn);
  }, [hasDrafts, unsaved]);

  const show = (next: 'tree' | 'form' | 'side') => () => {
    editor.pane.value = next;
  };
  const review = store.review.value;
  const findings = review ? review.errors + review.warnings : 0;
  return (
    <div class={`app pane-${pane}${isReadOnly ? ' read-only' : ''}`}>
      <TopBar editor={editor} store={store} isReadOnly={isReadOnly} onSave={() => void save()} />
      <Banners editor={editor} />
      <main class="panes">
        <nav class="tree-pane" aria-label="Objects">
          {store.hits.value ? (
            <Results store={store} hits={store.hits.value} onShow={show('form')} />
          ) : (
            <TreeView key={store.document} store={store} onShow={show('form')} />
          )}
        </nav>
        <section class="form-pane" aria-label="Form">
          <FormView store={store} isReadOnly={isReadOnly} onBack={show('tree')} />
        </section>
        <section class="side-pane" aria-label="Effects, reasons and findings">
          <SidePanel store={store} isReadOnly={isReadOnly} onBack={show('form')} />
        </section>
      </main>
      <footer class="status">
        <p role="status" aria-live="polite">
          {store.isWorking.value ? 'Working …' : store.announcement.value}
        </p>
        <button type="button" class="quiet narrow" onClick={show('side')}>
          {findings > 0 ? `Effects, ${findings} findings` : 'Effects'}
        </button>
      </footer>
      <PreviewDialog store={store} />
      <SaveConflictDialog editor={editor} store={store} />
      <HelpDialog editor={editor} />
    </div>
  );
}

function nextPane(step: 1 | -1): void {
  const visible = panes
    .map((selector) => document.querySelector<HTMLElement>(selector))
    .filter((pane): pane is HTMLElement => pane !== null && pane.offsetParent !== null);
  const at = visible.findIndex((pane) => pane.contains(document.activeElement));
  const next = visible[(at + step + visible.length) % visible.length];
  const inside = next?.querySelector<HTMLElement>(
    '[role=treeitem][tabindex="0"], [data-main], [role=tab][tabindex="0"], input, button, [tabindex="0"]',
  );
  inside?.focus();
}
