// What a program in TypeScript may and may not write; it is compiled, and never run.
import { init, languages, lineOf, load, type Answer, type Dialog, type Exam, type Finding } from 'torva35';

async function keys(file: File): Promise<string[]> {
  await init(new Uint8Array());
  const exam: Exam = await load([file, { content: '<examview/>', name: 'b.xml' }, { content: new ArrayBuffer(1) }], {
    versionNames: ['A', 'B'],
    objectives: ['learning', 'state'],
    ask: (dialog: Dialog): number => dialog.buttons.length - 1,
  });
  if (!exam.make({ maxQuestions: 10, renumber: true }) || exam.result.status === 'refused') return [exam.error];
  const page: string = exam.studentPage({ language: languages[0], idDigits: 6 }) + exam.teacherPage();
  const bytes: number = exam.lmf().length + exam.readerFiles().reduce((sum, { path, content }) => sum + path.length + content.length, 0);
  const said: string[] = exam.result.findings.map((finding: Finding) => lineOf(finding, exam.result.files));
  const marked: string[] = exam.result.versions.flatMap(({ answers }) => answers.flatMap((answer: Answer) => answer.key));
  exam.close();
  return [page, String(bytes), ...said, ...marked, ...exam.lines, exam.csv, exam.json];
}

// @ts-expect-error: a language that no page has
load([], {}).then((exam) => exam.studentPage({ language: 'it' }));
// @ts-expect-error: not an array of files
load('sample-test.xml');
// @ts-expect-error: no such objectives
load([], { objectives: ['global'] });
// @ts-expect-error: it is read only
load([]).then((exam) => (exam.csv = ''));
keys(new File([], 'a.xml'));
