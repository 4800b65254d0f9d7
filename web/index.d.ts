/** From the files of a printed multiple-choice test to a bubble sheet that grades right, in browsers and Node. */

/** What can be read: the bytes of a file, its text, or a File of the browser. */
export type Content = string | Uint8Array | ArrayBuffer | Blob;

/** A file: its content, and its name in findings and dialogs. A File of the browser has both. */
export interface NamedContent {
  name?: string;
  content: Content;
}

/** A question to the user. */
export interface Dialog {
  title: string;
  /** Lines end with CR LF. */
  text: string;
  /** Name of the file that it is about; empty for the test as a whole. */
  file: string;
  /** Captions; "&" stands before the letter that chooses the button. */
  buttons: string[];
}

export interface Options {
  /** That of the first file when it is missing or empty. */
  title?: string;
  /** One for each version; those of the files when they are missing. */
  versionNames?: string[];
  /** Two letters: the state whose objectives are read. */
  state?: string;
  /** No more than the first ones; 0: all. */
  maxQuestions?: number;
  objectives?: ('learning' | 'local' | 'state' | 'national')[];
  /** Even-numbered questions have the letters of odd-numbered ones. */
  oddOnly?: boolean;
  /** Rows have numbers without gaps, whatever the papers say. */
  renumber?: boolean;
  /** Answers with the position of a button, from 0; anything else cancels. Without it, the first one is chosen. */
  ask?: (dialog: Dialog) => number;
}

export interface Page {
  language?: 'en' | 'de' | 'fr' | 'es';
  /** That of the sheet when it is missing or empty. */
  title?: string;
  /** Digits of the student number's grid, 0 to 20. */
  idDigits?: number;
  /** Letters of the grid for the name, 0 to 30. */
  nameLetters?: number;
  /** The version that is printed as marked, from 1; 0: students mark theirs. */
  version?: number;
}

export interface Finding {
  severity: 'note' | 'warning' | 'error';
  /** A word that stays the same, such as "duplicate-id". */
  kind: string;
  /** Position in `files`, or -1. */
  file: number;
  /** Of the question on the paper, or 0. */
  number: number;
  id: string;
  line: number;
  column: number;
  text: string;
}

export interface Question {
  number: number;
  id: string;
  kind: string;
  fate: 'kept' | 'unsupported' | 'duplicate' | 'unreadable' | 'over-limit';
  text: string;
  answers: string[];
  /** Answers that are right, from 1. */
  correct: number[];
  all: boolean;
  points: number;
  [member: string]: unknown;
}

export interface Answer {
  row: number;
  paper: number;
  question: number;
  id: string;
  /** Bubbles of the right answer, from 1. */
  marks: number[];
  key: string[];
  all: boolean;
  points: number;
  incorrectPoints: number;
  noResponsePoints: number;
}

/** What `sheet.schema.json` in the library's documentation describes. */
export interface Result {
  format: 1;
  status: 'done' | 'refused' | 'cancelled' | 'failed';
  title: string;
  renumbered: boolean;
  files: { name: string; format: 'examview' | 'lmf'; title: string; version: string; oddScale: string[];
           evenScale: string[]; questions: Question[] }[];
  rows: { number: number; paper: number; kind: string; labels: string[]; several: boolean }[];
  versions: { name: string; file: number; answers: Answer[] }[];
  handGraded: { name: string; text: string; points: number }[];
  findings: Finding[];
}

/** A test and the sheet that was made of it. What needs a sheet throws where there is none, and all do once closed. */
export class Exam {
  private constructor();
  /** Makes the sheet again, with other options. Gives whether there is one; the findings say why not. */
  make(options?: Options): boolean;
  /** The sentence about what failed last; empty when nothing has. */
  readonly error: string;
  /** All of the result as JSON, as the program writes it. */
  readonly json: string;
  /** The same as an object. */
  readonly result: Result;
  /** A line for each finding, as the program prints it. */
  readonly lines: string[];
  /** The keys as comma-separated values. With an error among the findings they should not be used. */
  readonly csv: string;
  /** The sheet for the students, one HTML file. */
  studentPage(page?: Page): string;
  /** Keys and findings for the teacher, one HTML file. */
  teacherPage(page?: Page): string;
  /** The filled LMF file. */
  lmf(): Uint8Array;
  /** Files for a sheet reader, with their paths below a folder. */
  readerFiles(page?: Page): { path: string; content: Uint8Array }[];
  /** Frees what the exam holds in the module. */
  close(): void;
}

/**
 * Reads the files, the first one being the test and the others its versions, and makes the sheet. A file that is no test
 * is not thrown: `result.status` says "refused", and `lines` why.
 */
export function load(files: (NamedContent | File)[], options?: Options): Promise<Exam>;

/** Loads the module ahead of the first `load`. wasm: its bytes, where the file torva35.wasm does not lie beside this. */
export function init(wasm?: Uint8Array | ArrayBuffer): Promise<unknown>;

/** The line that the program prints for a finding. */
export function lineOf(finding: Finding, files: { name: string }[]): string;

/** Of the pages. */
export const languages: ('en' | 'de' | 'fr' | 'es')[];
