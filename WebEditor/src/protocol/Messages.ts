// Written by scripts/messages.mjs from the schema of the protocol. Do not edit.

/** An object, or with a name one of its parameters. */
export type Item = {
  path: string;
  name?: string;
};

/** Where something is written; line and column are counted from 1. */
export type Place = {
  file: string;
  line: number;
  column: number;
};

/** set-param has a name and a value; the kinds about a parameter have its name; duplicate-object and rename-object have the new name. */
export type Edit = {
  kind: "set-param" | "activate-param" | "deactivate-param" | "activate-object" | "deactivate-object" | "add-object" | "remove-object" | "duplicate-object" | "rename-object";
  path: string;
  name?: string;
  value?: string;
};

/** Something that was asked for and is not in force. */
export type Waiting = {
  path: string;
  reason: "not-available" | "object-not-present" | "switched-off" | "value-not-allowed" | "overridden" | "not-in-the-rules";
  name?: string;
  value?: string;
  ruleReason?: string;
  missingObject?: string;
};

export type ValueChange = {
  path: string;
  name: string;
  before?: string;
  after?: string;
};

/** The allowed values, and those on offer. Of a long list the first are there, and a count of all. */
export type Allowed = {
  allowsAnyValue: boolean;
  allowedValues?: string[];
  allowedCount?: number;
  subsetValues?: string[];
  subsetCount?: number;
};

export type ChoicesChange = {
  path: string;
  name: string;
  before: Allowed;
  after: Allowed;
};

export type BoundsChange = {
  path: string;
  name: string;
  before: {
    lowerBound?: string;
    upperBound?: string;
  };
  after: {
    lowerBound?: string;
    upperBound?: string;
  };
};

export type TextChange = {
  path: string;
  name: string;
  before?: string;
  after?: string;
};

export type WaitingChange = {
  path: string;
  name?: string;
  before?: Waiting;
  after?: Waiting;
};

/** What an edit changed. "cut" has the number of all entries of each list of which only the first are here. */
export type Effect = {
  values: ValueChange[];
  choices: ChoicesChange[];
  bounds: BoundsChange[];
  defaults: TextChange[];
  quantities: TextChange[];
  offersGained: Item[];
  offersLost: Item[];
  objectsCreated: string[];
  objectsDeleted: string[];
  waiting: WaitingChange[];
  cut?: {
    values?: number;
    choices?: number;
    bounds?: number;
    defaults?: number;
    quantities?: number;
    offersGained?: number;
    offersLost?: number;
    objectsCreated?: number;
    objectsDeleted?: number;
    waiting?: number;
  };
};

/** Why edits were refused. "index" is that of the refused edit. "possibleCount" is there when "possible" has only the first. Later versions may have more codes. */
export type Refused = {
  code: string;
  index: number;
  edit: Edit;
  sentence: string;
  nearest?: Edit;
  possible?: string[];
  possibleCount?: number;
};

export type Conversion = {
  index: number;
  path: string;
  from: string;
  to: string;
  name?: string;
};

export type Followed = {
  path: string;
  before: string;
  after: string;
  name?: string;
};

/** Either "refused", or what was done. A trial has no "step" and no "message", and the findings that come and go if they were asked for. */
export type EditResult = {
  applied: boolean;
  refused?: Refused;
  step?: number;
  made?: Edit[];
  conversions?: Conversion[];
  followed?: Followed[];
  effect?: Effect;
  message?: string;
  findingsGained?: Finding[];
  findingsLost?: Finding[];
};

/** docs/findings.md lists the codes. */
export type Finding = {
  code: string;
  severity: "error" | "warning" | "note";
  path: string;
  message: string;
  name?: string;
  type?: string;
  check?: string;
  value?: string;
  wrong?: string[];
  expected?: {
    allowed?: string[];
    allowedCount?: number;
    lowerBound?: string;
    lowerBoundExcluded?: boolean;
    upperBound?: string;
    upperBoundExcluded?: boolean;
    units?: string[];
    minimumCount?: number;
    maximumCount?: number;
    pattern?: string;
    nearMatch?: string;
    remedy?: string;
  };
  places?: Place[];
  rule?: Place;
};

/** Everything about a parameter, as it is now. */
export type Param = {
  path: string;
  name: string;
  type: "Integer" | "Integer List" | "Logical" | "Logical List" | "Real" | "Real List" | "String" | "String List";
  required: boolean;
  present: boolean;
  offered: boolean;
  available: boolean;
  origin: "none" | "user" | "model" | "default" | "override" | "former override" | "completed list";
  description?: string;
  group?: string;
  label?: string;
  advanced?: boolean;
  reason?: string;
  decision?: boolean;
  value?: string;
  step?: number;
  waiting?: Waiting;
  valueInModel?: string;
  defaultValue?: string;
  lowerBound?: string;
  lowerBoundExcluded?: boolean;
  upperBound?: string;
  upperBoundExcluded?: boolean;
  outOfBounds?: string;
  quantityType?: string;
  units?: string[];
  allowed?: Allowed;
  completeListRequired?: boolean;
  rule?: Place;
};

/** Everything about an object, as it is now. "errors" and "warnings" count the findings at and below it, where they were asked for. */
export type Object = {
  path: string;
  type: string;
  name: string;
  required: boolean;
  singleton: boolean;
  editable: boolean;
  present: boolean;
  offered: boolean;
  available: boolean;
  inModel: boolean;
  params: number;
  children: number;
  description?: string;
  group?: string;
  label?: string;
  advanced?: boolean;
  reason?: string;
  decision?: boolean;
  waiting?: Waiting;
  rule?: Place;
  content?: Place;
  errors?: number;
  warnings?: number;
};

/** A type of children. Of long lists the first entries are there, and a count of all. "errors" and "warnings" count the findings at and below the present ones, where they were asked for. */
export type ChildType = {
  type: string;
  required: boolean;
  singleton: boolean;
  editable: boolean;
  available: boolean;
  canAdd: boolean;
  present: string[];
  offered: string[];
  description?: string;
  group?: string;
  label?: string;
  advanced?: boolean;
  reason?: string;
  allowedNames?: string[];
  allowedNamesCount?: number;
  presentCount?: number;
  offeredCount?: number;
  errors?: number;
  warnings?: number;
  rule?: Place;
};

/** A parameter without its values. Without "available" nothing is known but the name. */
export type Outlined = {
  name: string;
  label?: string;
  group?: string;
  advanced?: boolean;
  available?: boolean;
  waiting?: boolean;
};

export type Found = {
  path: string;
  match: "exact" | "prefix" | "word" | "substring";
  present: boolean;
  name?: string;
};

export type Own = {
  path: string;
  value: string;
  step: number;
  inForce: boolean;
  name?: string;
};

export type Difference = {
  path: string;
  name?: string;
  inModel?: string;
  now?: string;
  isNewObject?: boolean;
};

export type Step = {
  number: number;
  edits: Edit[];
  made: Edit[];
  conversions?: Conversion[];
  followed?: Followed[];
};

export type OpenError = {
  fault: "model-unreadable" | "root-unreadable" | "root-unknown" | "no-root" | "several-roots" | "rule-failed";
  sentence: string;
  candidates?: string[];
};

export type SaveError = {
  fault: "file-changed" | "not-writable" | "write-failed" | "no-file";
  sentence: string;
};

/** What a rule read. In a proof also where the value comes from. */
export type Read = {
  path: string;
  isPresent: boolean;
  name?: string;
  childrenOfType?: string;
  children?: true;
  parameterNames?: true;
  value?: string;
  items?: string[];
  itemCount?: number;
  origin?: string;
  step?: number;
  place?: Place;
  isOld?: boolean;
  valueNow?: string;
  node?: number;
};

export type Explanation = {
  text: string;
  operation: string;
  value: boolean | number | string | unknown[] | null;
  context: string;
  name?: string;
  itemCount?: number;
  alsoFails?: boolean;
  total?: number;
  agreeing?: number;
  isCutShort?: boolean;
  reads?: Read[];
  parts?: Explanation[];
} | null;

export type ProofRule = {
  attribute: string;
  explanation: Explanation;
  reads: Read[];
  text?: string;
  place?: Place;
};

export type ProofNode = {
  path: string;
  fact: string;
  name?: string;
  value?: string;
  step?: number;
  contextParam?: string;
  needed?: string[];
  reason?: string;
  place?: Place;
  rules?: ProofRule[];
  before?: string;
  after?: string;
  isOutdated?: boolean;
  children?: number[];
};

/** The first node is the answer. "children" and "node" are indices of nodes. */
export type Proof = {
  question: "presence" | "value" | "allowed" | "last-edit";
  nodes: ProofNode[];
  hidden?: number;
};

export type Way = {
  edits: Edit[];
  effect: Effect;
  lost: ValueChange[];
  atNextEdit?: boolean;
};

export type HowResult = {
  answer: "already-so" | "found" | "impossible" | "not-found";
  ways: Way[];
  trials: number;
  completedEdits: number;
  stoppedByTime?: boolean;
  blocking?: Proof;
  freeParams?: Item[];
};

/** A document as it is now. */
export type State = {
  document: string;
  revision: number;
  root: string;
  unsaved: boolean;
  steps: number;
  undoneSteps: number;
  file?: string;
  recoveryFailure?: string;
};

export type Recoverable = {
  recovery: string;
  steps: number;
  file?: string;
};

export type Error = {
  code: number;
  message: string;
  data?: unknown;
};

export type Id = string | number | null;

export type Request = {
  jsonrpc: "2.0";
  method: string;
  id?: Id;
  params?: Record<string, never>;
};

export type Response = {
  jsonrpc: "2.0";
  id: Id;
  result?: unknown;
  error?: Error;
};

export type ParamsHello = Record<string, never>;

export type ResultHello = {
  name: string;
  version: string;
  protocol: {
    major: number;
    minor: number;
  };
  recordForm: number;
  capabilities: {
    methods: string[];
    files: boolean;
    recovery: boolean;
  };
  limits: {
    messageBytes: number;
    messageDepth: number;
    batch: number;
    edits: number;
    documents: number;
    modelBytes: number;
    page: number;
    whyDepth: number;
    howTime: number;
    streams: number;
  };
  documents: State[];
  recoverable: Recoverable[];
};

export type ParamsDocuments = Record<string, never>;

export type ResultDocuments = {
  documents: State[];
  recoverable: Recoverable[];
};

export type ParamsOpen = {
  file?: string;
  text?: string;
  root?: string;
  client?: string;
};

export type ResultOpen = {
  document: string;
  revision: number;
  root: string;
  unsaved: boolean;
  steps: number;
  undoneSteps: number;
  wasOpen: boolean;
  file?: string;
  recoveryFailure?: string;
};

export type ParamsState = {
  document: string;
};

export type ResultState = {
  document: string;
  revision: number;
  root: string;
  unsaved: boolean;
  steps: number;
  undoneSteps: number;
  file?: string;
  recoveryFailure?: string;
};

export type ParamsClose = {
  document: string;
  discard?: boolean;
};

export type ResultClose = {
  document: string;
};

export type ParamsSave = {
  document: string;
  revision?: number;
  file?: string;
  overwrite?: boolean;
  client?: string;
};

export type ResultSave = {
  document: string;
  revision: number;
  root: string;
  unsaved: boolean;
  steps: number;
  undoneSteps: number;
  saved: boolean;
  file?: string;
  recoveryFailure?: string;
  error?: SaveError;
};

export type ParamsRecover = {
  recovery: string;
  partial?: boolean;
  client?: string;
};

export type ResultRecover = {
  document: string;
  revision: number;
  root: string;
  unsaved: boolean;
  steps: number;
  undoneSteps: number;
  done: number;
  entries: number;
  fileChanged: boolean;
  file?: string;
  recoveryFailure?: string;
};

export type ParamsDiscardRecovery = {
  recovery: string;
};

export type ResultDiscardRecovery = {
  recovery: string;
};

export type ParamsEdit = {
  document: string;
  revision: number;
  edits: Edit[];
  ask?: boolean;
  editId?: string;
  limit?: number;
  client?: string;
};

export type ResultEdit = {
  document: string;
  revision: number;
  root: string;
  unsaved: boolean;
  steps: number;
  undoneSteps: number;
  result: EditResult;
  file?: string;
  recoveryFailure?: string;
  repeated?: boolean;
};

export type ParamsRenameFollowed = {
  document: string;
  revision: number;
  path: string;
  name: string;
  editId?: string;
  limit?: number;
  client?: string;
};

export type ResultRenameFollowed = {
  document: string;
  revision: number;
  root: string;
  unsaved: boolean;
  steps: number;
  undoneSteps: number;
  result: EditResult;
  file?: string;
  recoveryFailure?: string;
  repeated?: boolean;
};

export type ParamsTryEdits = {
  document: string;
  edits: Edit[];
  revision?: number;
  findings?: boolean;
  limit?: number;
};

export type ResultTryEdits = {
  revision: number;
  result: EditResult;
};

export type ParamsUndo = {
  document: string;
  revision: number;
  limit?: number;
  client?: string;
};

export type ResultUndo = {
  document: string;
  revision: number;
  root: string;
  unsaved: boolean;
  steps: number;
  undoneSteps: number;
  file?: string;
  recoveryFailure?: string;
  result?: EditResult;
};

export type ParamsRedo = {
  document: string;
  revision: number;
  limit?: number;
  client?: string;
};

export type ResultRedo = {
  document: string;
  revision: number;
  root: string;
  unsaved: boolean;
  steps: number;
  undoneSteps: number;
  file?: string;
  recoveryFailure?: string;
  result?: EditResult;
};

export type ParamsSteps = {
  document: string;
  offset?: number;
  limit?: number;
};

export type ResultSteps = {
  revision: number;
  undoneSteps: number;
  total: number;
  offset: number;
  list: Step[];
};

export type ParamsLastResult = {
  document: string;
  list?: "values" | "choices" | "bounds" | "defaults" | "quantities" | "offersGained" | "offersLost" | "objectsCreated" | "objectsDeleted" | "waiting";
  offset?: number;
  limit?: number;
};

export type ResultLastResult = {
  revision: number;
  result?: EditResult;
  total?: number;
  offset?: number;
  list?: unknown[];
};

export type ParamsLookParam = {
  document: string;
  path: string;
  name: string;
};

export type ResultLookParam = {
  revision: number;
  param: Param | null;
};

export type ParamsLookObject = {
  document: string;
  path: string;
};

export type ResultLookObject = {
  revision: number;
  object: Object | null;
};

export type ParamsLook = {
  document: string;
  items: Item[];
};

export type ResultLook = {
  revision: number;
  records: (Param | Object | null)[];
};

export type ParamsParams = {
  document: string;
  path: string;
  offset?: number;
  limit?: number;
};

export type ResultParams = {
  revision: number;
  total: number;
  offset: number;
  list: string[];
};

export type ParamsOutline = {
  document: string;
  path: string;
  offset?: number;
  limit?: number;
};

export type ResultOutline = {
  revision: number;
  total: number;
  offset: number;
  list: Outlined[];
};

export type ParamsChildTypes = {
  document: string;
  path: string;
  offset?: number;
  limit?: number;
  findings?: boolean;
};

export type ResultChildTypes = {
  revision: number;
  total: number;
  offset: number;
  list: ChildType[];
};

export type ParamsChildren = {
  document: string;
  path: string;
  offset?: number;
  limit?: number;
  offered?: boolean;
  findings?: boolean;
};

export type ResultChildren = {
  revision: number;
  total: number;
  offset: number;
  list: Object[];
};

export type ParamsForm = {
  document: string;
  path: string;
  offset?: number;
  limit?: number;
  findings?: boolean;
};

export type ResultForm = {
  revision: number;
  object: Object | null;
  params: {
    total: number;
    offset: number;
    list: Param[];
  };
  childTypes: ChildType[];
  findings?: Finding[];
};

export type ParamsAllowedValues = {
  document: string;
  path: string;
  name: string;
  offset?: number;
  limit?: number;
  subset?: boolean;
};

export type ResultAllowedValues = {
  revision: number;
  total: number;
  offset: number;
  list: string[];
};

export type ParamsResolve = {
  document: string;
  text: string;
};

export type ResultResolve = {
  revision: number;
  item?: Item;
  refused?: Refused;
};

export type ParamsFind = {
  document: string;
  text: string;
  limit?: number;
};

export type ResultFind = {
  revision: number;
  isComplete: boolean;
  list: Found[];
};

export type ParamsConvert = {
  document: string;
  value: string;
  units: string;
};

export type ResultConvert = {
  revision: number;
  value: string | null;
};

export type ParamsOwn = {
  document: string;
  offset?: number;
  limit?: number;
  below?: string;
};

export type ResultOwn = {
  revision: number;
  total: number;
  offset: number;
  list: Own[];
};

export type ParamsWaiting = {
  document: string;
  offset?: number;
  limit?: number;
  below?: string;
};

export type ResultWaiting = {
  revision: number;
  total: number;
  offset: number;
  list: Waiting[];
};

export type ParamsDifferences = {
  document: string;
  offset?: number;
  limit?: number;
  below?: string;
  from?: "opened" | "file";
};

export type ResultDifferences = {
  revision: number;
  total: number;
  offset: number;
  list: Difference[];
};

export type ParamsResult = {
  document: string;
  offset?: number;
  limit?: number;
  below?: string;
};

export type ResultResult = {
  revision: number;
  total: number;
  offset: number;
  list: {
    path: string;
    name?: string;
    value?: string;
  }[];
};

export type ParamsReview = {
  document: string;
  offset?: number;
  limit?: number;
  below?: string;
  beta?: boolean;
};

export type ResultReview = {
  revision: number;
  errors: number;
  warnings: number;
  betaMessages: number;
  objectsPassedOver: number;
  total: number;
  offset: number;
  list: Finding[];
};

export type ParamsWhy = {
  document: string;
  path: string;
  name?: string;
  question?: "value" | "presence" | "allowed" | "last-edit";
  value?: string;
  depth?: number;
};

export type ResultWhy = {
  revision: number;
  proof: Proof;
  text: string;
};

export type ParamsHow = {
  document: string;
  path: string;
  name?: string;
  value?: string;
  time?: number;
};

export type ResultHow = {
  revision: number;
  result: HowResult;
  text: string;
};

export type EventChanged = {
  document: string;
  revision: number;
  root: string;
  unsaved: boolean;
  steps: number;
  undoneSteps: number;
  cause: "open" | "edit" | "undo" | "redo" | "save" | "recover";
  file?: string;
  recoveryFailure?: string;
  client?: string;
  result?: EditResult;
};

export type EventClosed = {
  document: string;
};

export type EventEventsLost = Record<string, never>;

/** The methods, with what each is given and returns. */
export type Methods = {
  hello: { params: ParamsHello; result: ResultHello };
  documents: { params: ParamsDocuments; result: ResultDocuments };
  open: { params: ParamsOpen; result: ResultOpen };
  state: { params: ParamsState; result: ResultState };
  close: { params: ParamsClose; result: ResultClose };
  save: { params: ParamsSave; result: ResultSave };
  recover: { params: ParamsRecover; result: ResultRecover };
  discardRecovery: { params: ParamsDiscardRecovery; result: ResultDiscardRecovery };
  edit: { params: ParamsEdit; result: ResultEdit };
  renameFollowed: { params: ParamsRenameFollowed; result: ResultRenameFollowed };
  tryEdits: { params: ParamsTryEdits; result: ResultTryEdits };
  undo: { params: ParamsUndo; result: ResultUndo };
  redo: { params: ParamsRedo; result: ResultRedo };
  steps: { params: ParamsSteps; result: ResultSteps };
  lastResult: { params: ParamsLastResult; result: ResultLastResult };
  lookParam: { params: ParamsLookParam; result: ResultLookParam };
  lookObject: { params: ParamsLookObject; result: ResultLookObject };
  look: { params: ParamsLook; result: ResultLook };
  params: { params: ParamsParams; result: ResultParams };
  outline: { params: ParamsOutline; result: ResultOutline };
  childTypes: { params: ParamsChildTypes; result: ResultChildTypes };
  children: { params: ParamsChildren; result: ResultChildren };
  form: { params: ParamsForm; result: ResultForm };
  allowedValues: { params: ParamsAllowedValues; result: ResultAllowedValues };
  resolve: { params: ParamsResolve; result: ResultResolve };
  find: { params: ParamsFind; result: ResultFind };
  convert: { params: ParamsConvert; result: ResultConvert };
  own: { params: ParamsOwn; result: ResultOwn };
  waiting: { params: ParamsWaiting; result: ResultWaiting };
  differences: { params: ParamsDifferences; result: ResultDifferences };
  result: { params: ParamsResult; result: ResultResult };
  review: { params: ParamsReview; result: ResultReview };
  why: { params: ParamsWhy; result: ResultWhy };
  how: { params: ParamsHow; result: ResultHow };
};
