// The page: takes files, lets the library make a sheet of them, and shows and gives what came of it. No rule about a test
// stands here.
import { init, load } from './torva35.js';
import { words } from './words.js';
import { zip } from './zip.js';

const $ = (id) => document.getElementById(id);
const form = $('options');

let language = navigator.languages.map((tag) => tag.slice(0, 2)).find((tag) => tag in words) ?? 'en';
/** @type {File[]} */
let files = [];
/** Answers to the dialogs, by their texts. */
let answers = new Map();
/** @type {import('./index.d.ts').Exam | null} */
let exam = null;
let asked = [];

const word = (name, ...values) => values.reduce((text, value, i) => text.replace(`{${i}}`, value), words[language][name]);

/** An element: element('td', {class: 'right'}, 'text', otherElement). */
function element(tag, attributes = {}, ...children) {
  const made = document.createElement(tag);
  for (const [name, value] of Object.entries(attributes)) {
    if (name.startsWith('on')) made.addEventListener(name.slice(2), value);
    else if (value !== false) made.setAttribute(name, value);
  }
  made.append(...children);
  return made;
}

function say(text) {
  $('status').textContent = text;
}

function tellFailure(error) {
  say(word('failed', error.message));
}

const pageOptions = () => ({
  language,
  idDigits: form.idDigits.valueAsNumber || 0,
  nameLetters: form.nameLetters.valueAsNumber || 0,
  version: Number(form.version.value) || 0,
});

function sheetOptions() {
  const names = form.versionNames.value.split(',').map((name) => name.trim());
  return {
    title: form.title.value.trim(),
    versionNames: names.join('') === '' ? [] : names,
    renumber: form.renumber.checked,
    oddOnly: form.oddOnly.checked,
    ask(dialog) {
      const id = [dialog.file, dialog.title, dialog.text].join('\n');
      if (!asked.some((other) => other.id === id)) asked.push({ id, dialog });
      return answers.get(id) ?? 0;
    },
  };
}

/** A pause in which the page is drawn. */
const drawn = () => new Promise((resolve) => setTimeout(resolve));

let work = Promise.resolve();

/** Does one thing after the other, whatever is clicked meanwhile. */
function queue(task) {
  work = work.then(task).catch((error) => {
    // What stands there is of other files or options.
    $('outcome').hidden = true;
    tellFailure(error);
  });
  return work;
}

/** Reads all files anew. */
async function read() {
  exam?.close();
  exam = null;
  asked = [];
  if (files.length > 0) {
    say(word('reading'));
    await drawn();
    exam = await load(files, sheetOptions());
  }
  show();
}

/** Makes the sheet of the same files with other options. */
async function remake() {
  if (exam === null) return;
  asked = [];
  exam.make(sheetOptions());
  show();
}

function showFiles() {
  $('files').replaceChildren(
    ...files.map((file, i) =>
      element('li', {}, `${file.name} `,
        i > 0 ? element('button', { type: 'button', id: `first-${i}`, onclick: () => reorder(i, 0), 'aria-label': `${word('first')}: ${file.name}` }, word('first')) : '',
        element('button', { type: 'button', id: `remove-${i}`, onclick: () => reorder(i, -1), 'aria-label': `${word('remove')}: ${file.name}` }, word('remove')),
      ),
    ),
  );
}

function reorder(from, to) {
  const [file] = files.splice(from, 1);
  if (to >= 0) files.splice(to, 0, file);
  showFiles();
  // The button that was pressed is gone.
  ($(`remove-${to >= 0 ? to : Math.min(from, files.length - 1)}`) ?? $('choose')).focus();
  queue(read);
}

function showDialogs() {
  $('asked').hidden = asked.length === 0;
  $('dialogs').replaceChildren(
    ...asked.map(({ id, dialog }, i) =>
      element('fieldset', { lang: 'en' }, element('legend', {}, dialog.file === '' ? dialog.title : `${dialog.title} (${dialog.file})`),
        element('p', {}, dialog.text.replaceAll('\r\n', '\n')),
        ...(dialog.buttons.length < 2 ? [] : dialog.buttons).map((caption, button) =>
          element('label', { class: 'check' },
            element('input', { type: 'radio', name: `dialog${i}`, id: `dialog-${i}-${button}`, checked: (answers.get(id) ?? 0) === button && 'checked',
                               onchange: () => queue(() => (answers.set(id, button), remake())) }),
            caption.replace('&', '')),
        ),
      ),
    ),
  );
}

function showFindings(result) {
  const { lines } = exam;
  $('noFindings').hidden = result.findings.length > 0;
  $('findings').replaceChildren(...result.findings.map((finding, i) => element('li', { class: finding.severity, lang: 'en' }, lines[i])));
}

const keyOf = (answer) => answer.key.join(answer.all ? ' ' : ` ${word('or')} `);

function showVersions(result) {
  const head = result.versions.flatMap(({ name }) => {
    const before = name === '' ? '' : `${word('version', name)}: `;
    return ['paper', 'key'].map((column) => element('th', { scope: 'col' }, before + word(column)));
  });
  const rows = result.rows.map((row, i) =>
    element('tr', {}, element('th', { scope: 'row' }, String(row.number)),
      ...result.versions.flatMap((version) => [
        element('td', {}, String(version.answers[i].paper)),
        element('td', { class: 'right' }, keyOf(version.answers[i])),
      ])),
  );
  $('versions').replaceChildren(element('thead', {}, element('tr', {}, element('th', { scope: 'col' }, word('row')), ...head)),
    element('tbody', {}, ...rows));
  const marked = form.version.value;
  form.version.replaceChildren(element('option', { value: '0' }, word('none')),
    ...result.versions.map((version, i) => element('option', { value: String(i + 1) }, version.name || '1')));
  form.version.value = marked !== '' && Number(marked) <= result.versions.length ? marked : '0';
}

function showQuestions(result) {
  const table = (file) =>
    element('table', {},
      element('thead', {}, element('tr', {}, ...['number', 'kind', 'onSheet', 'text'].map((name) => element('th', { scope: 'col' }, word(name))))),
      element('tbody', {}, ...file.questions.map((question) =>
        element('tr', {}, element('th', { scope: 'row' }, String(question.number)), element('td', {}, question.kind),
          element('td', {}, word(question.fate === 'kept' ? 'yes' : 'no')),
          element('td', {}, question.text,
            element('ol', {}, ...question.answers.map((answer, i) => {
              const right = question.correct.includes(i + 1);
              return element('li', { class: right && 'right' }, right ? `${answer} (${word('correct')})` : answer);
            })))))));
  $('questions').replaceChildren(...result.files.map((file) => {
    const details = element('details', {}, element('summary', {}, `${file.name} (${file.questions.length})`));
    // Thousands of them are drawn only for those who look.
    details.addEventListener('toggle', () => details.append(element('div', { class: 'wide', tabindex: '0', role: 'region',
      'aria-label': file.name }, table(file))), { once: true });
    return details;
  }));
}

function save(name, type, content) {
  const url = URL.createObjectURL(new Blob([content], { type }));
  element('a', { href: url, download: name }).click();
  setTimeout(() => URL.revokeObjectURL(url), 60000);
  say(word('saved', name));
}

/** Prints a page of its own, from a frame that nobody sees. */
function print(html) {
  const before = $('printed');
  const frame = element('iframe', { id: 'printed', 'aria-hidden': 'true', tabindex: '-1', title: 'print',
    style: 'position:fixed;width:0;height:0;border:0' });
  frame.srcdoc = html;
  frame.addEventListener('load', () => frame.contentWindow.print());
  before?.remove();
  document.body.append(frame);
}

/** What can be had: its button, whether errors hold it back, and what it does. */
const outputs = [
  ['printSheet', true, () => print(exam.studentPage(pageOptions()))],
  ['printAnswers', false, () => print(exam.teacherPage({ ...pageOptions(), version: 0 }))],
  ['sheet', true, () => save(`${stem(files[0])}-sheet.html`, 'text/html', exam.studentPage(pageOptions()))],
  ['answers', false, () => save(`${stem(files[0])}-answers.html`, 'text/html', exam.teacherPage({ ...pageOptions(), version: 0 }))],
  ['CSV', true, () => save(`${stem(files[0])}.csv`, 'text/csv', exam.csv)],
  ['JSON', false, () => save(`${stem(files[0])}.json`, 'application/json', exam.json)],
  ['LMF', true, () => save(`${stem(files[0])}.lmf`, 'application/octet-stream', exam.lmf())],
  ['reader', true, () => save(`${stem(files[0])}-reader.zip`, 'application/zip', zip(exam.readerFiles({ ...pageOptions(), version: 0 })))],
];

function showOutputs(result) {
  const wrong = result.findings.some((finding) => finding.severity === 'error');
  if (!wrong) $('force').checked = false;
  $('withheld').hidden = $('forceLabel').hidden = !wrong;
  $('buttons').replaceChildren(
    ...outputs.map(([name, grades, run]) =>
      element('button', { type: 'button', 'data-output': name, disabled: grades && wrong && !$('force').checked && 'disabled',
                          onclick: () => queue(run) },
        name.startsWith('print') ? word(name) : word('save', words[language][name] ?? name)),
    ),
  );
}

function show() {
  const focused = document.activeElement.id;
  showAll();
  // What had the focus may have been made anew.
  if (focused !== '' && document.activeElement.id !== focused) $(focused)?.focus();
}

function showAll() {
  document.documentElement.lang = language;
  for (const each of document.querySelectorAll('[data-word]')) each.textContent = word(each.dataset.word);
  showFiles();
  $('outcome').hidden = exam === null;
  if (exam === null) {
    say('');
    return;
  }
  const { result } = exam;
  const done = result.status === 'done';
  say(done ? word('done', result.rows.length, result.versions.length) : word('refused'));
  $('made').hidden = !done;
  showDialogs();
  showFindings(result);
  showQuestions(result);
  if (!done) return;
  form.title.placeholder = result.title;
  showVersions(result);
  showOutputs(result);
}

/** A file's name without its ending. */
const stem = (file) => file.name.replace(/\.[^.]*$/, '');

function add(list) {
  // Files of a folder come in no order; their names have one, in which "unit" is before "unit-b".
  files.push(...[...list].sort((a, b) => stem(a).localeCompare(stem(b), 'en', { numeric: true })));
  showFiles();
  return queue(read);
}

$('choose').addEventListener('change', () => {
  add($('choose').files);
  $('choose').value = '';
});
for (const type of ['dragenter', 'dragover', 'dragleave', 'drop']) {
  document.addEventListener(type, (event) => {
    event.preventDefault();
    $('drop').classList.toggle('over', type === 'dragover' || type === 'dragenter');
    if (type === 'drop') add(event.dataTransfer.files);
  });
}
form.addEventListener('submit', (event) => event.preventDefault());
form.addEventListener('change', (event) => {
  const pageOnly = ['idDigits', 'nameLetters', 'version'].includes(event.target.name);
  if (form.reportValidity() && !pageOnly) queue(remake);
});
$('force').addEventListener('change', () => showOutputs(exam.result));
$('language').append(...Object.entries(words).map(([tag, { name }]) => element('option', { value: tag, lang: tag }, name)));
$('language').value = language;
$('language').addEventListener('change', () => {
  language = $('language').value;
  show();
});
show();
init().catch(tellFailure);
