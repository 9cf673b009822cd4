// Fills the tree while the user looks at it.
import { batch, signal } from '@preact/signals';
import { ancestors, parentOf } from '../model/Paths';
import { newNode, pageSize, type TreeNode, type TreeRow, treeRows, typeRanges } from '../model/Tree';
import type { Effect, Object as ObjectRecord } from '../protocol/Messages';
import type { Connection } from './Connection';

const scrollPause = 60;

/** The numbers of findings that are known, though they may be outdated. */
function countsOf(record: ObjectRecord | null): { errors?: number; warnings?: number } {
  return { errors: record?.errors ?? 0, warnings: record?.warnings ?? 0 };
}

export class TreeStore {
  readonly rows = signal<TreeRow[]>([]);
  readonly nodes = new Map<string, TreeNode>();
  /** The row that the keyboard is on. */
  readonly active = signal('');

  private loading = new Set<string>();
  private visible: [number, number] = [0, 0];
  private showTimer: ReturnType<typeof setTimeout> | undefined;
  /** Raised when all is read anew: answers to earlier requests are then dropped. */
  private epoch = 0;

  constructor(
    private readonly connection: Connection,
    private readonly document: () => string,
    private root: string,
  ) {}

  /** Reads the tree from the beginning, and opens again what was open. */
  async load(root: string): Promise<void> {
    this.root = root;
    this.epoch += 1;
    this.loading.clear();
    const open = [...this.nodes.values()].filter((node) => node.open).map((node) => node.path);
    const { object } = await this.connection.call('lookObject', { document: this.document(), path: root });
    const node = this.nodes.get(root) ?? newNode(root);
    node.record = object;
    node.open = true;
    this.nodes.set(root, node);
    this.publish();
    for (const path of new Set([root, ...open.sort((a, b) => a.length - b.length)])) {
      if (this.nodes.has(path)) await this.loadChildren(path);
    }
  }

  publish(): void {
    this.rows.value = treeRows(this.nodes, this.root);
  }

  async toggle(row: TreeRow, open: boolean): Promise<void> {
    if (row.kind === 'type') {
      row.range.open = open;
      this.publish();
      return;
    }
    if (row.kind !== 'object') return;
    const node = this.nodes.get(row.path);
    if (!node) return;
    node.open = open;
    if (open && !node.types) await this.loadChildren(row.path);
    this.publish();
  }

  /** Opens everything above an object, so that its row exists. */
  async reveal(path: string): Promise<void> {
    for (const above of ancestors(parentOf(path), this.root)) {
      if (path === this.root) break;
      const node = this.nodes.get(above);
      if (!node) return;
      if (!node.types) await this.loadChildren(above);
      node.open = true;
      const next = ancestors(path, this.root).find((one) => parentOf(one) === above && one !== above);
      if (next === undefined) continue;
      let index = node.children.indexOf(next);
      if (index < 0 && node.types) {
        // The page with the object is not there yet. All pages of its type are looked through.
        const type = next.slice(above.length + 1).split(':')[0];
        const range = node.types.find((one) => one.type === type);
        for (let page = Math.floor((range?.start ?? 0) / pageSize); range && index < 0; page++) {
          if (page * pageSize >= range.start + range.count) break;
          await this.loadPage(above, page, false);
          index = node.children.indexOf(next);
        }
      }
      const range = node.types?.find((one) => index >= one.start && index < one.start + one.count);
      if (range) range.open = true;
    }
    this.publish();
  }

  /** What is known of the order of the objects below one. */
  orderBelow(path: string): { types: string[]; children: Map<string, number> } {
    const node = this.nodes.get(path);
    const children = new Map<string, number>();
    node?.children.forEach((child, i) => {
      if (child !== undefined) children.set(child, i);
    });
    return { types: node?.types?.map(({ type }) => type) ?? [], children };
  }

  /** The rows that are on the screen: what they lack is loaded, once the tree has been scrolled to its place. */
  show(first: number, last: number): void {
    this.visible = [first, last];
    clearTimeout(this.showTimer);
    this.showTimer = setTimeout(() => this.loadVisible(), scrollPause);
  }

  private loadVisible(): void {
    const [first, last] = this.visible;
    for (let i = first; i <= last; i++) {
      const row = this.rows.value[i];
      if (!row || row.kind === 'type' || row.key === this.root) continue;
      const page = Math.floor(row.index / pageSize);
      const parent = this.nodes.get(row.parent);
      if (row.kind === 'missing' || parent?.stale.has(page))
        void this.loadPage(row.parent, page, row.kind !== 'missing');
    }
  }

  /** After an edit: objects that came and went change the lists that they are in. */
  async apply(effect: Effect): Promise<void> {
    const parents = new Set<string>();
    for (const path of [...effect.objectsCreated, ...effect.objectsDeleted]) parents.add(parentOf(path));
    const isLarge = effect.cut?.objectsCreated !== undefined || effect.cut?.objectsDeleted !== undefined;
    if (isLarge) return this.load(this.root);
    if (parents.size === 0) return;
    for (const path of effect.objectsDeleted) this.forget(path);
    for (const parent of [...parents].sort((a, b) => a.length - b.length)) {
      const node = this.nodes.get(parent);
      if (!node) continue;
      if (node.types) await this.loadChildren(parent);
      else await this.loadRecord(parent);
    }
    this.publish();
  }

  /** Asks for the numbers of findings again: of the visible rows now, of the others when they are shown. */
  async refreshFindings(): Promise<void> {
    for (const node of this.nodes.values()) {
      for (let page = 0; page * pageSize < node.children.length; page++) node.stale.add(page);
    }
    await this.loadRecord(this.root);
    for (const node of [...this.nodes.values()]) {
      if (node.open && node.types?.some((range) => range.count > pageSize)) await this.loadTypes(node, true);
    }
    this.publish();
    this.show(...this.visible);
  }

  private forget(path: string): void {
    for (const known of [...this.nodes.keys()]) {
      if (known === path || known.startsWith(`${path}/`)) this.nodes.delete(known);
    }
  }

  private async loadRecord(path: string): Promise<void> {
    const { object } = await this.connection.call('lookObject', { document: this.document(), path });
    const node = this.nodes.get(path);
    if (!node || !object) return;
    node.record = { ...countsOf(node.record), ...object };
  }

  private async loadTypes(node: TreeNode, findings: boolean): Promise<void> {
    const { list } = await this.connection.call('childTypes', { document: this.document(), path: node.path, findings });
    node.types = typeRanges(list, node.types);
  }

  /** Without findings this is quick: they take a review of the whole model. */
  private async loadChildren(path: string): Promise<void> {
    const node = this.nodes.get(path);
    if (!node) return;
    const epoch = this.epoch;
    await this.loadTypes(node, false);
    if (epoch !== this.epoch) return;
    const total = (node.types ?? []).reduce((sum, range) => sum + range.count, 0);
    node.children = new Array<string | undefined>(total).fill(undefined);
    node.stale.clear();
    if (node.record) node.record = { ...node.record, children: total };
    this.loading.delete(`${path}\n0`);
    await this.loadPage(path, 0, false);
  }

  private async loadPage(path: string, page: number, findings: boolean): Promise<void> {
    const key = `${path}\n${page}`;
    const node = this.nodes.get(path);
    if (!node || this.loading.has(key)) return;
    this.loading.add(key);
    const epoch = this.epoch;
    try {
      const answer = await this.connection.call('children', {
        document: this.document(),
        path,
        offset: page * pageSize,
        limit: pageSize,
        findings,
      });
      if (epoch !== this.epoch) return;
      batch(() => {
        answer.list.forEach((record, i) => {
          node.children[answer.offset + i] = record.path;
          const child = this.nodes.get(record.path) ?? newNode(record.path);
          child.record = findings ? record : { ...countsOf(child.record), ...record };
          if (record.children === 0) child.types = null;
          this.nodes.set(record.path, child);
        });
        if (findings) node.stale.delete(page);
        this.publish();
      });
    } finally {
      this.loading.delete(key);
    }
  }
}
