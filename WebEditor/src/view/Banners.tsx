// What the user must know about the server: it is gone, it came back, or it holds edits that were not saved.
import { useEffect, useState } from 'preact/hooks';
import { lastPart } from '../model/Paths';
import { count } from '../model/Sentences';
import type { Editor } from '../store/Editor';

export function Banners({ editor }: { editor: Editor }) {
  return (
    <div class="banners">
      <LinkBanner editor={editor} />
      <RecoveryBanner editor={editor} />
      <NoticeBanner editor={editor} />
      <JournalBanner editor={editor} />
    </div>
  );
}

function LinkBanner({ editor }: { editor: Editor }) {
  const link = editor.connection.link.value;
  const [, tick] = useState(0);
  useEffect(() => {
    if (link.kind !== 'gone') return;
    const timer = setInterval(() => tick((n) => n + 1), 1000);
    return () => clearInterval(timer);
  }, [link.kind]);
  if (link.kind === 'gone') {
    const seconds = Math.max(0, Math.ceil((link.nextTry - Date.now()) / 1000));
    return (
      <div class="banner bad" role="alert">
        <p>
          <strong>The server does not answer.</strong> What you have typed is kept here.
          <span class="soft" aria-hidden="true">{` Next try in ${seconds} s.`}</span>
        </p>
        <button type="button" onClick={() => void editor.connection.connect()}>
          Try now
        </button>
      </div>
    );
  }
  if (link.kind === 'not-allowed') {
    return (
      <div class="banner bad" role="alert">
        <p>
          <strong>The server does not know this page.</strong> It was probably started again: open the address that it
          printed. What you have typed is kept here.
        </p>
        <button type="button" onClick={() => void editor.connection.connect()}>
          Try again
        </button>
      </div>
    );
  }
  return null;
}

function RecoveryBanner({ editor }: { editor: Editor }) {
  const [problem, setProblem] = useState<{ recovery: string; sentence: string } | null>(null);
  return (
    <>
      {editor.recoverable.value.map(({ recovery, steps, file }) => (
        <div key={recovery} class="banner" role="status">
          <p>
            <strong>{`${count(steps, 'edit')} of ${file ? lastPart(file) : 'a new model'} ${steps === 1 ? 'was' : 'were'} not saved.`}</strong>{' '}
            {problem?.recovery === recovery ? problem.sentence : 'An earlier server has left them.'}
          </p>
          <button
            type="button"
            class="primary"
            onClick={async () => {
              const sentence = await editor.recover(recovery, problem?.recovery === recovery);
              setProblem(sentence === null ? null : { recovery, sentence });
            }}
          >
            {problem?.recovery === recovery ? 'Bring back what is possible' : 'Bring them back'}
          </button>
          <button type="button" onClick={() => void editor.discardRecovery(recovery)}>
            Discard them
          </button>
        </div>
      ))}
    </>
  );
}

function NoticeBanner({ editor }: { editor: Editor }) {
  const notice = editor.notice.value;
  if (notice === '') return null;
  return (
    <div class="banner" role="status">
      <p>{notice}</p>
      <button
        type="button"
        onClick={() => {
          editor.notice.value = '';
        }}
      >
        Close
      </button>
    </div>
  );
}

function JournalBanner({ editor }: { editor: Editor }) {
  const failure = editor.open.value?.state.value.recoveryFailure;
  if (failure === undefined) return null;
  return (
    <div class="banner bad" role="alert">
      <p>
        <strong>Unsaved edits are not safe.</strong> {failure}
      </p>
    </div>
  );
}
