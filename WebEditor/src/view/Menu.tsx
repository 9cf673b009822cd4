// A button with a menu. Arrows move, Enter chooses, Esc and Tab close.
import type { ComponentChildren } from 'preact';
import { useEffect, useId, useLayoutEffect, useRef, useState } from 'preact/hooks';
import { Icon } from './Icon';

export type MenuItem = { label: string; run: () => void; hint?: string; isBad?: boolean };

export function Menu({
  label,
  items,
  children,
  tabIndex,
}: {
  label: string;
  items: () => MenuItem[];
  children?: ComponentChildren;
  tabIndex?: number;
}) {
  const [open, setOpen] = useState<MenuItem[] | null>(null);
  const button = useRef<HTMLButtonElement>(null);
  const list = useRef<HTMLDivElement>(null);
  const id = useId();

  useLayoutEffect(() => {
    const menu = list.current;
    if (!open || !menu) return;
    // A menu at the lower edge of its pane opens upwards.
    const room = menu.closest('.scroll')?.getBoundingClientRect().bottom ?? innerHeight;
    menu.classList.toggle('above', menu.getBoundingClientRect().bottom > Math.min(room, innerHeight));
    menu.querySelector<HTMLElement>('[role=menuitem]')?.focus();
  }, [open]);
  useEffect(() => {
    if (!open) return;
    const close = (event: Event) => {
      if (
        !(
          event.target instanceof Node &&
          (list.current?.contains(event.target) || button.current?.contains(event.target))
        )
      )
        setOpen(null);
    };
    document.addEventListener('pointerdown', close);
    return () => document.removeEventListener('pointerdown', close);
  }, [open]);

  const move = (event: KeyboardEvent) => {
    const all = [...(list.current?.querySelectorAll<HTMLElement>('[role=menuitem]') ?? [])];
    const at = all.indexOf(document.activeElement as HTMLElement);
    const to = { ArrowDown: at + 1, ArrowUp: at - 1, Home: 0, End: all.length - 1 }[event.key];
    if (to !== undefined) {
      all[(to + all.length) % all.length]?.focus();
      event.preventDefault();
    } else if (event.key === 'Escape' || event.key === 'Tab') {
      setOpen(null);
      button.current?.focus();
      if (event.key === 'Escape') event.preventDefault();
    }
    event.stopPropagation();
  };

  return (
    <span class="menu">
      <button
        ref={button}
        type="button"
        class="quiet square"
        aria-label={label}
        title={label}
        aria-haspopup="menu"
        aria-expanded={open !== null}
        aria-controls={open ? id : undefined}
        tabIndex={tabIndex}
        onClick={() => setOpen(open ? null : items())}
        onKeyDown={(event) => {
          if (event.key !== 'ArrowDown' || open) return;
          setOpen(items());
          event.preventDefault();
        }}
      >
        {children ?? <Icon name="more" />}
      </button>
      {open && (
        <div ref={list} id={id} class="menu-list" role="menu" tabIndex={-1} aria-label={label} onKeyDown={move}>
          {open.map((item) => (
            <button
              key={item.label}
              type="button"
              role="menuitem"
              tabIndex={-1}
              class={item.isBad ? 'bad' : ''}
              onClick={() => {
                setOpen(null);
                button.current?.focus();
                item.run();
              }}
            >
              <span>{item.label}</span>
              {item.hint && <kbd>{item.hint}</kbd>}
            </button>
          ))}
        </div>
      )}
    </span>
  );
}
