// Icons are drawn here, because rare characters look different on each machine. They repeat what a text says, so
// screen readers pass over them.
const shapes = {
  chevron: 'M6 4l4 4-4 4',
  down: 'M4 6l4 4 4-4',
  more: 'M3.5 8h.01M8 8h.01M12.5 8h.01',
  undo: 'M6 3L3 6l3 3M3.2 6H9a3.5 3.5 0 010 7H6',
  redo: 'M10 3l3 3-3 3M12.8 6H7a3.5 3.5 0 000 7h3',
  search: 'M7 11.5a4.5 4.5 0 100-9 4.5 4.5 0 000 9zM10.3 10.3L13.5 13.5',
  clock: 'M8 14A6 6 0 108 2a6 6 0 000 12zM8 4.8V8l2.2 1.6',
  alert: 'M8 2.5l6 10.8H2zM8 6.6v3M8 11.4h.01',
  check: 'M3.5 8.5l3 3 6-7',
  close: 'M4 4l8 8M12 4l-8 8',
  plus: 'M8 3.5v9M3.5 8h9',
  back: 'M10 3.5L5.5 8l4.5 4.5',
  up: 'M4 10l4-4 4 4',
  lock: 'M4.5 7.5h7v5.5h-7zM6 7.5V5.5a2 2 0 014 0v2',
} as const;

export type IconName = keyof typeof shapes;

export function Icon({ name }: { name: IconName }) {
  return (
    <svg class={`icon icon-${name}`} viewBox="0 0 16 16" width="16" height="16" aria-hidden="true" focusable="false">
      <path d={shapes[name]} />
    </svg>
  );
}
